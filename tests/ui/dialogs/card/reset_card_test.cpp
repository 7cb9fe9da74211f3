// CResetCardDialogMain and its panel: the two routes, with a challenge and without.

#include "mvpingui/reset_card_dialog.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr int kPin = IDC_RESET_CARD_PIN_EDIT;
constexpr int kCode = IDC_RESET_CARD_CODE_EDIT;
constexpr int kResponse = IDC_RESET_CARD_RESPONSE_EDIT;
constexpr int kPinRoute = IDC_RESET_CARD_PIN_ROUTE;
constexpr int kCodeRoute = IDC_RESET_CARD_CODE_ROUTE;
using ResetCard = LibraryTest;
using Prepare = std::function<void(CResetCardDialog&)>;

class Frame : public CResetCardDialogMain {
public:
    explicit Frame(int nMode = 0)
        : CResetCardDialogMain(nMode, nullptr, 1 - nMode, 1 - nMode, 1 - nMode, "Reader A") {}
    // What DoModal and GetPin return.
    std::string Run(const Script& script, const Prepare& prepare = {}) {
        m_prepare = prepare;
        const INT_PTR result = Open(*this, {script});
        return std::to_string(result) + " " + GetPin().GetString();
    }

protected:
    BOOL OnInitDialog() override {
        const BOOL result = CResetCardDialogMain::OnInitDialog();
        m_prepare ? m_prepare(*Panel()) : void();
        return result;
    }

private:
    Prepare m_prepare;
};

void ExpectRoute(Dialog& d, bool bPin, bool bChallenge) {
    const int field = bChallenge ? kResponse : kCode;
    EXPECT_EQ(d.FocusedId(), bPin ? kPin : field);
    EXPECT_TRUE(d.IsChecked(kPinRoute) == bPin && d.IsChecked(kCodeRoute) != bPin);
    EXPECT_TRUE(d.IsEnabled(kPin) == bPin && d.IsEnabled(field) != bPin);
    EXPECT_NE(d.IsVisible(kCode), bChallenge);
    for (const int id : {IDC_RESET_CARD_CHALLENGE_LABEL, IDC_RESET_CARD_RESPONSE_LABEL,
                         IDC_RESET_CARD_RESPONSE_NOTE, IDC_RESET_CARD_CHALLENGE_NOTE,
                         IDC_RESET_CARD_CHALLENGE, kResponse}) {
        EXPECT_EQ(d.IsVisible(id), bChallenge) << id;
        EXPECT_TRUE(!bChallenge || d.IsEnabled(id) != bPin) << id;
    }
}

TEST_F(ResetCard, GoesBothRoutesWithAChallengeAndWithout) {
    using Case = std::pair<const char*, std::string>;
    Frame frame;
    for (const auto& [challenge, shown] :
         {Case{"0123456789ABCDEF", "0123-4567-89AB-CDEF"}, Case{"0123456", "0123-456--"},
          Case{"0123456789ABCDEFXY", "0123-4567-89AB-CDEF"}, Case{"", ""}, Case{nullptr, ""}}) {
        const bool hasChallenge = !shown.empty();
        const int field = hasChallenge ? kResponse : kCode;
        for (const bool byPin : {true, false}) {
            const auto enter = [&, &text = shown](Dialog& d) {
                EXPECT_TRUE(!hasChallenge || d.Text(IDC_RESET_CARD_CHALLENGE) == text);
                ExpectRoute(d, true, hasChallenge);
                EXPECT_FALSE(d.IsEnabled(IDOK));
                d.Run([&] { SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0); });
                d.Type(kPin, "1");
                EXPECT_TRUE(d.IsEnabled(IDOK));
                d.Click(kCodeRoute);
                ExpectRoute(d, false, hasChallenge);
                EXPECT_FALSE(d.IsEnabled(IDOK));
                // By the keys, whatever fields lie between.
                d.Focus(kCodeRoute);
                d.Press(VK_UP);
                ExpectRoute(d, true, hasChallenge);
                EXPECT_TRUE(d.IsEnabled(IDOK));
                if (!byPin) {
                    d.Focus(kPinRoute);
                    d.Press(VK_DOWN);
                    d.Type(field, "2");
                    d.Press(VK_BACK);
                    EXPECT_FALSE(d.IsEnabled(IDOK));
                    d.Type(field, "12-3 ");
                }
                d.Run([&] { EXPECT_STREQ(frame.GetPin(), byPin ? "1" : "12-3 "); });
                d.Enter();
            };
            const auto give = [psz = challenge](auto& panel) { panel.SetChallenge(psz); };
            EXPECT_EQ(frame.Run(enter, give), byPin ? "1 1" : "1 12-3 ");
        }
    }
    EXPECT_EQ(std::ranges::count(m_log.Texts(16), "CResetCardDialog::~CResetCardDialog"), 9);
    EXPECT_EQ(m_log.Texts(8).size(), m_log.Texts(16).size());
    EXPECT_TRUE(m_log.Contains(16, "CChangePINDialog::OnInitDialog"));
    EXPECT_TRUE(m_log.Contains(0, "Loading icon..."));
    const std::string resize = "CResetCardDialogMain::ResizeDlg{";
    EXPECT_NE(LogShape().find(resize + resize + "} " + resize + "} } "), std::string::npos);
}

