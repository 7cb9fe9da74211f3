// CResetCardDialogMain and its panel: the two routes, with a challenge and without.
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/reset_card_dialog.h"
#include "support/dialog_driver.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr int kPin = IDC_RESET_CARD_PIN_EDIT;
constexpr int kCode = IDC_RESET_CARD_CODE_EDIT;
constexpr int kResponse = IDC_RESET_CARD_RESPONSE_EDIT;
constexpr int kPinRoute = IDC_RESET_CARD_PIN_ROUTE;
constexpr int kCodeRoute = IDC_RESET_CARD_CODE_ROUTE;
using Prepare = std::function<void(CResetCardDialog&)>;
using ResetCard = LibraryTest;

class Frame : public CResetCardDialogMain {
public:
    explicit Frame(Prepare prepare)
        : CResetCardDialogMain(0, nullptr, 1, 2, 3, "Reader A"), m_prepare(std::move(prepare)) {}
    std::string Run(const Script& script) {
        const DialogDriver driver(script);
        const INT_PTR result = DoModal();
        return std::to_string(result) + " " + GetPin().GetString();
    }

protected:
    BOOL OnInitDialog() override {
        const BOOL result = CResetCardDialogMain::OnInitDialog();
        if (Panel() != nullptr && m_prepare) {
            m_prepare(*Panel());
        }
        return result;
    }

private:
    Prepare m_prepare;
};

Prepare Challenge(const char* pszChallenge) {
    return [=](CResetCardDialog& panel) { panel.SetChallenge(pszChallenge); };
}
void ExpectRoute(Dialog& d, bool bPin, bool bChallenge) {
    const int field = bChallenge ? kResponse : kCode;
    EXPECT_EQ(d.FocusedId(), bPin ? kPin : field);
    EXPECT_EQ(d.IsChecked(kPinRoute), bPin);
    EXPECT_EQ(d.IsChecked(kCodeRoute), !bPin);
    EXPECT_EQ(d.IsEnabled(kPin), bPin);
    EXPECT_NE(d.IsVisible(kCode), bChallenge);
    EXPECT_EQ(d.IsEnabled(field), !bPin);
    for (const int id :
         {IDC_RESET_CARD_CHALLENGE_LABEL, IDC_RESET_CARD_RESPONSE_LABEL, IDC_RESET_CARD_CHALLENGE,
          kResponse, IDC_RESET_CARD_RESPONSE_NOTE, IDC_RESET_CARD_CHALLENGE_NOTE}) {
        EXPECT_EQ(d.IsVisible(id), bChallenge) << id;
        EXPECT_TRUE(!bChallenge || d.IsEnabled(id) != bPin) << id;
    }
}

TEST_F(ResetCard, GoesBothRoutesWithAChallengeAndWithout) {
    const std::pair<const char*, std::string> cases[] = {
        {"0123456789ABCDEF", "0123-4567-89AB-CDEF"},
        {"0123456789ABCDEFXY", "0123-4567-89AB-CDEF"},
        {"0123456", "0123-456--"},
        {"", ""},
        {nullptr, ""}};
    for (const auto& [challenge, shown] : cases) {
        const bool hasChallenge = !shown.empty();
        const int field = hasChallenge ? kResponse : kCode;
        for (const bool byPin : {true, false}) {
            Frame frame(Challenge(challenge));
            const std::string outcome = frame.Run([&, &strShown = shown](Dialog& d) {
                EXPECT_EQ(d.Text(IDC_RESET_CARD_CHALLENGE), strShown);
                ExpectRoute(d, true, hasChallenge);
                EXPECT_FALSE(d.IsEnabled(IDOK));
                d.Run([&] { SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0); });
                d.Type(kPin, "1");
                EXPECT_TRUE(d.IsEnabled(IDOK));
                // From one route to the other and back, by mouse and by keys.
                d.Click(kCodeRoute);
                ExpectRoute(d, false, hasChallenge);
                EXPECT_FALSE(d.IsEnabled(IDOK));
                d.Focus(kCodeRoute);
                d.Press(VK_UP);
                ExpectRoute(d, true, hasChallenge);
                EXPECT_TRUE(d.IsEnabled(IDOK));
                if (!byPin) {
                    d.Focus(kPinRoute);
                    d.Press(VK_DOWN);
                    d.Type(field, "2");
                    EXPECT_TRUE(d.IsEnabled(IDOK));
                    d.Press(VK_BACK);
                    EXPECT_FALSE(d.IsEnabled(IDOK));
                    d.Type(field, "12-34 x");
                }
                d.Run([&] { EXPECT_EQ(frame.GetPin(), byPin ? "1" : "12-34 x"); });
                d.Enter();
            });
            EXPECT_EQ(outcome, byPin ? "1 1" : "1 12-34 x");
        }
    }
    EXPECT_EQ(m_log.Texts(8).size(), m_log.Texts(16).size());
    EXPECT_TRUE(m_log.Contains(16, "CChangePINDialog::OnInitDialog"));
}

