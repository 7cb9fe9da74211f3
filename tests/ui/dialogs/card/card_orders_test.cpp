// Every order of what user, card, callbacks and other programs do to the card dialogs: drawn by
// chance from a fixed seed, inside the modal loops, without a thread switch.
#include <array>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/card_manager_locked_dialog.h"
#include "mvpingui/display_unlock_code.h"
#include "mvpingui/initialize_pin_dialog.h"
#include "mvpingui/reset_card_dialog.h"
#include "mvpingui/unlock_card_dialog.h"
#include "mvpingui/unlock_result_dialogs.h"
#include "support/dialog_driver.h"
#include "support/resource_counts.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

std::mt19937 g_random(20261122);

unsigned Draw(unsigned nBelow) {
    return static_cast<unsigned>(g_random() % nBelow);
}

void Remove() {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, Draw(2) == 0 ? "Reader A" : "Reader B"),
              VKEVTSUB_OK);
}

// What every callback does: takes its time with messages, loses the card, calls the library,
// throws, and gives one result or the other.
int AnswerByChance(void* pContext) {
    const std::array<int, 5> results{0, 0, 5, 7, -3};
    switch (Draw(8)) {
        case 0:
            Remove();
            break;
        case 1: {
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
                DispatchMessageA(&message);
            }
            break;
        }
        case 2:
            CUnlockFailedDlg(nullptr, "re-entered", 0).DoModal();
            break;
        case 3:
            throw std::runtime_error("callback");
        default:
            break;
    }
    const int result = results.at(Draw(results.size()));
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
        switch (Draw(8)) {
            case 0:
                PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
                break;
            case 1:
                Remove();
                break;
            case 2:
            case 3:
                PostMessageA(dialog, WM_COMMAND, IDOK, 0);
                break;
            default:
                EnumChildWindows(dialog, FillByChance, 0);
                break;
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

std::array<int, 5> g_confirmed{};

// One dialog of the five, from its constructor to its destructor.
void RunOne(int nWhich) {
    const PwdRuleArgs rules{0, 1, 1, 0, 4, 8, 0};
    bool done = false;
    bool confirmed = false;
    switch (nWhich) {
        case 0: {
            CUnlockCardDlg dialog(nullptr, &rules, &done, &Unlock, &GetChallenge, "Reader A");
            confirmed = dialog.DoModal() == IDOK;
            EXPECT_EQ(confirmed, done);
            break;
        }
        case 1: {
            CInitializePinDlg dialog(nullptr, nullptr, &done, &Initialize, &NeverDisplay,
                                     &GetUnlockCode, "Reader A");
            confirmed = dialog.DoModal() == IDOK;
            EXPECT_EQ(confirmed, done);
            EXPECT_TRUE(done || dialog.m_bUnlockCodePending == 0);
            break;
        }
        case 2: {
            CResetCardDialogMain dialog(0, nullptr, 0, 0, 0, "Reader A");
            confirmed = dialog.DoModal() == IDOK;
            EXPECT_NE(confirmed, dialog.GetPin().IsEmpty());
            break;
        }
        case 3:
            confirmed =
                DisplayUnlockCode(nullptr, nullptr, &GetUnlockCode, &NeverDisplay, "Reader A") == 1;
            break;
        default: {
            const INT_PTR result = CCMLockedDlg(nullptr, "Reader A").DoModal();
            confirmed = result == IDOK;
            EXPECT_TRUE(confirmed || result == IDCANCEL);
            break;
        }
    }
    g_confirmed.at(static_cast<std::size_t>(nWhich)) += confirmed ? 1 : 0;
}

TEST_F(CardOrders, EveryOneEndsWellAndKeepsNothing) {
    // A run by hand may ask for more: MVP_SOAK_ROUNDS=10000.
    const char* wanted = std::getenv("MVP_SOAK_ROUNDS");
    const long rounds = wanted != nullptr ? std::strtol(wanted, nullptr, 10) : 600;
    HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, &ActWhenIdle, nullptr, GetCurrentThreadId());
    const auto round = [&](int i) {
        const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &ActByChance);
        RunOne(i % 5);
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
    for (const int confirmed : g_confirmed) {
        EXPECT_GT(confirmed, rounds / 100) << "chance never came this far";
    }
}

// Two commands in one go: the first has ended the dialog, and the second comes too late, callbacks
// and all.
TEST_F(CardOrders, WhatHasEndedADialogStands) {
    const auto unlock = [](void* pCalled, CString, CString) {
        return ++*static_cast<int*>(pCalled);
    };
    const auto initialize = [](void* pCalled, CString, int, int, int, int, int, int) {
        return ++*static_cast<int*>(pCalled);
    };
    const PwdRuleArgs rules{0, 0, 0, 0, 4, 8, 0};
    int called = 0;
    CUnlockCardDlg unlockCard(nullptr, &rules, &called, unlock, nullptr, "Reader A");
    CInitializePinDlg first(nullptr, nullptr, &called, initialize, nullptr, nullptr, "Reader A");
    CResetCardDialogMain reset(0, nullptr, 0, 0, 0, "Reader A");
    CDisplayUnlockCodeDlg code(nullptr, "0123", "Reader A", 0);
    const std::pair<CDialog*, std::vector<int>> dialogs[] = {
        {&unlockCard,
         {IDC_UNLOCK_CARD_CODE_EDIT, IDC_UNLOCK_CARD_NEW_EDIT, IDC_UNLOCK_CARD_CONFIRM_EDIT}},
        {&first, {IDC_INITIALIZE_PIN_NEW_EDIT, IDC_INITIALIZE_PIN_CONFIRM_EDIT}},
        {&reset, {IDC_RESET_CARD_PIN_EDIT}},
        {&code, {}},
    };
    for (const auto& [dialog, edits] : dialogs) {
        const DialogDriver driver([&, &edits = edits](Dialog& d) {
            for (const int edit : edits) {
                d.Type(edit, edit == IDC_UNLOCK_CARD_CODE_EDIT ? "0123456789ABCDEF" : "4711");
            }
            if (edits.empty()) {
                d.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
            }
            EXPECT_TRUE(d.IsEnabled(IDOK));
            d.Run([&] {
                SendMessageA(d.Handle(), WM_COMMAND, IDCANCEL, 0);
                SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            });
            d.WaitGone();
        });
        EXPECT_EQ(dialog->DoModal(), IDCANCEL);
    }
    EXPECT_EQ(called, 0);
}

}  // namespace
}  // namespace mvp::test
