// GetPINFromUser from the call to its result, the dialog in between, the window it stands over, and
// the card that leaves meanwhile.
#include <algorithm>
#include <map>
#include <regex>
#include <tuple>

#include <objbase.h>

#include "services/card_removed_subscriber.h"
#include "support/failing_heap.h"
#include "support/waiting.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

using EnterPin = LibraryTest;

TEST_F(EnterPin, HandsOutExactlyWhatWasTyped) {
    const std::tuple<std::uint32_t, std::uint32_t, std::string> cases[] = {
        {4, 8, "123456"},
        {1, 1, "7"},
        {4, 4, "0000"},
        {0, 8, "\xE9\xE8\xFC\xDF"},
        {0, 0xFFFFFFFF, "a b"},
        {1, 20'000, std::string(10'000, '5')},
        {0, 8, ""}};
    for (const auto& [min, max, typed] : cases) {
        const auto enter = [&text = typed](Dialog& d) {
            text.size() > 100 ? d.Paste(IDC_ENTER_PIN_EDIT, text)
                              : d.Type(IDC_ENTER_PIN_EDIT, text);
            d.Click(IDOK);
        };
        const std::string pin = PinRequest{.dwMin = min, .dwMax = max}.Ask(enter);
        EXPECT_TRUE(pin == typed) << typed.size() << m_log.Dump();
    }
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: PIN empty"));
}

TEST_F(EnterPin, OpensOnTopAndHelps) {
    RecordHelp();
    PinRequest().Ask([](Dialog& d) {
        EXPECT_EQ(d.FocusedId(), IDC_ENTER_PIN_EDIT);
        EXPECT_TRUE(IsTopMost(d.Handle()));
        d.Run([&] {
            EXPECT_EQ(GetForegroundWindow(), d.Handle());
            SendMessageA(d.Handle(), WM_HELP, 0, 0);
        });
        d.Escape();
    });
    EXPECT_EQ(s_strHelp, "v.chm1015");
}

TEST(MirroredEnterPin, KeepsPicturesAsTheyAre) {
    const AttachedLibrary library("qps-plocm");
    PinRequest().Ask([](Dialog& d) {
        EXPECT_TRUE(IsMirrored(d, IDC_ENTER_PIN_EDIT));
        for (const int id : {IDC_ENTER_PIN_BANNER, IDC_ENTER_PIN_PROGRESS,
                             IDC_ENTER_PIN_BRAND_BANNER, IDC_ENTER_PIN_BRAND_PROGRESS}) {
            EXPECT_FALSE(IsMirrored(d, id)) << id;
        }
        d.Escape();
    });
}

TEST_F(EnterPin, OkFollowsTheBoundsAtEveryStep) {
    const auto typeAndDelete = [&](Dialog& d) {
        EXPECT_FALSE(d.IsEnabled(IDOK));
        for (int step = 1; step <= 18; ++step) {
            step <= 9 ? d.Type(IDC_ENTER_PIN_EDIT, "\xE9") : d.Press(VK_BACK);
            const int length = std::min(step, 18 - step);
            const bool allowed = length >= 4 && length <= 8;
            EXPECT_EQ(d.IsEnabled(IDOK), allowed) << length;
            // The command comes without the button, and is refused all the same.
            if (!allowed) {
                SendCommand(d, IDOK);
            }
            ASSERT_TRUE(d.IsOpen()) << length;
        }
        d.Paste(IDC_ENTER_PIN_EDIT, "12345");
        EXPECT_TRUE(d.IsEnabled(IDOK));
        d.Send(IDC_ENTER_PIN_EDIT, EM_SETSEL, 0, -1);
        d.Send(IDC_ENTER_PIN_EDIT, WM_CLEAR);
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Enter();
        EXPECT_TRUE(d.IsOpen());
        d.Escape();
    };
    EXPECT_EQ(PinRequest().Ask(typeAndDelete), kRefused);
}

