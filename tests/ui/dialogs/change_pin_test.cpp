// GetChangePINInfoFromUser with the library's own dialog, from the call to its result.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/mvpingui.h"
#include "resources/resource_numbers.h"
#include "services/resource_module.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"
#include "support/message_box_recorder.h"
#include "support/resource_counts.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/change_pin_request.h"

namespace mvp::test {
namespace {

constexpr int kCurrent = IDC_CHANGE_PIN_PANEL_CURRENT_EDIT;
constexpr int kNew = IDC_CHANGE_PIN_PANEL_NEW_EDIT;
constexpr int kConfirm = IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT;
constexpr std::uint32_t kNone = MVP_NO_PIN_LENGTH_RULE;
constexpr PwdRuleArgs kAllRules = {0xDEAD, 1, 1, 1, 4, 8, 0};
constexpr PwdRuleArgs kMandatory = {0, 1, 1, 1, 4, 8, 1};

class ChangePin : public testing::Test {
protected:
    AttachedLibrary m_library;
    LogRecorder m_log;
    MessageBoxRecorder m_boxes;
};

std::string StringOf(UINT nId) {
    return {ResourceString(nId)};
}

void TypeAll(Dialog& d, const char* pszCurrent, const char* pszNew, const char* pszConfirm) {
    d.Type(kCurrent, pszCurrent);
    d.Type(kNew, pszNew);
    d.Type(kConfirm, pszConfirm);
}

void RemoveCard(const char* pszReader) {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, pszReader), VKEVTSUB_OK);
}

HICON IconOf(Dialog& d, int nId) {
    return reinterpret_cast<HICON>(d.Send(nId, STM_GETICON));
}

// The middle of the caption, right of its text.
COLORREF CaptionColor(HWND hWnd) {
    RECT rect;
    GetWindowRect(hWnd, &rect);
    HDC dc = GetWindowDC(hWnd);
    const COLORREF color =
        GetPixel(dc, (rect.right - rect.left) / 2, GetSystemMetrics(SM_CYCAPTION) / 2);
    ReleaseDC(hWnd, dc);
    return color;
}

