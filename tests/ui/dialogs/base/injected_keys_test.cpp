// Keys that programs send to the PIN fields: what each setting does with them, and the line that
// tells of them in every dialog.
#include <iterator>
#include <memory>
#include <tuple>

#include "dialogs/base/injected_key_filter.h"
#include "mvpingui/change_pin_dialog.h"
#include "mvpingui/initialize_pin_dialog.h"
#include "mvpingui/reset_card_dialog.h"
#include "mvpingui/unlock_card_dialog.h"
#include "platform/system_library.h"
#include "ui/dialogs/enlarged_dialogs.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\AuthenticationDialog)";
constexpr char kValue[] = "InjectedKeys";
constexpr int kEdit = IDC_ENTER_PIN_EDIT;
constexpr int kText = IDC_INJECTED_KEYS_TEXT;

// Whether the line is there, in the dialog or a panel of it, and shows.
bool IsTold(const Dialog& d) {
    const std::vector<Control> controls = ShownControls(d.Handle());
    return std::ranges::count(controls, kText, &Control::nNumber) != 0;
}

class InjectedKeysTest : public LibraryTest {
protected:
    void Set(InjectedKeys policy) { m_hive.SetDword(kKey, kValue, static_cast<DWORD>(policy)); }
};

using InjectedKeysSetting = InjectedKeysTest;

TEST_F(InjectedKeysSetting, IsFollowedOrIgnoredAndToldSo) {
    const auto read = [this] {
        const InjectedKeys policy = ReadInjectedKeys();
        return std::pair(policy, m_log.Texts(1).size());
    };
    using Result = std::pair<InjectedKeys, std::size_t>;
    EXPECT_EQ(read(), Result(InjectedKeys::Accept, 0)) << "no key";
    m_hive.CreateKey(kKey);
    EXPECT_EQ(read(), Result(InjectedKeys::Accept, 0)) << "no value";
    const std::tuple<DWORD, std::string, InjectedKeys, std::size_t> cases[] = {
        {REG_DWORD, {"\0\0\0\0", 4}, InjectedKeys::Accept, 0},
        {REG_DWORD, {"\1\0\0\0", 4}, InjectedKeys::Warn, 0},
        {REG_DWORD, {"\2\0\0\0", 4}, InjectedKeys::Refuse, 0},
        {REG_DWORD, {"\3\0\0\0", 4}, InjectedKeys::Accept, 1},
        {REG_DWORD, {"\2\0\0\1", 4}, InjectedKeys::Accept, 1},
        {REG_DWORD, {"\2\0", 2}, InjectedKeys::Accept, 1},
        {REG_DWORD, {"\2\0\0\0\0\0\0\0", 8}, InjectedKeys::Accept, 1},
        {REG_BINARY, {"\2\0\0\0", 4}, InjectedKeys::Accept, 1},
        {REG_SZ, {"2", 1}, InjectedKeys::Accept, 1}};
    for (const auto& [type, bytes, policy, lines] : cases) {
        m_log.Clear();
        m_hive.SetRaw(kKey, kValue, type, bytes);
        EXPECT_EQ(read(), Result(policy, lines)) << type << " " << bytes.size();
        EXPECT_TRUE(lines == 0 ||
                    m_log.Contains(1, std::string("Setting ignored: ") + kKey + "\\" + kValue +
                                          ": only a REG_DWORD of 0 (accept), 1 (warn) or 2 "
                                          "(refuse) is allowed"));
    }
}

// A program types or pastes one character, in every way there is.
const std::pair<const char*, Script> kWays[] = {
    {"real", [](Dialog& d) { d.RealKey('7'); }},
    {"posted character", [](Dialog& d) { d.Type(kEdit, "7"); }},
    {"posted key",
     [](Dialog& d) {
         PostMessageA(d.Control(kEdit), WM_KEYDOWN, '7', 1);
         d.Settle();
         d.Settle();  // the character was posted meanwhile
     }},
    {"sent character", [](Dialog& d) { d.Send(kEdit, WM_CHAR, '7', 1); }},
    {"sent character of 16 bits", [](Dialog& d) { d.Send(kEdit, WM_UNICHAR, '7', 1); }},
    {"sent by an input method", [](Dialog& d) { d.Send(kEdit, WM_IME_CHAR, '7', 1); }}};

