// GetChangePINInfoFromUser with the library's own dialog, from the call to its result.
#include <sstream>
#include <tuple>
#include <utility>

#include "support/resource_counts.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"
#include "ui/policy/rule_panel.h"

namespace mvp::test {
namespace {

using ChangePin = LibraryTest;
constexpr PwdRuleArgs kNoRules = {0, 0, 0, 0, kNone, kNone, 0};

bool ShowsIcon(Dialog& d, int nControl, UINT nIcon) {
    return IconOf(d.Control(nControl)) == LoadResourceIcon(nIcon, 16);
}

TEST_F(ChangePin, OpensReadyToType) {
    const auto open = [](Dialog& d) {
        EXPECT_EQ(d.Title(), TextOf(IDS_CARD_PIN_TITLE));
        for (const auto& [control, text] :
             {std::pair<int, UINT>{IDC_CHANGE_PIN_PANEL_INSTRUCTION, IDS_CHANGE_PIN_INSTRUCTION},
              {IDC_CHANGE_PIN_PANEL_CURRENT_LABEL, IDS_CHANGE_PIN_CURRENT_LABEL},
              {IDC_CHANGE_PIN_PANEL_NEW_LABEL, IDS_CHANGE_PIN_NEW_LABEL},
              {IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL, IDS_CHANGE_PIN_CONFIRM_LABEL}}) {
            EXPECT_EQ(d.Text(control), TextOf(text));
        }
        EXPECT_EQ(d.FocusedId(), kCurrent);
        EXPECT_FALSE(d.IsEnabled(IDOK));
        EXPECT_TRUE(d.IsEnabled(IDCANCEL));
        EXPECT_NE(d.Send(kNew, EM_GETPASSWORDCHAR), 0);
        EXPECT_TRUE(ShowsIcon(d, IDC_POLICIES_MIN_ICON, IDI_RULE_VIOLATED));
        EXPECT_TRUE(ShowsIcon(d, IDC_POLICIES_CONFIRM_ICON, IDI_RULE_SATISFIED));
        d.Run([&] {
            EXPECT_EQ(SmallIconOf(d.Handle()), LoadResourceIcon(IDI_CARD_PIN, 16));
            EXPECT_EQ(GetForegroundWindow(), d.Handle());
        });
        d.Escape();
    };
    EXPECT_EQ(ChangePinRequest().Ask(open), kRefused);
    EXPECT_TRUE(m_log.Contains(0, "Loading icon..."));
}

TEST_F(ChangePin, HandsOutBothPins) {
    const std::tuple<const PwdRuleArgs*, std::string, std::string> cases[] = {
        {&kAllRules, "1234", "58381"},
        {&kNoRules, "\xE9\xFF", "\x80 x"},
        {&kNoRules, "1", ""},
        {nullptr, "1", "2"}};
    for (const auto& [rules, current, pin] : cases) {
        for (const bool byEnter : {true, false}) {
            const auto enter = [=, &oldPin = current, &newPin = pin](Dialog& d) {
                TypePins(d, oldPin, newPin, newPin);
                EXPECT_TRUE(d.IsEnabled(IDOK));
                byEnter ? d.Enter() : d.Click(IDOK);
            };
            EXPECT_EQ(ChangePinRequest{.pRules = rules}.Ask(enter),
                      std::string(current).append("/").append(pin));
        }
    }
}

TEST_F(ChangePin, OkFollowsEveryEdit) {
    const auto edit = [](Dialog& d) {
        TypePins(d, "", "5838", "5838");
        // Every rule is met; the current PIN alone is missing.
        EXPECT_TRUE(ShowsIcon(d, IDC_POLICIES_CONFIRM_ICON, IDI_RULE_SATISFIED));
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Enter();
        EXPECT_TRUE(d.IsOpen());
        d.Type(kCurrent, "583");
        EXPECT_TRUE(d.IsEnabled(IDOK));
        // Typing here judges the other edits' rule.
        d.Type(kCurrent, "8");
        EXPECT_TRUE(ShowsIcon(d, IDC_POLICIES_SAME_ICON, IDI_RULE_VIOLATED));
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Press(VK_BACK);
        EXPECT_TRUE(d.IsEnabled(IDOK));
        d.Type(kConfirm, " ");
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Enter();
        // The command itself, whoever sends it, and whatever he has done to the button.
        for (const BOOL enable : {FALSE, TRUE}) {
            d.Run([&] {
                EnableWindow(d.Control(IDOK), enable);
                SendCommand(d, IDOK);
            });
            EXPECT_TRUE(d.IsOpen());
            EXPECT_FALSE(d.IsEnabled(IDOK));
        }
        d.Send(kConfirm, EM_SETSEL, 0, -1);
        d.Paste(kConfirm, "5838");
        EXPECT_TRUE(d.IsEnabled(IDOK));
        d.Type(kNew, "1");
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Click(IDCANCEL);
    };
    EXPECT_EQ(ChangePinRequest().Ask(edit), kRefused);
}

TEST_F(ChangePin, OnlyWhatOkHasJudgedIsHandedOut) {
    const auto changeAfterOk = [](Dialog& d) {
        TypePins(d, "1234", "5838", "5838");
        d.Run([&] {
            const HWND newHandle = d.Control(kNew);
            SendCommand(d, IDOK);
            SetWindowTextA(newHandle, "1");
            SendCommand(d, IDOK);
        });
    };
    EXPECT_EQ(ChangePinRequest().Ask(changeAfterOk), "1234/5838");
    // A panel that was told of its end has no rules any more.
    const auto forge = [](Dialog& d) {
        TypePins(d, "1234", "1", "2");
        d.Run([&] {
            SendMessageA(GetParent(d.Control(kNew)), WM_DESTROY, 0, 0);
            EnableWindow(d.Control(IDOK), TRUE);
            SendCommand(d, IDOK);
        });
    };
    EXPECT_EQ(ChangePinRequest().Ask(forge), kRefused);
}

TEST_F(ChangePin, EveryOperationTellsEntryAndExit) {
    ChangePinRequest().Ask([&](Dialog& d) {
        TypePins(d, "1234", "5838", "5838");
        const std::string before = LogShape();
        d.Focus(kCurrent);
        // A focus change alone leads to a check, and each handler goes through the same one.
        EXPECT_TRUE(
            LogShape()
                .substr(before.size())
                .starts_with(
                    "CChangePINDialog::OnEnSetfocusEditPin{CChangePINDialog::OnEnChangeEditPin{"
                    "CChangePINDialog::OnEnChangeEditPinNew{CChangePINDialog::"
                    "VerifyAndUpdateAllPolicies{"
                    "0 m_pPoliciesDlg: "))
            << m_log.Dump();
        d.Enter();
    });
    const std::string shape = LogShape();
    EXPECT_TRUE(shape.starts_with("GetChangePINInfoFromUser{")) << shape;
    EXPECT_TRUE(shape.ends_with("} ")) << shape;
    EXPECT_EQ(m_log.Texts(8).size(), m_log.Texts(16).size()) << m_log.Dump();
    std::istringstream names(
        "CChangePINDialogMain::CChangePINDialogMain CChangePINDialogMain::OnInitDialog "
        "CChangePINDialogMain::ResizeDlg CChangePINDialogMain::OnOK "
        "CChangePINDialogMain::OnDestroy "
        "CChangePINDialogMain::~CChangePINDialogMain CChangePINDialog::CChangePINDialog "
        "CChangePINDialog::LocCreate CChangePINDialog::OnInitDialog CChangePINDialog::ReadAndCheck "
        "CChangePINDialog::OnEnChangeEditPinConfirm CChangePINDialog::OnDestroy "
        "CChangePINDialog::EraseAllPinBuffers CChangePINDialog::~CChangePINDialog "
        "VKPoliciesDlg::VKPoliciesDlg VKPoliciesDlg::LocCreate VKPoliciesDlg::OnInitDialog "
        "VKPoliciesDlg::PutPoliciesInBox VKPoliciesDlg::VerifyAndUpdatePolicies");
    for (std::string name; names >> name;) {
        EXPECT_TRUE(m_log.Contains(8, name) && m_log.Contains(16, name)) << name;
    }
}

TEST_F(ChangePin, KeysGoFromControlToControl) {
    const auto walk = [](Dialog& d) {
        TypePins(d, "1234", "5838", "5838");
        for (const auto& [vk, id] :
             {std::pair{WORD{'N'}, kNew}, {'F', kConfirm}, {'C', kCurrent}}) {
            d.RealKey(vk, {VK_MENU});
            d.WaitUntil("the focus on " + std::to_string(id),
                        [&, id = id] { return d.FocusedId() == id; });
        }
        std::vector<int> order;
        for (int i = 0; i < 6; ++i) {
            order.push_back(d.FocusedId());
            d.Tab();
        }
        EXPECT_EQ(order, (std::vector<int>{kCurrent, kNew, kConfirm, IDOK, IDCANCEL, kCurrent}));
        d.Type(kConfirm, "x");
        d.Tab();
        EXPECT_EQ(d.FocusedId(), IDCANCEL) << "OK is disabled";
        d.Enter();
    };
    EXPECT_EQ(ChangePinRequest().Ask(walk), kRefused);
}

TEST_F(ChangePin, CurrentPinNeedNotBeAskedNorTaken) {
    for (const bool taken : {true, false}) {
        ChangePinRequest request{.bAskCurrentPin = false};
        if (!taken) {
            request.oldPin.pszText = nullptr;
            request.oldPin.pcbText = nullptr;
        }
        const auto enter = [](Dialog& d) {
            EXPECT_FALSE(d.IsVisible(kCurrent));
            EXPECT_FALSE(d.IsVisible(IDC_CHANGE_PIN_PANEL_CURRENT_LABEL));
            EXPECT_EQ(d.Text(IDC_CHANGE_PIN_PANEL_INSTRUCTION),
                      TextOf(IDS_CHANGE_PIN_INSTRUCTION_NEW_ONLY));
            EXPECT_EQ(d.FocusedId(), kNew);
            d.Type(kNew, "5838");
            d.Type(kConfirm, "5838");
            EXPECT_TRUE(d.IsEnabled(IDOK));
            for (int i = 0; i < 3; ++i) {
                d.Tab();
            }
            EXPECT_EQ(d.FocusedId(), kNew);
            d.Enter();
        };
        EXPECT_EQ(request.Ask(enter), taken ? "/5838" : "(none)/5838");
    }
}

TEST_F(ChangePin, EveryWayToCancelWritesNothing) {
    const Script ways[] = {
        Leave,
        [](Dialog& d) { d.Click(IDCANCEL); },
        [](Dialog& d) { PostMessageA(d.Handle(), WM_SYSCOMMAND, SC_CLOSE, 0); },
        [](Dialog& d) { d.RealKey(VK_F4, {VK_MENU}); },
        [](Dialog&) { RemoveCard("READER a"); },
    };
    for (const Script& leave : ways) {
        const auto enterAndLeave = [&](Dialog& d) {
            TypePins(d, "1234", "5838", "5838");
            leave(d);
        };
        EXPECT_EQ(ChangePinRequest().Ask(enterAndLeave), kRefused);
    }
}

TEST_F(ChangePin, MandatoryChangeEndsByOkOrRemovalOnly) {
    PwdRuleArgs mandatory = kAllRules;
    mandatory.bCancelDisabled = 1;
    ChangePinRequest request{.pRules = &mandatory};
    const auto attemptToLeave = [](Dialog& d) {
        EXPECT_FALSE(d.IsEnabled(IDCANCEL));
        TypePins(d, "1234", "5838", "583");
        d.Escape();
        d.Cancel();
        PostMessageA(d.Handle(), WM_SYSCOMMAND, SC_CLOSE, 0);
        d.Settle();
        d.RealKey(VK_F4, {VK_MENU});
        // The system hands key strokes over in order: when this one has arrived so has that.
        d.RealType(kConfirm, "7");
        // Enabled from outside, it still cancels nothing.
        d.Run([&] { EnableWindow(d.Control(IDCANCEL), TRUE); });
        d.Click(IDCANCEL);
        RemoveCard("Reader B");
        d.Settle();
        EXPECT_TRUE(d.IsOpen());
        RemoveCard();
    };
    EXPECT_EQ(request.Ask(attemptToLeave), kRefused);
    const auto enter = [](Dialog& d) {
        TypePins(d, "1234", "5838", "5838");
        d.Enter();
    };
    EXPECT_EQ(request.Ask(enter), "1234/5838");
}

TEST_F(ChangePin, NullOutArgumentsAreRefusedBeforeAnythingShows) {
    for (const std::string argument : {"pszNewPin", "pcbNewPin", "pszOldPin", "pcbOldPin"}) {
        m_log.Clear();
        // The new PIN's are needed whatever is asked for.
        ChangePinRequest request{.bShowLastTry = 1, .bAskCurrentPin = argument != "pszNewPin"};
        ChangePinRequest::Output& output = argument[3] == 'N' ? request.newPin : request.oldPin;
        if (argument[1] == 's') {
            output.pszText = nullptr;
        } else {
            output.pcbText = nullptr;
        }
        EXPECT_EQ(request.Ask(), kRefused);
        EXPECT_TRUE(m_boxes.Calls().empty());
        EXPECT_EQ(LogShape(), "GetChangePINInfoFromUser{1 GetChangePINInfoFromUser: " + argument +
                                  " == NULL; } ");
    }
}

TEST_F(ChangePin, LastTryComesFirst) {
    ChangePinRequest request{.bShowLastTry = 7};
    m_boxes.SetAnswer(0);
    EXPECT_EQ(request.Ask(), kRefused);
    ASSERT_EQ(m_boxes.Calls().size(), 1U);
    EXPECT_EQ(m_boxes.Calls()[0].strReader, "Reader A");
    m_boxes.SetAnswer(1);
    EXPECT_EQ(request.Ask(Leave), kRefused);
}

TEST_F(ChangePin, OpeningAndClosingKeepsNothing) {
    ExpectRoundsKeepNothing(2, 40, [this](int nRound) {
        ChangePinRequest{.pRules = nullptr}.Ask([nRound](Dialog& d) {
            TypePins(d, "1", "2", "2");
            nRound % 2 == 0 ? d.Enter() : d.Escape();
        });
        m_log.Clear();
    });
}

// For every subset of the rules, in longer texts and mirrored, too: panel, buttons and frame end
// where the rules end. What stands above the rules is where the templates have it.
TEST(ChangePinLayout, EndsWhereTheRulesEnd) {
    for (const char* language : {"en", "fr", "qps-ploc", "qps-plocm"}) {
        const AttachedLibrary library(language);
        const unsigned step = language[0] == 'q' ? 7 : 1;  // some of them, with none and all
        for (unsigned subset = 0; subset < kRuleSubsets; subset += step) {
            SCOPED_TRACE(language + std::to_string(subset));
            const PwdRuleArgs rules = RulesOfSubset(subset);
            ChangePinRequest request{.pRules = &rules, .bAskCurrentPin = subset % 3 != 0};
            request.Ask([&](Dialog& d) {
                const auto rectOf = [&d](HWND hWnd) { return RectIn(d.Handle(), hWnd); };
                const CRect panel = rectOf(GetParent(d.Control(kNew)));
                const CRect place = rectOf(d.Control(IDC_CHANGE_PIN_MAIN_PANEL_PLACE));
                const CRect ok = rectOf(d.Control(IDOK));
                const CRect cancel = rectOf(d.Control(IDCANCEL));
                CRect client;
                GetClientRect(d.Handle(), &client);
                const CRect lines = rectOf(GetParent(d.Control(IDC_POLICIES_BOX)));
                EXPECT_EQ(lines.TopLeft(),
                          rectOf(d.Control(IDC_CHANGE_PIN_PANEL_POLICIES_PLACE)).TopLeft());
                EXPECT_EQ(panel.bottom, lines.bottom);
                EXPECT_EQ(panel.TopLeft(), place.TopLeft());
                // As far below the panel, and above the frame, as the template has them: 7 units.
                RECT gap = {0, 0, 0, 7};
                d.Run([&] { MapDialogRect(d.Handle(), &gap); });
                EXPECT_NEAR(ok.top - panel.bottom, gap.bottom, 1);
                EXPECT_EQ(ok.top, cancel.top);
                EXPECT_LT(ok.right, cancel.left);
                EXPECT_NEAR(client.bottom - ok.bottom, gap.bottom, 1);
                EXPECT_NEAR(client.right - cancel.right, place.left, 1);
                d.Escape();
            });
        }
    }
}

}  // namespace
}  // namespace mvp::test
