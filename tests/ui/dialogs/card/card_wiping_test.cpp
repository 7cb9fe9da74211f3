// That a PIN, an unlock code or a response stands in its fields alone while a card dialog is open,
// and that nothing of it is left in the memory of the process after every ending, be it the
// library's or the system's.
#include <functional>
#include <string>
#include <utility>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/display_unlock_code.h"
#include "mvpingui/initialize_pin_dialog.h"
#include "mvpingui/reset_card_dialog.h"
#include "mvpingui/unlock_card_dialog.h"
#include "resources/resource_numbers.h"
#include "support/dialog_driver.h"
#include "support/memory_scan.h"

namespace mvp::test {
namespace {

// A card whose callbacks accept what they get when it is the secret, and how its dialog ends.
struct Round {
    const std::string strEnd;
    const Secret pin = Secret::Pin();
    const Secret code = Secret::UnlockCode();
    int nResult = 0;  // of the next call
    bool bRight = false;

    bool IsOk() const { return strEnd == "OK"; }
    INT_PTR Result() const { return IsOk() ? IDOK : IDCANCEL; }
    void End(Dialog& d) const {
        if (strEnd == "removal") {
            VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
            d.WaitGone();
        } else {
            IsOk() ? d.Click(IDOK) : d.Escape();
        }
    }

    static bool Is(const CString& str, const Secret& secret) {
        bool same = static_cast<size_t>(str.GetLength()) == secret.size();
        for (size_t i = 0; same && i < secret.size(); ++i) {
            same = str.GetAt(static_cast<int>(i)) == secret[i];
        }
        return same;
    }
    static int Unlock(void* pContext, CString strCode, CString strNewPin) {
        auto& round = *static_cast<Round*>(pContext);
        round.bRight = Is(strCode, round.code) && Is(strNewPin, round.pin);
        return std::exchange(round.nResult, 0);
    }
    static int Initialize(void* pContext, CString strNewPin, int, int, int, int, int, int) {
        auto& round = *static_cast<Round*>(pContext);
        round.bRight = Is(strNewPin, round.pin);
        return 0;
    }
    static int GetUnlockCode(void* pContext, CString& strCode) {
        const auto& code = static_cast<Round*>(pContext)->code;
        for (size_t i = 0; i < code.size(); ++i) {
            strCode += code[i];
        }
        return 0;
    }
};

// Nothing is left of the secrets when `work` has opened and destroyed a dialog, however it ended.
void ExpectNothingLeft(const std::function<void(Round&)>& work) {
    for (const char* end : {"OK", "Cancel", "removal"}) {
        Round round{end};
        const SecretWatch watch({&round.pin, &round.code});
        work(round);
        watch.ExpectNothingLeft(end);
    }
}

void Confirm(Dialog told) {
    told.Click(IDOK);
    told.WaitGone();
}

constexpr PwdRuleArgs kLongPins = {0, 0, 1, 1, 4, 64, 0};

TEST(CardWiping, AfterUnlocking) {
    ExpectNothingLeft([](Round& round) {
        round.nResult = 5;
        CUnlockCardDlg dialog(nullptr, &kLongPins, &round, &Round::Unlock, nullptr, "Reader A");
        const DialogDriver driver([&](Dialog& d) {
            d.Type(IDC_UNLOCK_CARD_CODE_EDIT, round.code);
            d.Type(IDC_UNLOCK_CARD_NEW_EDIT, round.pin);
            d.Type(IDC_UNLOCK_CARD_CONFIRM_EDIT, round.pin);
            // Refused first: both stay in the edits.
            d.Click(IDOK);
            Confirm(d.Next());
            ExpectOnPagesOfTheirOwn(round.pin, 2, "unlocking");
            ExpectOnPagesOfTheirOwn(round.code, 1, "unlocking");
            EXPECT_TRUE(round.bRight);
            round.End(d);
            if (round.IsOk()) {
                Confirm(d.Next());
            }
            d.WaitGone();
        });
        EXPECT_EQ(dialog.DoModal(), round.Result());
    });
}

TEST(CardWiping, AfterTheFirstPinAndTheUnlockCode) {
    ExpectNothingLeft([](Round& round) {
        PINPolicies policies{4, 64, 3, 0, 3, 0, 0, 0, 1};
        CInitializePinDlg dialog(nullptr, &policies, &round, &Round::Initialize, nullptr,
                                 &Round::GetUnlockCode, "Reader A");
        const DialogDriver driver([&](Dialog& d) {
            d.Type(IDC_INITIALIZE_PIN_NEW_EDIT, round.pin);
            d.Type(IDC_INITIALIZE_PIN_CONFIRM_EDIT, round.pin);
            d.Focus(IDCANCEL);
            ExpectOnPagesOfTheirOwn(round.pin, 2, "first PIN");
            round.End(d);
            if (round.IsOk()) {
                Dialog display = d.Next();
                // In groups of four, with dashes between them.
                EXPECT_EQ(display.Send(IDC_UNLOCK_CODE_CODE, WM_GETTEXTLENGTH),
                          static_cast<LRESULT>(round.code.size() + 3));
                ExpectOnPagesOfTheirOwn(round.pin, 2, "behind the code");
                ExpectOnPagesOfTheirOwn(round.code, 1, "shown after the PIN");
                display.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
                Confirm(display);
            }
            d.WaitGone();
        });
        EXPECT_EQ(dialog.DoModal(), round.Result());
        EXPECT_EQ(round.bRight, round.IsOk());
    });
}

TEST(CardWiping, AfterTheUnlockCodeWasShown) {
    ExpectNothingLeft([](Round& round) {
        const DialogDriver driver([&](Dialog& d) {
            ExpectOnPagesOfTheirOwn(round.code, 1, "shown");
            round.End(d);
        });
        EXPECT_EQ(DisplayUnlockCode(nullptr, &round, &Round::GetUnlockCode, nullptr, "Reader A"),
                  0);
    });
}

TEST(CardWiping, AfterAReset) {
    for (const bool byPin : {true, false}) {
        ExpectNothingLeft([&](Round& round) {
            CResetCardDialogMain dialog(0, nullptr, 0, 0, 0, "Reader A");
            const DialogDriver driver([&](Dialog& d) {
                if (!byPin) {
                    d.Click(IDC_RESET_CARD_CODE_ROUTE);
                }
                d.Type(byPin ? IDC_RESET_CARD_PIN_EDIT : IDC_RESET_CARD_RESPONSE_EDIT, round.pin);
                d.Focus(IDCANCEL);
                ExpectOnPagesOfTheirOwn(round.pin, 1, "reset");
                round.End(d);
            });
            EXPECT_EQ(dialog.DoModal(), round.Result());
            EXPECT_EQ(Round::Is(dialog.GetPin(), round.pin), round.IsOk());
        });
    }
}

}  // namespace
}  // namespace mvp::test
