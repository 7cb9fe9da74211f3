// That nothing of a PIN, an unlock code or a response is left in the memory of the process after
// every ending of a card dialog, be it the library's or the system's.
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

enum class End { Ok, Cancel, Removal };
constexpr End kEnds[] = {End::Ok, End::Cancel, End::Removal};
constexpr const char* kWhen[] = {"OK", "Cancel", "removal"};

void EndBy(Dialog& d, End end) {
    if (end == End::Ok) {
        d.Click(IDOK);
    } else if (end == End::Cancel) {
        d.Escape();
    } else {
        VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
        d.WaitGone();
    }
}

// A card whose callbacks accept what they get when it is the secret.
struct Card {
    const Secret& pin;
    const Secret& code;
    int nResult = 0;
    bool bRight = false;

    static bool Is(const CString& str, const Secret& secret) {
        bool same = static_cast<size_t>(str.GetLength()) == secret.size();
        for (size_t i = 0; same && i < secret.size(); ++i) {
            same = str.GetAt(static_cast<int>(i)) == secret[i];
        }
        return same;
    }
    static int Unlock(void* pContext, CString strCode, CString strNewPin) {
        Card& card = *static_cast<Card*>(pContext);
        card.bRight = Is(strCode, card.code) && Is(strNewPin, card.pin);
        return std::exchange(card.nResult, 0);
    }
    static int Initialize(void* pContext, CString strNewPin, int, int, int, int, int, int) {
        Card& card = *static_cast<Card*>(pContext);
        card.bRight = Is(strNewPin, card.pin);
        return std::exchange(card.nResult, 0);
    }
    static int GetUnlockCode(void* pContext, CString& strCode) {
        const Card& card = *static_cast<Card*>(pContext);
        for (size_t i = 0; i < card.code.size(); ++i) {
            strCode += card.code[i];
        }
        return 0;
    }
};

constexpr PwdRuleArgs kLongPins = {0, 0, 1, 1, 4, 64, 0};

TEST(CardWiping, AfterUnlocking) {
    for (const End end : kEnds) {
        const Secret pin;
        const Secret code = Secret::UnlockCode();
        const SecretWatch watch({&pin, &code});
        Card card{pin, code, 5};
        {
            CUnlockCardDlg dialog(nullptr, &kLongPins, &card, &Card::Unlock, nullptr, "Reader A");
            const DialogDriver driver([&](Dialog& d) {
                d.Type(IDC_UNLOCK_CARD_CODE_EDIT, code);
                d.Type(IDC_UNLOCK_CARD_NEW_EDIT, pin);
                d.Type(IDC_UNLOCK_CARD_CONFIRM_EDIT, pin);
                // Refused first: both stay in the edits.
                d.Click(IDOK);
                Dialog failed = d.Next();
                failed.Click(IDOK);
                failed.WaitGone();
                EXPECT_TRUE(card.bRight);
                EndBy(d, end);
                if (end == End::Ok) {
                    Dialog success = d.Next();
                    success.Click(IDOK);
                    success.WaitGone();
                }
                d.WaitGone();
            });
            EXPECT_EQ(dialog.DoModal(), end == End::Ok ? IDOK : IDCANCEL);
        }
        watch.ExpectNothingLeft(kWhen[static_cast<int>(end)]);
    }
}

TEST(CardWiping, AfterTheFirstPinAndTheUnlockCode) {
    for (const End end : kEnds) {
        const Secret pin;
        const Secret code = Secret::UnlockCode();
        const Secret shown = code.Grouped();
        const SecretWatch watch({&pin, &code, &shown});
        Card card{pin, code};
        PINPolicies policies{4, 64, 3, 0, 3, 0, 0, 0, 1};
        {
            CInitializePinDlg dialog(nullptr, &policies, &card, &Card::Initialize, nullptr,
                                     &Card::GetUnlockCode, "Reader A");
            const DialogDriver driver([&](Dialog& d) {
                d.Type(IDC_INITIALIZE_PIN_NEW_EDIT, pin);
                d.Type(IDC_INITIALIZE_PIN_CONFIRM_EDIT, pin);
                EndBy(d, end);
                if (end == End::Ok) {
                    Dialog display = d.Next();
                    EXPECT_EQ(display.Send(IDC_UNLOCK_CODE_CODE, WM_GETTEXTLENGTH),
                              static_cast<LRESULT>(shown.size()));
                    for (const MemoryHit& hit : ScanOwnMemory(pin)) {
                        EXPECT_TRUE(hit.bWide) << "beside the edits, " << hit;
                    }
                    display.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
                    display.Click(IDOK);
                    display.WaitGone();
                }
                d.WaitGone();
            });
            EXPECT_EQ(dialog.DoModal(), end == End::Ok ? IDOK : IDCANCEL);
            EXPECT_EQ(card.bRight, end == End::Ok);
        }
        watch.ExpectNothingLeft(kWhen[static_cast<int>(end)]);
    }
}

TEST(CardWiping, AfterTheUnlockCodeWasShown) {
    for (const End end : kEnds) {
        const Secret code = Secret::UnlockCode();
        const Secret shown = code.Grouped();
        const SecretWatch watch({&code, &shown});
        Card card{code, code};
        const DialogDriver driver([&](Dialog& d) { EndBy(d, end); });
        EXPECT_EQ(DisplayUnlockCode(nullptr, &card, &Card::GetUnlockCode, nullptr, "Reader A"), 0);
        watch.ExpectNothingLeft(kWhen[static_cast<int>(end)]);
    }
}

TEST(CardWiping, AfterAReset) {
    for (const bool byPin : {true, false}) {
        for (const End end : kEnds) {
            const Secret secret;
            const SecretWatch watch({&secret});
            {
                CResetCardDialogMain dialog(0, nullptr, 0, 0, 0, "Reader A");
                const DialogDriver driver([&](Dialog& d) {
                    if (!byPin) {
                        d.Click(IDC_RESET_CARD_CODE_ROUTE);
                    }
                    d.Type(byPin ? IDC_RESET_CARD_PIN_EDIT : IDC_RESET_CARD_RESPONSE_EDIT, secret);
                    EndBy(d, end);
                });
                EXPECT_EQ(dialog.DoModal(), end == End::Ok ? IDOK : IDCANCEL);
                EXPECT_EQ(Card::Is(dialog.GetPin(), secret), end == End::Ok);
            }
            watch.ExpectNothingLeft(kWhen[static_cast<int>(end)]);
        }
    }
}

// What the scan would say of a code that is left behind.
TEST(CardWiping, FindsWhatIsLeft) {
    const Secret code = Secret::UnlockCode();
    const Secret shown = code.Grouped();
    CDisplayUnlockCodeDlg* dialog = nullptr;
    {
        Card card{code, code};
        CString text;
        Card::GetUnlockCode(&card, text);
        dialog = new CDisplayUnlockCodeDlg(nullptr, text, "Reader A", 0);
    }
    EXPECT_FALSE(ScanOwnMemory(code).empty());
    EXPECT_TRUE(ScanOwnMemory(shown).empty());
    delete dialog;
    EXPECT_TRUE(ScanOwnMemory(code).empty());
}

}  // namespace
}  // namespace mvp::test