TEST_F(InjectedKeysTest, AreTakenToldOfOrRefused) {
    for (const InjectedKeys policy :
         {InjectedKeys::Accept, InjectedKeys::Warn, InjectedKeys::Refuse}) {
        Set(policy);
        for (const auto& [name, type] : kWays) {
            m_log.Clear();
            PinRequest().Ask([&, &way = name, &act = type](Dialog& d) {
                act(d);
                EXPECT_EQ(d.Send(kEdit, WM_GETTEXTLENGTH), policy != InjectedKeys::Refuse ? 1 : 0)
                    << way;
                EXPECT_EQ(IsTold(d), policy != InjectedKeys::Accept) << way;
                if (IsTold(d)) {
                    EXPECT_EQ(d.Text(kText),
                              TextOf(policy == InjectedKeys::Warn ? IDS_INJECTED_KEYS_WARNING
                                                                  : IDS_INJECTED_KEYS_REFUSED));
                    EXPECT_EQ(IconOf(d.Control(IDC_INJECTED_KEYS_ICON)),
                              LoadResourceIcon(IDI_INJECTED_KEYS, 16));
                }
                d.Escape();
            });
            EXPECT_EQ(m_log.ContainsPart("InjectedKeyFilter"), policy != InjectedKeys::Accept);
        }
    }
}

TEST_F(InjectedKeysTest, LeadThroughTheDialogWhateverTheSetting) {
    Set(InjectedKeys::Refuse);
    PinRequest().Ask([this](Dialog& d) {
        d.Run([&] { SetDlgItemTextA(d.Handle(), kEdit, "1234"); });
        d.RealKey(VK_END);
        d.RealKey(VK_LEFT);
        EXPECT_EQ(d.Send(kEdit, EM_GETSEL), MAKELONG(3, 3));
        d.RealKey(VK_TAB);
        EXPECT_EQ(d.FocusedId(), IDOK);
        d.RealKey(VK_TAB, {VK_SHIFT});
        EXPECT_EQ(d.FocusedId(), kEdit);
        EXPECT_FALSE(IsTold(d));
        d.RealKey(VK_DELETE);
        d.RealKey(VK_DELETE);
        EXPECT_TRUE(IsTold(d));
        EXPECT_EQ(std::ranges::count(m_log.Texts(2),
                                     "InjectedKeyFilter: what a program types is refused"),
                  1);
        EXPECT_EQ(d.Send(kEdit, WM_GETTEXTLENGTH), 4);
        d.RealKey(VK_RETURN);
        EXPECT_FALSE(d.IsOpen());
    });
}

// The system's answer in the place of its own, the same for every message; 99: it has none.
DWORD g_dwOrigin = 0;
BOOL WINAPI TellOrigin(DWORD* pSource) {
    pSource[1] = g_dwOrigin;
    return TRUE;
}
// By its own address: the import leads to the next.
auto* const g_pGetProcAddress =
    FindFunction<decltype(&GetProcAddress)>(GetModuleHandleA("kernel32.dll"), "GetProcAddress");
FARPROC WINAPI FindFunctionOfTest(HMODULE hModule, LPCSTR pszName) {
    if (std::string(pszName) != "GetCurrentInputMessageSource") {
        return g_pGetProcAddress(hModule, pszName);
    }
    return g_dwOrigin == 99 ? nullptr : reinterpret_cast<FARPROC>(Address(&TellOrigin));
}

TEST_F(InjectedKeysTest, AreNotAPersonsNorThoseOfASystemThatDoesNotTell) {
    const PatchedImports system(nullptr, {{"GetProcAddress", Address(&FindFunctionOfTest)}});
    Set(InjectedKeys::Refuse);
    for (const auto& [origin, posted, sent] :
         {std::tuple<DWORD, int, int>{1, 1, 1}, {4, 1, 1}, {2, 0, 0}, {99, 1, 2}}) {
        g_dwOrigin = origin;
        PinRequest().Ask([&, &one = posted, &both = sent](Dialog& d) {
            d.Type(kEdit, "7");
            EXPECT_EQ(d.Send(kEdit, WM_GETTEXTLENGTH), one) << g_dwOrigin;
            d.Send(kEdit, WM_CHAR, '8', 1);
            EXPECT_EQ(d.Send(kEdit, WM_GETTEXTLENGTH), both) << g_dwOrigin;
            d.Send(kEdit, WM_UNICHAR, UNICODE_NOCHAR);
            EXPECT_EQ(IsTold(d), g_dwOrigin != 99) << "another thread's is no person's";
            d.Escape();
        });
    }
}

// --- The line ---

HWND g_hAlerted = nullptr;
void WINAPI TakeAlert(DWORD dwEvent, HWND hWnd, LONG nObject, LONG nChild) {
    if (dwEvent == EVENT_SYSTEM_ALERT && nObject == OBJID_CLIENT && nChild == CHILDID_SELF) {
        g_hAlerted = hWnd;
    }
}