TEST_F(ChangePin, OpensReadyToType) {
    ChangePinRequest request{.rules = kAllRules};
    DialogDriver driver([](Dialog& d) {
        EXPECT_EQ(d.Title(), StringOf(IDS_CARD_PIN_TITLE));
        EXPECT_EQ(d.Text(IDC_CHANGE_PIN_PANEL_INSTRUCTION), StringOf(IDS_CHANGE_PIN_INSTRUCTION));
        EXPECT_EQ(d.Text(IDC_CHANGE_PIN_PANEL_CURRENT_LABEL),
                  StringOf(IDS_CHANGE_PIN_CURRENT_LABEL));
        EXPECT_EQ(d.Text(IDC_CHANGE_PIN_PANEL_NEW_LABEL), StringOf(IDS_CHANGE_PIN_NEW_LABEL));
        EXPECT_EQ(d.Text(IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL),
                  StringOf(IDS_CHANGE_PIN_CONFIRM_LABEL));
        EXPECT_EQ(d.FocusedId(), kCurrent);
        EXPECT_FALSE(d.IsEnabled(IDOK));
        EXPECT_TRUE(d.IsEnabled(IDCANCEL));
        EXPECT_EQ(d.Send(kNew, EM_GETPASSWORDCHAR) != 0, true);
        // The first check has been made.
        EXPECT_EQ(IconOf(d, IDC_POLICIES_MIN_ICON), LoadResourceIcon(IDI_RULE_VIOLATED, 16));
        EXPECT_EQ(IconOf(d, IDC_POLICIES_CONFIRM_ICON), LoadResourceIcon(IDI_RULE_SATISFIED, 16));
        d.Run([&] {
            EXPECT_EQ(SendMessageA(d.Handle(), WM_GETICON, ICON_SMALL, 0),
                      reinterpret_cast<LRESULT>(LoadResourceIcon(IDI_CARD_PIN, 16)));
            EXPECT_EQ(GetForegroundWindow(), d.Handle());
            EXPECT_EQ(CaptionColor(d.Handle()), GetSysColor(COLOR_ACTIVECAPTION));
        });
        d.Escape();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(request.IsUntouched());
    EXPECT_TRUE(m_log.Contains(0, "Loading icon..."));
}

TEST_F(ChangePin, HandsOutBothPins) {
    struct Case {
        PwdRuleArgs rules;
        std::string strCurrent;
        std::string strNew;
    };
    const Case cases[] = {
        {kAllRules, "1234", "58381"},
        {{0, 0, 0, 0, kNone, kNone, 0}, "\xE9\xFF", "\x80 x"},
        {{0, 0, 0, 0, kNone, kNone, 0}, "1", ""},
    };
    for (const Case& c : cases) {
        for (const bool bByEnter : {true, false}) {
            ChangePinRequest request{.rules = c.rules};
            DialogDriver driver([&](Dialog& d) {
                TypeAll(d, c.strCurrent.c_str(), c.strNew.c_str(), c.strNew.c_str());
                EXPECT_TRUE(d.IsEnabled(IDOK));
                bByEnter ? d.Enter() : d.Click(IDOK);
            });
            EXPECT_EQ(request.Call(), MVPINGUI_OK);
            driver.Join();
            EXPECT_EQ(request.OldPin(), c.strCurrent);
            EXPECT_EQ(request.NewPin(), c.strNew);
        }
    }
}

TEST_F(ChangePin, NullRulesAreNone) {
    ChangePinRequest request{.bNullRules = true};
    DialogDriver driver([](Dialog& d) {
        EXPECT_FALSE(d.IsVisible(IDC_POLICIES_MIN_TEXT));
        TypeAll(d, "1", "2", "2");
        d.Enter();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_OK);
    EXPECT_EQ(request.NewPin(), "2");
}

TEST_F(ChangePin, OkFollowsEveryEdit) {
    ChangePinRequest request{.rules = kAllRules};
    DialogDriver driver([](Dialog& d) {
        TypeAll(d, "", "5838", "5838");
        // Every rule is met; the current PIN alone is missing.
        EXPECT_EQ(IconOf(d, IDC_POLICIES_CONFIRM_ICON), LoadResourceIcon(IDI_RULE_SATISFIED, 16));
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Enter();
        EXPECT_TRUE(d.IsOpen());
        d.Type(kCurrent, "583");
        EXPECT_TRUE(d.IsEnabled(IDOK));
        // Typing here judges the other edits' rule.
        d.Type(kCurrent, "8");
        EXPECT_EQ(IconOf(d, IDC_POLICIES_SAME_ICON), LoadResourceIcon(IDI_RULE_VIOLATED, 16));
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Press(VK_BACK);
        EXPECT_TRUE(d.IsEnabled(IDOK));
        d.Type(kConfirm, " ");
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Enter();
        // The command itself, whoever sends it, and whatever he has done to the button.
        for (const BOOL bEnable : {FALSE, TRUE}) {
            d.Run([&] {
                EnableWindow(d.Control(IDOK), bEnable);
                SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
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
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(request.IsUntouched());
}

TEST_F(ChangePin, OnlyWhatOkHasJudgedIsHandedOut) {
    const auto press = [](Dialog& d) { SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0); };
    ChangePinRequest request{.rules = kAllRules};
    {
        DialogDriver driver([&](Dialog& d) {
            TypeAll(d, "1234", "5838", "5838");
            // In one go, so that the modal loop has no chance to end in between.
            d.Run([&] {
                const HWND hNew = d.Control(kNew);
                press(d);
                SetWindowTextA(hNew, "1");
                press(d);
            });
        });
        EXPECT_EQ(request.Call(), MVPINGUI_OK);
        EXPECT_EQ(request.NewPin(), "5838");
    }
    // A panel that was told of its end has no rules any more.
    ChangePinRequest forged{.rules = kAllRules};
    DialogDriver driver([&](Dialog& d) {
        TypeAll(d, "1234", "1", "2");
        d.Run([&] {
            SendMessageA(GetParent(d.Control(kNew)), WM_DESTROY, 0, 0);
            EnableWindow(d.Control(IDOK), TRUE);
            press(d);
        });
    });
    EXPECT_EQ(forged.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(forged.IsUntouched());
}

// A focus change alone leads to a check, and each handler goes through the same one.
TEST_F(ChangePin, HandlersAreLogged) {
    ChangePinRequest request{.rules = kAllRules};
    DialogDriver driver([&](Dialog& d) {
        d.Focus(kConfirm);
        m_log.Clear();
        d.Focus(kCurrent);
        std::vector<std::string> entered;
        for (const std::string& text : m_log.Texts(8))
            if (text.starts_with("CChangePINDialog::"))
                entered.push_back(text.substr(18));
        EXPECT_EQ(entered,
                  (std::vector<std::string>{"OnEnSetfocusEditPin", "OnEnChangeEditPin",
                                            "OnEnChangeEditPinNew", "VerifyAndUpdateAllPolicies"}));
        EXPECT_TRUE(m_log.ContainsPart("m_pPoliciesDlg: "));
        m_log.Clear();
        d.Type(kConfirm, "7");
        EXPECT_TRUE(m_log.Contains(16, "CChangePINDialog::OnEnChangeEditPinConfirm"));
        EXPECT_TRUE(m_log.Contains(16, "VKPoliciesDlg::VerifyAndUpdatePolicies"));
        d.Cancel();
    });
    request.Call();
}

TEST_F(ChangePin, EveryOperationTellsEntryAndExit) {
    ChangePinRequest request{.rules = kAllRules};
    {
        DialogDriver driver([](Dialog& d) {
            TypeAll(d, "1234", "5838", "5838");
            d.Enter();
        });
        ASSERT_EQ(request.Call(), MVPINGUI_OK);
    }
    EXPECT_EQ(m_log.Texts(8).front(), "GetChangePINInfoFromUser");
    EXPECT_EQ(m_log.Texts(16).back(), "GetChangePINInfoFromUser");
    EXPECT_EQ(m_log.Texts(8).size(), m_log.Texts(16).size()) << m_log.Dump();
    const std::string main = "CChangePINDialogMain::";
    const std::string panel = "CChangePINDialog::";
    const std::string policies = "VKPoliciesDlg::";
    for (const std::string& name :
         {main + "CChangePINDialogMain", main + "OnInitDialog", main + "ResizeDlg", main + "OnOK",
          main + "OnDestroy", main + "~CChangePINDialogMain", panel + "CChangePINDialog",
          panel + "LocCreate", panel + "OnInitDialog", panel + "ReadAndCheck", panel + "OnDestroy",
          panel + "EraseAllPinBuffers", panel + "~CChangePINDialog", policies + "VKPoliciesDlg",
          policies + "LocCreate", policies + "OnInitDialog", policies + "PutPoliciesInBox",
          std::string("VKDelegateSubscriberCardRemoved Constructor"),
          std::string("VKDelegateSubscriberCardRemoved Destructor")})
        EXPECT_TRUE(m_log.Contains(8, name) && m_log.Contains(16, name)) << name;
    m_log.Clear();
    request.bNullNewPin = true;
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_EQ(m_log.Texts(16), std::vector<std::string>{"GetChangePINInfoFromUser"});
}

TEST_F(ChangePin, TabGoesFromTheEditsToTheButtons) {
    ChangePinRequest request{.rules = kAllRules};
    DialogDriver driver([](Dialog& d) {
        TypeAll(d, "1234", "5838", "5838");
        d.Focus(kCurrent);
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
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
}

TEST_F(ChangePin, MnemonicsReachTheEdits) {
    ChangePinRequest request{.rules = kAllRules};
    DialogDriver driver([](Dialog& d) {
        const auto goesTo = [&d](WORD vk, int nId) {
            d.RealKey(vk, {VK_MENU});
            d.WaitUntil("the focus on " + std::to_string(nId),
                        [&] { return d.FocusedId() == nId; });
        };
        goesTo('N', kNew);
        goesTo('F', kConfirm);
        goesTo('C', kCurrent);
        d.Cancel();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
}

TEST_F(ChangePin, CurrentPinNeedNotBeAskedNorTaken) {
    for (const bool taken : {true, false}) {
        ChangePinRequest request{.rules = kAllRules,
                                 .bAskCurrentPin = false,
                                 .bNullOldPin = !taken,
                                 .bNullOldLength = !taken};
        DialogDriver driver([](Dialog& d) {
            EXPECT_FALSE(d.IsVisible(kCurrent));
            EXPECT_FALSE(d.IsVisible(IDC_CHANGE_PIN_PANEL_CURRENT_LABEL));
            EXPECT_EQ(d.Text(IDC_CHANGE_PIN_PANEL_INSTRUCTION),
                      StringOf(IDS_CHANGE_PIN_INSTRUCTION_NEW_ONLY));
            EXPECT_EQ(d.FocusedId(), kNew);
            d.Type(kNew, "5838");
            d.Type(kConfirm, "5838");
            EXPECT_TRUE(d.IsEnabled(IDOK));
            d.Tab();
            d.Tab();
            d.Tab();
            EXPECT_EQ(d.FocusedId(), kNew);
            d.Enter();
        });
        EXPECT_EQ(request.Call(), MVPINGUI_OK);
        EXPECT_EQ(request.OldPin(), taken ? "" : ChangePinRequest().OldPin());
        EXPECT_EQ(request.NewPin(), "5838");
    }
}

TEST_F(ChangePin, EveryWayToCancelWritesNothing) {
    const Script ways[] = {
        [](Dialog& d) { d.Escape(); },
        [](Dialog& d) { d.Click(IDCANCEL); },
        [](Dialog& d) { PostMessageA(d.Handle(), WM_SYSCOMMAND, SC_CLOSE, 0); },
        [](Dialog& d) { d.RealKey(VK_F4, {VK_MENU}); },
        [](Dialog&) { RemoveCard("READER a"); },
    };
    for (const Script& leave : ways) {
        ChangePinRequest request{.rules = kAllRules};
        DialogDriver driver([&](Dialog& d) {
            TypeAll(d, "1234", "5838", "5838");
            leave(d);
        });
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        driver.Join();
        EXPECT_TRUE(request.IsUntouched());
    }
}

TEST_F(ChangePin, MandatoryChangeEndsByOkOrRemovalOnly) {
    ChangePinRequest request{.rules = kMandatory};
    {
        DialogDriver driver([](Dialog& d) {
            EXPECT_FALSE(d.IsEnabled(IDCANCEL));
            TypeAll(d, "1234", "5838", "583");
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
            EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
            d.Settle();
            EXPECT_TRUE(d.IsOpen());
            RemoveCard("Reader A");
        });
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    }
    EXPECT_TRUE(request.IsUntouched());
    DialogDriver driver([](Dialog& d) {
        TypeAll(d, "1234", "5838", "5838");
        d.Enter();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_OK);
}

TEST_F(ChangePin, NullOutArgumentsAreRefusedBeforeAnythingShows) {
    const struct {
        bool ChangePinRequest::*pbNull;
        bool bAskCurrentPin;
        const char* pszArgument;
    } cases[] = {
        {&ChangePinRequest::bNullNewPin, false, "pszNewPin"},
        {&ChangePinRequest::bNullNewLength, true, "pcbNewPin"},
        {&ChangePinRequest::bNullOldPin, true, "pszOldPin"},
        {&ChangePinRequest::bNullOldLength, true, "pcbOldPin"},
    };
    for (const auto& c : cases) {
        m_log.Clear();
        ChangePinRequest request{.bShowLastTry = 1, .bAskCurrentPin = c.bAskCurrentPin};
        request.*c.pbNull = true;
        DialogDriver noDialog;
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        EXPECT_TRUE(request.IsUntouched());
        EXPECT_TRUE(m_boxes.Calls().empty());
        EXPECT_EQ(m_log.Texts(1),
                  std::vector<std::string>{std::string("GetChangePINInfoFromUser: ") +
                                           c.pszArgument + " == NULL"});
    }
}

TEST_F(ChangePin, BoundsThatExcludeEachOtherAreTold) {
    ChangePinRequest request{.rules = {0, 0, 0, 0, 5, 4, 0}};
    DialogDriver driver([](Dialog& d) {
        TypeAll(d, "1234", "58381", "58381");
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Escape();
    });
    request.Call();
    driver.Join();
    EXPECT_TRUE(m_log.Contains(1, "GetChangePINInfoFromUser: minimum length 5 > maximum length 4"));
}

TEST_F(ChangePin, LastTryComesFirst) {
    ChangePinRequest request{.rules = kAllRules, .bShowLastTry = 7};
    m_boxes.SetAnswer(0);
    {
        DialogDriver noDialog;
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    }
    ASSERT_EQ(m_boxes.Calls().size(), 1U);
    EXPECT_EQ(m_boxes.Calls()[0].strReader, "Reader A");
    EXPECT_TRUE(request.IsUntouched());
    m_boxes.SetAnswer(1);
    DialogDriver driver([](Dialog& d) { d.Escape(); });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
}

TEST_F(ChangePin, OpeningAndClosingKeepsNothing) {
    ExpectRoundsKeepNothing(2, 40, [this](int nRound) {
        const bool bConfirm = nRound % 2 == 0;
        ChangePinRequest request{.bNullRules = true};
        DialogDriver driver([bConfirm](Dialog& d) {
            TypeAll(d, "1", "2", "2");
            bConfirm ? d.Enter() : d.Escape();
        });
        EXPECT_EQ(request.Call(), bConfirm ? MVPINGUI_OK : MVPINGUI_REFUSED);
        m_log.Clear();
    });
}

}  // namespace
}  // namespace mvp::test
