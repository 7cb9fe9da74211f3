// What holds for the dialogs of a card alike, and every order of what user, card, callbacks and
// other programs do to them: drawn by chance from a fixed seed, inside the modal loops, without a
// thread switch.
#include <array>
#include <random>
#include <stdexcept>

#include "mvpingui/card_manager_locked_dialog.h"
#include "mvpingui/display_unlock_code.h"
#include "mvpingui/initialize_pin_dialog.h"
#include "mvpingui/reset_card_dialog.h"
#include "mvpingui/unlock_card_dialog.h"
#include "mvpingui/unlock_result_dialogs.h"
#include "support/resource_counts.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

std::mt19937 g_random(20261122);
bool g_bLeft = false;  // something has happened that closes a dialog unconfirmed

unsigned Draw(unsigned nBelow) {
    return static_cast<unsigned>(g_random() % nBelow);
}

void Remove() {
    g_bLeft = true;
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, Draw(2) == 0 ? "Reader A" : "Reader B"),
              VKEVTSUB_OK);
}

// What every callback does: takes its time with messages, loses the card, calls the library,
// throws, and gives one result or the other.
int AnswerByChance(void* pContext) {
    const unsigned drawn = Draw(8);
    if (drawn == 0) {
        Remove();
    } else if (drawn == 1) {
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            DispatchMessageA(&message);
        }
    } else if (drawn == 2) {
        CUnlockFailedDlg(nullptr, "re-entered", 0).DoModal();
    } else if (drawn == 3) {
        throw std::runtime_error("callback");
    }
    const int result = std::array{0, 0, 5, 7, -3}.at(Draw(5));
    *static_cast<bool*>(pContext) = result == 0;
    return result;
}

int Unlock(void* pContext, CString strCode, CString strNewPin) {
    EXPECT_EQ(strCode, "0123456789ABCDEF");
    EXPECT_EQ(strNewPin, "4711");
    return AnswerByChance(pContext);
}

int GetChallenge(void* /*pContext*/, CString& strChallenge) {
    strChallenge = CString('C', static_cast<int>(Draw(40)));
    bool ignored = false;
    return AnswerByChance(&ignored);
}

int Initialize(void* pContext, CString strNewPin, int, int, int, int, int, int) {
    EXPECT_EQ(strNewPin, "4711");
    return AnswerByChance(pContext);
}

int GetUnlockCode(void* /*pContext*/, CString& strCode) {
    if (Draw(4) != 0) {
        strCode = "FEDCBA9876543210";
    }
    return Draw(4) == 0 ? 3 : 0;
}

int NeverDisplay(void* /*pContext*/) {
    throw std::runtime_error("callback");
}

BOOL CALLBACK FillByChance(HWND hWnd, LPARAM) {
    std::array<char, 16> name{};
    GetClassNameA(hWnd, name.data(), static_cast<int>(name.size()));
    const int id = GetDlgCtrlID(hWnd);
    if (lstrcmpiA(name.data(), "EDIT") == 0) {
        const char* text = id == IDC_UNLOCK_CARD_CODE_EDIT ? "0123-4567-89AB-CDEF" : "4711";
        SetWindowTextA(hWnd, Draw(9) == 0 ? "x" : text);
    } else if (lstrcmpiA(name.data(), "BUTTON") == 0 && id > IDCANCEL && Draw(2) == 0) {
        SendMessageA(hWnd, BM_CLICK, 0, 0);
    }
    return TRUE;
}

void CALLBACK ActByChance(HWND, UINT, UINT_PTR, DWORD) {
    const HWND dialog = GetActiveWindow();
    if (dialog == nullptr) {
        return;
    }
    for (auto acts = Draw(3) + 1; acts > 0; --acts) {
        const unsigned drawn = Draw(8);
        if (drawn == 1) {
            Remove();
        } else if (drawn < 4) {
            g_bLeft = g_bLeft || drawn == 0;
            PostMessageA(dialog, WM_COMMAND, drawn == 0 ? IDCANCEL : IDOK, 0);
        } else {
            EnumChildWindows(dialog, FillByChance, 0);
        }
    }
}

