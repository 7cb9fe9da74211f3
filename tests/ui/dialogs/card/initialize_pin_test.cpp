// CInitializePinDlg: the policy values that it hands on and shows as rules, and what comes of OK.
#include <stdexcept>

#include "mvpingui/initialize_pin_dialog.h"
#include "mvpingui/policies_dialog.h"
#include "services/error_text.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\PXRM)";
constexpr int kNew = IDC_INITIALIZE_PIN_NEW_EDIT;
constexpr int kConfirm = IDC_INITIALIZE_PIN_CONFIRM_EDIT;
constexpr int kFirstRule = IDC_POLICIES_MIN_TEXT;
constexpr int kPlace = IDC_INITIALIZE_PIN_POLICIES_PLACE;
using Texts = std::vector<std::string>;

void TypePins(Dialog& d, const std::string& strPin = "58381") {
    d.Type(kNew, strPin);
    d.Type(kConfirm, strPin);
}

Script Enter(const std::string& strPin = "58381", bool bRefused = false) {
    return [=](Dialog& d) {
        TypePins(d, strPin);
        EXPECT_FALSE(bRefused && d.IsEnabled(IDOK));
        // Whoever sends the command, and whatever the button is. The way out of a refusal is posted
        // in the same step: after it an accepted dialog may be gone.
        d.Run([&] {
            SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            PostMessageA(d.Handle(), WM_COMMAND, IDCANCEL, 0);
        });
    };
}

class InitializePin : public LibraryTest {
protected:
    static InitializePin& From(void* pContext) { return *static_cast<InitializePin*>(pContext); }
    static int Initialize(void* pContext, CString strPin, int nMin, int nMax, int nTries, int nWeak,
                          int nForce, int nUnlock) {
        std::string& call = From(pContext).m_calls.emplace_back(strPin);
        for (const int value : {nMin, nMax, nTries, nWeak, nForce, nUnlock}) {
            call += " " + std::to_string(value);
        }
        return From(pContext).m_initialize();
    }
    static int GetCode(void* pContext, CString& strCode) {
        strCode = "0123456789";
        return From(pContext).m_nCodeResult;
    }
    template <class Dialog = CInitializePinDlg, class... Missing>
    INT_PTR Run(const std::vector<Script>& scripts, const PINPolicies* pPolicies = nullptr,
                Missing... missing) {
        Dialog dialog(missing..., nullptr, pPolicies, this, &Initialize, nullptr, &GetCode, "R A");
        const INT_PTR result = Open(dialog, scripts);
        m_nPending = dialog.m_bUnlockCodePending;
        return result;
    }

    Texts m_calls;
    std::function<int()> m_initialize = [] { return MVPINGUI_CARD_OK; };
    int m_nCodeResult = MVPINGUI_CARD_FAILED;
    int m_nPending = -1;
};

TEST_F(InitializePin, HandsOnTheValuesOfTheCallerTheConfigurationOrItsOwn) {
    constexpr auto kUnset = MVP_POLICY_FROM_CONFIGURATION;
    EXPECT_EQ(Run({Enter()}), IDOK);
    EXPECT_EQ(m_calls.back(), "58381 4 25 6 0 0 6");
    EXPECT_EQ(m_log.Texts(1), Texts(7, "RegOpenKeyEx returns the error 2"));
    const std::pair<const char*, DWORD> values[] = {
        {"MinimumPINLength", 0}, {"MaximumPINLength", 9}, {"MaxPINTries", ~0U},
        {"MaxPINUnlock", 7},     {"WeakPINAllowed", 2},   {"ForceChangePIN", 1}};
    for (const auto& [name, value] : values) {
        m_hive.SetDword(kKey, name, value);
    }
    // They are the rules, too: at most nine digits.
    m_hive.SetDword(kKey, "AlphaPINAllowed", 0);
    EXPECT_EQ(Run({Enter("58a8", true), Enter("5838583858", true)}), IDCANCEL);
    const PINPolicies callers = {3, kUnset, 0, 11, 12, 13, kUnset, 0, kUnset};
    EXPECT_EQ(Run({Enter()}, &callers), IDOK);
    EXPECT_EQ(m_calls.back(), "58381 3 9 0 2 0 12");
    for (const DWORD type : std::initializer_list<DWORD>{REG_NONE, REG_SZ, REG_BINARY, REG_DWORD}) {
        for (const char* name : {"MaxPINTries", "ForceChangePIN"}) {
            type == REG_NONE ? m_hive.DeleteValue(kKey, name)
                             : m_hive.SetRaw(kKey, name, type, type == REG_BINARY ? "1234" : "1");
        }
        m_log.Clear();
        EXPECT_EQ(Run({Enter()}), IDOK);
        EXPECT_EQ(m_calls.back(), "58381 0 9 6 2 0 7") << type;
        const std::string error = type == REG_NONE ? "2" : "1804";
        EXPECT_EQ(m_log.Texts(1), Texts(2, "RegQueryValueEx returns the error " + error));
    }
}

