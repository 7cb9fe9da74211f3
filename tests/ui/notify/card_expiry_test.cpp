// The expiry notice from what a host fills in to the function's result.
#include <array>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "notify/card_expiry_help.h"
#include "platform/handle.h"
#include "platform/system_library.h"
#include "support/failing_heap.h"
#include "support/resource_counts.h"
#include "support/waiting.h"
#include "ui/notify/card_expiry_fixture.h"

namespace mvp::test {
namespace {

constexpr char kConfigKey[] = R"(SOFTWARE\Quillon\Veskara\GlobalConfig)";
constexpr __time64_t kFar = 4'000'000'000;  // in 2096
constexpr char kCancelled[] = "Cancel Event detected. Close the dialog";

using CardExpiry = LibraryTest;

KernelHandle MakeEvent(bool bSignalled) {
    return KernelHandle(CreateEventA(nullptr, TRUE, bSignalled, nullptr));
}

std::string NamesOf(const VKExpiryNotificationInfo& info) {
    std::string names;
    for (int i = 0; i < info.GetNbCertExpiryNotificationInfo(); ++i) {
        names += info.GetCertificateExpiryNotificationInfo(i)->GetFriendlyName();
    }
    return names;
}

TEST_F(CardExpiry, IsFilledInByItsHost) {
    {
        VKExpiryNotificationInfo info("Reader A", this);
        CTime card(5);
        EXPECT_EQ(info.MustDisplayCardExpiry(card), 0);
        EXPECT_TRUE(card == CTime(0));
        EXPECT_EQ(info.GetNbDaysForNotificationDelay(), -1);
        EXPECT_EQ(info.GetReaderName(), "Reader A");
        EXPECT_EQ(info.GetCancelEvent(), this);
        info.SetNbDaysForNotificationDelay(9);
        info.SetMustDisplayCardExpiry(7, -kFar);
        EXPECT_EQ(info.MustDisplayCardExpiry(card), 7);
        EXPECT_TRUE(card == CTime(-kFar));
        EXPECT_EQ(info.GetNbDaysForNotificationDelay(), 9);
        for (const auto& [name, expiry] :
             {Certificate{"e", 5}, {"a", 3}, {"b", 3}, {"z", -1}, {"f", kFar}, {"", 4}}) {
            info.AddCertificateExpiryNotificationInfo(name, expiry);
        }
        info.AddCertificateExpiryNotificationInfo(nullptr, 9);
        EXPECT_EQ(NamesOf(info), "zbaef");
        EXPECT_EQ(info.GetNbCertExpiryNotificationInfo(), 7);
        EXPECT_EQ(info.GetCertificateExpiryNotificationInfo(7), nullptr);
        EXPECT_EQ(info.GetCertificateExpiryNotificationInfo(-1), nullptr);
        VKCertificateExpiryNotificationInfo copy(*info.GetCertificateExpiryNotificationInfo(1));
        EXPECT_TRUE(copy.GetFriendlyName() == "b" && copy.GetCertificateExpiryDate() == CTime(3));
        copy = *info.GetCertificateExpiryNotificationInfo(0);
        copy = *&copy;
        EXPECT_TRUE(copy.GetFriendlyName() == "z" && copy.GetCertificateExpiryDate() == CTime(-1));
        std::map<std::string, int> calls;
        for (const std::string& name : m_log.Texts(16)) {
            ++calls[name.substr(name.find("::"))];
        }
        EXPECT_EQ(calls, (std::map<std::string, int>{{"::VKExpiryNotificationInfo", 1},
                                                     {"::GetReaderName", 1},
                                                     {"::GetCancelEvent", 1},
                                                     {"::SetNbDaysForNotificationDelay", 1},
                                                     {"::GetNbDaysForNotificationDelay", 2},
                                                     {"::SetMustDisplayCardExpiry", 1},
                                                     {"::MustDisplayCardExpiry", 2},
                                                     {"::AddCertificateExpiryNotificationInfo", 7},
                                                     {"::GetNbCertExpiryNotificationInfo", 9},
                                                     {"::GetCertificateExpiryNotificationInfo", 11},
                                                     {"::VKCertificateExpiryNotificationInfo", 8},
                                                     {"::operator=", 2},
                                                     {"::GetFriendlyName", 9},
                                                     {"::GetCertificateExpiryDate", 2}}));
        m_log.Clear();
    }
    EXPECT_EQ(m_log.Texts(8)[1], "VKExpiryNotificationInfo::~VKExpiryNotificationInfo");
    EXPECT_EQ(m_log.Texts(16).size(), 9U) << "the copy, the info and its seven";
}

TEST_F(CardExpiry, LosesNoMoreThanTheTextForWhichThereIsNoMemory) {
    VKExpiryNotificationInfo info("Reader A", nullptr);
    info.AddCertificateExpiryNotificationInfo("a", 1);
    {
        FailingHeap heap("dlgfw.dll");
        const auto refused = [&](auto&& ask) {
            heap.FailAt(0);
            ask();
            EXPECT_TRUE(heap.Stop());
        };
        refused([&] { info.AddCertificateExpiryNotificationInfo("b", 1); });
        refused([&] { EXPECT_TRUE(info.GetReaderName().IsEmpty()); });
        refused([&] {
            EXPECT_TRUE(info.GetCertificateExpiryNotificationInfo(0)->GetFriendlyName().IsEmpty());
        });
    }
    EXPECT_EQ(NamesOf(info), "a");
    EXPECT_EQ(m_log.Texts(1),
              (std::vector<std::string>{
                  "VKExpiryNotificationInfo::AddCertificateExpiryNotificationInfo: exception",
                  "VKExpiryNotificationInfo::GetReaderName: exception",
                  "VKCertificateExpiryNotificationInfo::GetFriendlyName: exception"}));
}

void SetText(Dialog& d, const char* pszText) {
    d.Run([&] { SetDlgItemTextA(d.Handle(), IDC_CARD_EXPIRY_DAYS, pszText); });
}

TEST_F(CardExpiry, GivesTheNumberOfDaysThatTheUserChose) {
    const auto put = [](const char* pszText) { return [=](Dialog& d) { SetText(d, pszText); }; };
    const auto tick = [](Dialog& d) { d.Click(IDC_CARD_EXPIRY_NEVER_AGAIN); };
    const Script nothing = [](Dialog&) {};
    const std::tuple<int, std::string, Script, int> cases[] = {
        {14, "14", nothing, -1},
        {14, "14", [](Dialog& d) { d.Type(IDC_CARD_EXPIRY_DAYS, "5"); }, 145},
        {14, "14", put(""), 0},
        {14, "14", tick, 0},
        {14, "14", [=](Dialog& d) { tick(d), tick(d); }, -1},
        {14, "14",
         [=](Dialog& d) {
             put("5")(d);
             d.Click(IDC_CARD_EXPIRY_REMIND);
         },
         5},
        {0, "0", tick, -1},
        {-1, "-1", tick, 0},
        {2147483647, "2147483647", nothing, -1},
    };
    for (const auto& [days, text, answer, result] : cases) {
        const auto confirm = [&, &shown = text, &act = answer](Dialog& d) {
            EXPECT_EQ(d.Text(IDC_CARD_EXPIRY_DAYS), shown);
            act(d);
            d.Enter();
        };
        EXPECT_EQ((Told{.card = kFar, .nDays = days}.Display({confirm})), result) << days;
        const auto left = m_log.Texts(16);
        EXPECT_EQ(
            (std::vector(left.end() - 3, left.end())),
            (std::vector{std::string("CCardExpiryNotifyDlg::~CCardExpiryNotifyDlg"),
                         "DisplayCardExpiryNotification (" + std::to_string(result) + ")",
                         std::string("VKExpiryNotificationInfo::~VKExpiryNotificationInfo")}));
        m_log.Clear();
    }
    for (const Script& leave :
         {Script([](Dialog& d) { d.Escape(); }), Script([](Dialog& d) { d.Cancel(); }),
          Script([](Dialog& d) { d.Click(IDCANCEL); })}) {
        const auto change = [&](Dialog& d) {
            SetText(d, "7");
            leave(d);
        };
        EXPECT_EQ(Told{.card = kFar}.Display({change}), -1);
    }
}

TEST_F(CardExpiry, LetsTheSpinShortenTheReminder) {
    for (const int days : {70'000, 14, 1, 0}) {
        const auto spin = [=](Dialog& d) {
            int lower = -9;
            int upper = -9;
            d.Run([&] {
                SendMessageA(d.Control(IDC_CARD_EXPIRY_SPIN), UDM_GETRANGE32,
                             reinterpret_cast<WPARAM>(&lower), reinterpret_cast<LPARAM>(&upper));
            });
            EXPECT_EQ(std::pair(lower, upper), std::pair(0, days));
            EXPECT_EQ(reinterpret_cast<HWND>(d.Send(IDC_CARD_EXPIRY_SPIN, UDM_GETBUDDY)),
                      d.Control(IDC_CARD_EXPIRY_DAYS));
            d.Focus(IDC_CARD_EXPIRY_DAYS);
            d.Press(VK_UP);
            EXPECT_EQ(d.Text(IDC_CARD_EXPIRY_DAYS), std::to_string(days));
            d.Press(VK_DOWN);
            EXPECT_EQ(d.Text(IDC_CARD_EXPIRY_DAYS), std::to_string(std::max(0, days - 1)));
            d.Escape();
        };
        EXPECT_EQ((Told{.card = kFar, .nDays = days}.Display({spin})), -1);
    }
}

TEST_F(CardExpiry, EnablesTheDaysWithTheirBox) {
    const auto look = [](Dialog& d) {
        for (const bool isOn : {true, false, true}) {
            EXPECT_EQ(d.IsChecked(IDC_CARD_EXPIRY_REMIND), isOn);
            EXPECT_EQ(d.IsEnabled(IDC_CARD_EXPIRY_DAYS), isOn);
            EXPECT_EQ(d.IsEnabled(IDC_CARD_EXPIRY_SPIN), isOn);
            d.Click(IDC_CARD_EXPIRY_REMIND);
        }
        d.Escape();
    };
    EXPECT_EQ(Told{.card = kFar}.Display({look}), -1);
}

TEST_F(CardExpiry, OpensForSomethingToTellAlone) {
    EXPECT_EQ(Told{}.Display({}), -1);
    EXPECT_EQ(m_log.Texts(16).end()[-3],
              "VKExpiryNotificationInfo::GetNbCertExpiryNotificationInfo");
    EXPECT_EQ(m_log.Texts(16).end()[-2], "DisplayCardExpiryNotification (-1)");
    const DialogDriver none;
    EXPECT_EQ(DisplayCardExpiryNotification(nullptr, nullptr), -1);
    VKExpiryNotificationInfo info("Reader A", nullptr);
    info.SetMustDisplayCardExpiry(1, kFar);
    {
        FailingHeap heap("dlgfw.dll");
        heap.FailAt(1);  // behind the reader's name, which may be lost
        EXPECT_EQ(DisplayCardExpiryNotification(nullptr, &info), -1);
    }
    EXPECT_EQ(m_log.Texts(1),
              (std::vector<std::string>{"DisplayCardExpiryNotification: pInfo == NULL",
                                        "DisplayCardExpiryNotification: exception"}));
    FreeResourceModule();
    EXPECT_EQ(DisplayCardExpiryNotification(nullptr, &info), -1) << "without its template";
}

TEST_F(CardExpiry, DisablesItsParent) {
    HostWindow parent;
    const auto look = [&](Dialog& d) {
        EXPECT_FALSE(IsWindowEnabled(parent.m_hWnd));
        EXPECT_EQ(GetWindow(d.Handle(), GW_OWNER), parent.m_hWnd);
        d.Escape();
    };
    EXPECT_EQ(Told{.card = kFar}.Display({look}, parent.m_hWnd), -1);
    EXPECT_TRUE(IsWindowEnabled(parent.m_hWnd));
    EXPECT_TRUE(m_log.ContainsPart("Reader = Reader A"));
}

TEST_F(CardExpiry, IsClosedByItsHostsEvent) {
    const KernelHandle event = MakeEvent(true);
    VKExpiryNotificationInfo cancelled("Reader A", event.get());
    cancelled.SetMustDisplayCardExpiry(1, kFar);
    // It may be seen until its thread has run: a driver would find what nobody waits for.
    EXPECT_EQ(DisplayCardExpiryNotification(nullptr, &cancelled), -1) << "before";
    EXPECT_TRUE(m_log.Contains(2, kCancelled));
    m_log.Clear();
    ResetEvent(event.get());
    const auto signal = [&](Dialog& d) {
        SetText(d, "7");
        SetEvent(event.get());
        d.WaitGone();
    };
    EXPECT_EQ((Told{.card = kFar, .hCancel = event.get()}.Display({signal})), -1) << "during";
    EXPECT_TRUE(m_log.Contains(2, kCancelled));
    m_log.Clear();
    ResetEvent(event.get());
    const auto confirm = [](Dialog& d) {
        SetText(d, "7");
        d.Enter();
    };
    EXPECT_EQ((Told{.card = kFar, .hCancel = event.get()}.Display({confirm})), 7) << "after";
    SetEvent(event.get());
    EXPECT_FALSE(m_log.Contains(2, kCancelled));
    EXPECT_TRUE(m_log.Contains(16, "CCardExpiryNotifyDlg::DetectCancelThreadProc"));
}

TEST_F(CardExpiry, ObeysTheFirstThatEndsIt) {
    const KernelHandle event = MakeEvent(false);
    VKExpiryNotificationInfo info("Reader A", event.get());
    Told{.card = kNow}.FillIn(info);
    const auto send = [](Dialog& d, const std::vector<WPARAM>& commands) {
        d.Run([&] {
            // The box is hidden: what has expired asks for nothing.
            CheckDlgButton(d.Handle(), IDC_CARD_EXPIRY_NEVER_AGAIN, BST_CHECKED);
            for (const WPARAM command : commands) {
                SendMessageA(d.Handle(), WM_COMMAND, command, 0);
            }
        });
    };
    NoticeAtNow notice(info);
    const INT_PTR result = Open(notice, {[&](Dialog& d) { send(d, {IDCANCEL, IDOK}); }});
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_TRUE(m_log.Contains(16, "CCardExpiryNotifyDlg::DetectCancelThreadProc"))
        << "the thread ends with the window";
    EXPECT_EQ(Open(notice, {[&](Dialog& d) { send(d, {IDOK}); }}), IDOK) << "and once more";
    EXPECT_EQ(notice.DelayText(), "14");
}

TEST_F(CardExpiry, OpensAndClosesWhateverItsEventIs) {
    m_hive.SetString(kConfigKey, "ValidityCheckSentence", "");
    const KernelHandle signalled = MakeEvent(true);
    KernelHandle unwaitable;  // without the right to be waited for
    DuplicateHandle(GetCurrentProcess(), signalled.get(), GetCurrentProcess(), unwaitable.put(),
                    EVENT_MODIFY_STATE, FALSE, 0);
    KernelHandle closedMeanwhile = MakeEvent(false);
    const HANDLE meanwhile = closedMeanwhile.get();
    const HANDLE closed = UlongToHandle(0x7FFFFFF0);
    const std::pair<HANDLE, DWORD> cases[] = {
        {nullptr, 0}, {closed, 6}, {unwaitable.get(), 5}, {meanwhile, 0}};
    for (const auto& [event, error] : cases) {
        m_log.Clear();
        const auto confirm = [&, &used = event](Dialog& d) {
            if (used == meanwhile) {
                d.WaitUntil("the thread watches", [&] {
                    return m_log.Contains(8, "CCardExpiryNotifyDlg::DetectCancelThreadProc");
                });
                closedMeanwhile.reset();
            }
            SetText(d, "7");
            d.Enter();
        };
        EXPECT_EQ((Told{.card = kFar, .hCancel = event}.Display({confirm})), 7);
        EXPECT_FALSE(m_log.Contains(2, kCancelled));
        std::vector<std::string> told;
        if (error != 0) {
            told = {"The cancel event cannot be waited for (error " + std::to_string(error) + ")"};
        }
        // The thread that has begun may wait already, or find the event gone.
        EXPECT_TRUE(m_log.Texts(1) == told || event == meanwhile) << m_log.Dump();
    }
}

HANDLE WINAPI NoThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

TEST_F(CardExpiry, IsLeftToItsUserWithoutAThread) {
    const KernelHandle event = MakeEvent(true);
    {
        const DialogDriver driver([](Dialog& d) { d.Escape(); });
        const PatchedImports system(nullptr, {{"CreateThread", Address(&NoThread)}});
        VKExpiryNotificationInfo info("Reader A", event.get());
        info.SetMustDisplayCardExpiry(1, kFar);
        EXPECT_EQ(DisplayCardExpiryNotification(nullptr, &info), -1);
    }
    EXPECT_TRUE(m_log.Contains(1, "The cancel thread cannot be started (error 8)"));
}

// Confirms itself.
class QuickNotice : public NoticeAtNow {
public:
    using NoticeAtNow::NoticeAtNow;

protected:
    BOOL OnInitDialog() override {
        PostMessage(WM_COMMAND, IDOK);
        return NoticeAtNow::OnInitDialog();
    }
};

TEST_F(CardExpiry, LeavesNoThreadAndNoHandleAfterAThousandNotices) {
    const KernelHandle quiet = MakeEvent(false);
    const KernelHandle signalled = MakeEvent(true);
    ExpectRoundsKeepNothing(5, 1000,
                            [&](int nRound) {
                                const bool isCancelled = nRound % 2 == 0;
                                VKExpiryNotificationInfo info(
                                    "Reader A", (isCancelled ? signalled : quiet).get());
                                info.AddCertificateExpiryNotificationInfo("a", kNow + kDay);
                                if (isCancelled) {
                                    EXPECT_EQ(NoticeAtNow(info).DoModal(), IDCANCEL);
                                } else {
                                    EXPECT_EQ(QuickNotice(info).DoModal(), IDOK);
                                }
                                m_log.Clear();
                            },
                            {.kernelHandles = 4, .threads = 0});
}

// Ends its thread as soon as it opens.
class EndingNotice : public NoticeAtNow {
public:
    using NoticeAtNow::NoticeAtNow;

protected:
    BOOL OnInitDialog() override {
        NoticeAtNow::OnInitDialog();
        ExitThread(0);
    }
};

TEST_F(CardExpiry, LeavesNoThreadWhenItsOwnEndsUnderIt) {
    const KernelHandle event = MakeEvent(false);
    const unsigned before = ResourceCounts::Now().threads;
    const KernelHandle thread(CreateThread(
        nullptr, 0,
        [](void* pEvent) WINAPI -> DWORD {
            VKExpiryNotificationInfo info("Reader A", pEvent);
            info.SetMustDisplayCardExpiry(1, kFar);
            EndingNotice(info).DoModal();
            return 1;
        },
        event.get(), 0, nullptr));
    ASSERT_EQ(WaitForSingleObject(thread.get(), 20'000), WAIT_OBJECT_0);
    EXPECT_TRUE(WaitFor(std::chrono::seconds(10), [&] {
        return ResourceCounts::Now().threads <= before &&
               m_log.Contains(16, "CCardExpiryNotifyDlg::DetectCancelThreadProc");
    }));
    EXPECT_FALSE(m_log.Contains(2, kCancelled));
}

std::string g_strOpened;
INT_PTR g_nShellResult = 0;
HINSTANCE WINAPI TakeDocument(HWND, LPCSTR pszVerb, LPCSTR pszFile, LPCSTR pszParameters,
                              LPCSTR pszFolder, INT nShow) {
    EXPECT_TRUE(pszParameters == nullptr && pszFolder == nullptr);
    g_strOpened = std::string(pszVerb) + " " + pszFile + " " + std::to_string(nShow);
    return reinterpret_cast<HINSTANCE>(g_nShellResult);
}

const auto g_pfnFind =
    FindFunction<decltype(&GetProcAddress)>(GetModuleHandleA("kernel32.dll"), "GetProcAddress");
FARPROC WINAPI FindInstead(HMODULE hModule, LPCSTR pszName) {
    if (std::string_view(pszName) != "ShellExecuteA") {
        return g_pfnFind(hModule, pszName);
    }
    return g_nShellResult != 0 ? reinterpret_cast<FARPROC>(Address(&TakeDocument)) : nullptr;
}

TEST_F(CardExpiry, HelpsWithTheDocumentOrElseWithTheTopic) {
    RecordHelp();
    const PatchedImports system(nullptr, {{"GetProcAddress", Address(&FindInstead)}});
    const std::string full(260, 'h');
    const std::string failed = "RegQueryValueEx \"VeskaraHelpPath\" failed";
    const std::string ignored = "Setting ignored: " + std::string(kConfigKey) +
                                "\\ValidityCheckHelp: longer than 260 bytes";
    using Texts = std::vector<std::string>;
    const std::tuple<std::string, INT_PTR, Texts> cases[] = {
        {"h.htm", 33, {}},
        {"h.htm", 32, {"ShellExecute with \"h.htm\" failed"}},
        {"h.htm", 0, {"ShellExecute with \"h.htm\" failed"}},  // without the function
        {"", 33, {}},
        {std::string(259, 'h'), 33, {}},
        {full, 33, {failed, ignored}},
    };
    for (const auto& [value, result, errors] : cases) {
        m_hive.SetString(kConfigKey, "ValidityCheckHelp", value);
        g_nShellResult = result;
        const bool opens = !value.empty() && errors.empty();
        const auto ask = [&, &text = value, result = result, &lines = errors](Dialog& d) {
            m_log.Clear();
            g_strOpened.clear();
            s_strHelp.clear();
            d.Run([&] { SendMessageA(d.Handle(), WM_HELP, 0, 0); });
            EXPECT_EQ(g_strOpened, opens || result == 32 ? "open " + text + " 1" : "");
            EXPECT_EQ(s_strHelp, opens ? "" : "v.chm1012");
            Texts told = m_log.Texts(1);
            std::erase_if(told, [](const auto& line) { return line.ends_with("v.chm"); });
            EXPECT_EQ(told, lines);
            d.Escape();
        };
        EXPECT_EQ(Told{.card = kFar}.Display({ask}), -1);
    }
    m_hive.SetRaw(kConfigKey, "ValidityCheckHelp", REG_EXPAND_SZ, full);  // not terminated
    EXPECT_TRUE(OpenValidityHelp());
    EXPECT_EQ(g_strOpened, "open " + full + " 1");
    m_hive.DeleteValue(kConfigKey, "ValidityCheckHelp");
    EXPECT_FALSE(OpenValidityHelp());
    EXPECT_EQ(m_log.Texts(1).back(), failed);
    m_hive.DeleteKey(kConfigKey);
    EXPECT_FALSE(OpenValidityHelp());
    EXPECT_EQ(m_log.Texts(1).back(), "RegOpenKeyEx \"" + std::string(kConfigKey) + "\" failed");
}

TEST_F(CardExpiry, EntersAndLeavesEveryMemberInTheLog) {
    const KernelHandle event = MakeEvent(false);
    const auto act = [](Dialog& d) {
        d.Click(IDC_CARD_EXPIRY_REMIND);
        d.Run([&] { SendMessageA(d.Handle(), WM_HELP, 0, 0); });
        d.Click(IDOK);
    };
    EXPECT_EQ((Told{.certificates = {{"a", kFar}}, .hCancel = event.get()}.Display({act})), -1);
    std::vector<std::string> entered = m_log.Texts(8);
    std::vector<std::string> left = m_log.Texts(16);
    std::replace(left.begin(), left.end(), std::string("DisplayCardExpiryNotification (-1)"),
                 std::string("DisplayCardExpiryNotification"));
    for (std::vector<std::string>* names : {&entered, &left}) {
        std::erase_if(*names, [](const auto& name) { return name.starts_with("readString"); });
        std::sort(names->begin(), names->end());
    }
    EXPECT_EQ(entered, left);
    for (const char* name :
         {"CCardExpiryNotifyDlg", "~CCardExpiryNotifyDlg", "DoDataExchange", "OnInitDialog",
          "OnClickedRemind", "OnContextualHelp", "OnOK", "OnDestroy", "DetectCancelThreadProc"}) {
        EXPECT_TRUE(m_log.Contains(8, "CCardExpiryNotifyDlg::" + std::string(name))) << name;
    }
}

}  // namespace
}  // namespace mvp::test