TEST_F(ResetCard, CheckWindowClearsWhatIsNotActive) {
    Frame frame;
    const auto edits = {kPin, kResponse, kCode};
    const auto check = [&](Dialog& d, int nActive, bool bClear) {
        frame.Panel()->SetChallenge(nActive == kCode ? "" : "0123");
        SendMessageA(d.Control(nActive == kPin ? kPinRoute : kCodeRoute), BM_CLICK, 0, 0);
        for (const int id : edits) {
            SetWindowTextA(d.Control(id), "1");
        }
        frame.Panel()->CheckWindow(bClear ? 1 : 0);
        for (const int id : edits) {
            EXPECT_EQ(d.Text(id), id == nActive && !bClear ? "1" : "");
        }
        EXPECT_TRUE(d.FocusedId() == nActive && d.IsEnabled(IDOK) != bClear) << nActive;
    };
    const auto checkAll = [&](Dialog& d) {
        for (const int active : edits) {
            d.Run([&] { check(d, active, false), check(d, active, true); });
        }
        d.Escape();
    };
    EXPECT_EQ(frame.Run(checkAll), "2 ");
}

TEST_F(ResetCard, HoldsTheUserOnTheRouteOfTheCodeUntilTheNextChallenge) {
    Frame frame;
    const auto hold = [&](CResetCardDialog& panel) {
        panel.SetChallenge("0123");
        SetWindowTextA(*panel.GetDlgItem(kPin), "1234");
        panel.DisablePIN();
    };
    const auto enter = [&](Dialog& d) {
        EXPECT_EQ(d.Text(kPin), "");
        ExpectRoute(d, false, true);
        EXPECT_FALSE(d.IsEnabled(kPinRoute) || d.IsEnabled(kCodeRoute));
        d.Run([&] { frame.Panel()->SetChallenge(""); });
        ExpectRoute(d, true, false);
        EXPECT_TRUE(d.IsEnabled(kPinRoute) && d.IsEnabled(kCodeRoute));
        d.Run([&] { frame.Panel()->DisablePIN(); });
        ExpectRoute(d, false, false);
        d.Type(kCode, "A");
        d.Click(IDOK);
    };
    EXPECT_EQ(frame.Run(enter, hold), "1 A");
}