CRect ClientOf(HWND hWnd) {
    CRect client;
    GetClientRect(hWnd, &client);
    return client;
}

int Height(HWND hWnd) {
    return RectIn(nullptr, hWnd).Height();
}

// The room that the line has taken: the window has grown by it, and the buttons stand as far from
// its end as before.
void ExpectLine(Dialog& d, int nEdit, const std::string& strCase) {
    const PatchedImports events(nullptr, {{"NotifyWinEvent", Address(&TakeAlert)}});
    const CRect before = RectIn(d.Handle(), d.Control(IDOK));
    const int height = Height(d.Handle());
    d.Type(nEdit, "7");
    ASSERT_TRUE(IsTold(d)) << strCase;
    EXPECT_EQ(g_hAlerted, d.Control(kText)) << strCase;
    const int grown = Height(d.Handle()) - height;
    const CRect client = ClientOf(d.Handle());
    for (const int id : {kText, IDC_INJECTED_KEYS_ICON}) {
        const Control line = Control::Of(d.Control(id));
        EXPECT_EQ(ClippedBecause(line), "") << strCase;
        for (const Control& each : ShownControls(d.Handle())) {
            CRect common;
            EXPECT_TRUE(IntersectRect(&common, &client, &line.rect) && common == line.rect);
            EXPECT_FALSE(each.nNumber != id && IntersectRect(&common, &each.rect, &line.rect))
                << each.nNumber << " " << strCase;
        }
        EXPECT_LT(line.rect.bottom, before.top + grown) << strCase;
    }
    for (const int id : {IDOK, IDCANCEL}) {
        EXPECT_EQ(RectIn(d.Handle(), d.Control(id)).top, before.top + grown) << strCase;
    }
    d.Type(nEdit, "8");
    EXPECT_EQ(Height(d.Handle()) - height, grown) << "once " << strCase;
    d.Escape();
}

class Reset : public CResetCardDialogMain {
public:
    Reset() : CResetCardDialogMain(0, nullptr, 1, 1, 1, "Reader A") {}
};

// What the system says of a person's key, for every message.
BOOL WINAPI TellHardware(DWORD* pSource) {
    pSource[1] = static_cast<DWORD>(KeyOrigin::Hardware);
    return TRUE;
}
FARPROC WINAPI FindHardware(HMODULE, LPCSTR pszName) {
    return std::string(pszName) == "GetCurrentInputMessageSource"
               ? reinterpret_cast<FARPROC>(Address(&TellHardware))
               : nullptr;
}

LRESULT CALLBACK AskInMessage(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_APP) {
        return DefWindowProcA(hWnd, message, wParam, lParam);
    }
    PinRequest().Ask([](Dialog& d) {
        d.Type(kEdit, "7");
        EXPECT_EQ(d.Send(kEdit, WM_GETTEXTLENGTH), 1) << "taken from the queue";
        d.Send(kEdit, WM_CHAR, '8', 1);
        EXPECT_EQ(d.Send(kEdit, WM_GETTEXTLENGTH), 1) << "sent";
        d.Escape();
    });
    PostQuitMessage(0);
    return 0;
}

// Middleware asks for a PIN so: a worker sends, and the thread of the windows shows the dialog.
TEST_F(InjectedKeysTest, AreToldFromAPersonsWithinAMessageOfAnotherThread) {
    Set(InjectedKeys::Refuse);
    const PatchedImports source(nullptr, {{"GetProcAddress", Address(&FindHardware)}});
    HostWindow host;
    SetWindowLongPtrA(host.m_ok.m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&AskInMessage));
    const std::jthread worker([&] { SendMessageA(host.m_ok.m_hWnd, WM_APP, 0, 0); });
    for (MSG message; GetMessageA(&message, nullptr, 0, 0) > 0;) {
        DispatchMessageA(&message);
    }
}

TEST(InjectedKeysLine, HasItsPlaceInEveryDialog) {
    RegistryHive hive;
    hive.SetDword(kKey, kValue, 1);
    for (const auto& [language, percent] : {std::pair<const char*, int>{"en", 100},
                                            {"fr", 100},
                                            {"qps-ploc", 100},
                                            {"en", 200},
                                            {"fr", 200}}) {
        const EnlargedDialogs at(percent);
        const AttachedLibrary library(language);
        const auto expect = [&, name = language, size = percent](int nEdit) {
            return [=](Dialog& d) {
                ExpectLine(d, nEdit, name + std::to_string(size) + " " + std::to_string(nEdit));
            };
        };
        PinRequest().Ask(expect(kEdit));
        ChangePinRequest().Ask(expect(kNew));
        CUnlockCardDlg unlock(nullptr, &kAllRules, nullptr, nullptr, nullptr, "Reader A");
        Open(unlock, {expect(IDC_UNLOCK_CARD_CODE_EDIT)});
        CInitializePinDlg initialize(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     "Reader A");
        Open(initialize, {expect(IDC_INITIALIZE_PIN_NEW_EDIT)});
        Reset reset;
        Open(reset, {expect(IDC_RESET_CARD_PIN_EDIT)});
    }
}