// In one go, so that the dialog's thread takes up nothing that was posted to it meanwhile.
TEST_F(EnterPin, CountsWhatIsHandledFirst) {
    const UINT removed = RegisterWindowMessageA("VKCardRemovedEvent");
    const std::map<char, Script> acts = {
        {'O', [](Dialog& d) { SendCommand(d, IDOK); }},
        {'C', [](Dialog& d) { SendCommand(d, IDCANCEL); }},
        {'R', [=](Dialog& d) { SendMessageA(d.Handle(), removed, 1, 0); }},
        {'x', [](Dialog& d) { d.SetText(IDC_ENTER_PIN_EDIT, "1"); }},
        {'o', [](Dialog& d) { PostMessageA(d.Handle(), WM_COMMAND, IDOK, 0); }},
        {'r', [](Dialog&) { RemoveCard(); }}};  // which is posted, too
    for (const auto& [order, pin] : {std::pair<std::string, const char*>{"OxO", "1234"},
                                     {"CxO", kRefused},
                                     {"RxO", kRefused},
                                     {"Or", "1234"},
                                     {"ro", kRefused},
                                     {"rO", "1234"}}) {
        const std::string outcome = PinRequest().Ask([&, &steps = order](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            d.Run([&] {
                for (const char step : steps) {
                    acts.at(step)(d);
                }
            });
            d.WaitGone();
        });
        EXPECT_EQ(outcome, pin) << order;
    }
}

TEST_F(EnterPin, LinesOfTheLogAreTheStatedOnes) {
    PinRequest request;
    request.Call(TypePin());
    // Moves of the window, addresses and flags are no two times the same.
    const std::regex varying(R"(CEnterPinDlg::OnMove\{\} |(this:| \(Flags)[^;]*)");
    const std::string lines = std::regex_replace(LogShape(), varying, "");
    const std::string change =
        "0 CEnterPinDlg::OnEnChangeEditPassword:BEG; 0 CEnterPinDlg::OnEnChangeEditPassword:END; ";
    // Overwriting the edit at the end is nobody's change.
    const std::string fourTyped = change + change + change + change;
    EXPECT_EQ(
        lines,
        "GetPINFromUser{2 GetPINFromUser: hParent = 0, Reader = Reader A; "
        "2 GetPINFromUser: Enter PIN action allowed; VKDetectCardRemovedDlg{"
        "2 VKDetectCardRemovedDlg: pParent = 0, Reader = Reader A; } CEnterPinDlg{"
        "2 CEnterPinDlg: pParent = 0, Reader = Reader A; CEnterPinDlg::IsHighColorSupported{} } "
        "2 CEnterPinDlg::OnContextualHelp: ; "
        "2 CEnterPinDlg::OnContextualHelp: CreateDlgIndirect with hWndParent; "
        "CEnterPinDlg::OnInitDialog{VKDetectCardRemovedDlg::OnInitDialog{"
        "CBaseDialog::OnInitDialog{} VKDelegateSubscriberCardRemoved Constructor{} } "
        "CEnterPinDlg::TryToInsertBitmap{CEnterPinDlg::GetBrandingBitmaps{} } " +
            change + "} 2 CEnterPinDlg::OnContextualHelp: CreateDlgIndirect success; " + fourTyped +
            "CEnterPinDlg::OnOK{VKDetectCardRemovedDlg::StopDetectingRemoveEvent{"
            "2 VKDetectCardRemovedDlg::StopDetectingRemoveEvent: Card removed; "
            "VKDelegateSubscriberCardRemoved Destructor{} } } VKDetectCardRemovedDlg::OnDestroy{"
            "VKDetectCardRemovedDlg::StopDetectingRemoveEvent{} } "
            "2 GetPINFromUser: Enter PIN action validated; 0 CEnterPinDlg::GetPinValue; "
            "~CEnterPinDlg{CBaseDialog::HidePinFromMemory{} } ~VKDetectCardRemovedDlg{} "
            "2 GetPINFromUser: returns: 0; } ");
    FreeGetPinBuffer(request.pPin, request.cbPin);
}