TEST_F(ResetCard, CheckWindowClearsWhatIsNotActive) {
    for (const int active : {kPin, kResponse, kCode}) {
        for (const int clear : {0, 1}) {
            Frame frame(Challenge(active == kCode ? "" : "0123"));
            frame.Run([&](Dialog& d) {
                d.Click(active == kPin ? kPinRoute : kCodeRoute);
                d.Run([&] {
                    for (const int id : {kPin, kResponse, kCode}) {
                        SetWindowTextA(d.Control(id), "1");
                    }
                    frame.Panel()->CheckWindow(clear);
                    for (const int id : {kPin, kResponse, kCode}) {
                        const int length = GetWindowTextLengthA(d.Control(id));
                        EXPECT_EQ(length, id == active && clear == 0 ? 1 : 0) << id;
                    }
                });
                EXPECT_EQ(d.FocusedId(), active);
                EXPECT_EQ(d.IsEnabled(IDOK), clear == 0);
                d.Escape();
            });
        }
    }
}

TEST_F(ResetCard, HoldsTheUserOnTheRouteOfTheCodeUntilTheNextChallenge) {
    for (const char* challenge : {"0123", ""}) {
        Frame frame([=](CResetCardDialog& panel) {
            panel.SetChallenge(challenge);
            panel.SendDlgItemMessage(kPin, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("1234"));
            panel.DisablePIN();
        });
        const bool hasChallenge = *challenge != '\0';
        const std::string outcome = frame.Run([&](Dialog& d) {
            ExpectRoute(d, false, hasChallenge);
            EXPECT_EQ(d.Text(kPin), "");
            EXPECT_FALSE(d.IsEnabled(kPinRoute) || d.IsEnabled(kCodeRoute));
            d.Run([&] { frame.Panel()->SetChallenge(challenge); });
            ExpectRoute(d, true, hasChallenge);
            EXPECT_TRUE(d.IsEnabled(kPinRoute) && d.IsEnabled(kCodeRoute));
            d.Run([&] { frame.Panel()->DisablePIN(); });
            d.Type(hasChallenge ? kResponse : kCode, "A");
            d.Click(IDOK);
        });
        EXPECT_EQ(outcome, "1 A");
    }
}

TEST_F(ResetCard, GivesNothingUnlessConfirmedAndEndsWithItsCard) {
    for (const bool removed : {true, false}) {
        Frame frame(nullptr);
        EXPECT_EQ(frame.Run([&](Dialog& d) {
            EXPECT_STREQ(ResourceString(IDS_CARD_PIN_TITLE), d.Title().c_str());
            EXPECT_EQ(d.FocusedId(), kPin) << "also before a challenge is set";
            const CRect panel = RectIn(d.Handle(), GetParent(d.Control(kPin)));
            EXPECT_EQ(panel.TopLeft(), CRect(d.Rect(IDC_RESET_CARD_PANEL_PLACE)).TopLeft());
            d.Type(kPin, "1234");
            for (const char* reader : {"Reader B", "reader a"}) {
                EXPECT_TRUE(d.IsOpen());
                if (!removed) {
                    d.Run([&] { frame.StopDetectingRemoveEvent(); });
                }
                VKRaiseEvent(VKEVENT_CARD_REMOVED, reader);
                EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
                d.Settle();
            }
            EXPECT_NE(d.IsOpen(), removed);
            if (!removed) {
                d.Escape();
            }
        }),
                  "2 ");
    }
}

TEST_F(ResetCard, StandsWithoutItsPanelAndThePanelWithoutItsWindow) {
    CResetCardDialog windowless(0, nullptr, nullptr, nullptr);
    HostWindow host;
    host.m_ok.SetFocus();
    windowless.SetChallenge("0123");
    windowless.CheckWindow(1);
    windowless.DisablePIN();
    windowless.ResetToolTip();
    EXPECT_TRUE(windowless.GetPin().IsEmpty());
    EXPECT_EQ(::GetFocus(), host.m_ok.m_hWnd) << "nobody's focus is taken";
    for (const int missing : {IDC_RESET_CARD_PANEL_PLACE, IDOK, 0}) {
        Incomplete<CResetCardDialogMain> frame(missing, 0, nullptr, 0, 0, 0, nullptr);
        const DialogDriver driver([&](Dialog& d) {
            EXPECT_EQ(frame.Panel() == nullptr, missing == 0);
            d.Run([&] { SendMessageA(d.Handle(), WM_COMMAND, missing == 0 ? IDOK : IDCANCEL, 0); });
        });
        EXPECT_EQ(frame.DoModal(), missing == 0 ? IDOK : IDCANCEL);
        EXPECT_TRUE(frame.GetPin().IsEmpty());
    }
    EXPECT_EQ(Frame(nullptr).DoModal(), -1) << "the module has gone with the last one";
}

}  // namespace
}  // namespace mvp::test