// Templates from right to left.
HGLOBAL WINAPI LoadMirrored(HMODULE hModule, HRSRC hResource) {
    static std::vector<DWORD> copy;
    const auto* bytes = static_cast<const BYTE*>(LockResource(LoadResource(hModule, hResource)));
    copy.assign((SizeofResource(hModule, hResource) + 3) / 4, 0);
    std::copy_n(bytes, SizeofResource(hModule, hResource), reinterpret_cast<BYTE*>(copy.data()));
    copy[2] |= WS_EX_LAYOUTRTL;
    return copy.data();
}

// Texts of many lines.
int WINAPI LoadLong(HINSTANCE /*hModule*/, UINT /*nId*/, LPSTR pszText, int nCapacity) {
    std::string text = "long";
    while (text.size() < 240) {
        text += " and longer";
    }
    lstrcpynA(pszText, text.c_str(), nCapacity);
    return static_cast<int>(text.size());
}

TEST_F(InjectedKeysTest, HaveTheirLineFromRightToLeftAndOnTheScreen) {
    const PatchedImports loading("dlgfw.dll", {{"LoadResource", Address(&LoadMirrored)},
                                               {"LoadStringA", Address(&LoadLong)}});
    Set(InjectedKeys::Warn);
    PinRequest().Ask([](Dialog& d) {
        MONITORINFO monitor{sizeof monitor, {}, {}, 0};
        GetMonitorInfoA(MonitorFromWindow(d.Handle(), MONITOR_DEFAULTTONEAREST), &monitor);
        SetWindowPos(d.Handle(), nullptr, 9, monitor.rcWork.bottom - Height(d.Handle()), 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER);
        const CRect before = RectIn(nullptr, d.Control(IDOK));
        d.Type(kEdit, "7");
        EXPECT_EQ(RectIn(nullptr, d.Control(IDOK)), before) << "the window has moved instead";
        EXPECT_EQ(RectIn(nullptr, d.Handle()).bottom, monitor.rcWork.bottom);
        EXPECT_EQ(ClippedBecause(Control::Of(d.Control(kText))), "");
        EXPECT_TRUE(IsMirrored(d, kText) && !IsMirrored(d, IDC_INJECTED_KEYS_ICON));
        EXPECT_GT(RectIn(nullptr, d.Control(IDC_INJECTED_KEYS_ICON)).left,
                  RectIn(nullptr, d.Control(kText)).right);
        d.Escape();
    });
}

TEST_F(InjectedKeysTest, HaveRoomForTheirLineInAnEmbeddedPanel) {
    int heights[3] = {};
    for (const InjectedKeys policy :
         {InjectedKeys::Accept, InjectedKeys::Warn, InjectedKeys::Refuse}) {
        Set(policy);
        CDialog host;
        host.CreateEx(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 30, 40, 900, 500, nullptr, nullptr);
        const RECT place = {150, 20, 0, 0};
        CChangePINDialog panel(0, 0, true, &place, &kAllRules, nullptr, &host, 15, 0, 6);
        ASSERT_NE(panel.LocCreate(&host), 0);
        panel.ShowWindow(SW_SHOW);
        int& height = heights[static_cast<int>(policy)];
        height = Height(panel.m_hWnd);
        const int hostHeight = Height(host.m_hWnd);
        const HWND text = ::GetDlgItem(panel.m_hWnd, kText);
        EXPECT_FALSE(::IsWindowVisible(text));
        ::SendMessageA(::GetDlgItem(panel.m_hWnd, kNew), WM_CHAR, '7', 1);
        EXPECT_EQ(Height(panel.m_hWnd), height) << "the host has laid itself out";
        EXPECT_EQ(Height(host.m_hWnd), hostHeight);
        EXPECT_EQ(::IsWindowVisible(text) != FALSE, policy != InjectedKeys::Accept);
        EXPECT_TRUE(text == nullptr || RectIn(panel.m_hWnd, text).bottom == height);
    }
    EXPECT_GT(heights[1], heights[0] + GetSystemMetrics(SM_CYSMICON));
    EXPECT_EQ(heights[2], heights[1]);
}

}  // namespace
}  // namespace mvp::test