TEST_F(InitializePin, OpensReadyToTypeGrowsByItsRulesAndEndsWithItsCard) {
    const auto look = [](Dialog& d) {
        EXPECT_EQ(d.FocusedId(), kNew);
        EXPECT_EQ(d.Send(kNew, EM_GETPASSWORDCHAR) + d.Send(kConfirm, EM_GETPASSWORDCHAR), 2 * '*');
        RECT units = {22, 8, 0, 7};
        d.Run([&] {
            MapDialogRect(d.Handle(), &units);
            EXPECT_EQ(SmallIconOf(d.Handle()), LoadResourceIcon(IDI_CARD_INITIALIZE, 16));
            EXPECT_TRUE(IsBold(d.Control(IDC_INITIALIZE_PIN_HEADING)) && IsTopMost(d.Handle()));
        });
        const CRect lines = RectIn(d.Handle(), GetParent(d.Control(IDC_POLICIES_BOX)));
        EXPECT_EQ(lines.TopLeft(), RectIn(d.Handle(), d.Control(kPlace)).TopLeft());
        // As the template has it: 7 units to the buttons and as many to the frame.
        const CRect first = RectIn(GetParent(d.Control(IDC_POLICIES_BOX)), d.Control(kFirstRule));
        RECT client = {};
        GetClientRect(d.Handle(), &client);
        EXPECT_NEAR(RectIn(d.Handle(), d.Control(IDOK)).top - lines.bottom, units.bottom, 1);
        EXPECT_NEAR(client.bottom - RectIn(d.Handle(), d.Control(IDOK)).bottom, units.bottom, 1);
        EXPECT_EQ(first.TopLeft(), CPoint(units.left + 20, 10 + 10));
        EXPECT_EQ(lines.Height(), 10 + 4 * 10 + 3 * units.top) << "three rules";
        EXPECT_FALSE(d.IsEnabled(IDOK));
        TypePins(d, "5838");
        d.Type(kNew, "1");
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Press(VK_BACK);
        EXPECT_TRUE(d.IsEnabled(IDOK));
        RemoveCard("r a");
    };
    EXPECT_EQ(Run({look, look}), IDCANCEL);
    EXPECT_EQ(m_log.Texts(8).size(), m_log.Texts(16).size()) << m_log.Dump();
}

TEST_F(InitializePin, FailureIsToldAndLeavesWhatWasTyped) {
    const auto attempt = [&](Dialog& d) {
        TypePins(d);
        for (const int code : {1, 7, -1, 0}) {  // 0: the callback throws
            m_initialize = [=] { return code != 0 ? code : throw std::runtime_error("callback"); };
            d.Click(IDOK);
            Dialog failed = d.Next();
            EXPECT_EQ(failed.Text(IDC_UNLOCK_RESULT_MESSAGE),
                      Filled(IDS_INITIALIZE_FAILED_FORMAT, ErrorText(code == 0 ? 1 : code)));
            EXPECT_EQ(failed.Title(), TextOf(IDS_INITIALIZE_FAILED_TITLE));
            failed.Click(IDOK);
            failed.WaitGone();
        }
        m_initialize = [&] {
            // It is not called again meanwhile, and what is typed is judged when it is over.
            SendMessageA(d.Handle(), WM_COMMAND, IDOK, 0);
            d.SetText(kNew, "1");
            return 1;
        };
        d.Click(IDOK);
        d.Next().Click(IDOK);
        d.WaitUntil("OK disabled", [&] { return !d.IsEnabled(IDOK); });
        d.Escape();
    };
    EXPECT_EQ(Run({attempt}), IDCANCEL);
    EXPECT_EQ(m_calls, Texts(5, "58381 4 25 6 0 0 6"));
}

TEST_F(InitializePin, SuccessEndsTheWatchShowsTheCodeAndTellsTheSuite) {
    const TrayWindow tray;
    constexpr char kNotice[] = "message: 78945, on reader R A to the Smart Card Agent";
    EXPECT_EQ(Run({Enter()}), IDOK);
    EXPECT_EQ(m_nPending, 1) << "the code could not be fetched";
    EXPECT_EQ(m_boxes.Calls().size(), 1U);
    EXPECT_TRUE(m_log.ContainsPart(kNotice)) << m_log.Dump();
    m_log.Clear();
    m_nCodeResult = MVPINGUI_CARD_OK;
    const auto accept = [&](Dialog& d) {
        TypePins(d);
        d.Click(IDOK);
        Dialog code = d.Next();
        EXPECT_EQ(code.Text(IDC_UNLOCK_CODE_CODE), "0123-4567-89");
        PostMessageA(d.Handle(), RegisterWindowMessageA("VKCardRemovedEvent"), 0, 0);
        code.Settle();
        EXPECT_TRUE(d.IsOpen()) << "the card has its PIN";
        EXPECT_FALSE(m_log.ContainsPart(kNotice)) << "before the user has seen it";
        code.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
        code.Click(IDOK);
    };
    EXPECT_EQ(Run({accept}), IDOK);
    EXPECT_EQ(m_nPending, 0);
    EXPECT_TRUE(m_log.ContainsPart(kNotice)) << m_log.Dump();
}

TEST_F(InitializePin, NeedsItsEditsItsRulesAndTheModule) {
    using Short = Incomplete<CInitializePinDlg>;
    for (const int edit : {kNew, kConfirm}) {
        EXPECT_EQ(Run<Short>({}, nullptr, edit), -1);
    }
    {
        const NoMemoryFor<VKPoliciesDlg> shortage;
        EXPECT_EQ(Run({Enter("58381", true)}), IDCANCEL);
    }
    EXPECT_TRUE(m_log.Contains(1, "The rule panel could not be created"));
    for (const int missing : {IDC_INITIALIZE_PIN_HEADING, IDOK, kPlace, 0}) {
        EXPECT_EQ(Run<Short>({Enter()}, nullptr, missing), missing == kPlace ? IDCANCEL : IDOK);
    }
    EXPECT_EQ(Run({}), -1) << "the module has gone with the last one";
}

}  // namespace
}  // namespace mvp::test