TEST_F(ResetCard, GivesNothingUnlessConfirmedAndEndsWithItsCard) {
    for (const int mode : {0, 1}) {
        Frame frame(mode);
        const auto pull = [&](Dialog& d) {
            EXPECT_EQ(d.Title(), TextOf(IDS_CARD_PIN_TITLE));
            d.Run([&] {
                EXPECT_EQ(SmallIconOf(d.Handle()), LoadResourceIcon(IDI_CARD_PIN, 16));
                // The colours are those of the mode, whatever the other numbers.
                const WindowDc dc(d.Handle());
                SetBkMode(dc.get(), OPAQUE);
                SendMessageA(*frame.Panel(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc.get()),
                             reinterpret_cast<LPARAM>(d.Control(kPinRoute)));
                EXPECT_EQ(GetBkMode(dc.get()), mode == 0 ? OPAQUE : TRANSPARENT);
            });
            EXPECT_EQ(RectIn(d.Handle(), GetParent(d.Control(kPin))),
                      RectIn(d.Handle(), d.Control(IDC_RESET_CARD_PANEL_PLACE)));
            EXPECT_EQ(d.FocusedId(), kPin) << "also before there is a challenge";
            d.Type(kPin, "1234");
            if (mode == 0) {
                RemoveCard("reader a");
                return;
            }
            d.Run([&] {
                frame.StopDetectingRemoveEvent();
                SendMessageA(d.Handle(), RegisterWindowMessageA("VKCardRemovedEvent"), 0, 0);
            });
            EXPECT_TRUE(d.IsOpen()) << "the message was on its way";
            d.Cancel();
        };
        EXPECT_EQ(frame.Run(pull), "2 ");
    }
    EXPECT_NE(
        LogShape().find("OnDestroy{CResetCardDialogMain::StopDetectingRemoveEvent{VKDelegate"),
        std::string::npos);
}

// By all of the panel, which stands at the top without its place.
void ExpectGrown(Dialog& d) {
    CRect panel = RectIn(d.Handle(), GetParent(d.Control(kPin)));
    EXPECT_EQ(panel.TopLeft(), CPoint(0, 0));
    RECT buttons = {123, 151, 185, 172};  // OK's left, both tops, Cancel's left, the height
    d.Run([&] { MapDialogRect(d.Handle(), &buttons); });
    OffsetRect(&buttons, 0, panel.Height());
    EXPECT_EQ(RectIn(d.Handle(), d.Control(IDOK)).TopLeft(), CPoint(buttons.left, buttons.top));
    EXPECT_EQ(RectIn(d.Handle(), d.Control(IDCANCEL)).TopLeft(),
              CPoint(buttons.right, buttons.top));
    GetClientRect(d.Handle(), &panel);
    EXPECT_EQ(panel.bottom, buttons.bottom);
}

TEST_F(ResetCard, StandsWithoutItsPanelAndThePanelWithoutItsWindow) {
    HostWindow host;
    host.m_ok.SetFocus();
    CResetCardDialog windowless(0, nullptr, nullptr, nullptr);
    windowless.SetChallenge("0123");
    windowless.DisablePIN();
    windowless.ResetToolTip();
    EXPECT_TRUE(windowless.GetPin().IsEmpty());
    EXPECT_EQ(::GetFocus(), host.m_ok.m_hWnd) << "nobody's focus is taken";
    CResetCardDialog panel(0, nullptr, &host.m_ok, &host);
    EXPECT_NE(panel.LocCreate(&host), 0);
    EXPECT_EQ(::GetFocus(), ::GetDlgItem(panel.m_hWnd, kCode));
    for (const int missing : {IDC_RESET_CARD_PANEL_PLACE, IDOK, 0}) {
        Incomplete<CResetCardDialogMain> frame(missing, 0, nullptr, 0, 0, 0, nullptr);
        const DialogDriver driver([&](Dialog& d) {
            EXPECT_EQ(frame.Panel() == nullptr, missing == 0);
            if (missing == IDC_RESET_CARD_PANEL_PLACE) {
                ExpectGrown(d);
            }
            d.Run([&] { SendMessageA(d.Handle(), WM_COMMAND, missing == 0 ? IDOK : IDCANCEL, 0); });
        });
        EXPECT_EQ(frame.DoModal(), missing == 0 ? IDOK : IDCANCEL);
        EXPECT_TRUE(frame.GetPin().IsEmpty());
    }
    EXPECT_EQ(Frame().DoModal(), -1) << "the module has gone with the last one";
}

}  // namespace
}  // namespace mvp::test