// Acts as soon as a dialog of the framework is idle, and keeps its loop awake. The system's message
// boxes know no such moment: theirs is the timer's.
LRESULT CALLBACK ActWhenIdle(int nCode, WPARAM wParam, LPARAM lParam) {
    const auto& call = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (nCode == HC_ACTION && call.message == WM_KICKIDLE && call.lParam == 0) {
        ActByChance(nullptr, 0, 0, 0);
        PostMessageA(call.hwnd, WM_NULL, 0, 0);
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

using CardOrders = LibraryTest;

// One dialog of the six, from its constructor to its destructor; whether it was confirmed.
bool RunOne(int nWhich) {
    const PwdRuleArgs rules{0, 1, 1, 0, 4, 8, 0};
    bool done = false;
    if (nWhich == 0) {
        CUnlockCardDlg dialog(nullptr, &rules, &done, &Unlock, &GetChallenge, "Reader A");
        EXPECT_EQ(dialog.DoModal() == IDOK, done);
    } else if (nWhich == 1) {
        CInitializePinDlg dialog(nullptr, nullptr, &done, &Initialize, &NeverDisplay,
                                 &GetUnlockCode, "Reader A");
        EXPECT_EQ(dialog.DoModal() == IDOK, done);
        EXPECT_TRUE(done || dialog.m_bUnlockCodePending == 0);
    } else if (nWhich == 2) {
        CResetCardDialogMain dialog(0, nullptr, 0, 0, 0, "Reader A");
        done = dialog.DoModal() == IDOK;
        EXPECT_NE(done, dialog.GetPin().IsEmpty());
    } else if (nWhich == 3) {
        done = DisplayUnlockCode(nullptr, nullptr, &GetUnlockCode, &NeverDisplay, "Reader A") == 1;
    } else if (nWhich == 4) {
        PinRequest request;
        const std::string outcome = request.Outcome(request.CallAlone());
        done = outcome != kRefused;
        EXPECT_TRUE(done ? outcome == "4711" : g_bLeft) << outcome;
    } else {
        const INT_PTR result = CCMLockedDlg(nullptr, "Reader A").DoModal();
        done = result == IDOK;
        EXPECT_TRUE(done || result == IDCANCEL);
    }
    return done;
}

TEST_F(CardOrders, EveryOneEndsWellAndKeepsNothing) {
    // A run by hand may ask for more: MVP_SOAK_ROUNDS=10000.
    const char* wanted = std::getenv("MVP_SOAK_ROUNDS");
    const long rounds = wanted != nullptr ? std::strtol(wanted, nullptr, 10) : 720;
    HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, &ActWhenIdle, nullptr, GetCurrentThreadId());
    std::array<int, 6> confirmed{};
    const auto round = [&](int i) {
        const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &ActByChance);
        g_bLeft = false;
        confirmed.at(static_cast<std::size_t>(i % 6)) += RunOne(i % 6) ? 1 : 0;
        KillTimer(nullptr, timer);
        // At rest when things are counted.
        EXPECT_TRUE(i % 20 != 19 || VKWaitForIdle(10'000) == VKEVTSUB_OK);
        m_log.Clear();
        m_boxes.Clear();
    };
    // The objects that the system keeps for later depend on how deep the windows were nested, and
    // grow ever more slowly; the bytes are those of the longest log. A dialog that kept one thing a
    // time would keep more than a hundred.
    const GrowthAllowance allowance{
        .objects = 100, .heapBlocks = 32, .heapBytes = 1 << 20, .privateBytes = 64 << 20};
    ExpectRoundsKeepNothing(100, static_cast<int>(rounds), round, allowance);
    UnhookWindowsHookEx(hook);
    for (const int times : confirmed) {
        EXPECT_GT(times, rounds / 100) << "chance never came this far";
    }
}

// One of each over a card that agrees to everything, with the edits that are to be filled.
struct OneOfEach {
    struct Entry {
        CDialog& dialog;
        std::vector<int> edits;
    };

    template <class... Rest>
    static int Agree(void* pCalled, CString, Rest...) {
        ++*static_cast<int*>(pCalled);
        return MVPINGUI_CARD_OK;
    }
    static void Fill(Dialog& d, const Entry& entry) {
        for (const int edit : entry.edits) {
            d.Type(edit, edit == IDC_UNLOCK_CARD_CODE_EDIT ? "0123456789ABCDEF" : "4711");
        }
        EXPECT_TRUE(d.IsEnabled(IDOK));
    }

    CWnd* pParent = nullptr;
    int nCalled = 0;
    PwdRuleArgs rules{0, 0, 0, 0, 4, 8, 0};
    CUnlockCardDlg unlock{pParent, &rules, &nCalled, &Agree<CString>, nullptr, "Reader A"};
    CInitializePinDlg initialize{pParent, nullptr, &nCalled,  &Agree<int, int, int, int, int, int>,
                                 nullptr, nullptr, "Reader A"};
    CResetCardDialogMain reset{0, pParent, 0, 0, 0, "Reader A"};
    CDisplayUnlockCodeDlg code{pParent, "0123", "Reader A", 0};
    CCMLockedDlg locked{pParent, "Reader A"};
    std::vector<Entry> all{
        {unlock,
         {IDC_UNLOCK_CARD_CODE_EDIT, IDC_UNLOCK_CARD_NEW_EDIT, IDC_UNLOCK_CARD_CONFIRM_EDIT}},
        {initialize, {IDC_INITIALIZE_PIN_NEW_EDIT, IDC_INITIALIZE_PIN_CONFIRM_EDIT}},
        {reset, {IDC_RESET_CARD_PIN_EDIT}},
        {code, {}},
        {locked, {}}};
};

// Two commands in one go: the first has ended the dialog, and the second comes too late, callbacks
// and all.
TEST_F(CardOrders, WhatHasEndedADialogStands) {
    OneOfEach each;
    each.all.pop_back();  // it asks nothing, and its last command counts
    for (const OneOfEach::Entry& entry : each.all) {
        const DialogDriver driver([&](Dialog& d) {
            OneOfEach::Fill(d, entry);
            if (&entry.dialog == &each.code) {
                d.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
            }
            d.Run([&] {
                SendMessageA(d.Handle(), WM_COMMAND, IDCANCEL, 0);
                SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            });
            d.WaitGone();
        });
        EXPECT_EQ(entry.dialog.DoModal(), IDCANCEL);
    }
    EXPECT_EQ(each.nCalled, 0);
}

HWND g_hForeground = nullptr;
BOOL WINAPI TakeForeground(HWND hWnd) {
    g_hForeground = hWnd;
    return SetForegroundWindow(hWnd);
}

int CountProperties(HWND hWnd) {
    static int count;
    count = 0;
    EnumPropsA(hWnd, [](HWND, LPCSTR, HANDLE) -> BOOL { return ++count; });
    return count;
}

// Whose thread may be the one in front: they must ask to come there, but for the one whose place is
// left to its host.
TEST_F(CardOrders, LeaveAParentOfAnotherThreadAsItWas) {
    const PatchedImports system("dlgfw.dll", {{"SetForegroundWindow", Address(&TakeForeground)}});
    WithForeignWindow([](HWND hOther) {
        CWnd parent;
        parent.Attach(hOther);
        OneOfEach each{&parent};
        const int properties = CountProperties(hOther);
        for (const OneOfEach::Entry& entry : each.all) {
            const bool isCode = &entry.dialog == &each.code;
            const DialogDriver driver([&](Dialog& d) {
                EXPECT_EQ(g_hForeground == d.Handle(), &entry.dialog != &each.reset);
                EXPECT_EQ(GetWindow(d.Handle(), GW_OWNER), hOther);
                EXPECT_FALSE(IsWindowEnabled(hOther));
                EXPECT_EQ(CountProperties(hOther) - properties, isCode ? 1 : 0);
                OneOfEach::Fill(d, entry);
                d.Click(IDOK);
                if (&entry.dialog == &each.unlock) {
                    d.Next().Enter();  // that it is unlocked
                }
            });
            EXPECT_EQ(entry.dialog.DoModal(), isCode ? IDCANCEL : IDOK);
            EXPECT_TRUE(IsWindowEnabled(hOther));
            EXPECT_EQ(CountProperties(hOther), properties);
        }
        parent.Detach();
    });
}

TEST_F(CardOrders, TakeTheWarningDownWhenTheyMove) {
    const PatchedImports system(nullptr, {{"GetVersionExA", Address(&TellOldSystem)}});
    int place = 9;
    const auto expectDown = [&](Dialog& d, HWND hMoved) {
        const HWND balloon = WarnOfCapsLock(d);
        m_log.Clear();
        SetWindowPos(hMoved, nullptr, ++place, 3, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        EXPECT_FALSE(IsWindowVisible(balloon)) << place;
    };
    OneOfEach each;
    for (const OneOfEach::Entry& entry : each.all) {
        const auto move = [&](Dialog& d) {
            for (const int edit : entry.edits) {
                d.Focus(edit);
                expectDown(d, d.Handle());
            }
            d.Cancel();
        };
        EXPECT_EQ(Open(entry.dialog, {move}), IDCANCEL);
    }
    const std::string classes[] = {"CEnterPinDlg", "CChangePINDialogMain", "CChangePINDialog"};
    for (const std::string& moved : classes) {
        const auto move = [&](Dialog& d) {
            expectDown(d, moved == classes[2] ? GetParent(d.Control(kCurrent)) : d.Handle());
            for (const std::string& className : classes) {
                EXPECT_EQ(m_log.Contains(16, className + "::OnMove"), className == moved);
            }
            d.Escape();
        };
        moved == classes[0] ? PinRequest().Ask(move) : ChangePinRequest().Ask(move);
    }
    SetCapsLock(false);
}

// Of a host that knows where it wants the dialog, and shows it there at once.
template <class Base>
class Placed : public Base {
public:
    using Base::Base;

protected:
    BOOL OnInitDialog() override {
        const BOOL result = Base::OnInitDialog();
        this->SetWindowPos(nullptr, 11, 22, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_SHOWWINDOW);
        return result;
    }
};

TEST_F(CardOrders, GrowWhereTheirHostHasShownThem) {
    Placed<CUnlockCardDlg> unlock(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    Placed<CInitializePinDlg> initialize(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                         nullptr);
    for (CDialog* dialog : std::initializer_list<CDialog*>{&unlock, &initialize}) {
        const DialogDriver driver([&](Dialog& d) {
            d.Settle();
            EXPECT_TRUE(d.IsVisible(IDC_POLICIES_BOX)) << "it has grown";
            EXPECT_EQ(RectIn(nullptr, d.Handle()).TopLeft(), CPoint(11, 22));
            d.Cancel();
        });
        EXPECT_EQ(dialog->DoModal(), IDCANCEL);
    }
}

}  // namespace
}  // namespace mvp::test