TEST_F(EnterPin, OneRequestAtATime) {
    PinRequest first;
    ASSERT_EQ(first.Call(TypePin()), MVPINGUI_OK);
    PinRequest second;
    EXPECT_EQ(second.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: Enter PIN action NOT allowed"));
    EXPECT_TRUE(m_log.Contains(1, "GetPINFromUser: returns: -1"));
    FreeGetPinBuffer(first.pPin, first.cbPin);
    EXPECT_EQ(second.Call(Leave), MVPINGUI_REFUSED);
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: Enter PIN action cancelled"));
    // Cancelled, and refused all the same until the caller has said that it holds nothing.
    EXPECT_EQ(second.Ask(), kRefused);
    EXPECT_EQ(second.Ask(Leave), kRefused);
}

TEST_F(EnterPin, NullOutArgumentsAreRefusedBeforeAnythingShows) {
    for (const bool nullPin : {true, false}) {
        m_log.Clear();
        PinRequest request{.bShowLastTry = 1};
        if (nullPin) {
            request.ppPin = nullptr;
        } else {
            request.pcbPin = nullptr;
        }
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        EXPECT_TRUE(request.IsUntouched());
        EXPECT_TRUE(m_boxes.Calls().empty());
        EXPECT_EQ(Module().nPinDialogInProgress, 0);
        EXPECT_EQ(LogShape(),
                  std::string("GetPINFromUser{2 GetPINFromUser: hParent = 0, Reader = Reader A; ") +
                      "1 GetPINFromUser: " + (nullPin ? "ppPin" : "pcbPin") +
                      " == NULL; 1 GetPINFromUser: returns: -1; } ");
    }
}

TEST_F(EnterPin, BoundsThatExcludeEachOtherAreTold) {
    constexpr PwdRuleArgs kContradiction = {0, 0, 0, 0, 5, 4, 0};
    PinRequest{.dwMin = 5, .dwMax = 4}.Ask(Leave);
    ChangePinRequest{.pRules = &kContradiction}.Ask(Leave);
    for (const std::string function : {"GetPINFromUser", "GetChangePINInfoFromUser"}) {
        EXPECT_TRUE(m_log.Contains(1, function + ": minimum length 5 > maximum length 4"));
    }
}

TEST_F(EnterPin, LastTryComesFirst) {
    PinRequest request{.bShowLastTry = 1};
    m_boxes.SetAnswer(0);
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(request.IsUntouched());
    EXPECT_EQ(Module().nPinDialogInProgress, 0);
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: DisplayLastPINTry"));
    EXPECT_FALSE(m_log.ContainsPart("returns:")) << m_log.Dump();
    EXPECT_FALSE(m_log.Contains(16, "GetPINFromUser"));
    m_boxes.SetAnswer(1);
    EXPECT_EQ(request.Call(Leave), MVPINGUI_REFUSED);
    // Also while a PIN is still out: what is declined then leaves no word of the guard.
    for (const int answer : {1, 0}) {
        m_log.Clear();
        m_boxes.SetAnswer(answer);
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        EXPECT_EQ(m_log.Contains(2, "GetPINFromUser: Enter PIN action NOT allowed"), answer == 1);
    }
    EXPECT_EQ(m_boxes.Calls().size(), 4U);
    FreeGetPinBuffer(nullptr, 0);
}

TEST_F(EnterPin, PromptReplacesTheText) {
    std::string standard;
    for (const char* prompt : {"", "PIN of the payroll card, please", ""}) {
        SetPinPromptString(*prompt != '\0' ? prompt : nullptr);
        PinRequest().Ask([&](Dialog& d) {
            if (standard.empty()) {
                standard = d.Text(IDC_ENTER_PIN_PROMPT);
            }
            EXPECT_FALSE(standard.empty());
            EXPECT_EQ(d.Text(IDC_ENTER_PIN_PROMPT), *prompt != '\0' ? prompt : standard);
            d.Escape();
        });
    }
}

TEST_F(EnterPin, ParentIsDisabledMeanwhileAndGivenBack) {
    const auto expectGivenBack = [](HWND hParent) {
        const auto enter = [=](Dialog& d) {
            EXPECT_EQ(GetWindow(d.Handle(), GW_OWNER), hParent);
            EXPECT_FALSE(IsWindowEnabled(hParent));
            TypePin()(d);
        };
        EXPECT_EQ(PinRequest{.hParent = hParent}.Ask(enter), "1234");
        EXPECT_TRUE(IsWindowEnabled(hParent));
    };
    WithForeignWindow([&](HWND hParent) {
        expectGivenBack(hParent);
        // The system destroys owned windows of the same thread only: the dialog goes on without.
        const auto destroy = [&](Dialog& d) {
            SendMessageA(hParent, WM_CLOSE, 0, 0);
            EXPECT_FALSE(IsWindow(hParent));
            TypePin()(d);
        };
        EXPECT_EQ(PinRequest{.hParent = hParent}.Ask(destroy), "1234");
    });
    HostWindow own;
    expectGivenBack(own.m_hWnd);
    const auto destroyOwn = [&](Dialog& d) { d.Run([&] { own.DestroyWindow(); }); };
    EXPECT_EQ(PinRequest{.hParent = own.m_hWnd}.Ask(destroyOwn), kRefused);
}

HWND g_hRefused = nullptr;

// Lets no window be created over g_hRefused.
LRESULT CALLBACK RefuseOwner(int nCode, WPARAM wParam, LPARAM lParam) {
    if (nCode == HCBT_CREATEWND &&
        reinterpret_cast<const CBT_CREATEWNDA*>(lParam)->lpcs->hwndParent == g_hRefused) {
        return 1;
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

// The dialog opens without it, and it stays disabled: it is in no state to be used.
TEST_F(EnterPin, ParentOfNoUseIsDoneWithout) {
    for (const bool exists : {false, true}) {
        m_log.Clear();
        HostWindow parent;
        g_hRefused = parent.m_hWnd;
        if (!exists) {
            parent.DestroyWindow();
        }
        HHOOK hook = SetWindowsHookExA(WH_CBT, &RefuseOwner, nullptr, GetCurrentThreadId());
        PinRequest{.hParent = g_hRefused}.Ask([](Dialog& d) {
            EXPECT_EQ(GetWindow(d.Handle(), GW_OWNER), nullptr);
            d.Escape();
        });
        UnhookWindowsHookEx(hook);
        EXPECT_TRUE(m_log.Contains(
            2, "CEnterPinDlg::OnContextualHelp: Now try to CreateDlgIndirect with NULL"));
        EXPECT_FALSE(IsWindowEnabled(g_hRefused));
    }
}

// Real events of the suite's event module.
using CardRemoval = LibraryTest;

TEST_F(CardRemoval, ClosesTheDialogOfItsReaderOnly) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"Reader A", "Reader A", true}, {"reader a", "READER A", true},   {"", "Reader A", true},
        {nullptr, "Reader A", true},    {"Reader A", "Reader B", false},  {"Reader A", "", false},
        {"Reader A", nullptr, false},   {"Reader A", "Reader A ", false},
    };
    for (const auto& [reader, removed, ends] : cases) {
        m_log.Clear();
        const auto remove = [which = removed, isEnd = ends](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            RemoveCard(which);
            d.Settle();
            EXPECT_NE(d.IsOpen(), isEnd);
            isEnd ? void() : d.Click(IDOK);
        };
        EXPECT_EQ(PinRequest{.pszReader = reader}.Ask(remove), ends ? kRefused : "1234");
        EXPECT_EQ(m_log.Contains(8, "VKDetectCardRemovedDlg::OnCardEvent"), ends);
        // Whatever the ending, the watch ends once, with its own words.
        EXPECT_EQ(
            std::ranges::count(m_log.Texts(2),
                               "VKDetectCardRemovedDlg::StopDetectingRemoveEvent: Card removed"),
            1)
            << m_log.Dump();
    }
}

TEST_F(CardRemoval, WatchingItInitialisesComOnTheThread) {
    std::thread([] {
        const VKDelegateSubscriberCardRemoved watching(nullptr, WM_APP, "Reader A");
        EXPECT_EQ(CoInitialize(nullptr), S_FALSE);  // initialised already
    }).join();
}

TEST_F(CardRemoval, WhileTheDialogOpensCloses) {
    // The event arrives between the creation of the window and its first showing.
    std::thread remover([this] {
        EXPECT_TRUE(WaitFor(std::chrono::seconds(10), [this] {
            return m_log.Contains(16, "VKDelegateSubscriberCardRemoved Constructor");
        }));
        RemoveCard();
    });
    EXPECT_EQ(PinRequest().CallAlone(), MVPINGUI_REFUSED);
    remover.join();
    FreeGetPinBuffer(nullptr, 0);
}

TEST_F(CardRemoval, HasNoEffectWithoutMemoryForTheWatch) {
    const std::string reader(1000, 'r');
    FailingHeap heap("dlgfw.dll");
    heap.FailAt(1, reader.size());  // the dialog's own copy comes first
    const auto removeAndEnter = [&](Dialog& d) {
        RemoveCard(reader.c_str());
        TypePin()(d);
    };
    EXPECT_EQ(PinRequest{.pszReader = reader.c_str()}.Ask(removeAndEnter), "1234");
    EXPECT_TRUE(heap.Stop());
    EXPECT_TRUE(m_log.Contains(1, "VKDelegateSubscriberCardRemoved Constructor: exception"));
    EXPECT_TRUE(m_log.Contains(16, "VKDetectCardRemovedDlg::OnInitDialog"));
}

}  // namespace
}  // namespace mvp::test
