#include "secret_fields.h"

#include <memory>

#include <gtest/gtest.h>

#include "mvpingui/change_pin_dialog.h"
#include "mvpingui/display_unlock_code.h"
#include "mvpingui/initialize_pin_dialog.h"
#include "mvpingui/reset_card_dialog.h"
#include "mvpingui/unlock_card_dialog.h"
#include "pinspy/doors.h"
#include "support/dialog_template.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {

using spy::StockControl;

bool Is(const char* pszText, std::size_t nLength, const Secret& secret) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < nLength; ++i) {
        if (pszText[i] != '-' && (count == secret.size() || pszText[i] != secret[count++])) {
            return false;
        }
    }
    return count == secret.size();
}
bool Is(const CString& str, const Secret& secret) {
    return Is(str.GetString(), static_cast<std::size_t>(str.GetLength()), secret);
}

namespace {

constexpr PwdRuleArgs kLongPins = {0, 0, 1, 1, 4, 64, 0};

void EnterPin(const Visit& visit) {
    const Secret pin;
    PinRequest request{.dwMax = 100};
    EXPECT_EQ(request.Call([&](Dialog& d) {
        visit(d, {{"enter PIN", IDC_ENTER_PIN_EDIT, pin}});
    }),
              MVPINGUI_OK);
    EXPECT_TRUE(Is(request.pPin, request.cbPin, pin));
    FreeGetPinBuffer(request.pPin, request.cbPin);
}

struct ChangedPins {
    const Secret current{};
    const Secret fresh{};
    std::vector<Field> Fields(const std::string& strName) const {
        return {{strName + " current", kCurrent, current},
                {strName + " new", kNew, fresh},
                {strName + " again", kConfirm, fresh}};
    }
    void Expect(const ChangePinRequest& request) const {
        EXPECT_TRUE(Is(request.oldPin.pszText, request.oldPin.cb, current));
        EXPECT_TRUE(Is(request.newPin.pszText, request.newPin.cb, fresh));
    }
};

void ChangePin(const Visit& visit) {
    const ChangedPins pins;
    ChangePinRequest request{.pRules = &kLongPins};
    const DialogDriver driver([&](Dialog& d) { visit(d, pins.Fields("change PIN")); });
    EXPECT_EQ(request.CallAlone(), MVPINGUI_OK);
    pins.Expect(request);
}

// A host's own dialog, with controls of the system or with the library's panel.
class HostDialog : public CDialog {
public:
    explicit HostDialog(bool bPanel) : m_bPanel(bPanel) {
        constexpr DWORD kEdit = ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP;
        m_form.Add("BUTTON", IDOK, "OK", {7, 150, 50, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP);
        if (!bPanel) {
            LoadLibraryA("riched20.dll");  // its class stays
            m_form.Add("EDIT", StockControl::Password, "", {7, 7, 200, 14}, kEdit | ES_PASSWORD);
            m_form.Add("EDIT", StockControl::NoPassword, "", {7, 27, 200, 14}, kEdit);
            m_form.Add("EDIT", StockControl::ManyLines, "", {7, 47, 200, 14}, kEdit | ES_MULTILINE);
            m_form.Add("RichEdit20A", StockControl::Rich, "", {7, 67, 200, 14},
                       kEdit | ES_PASSWORD);
        }
        InitModalIndirect(m_form.Get());
    }

protected:
    BOOL OnInitDialog() override {
        const BOOL result = CDialog::OnInitDialog();
        if (m_bPanel) {
            const RECT place{10, 10, 0, 0};
            m_panel = std::make_unique<CChangePINDialog>(0, 0, true, &place, &kLongPins, nullptr,
                                                         this, 15, 0, 6);
            EXPECT_NE(m_panel->LocCreate(this), 0);
            m_panel->ShowWindow(SW_SHOW);
        }
        return result;
    }
    void OnOK() override {
        if (m_bPanel) {
            m_request.hHost = m_hWnd;
            EXPECT_EQ(m_request.CallAlone(), MVPINGUI_OK);
        }
        CDialog::OnOK();
    }

private:
    DialogTemplate m_form{"Host", {0, 0, 320, 170}};
    bool m_bPanel;
    std::unique_ptr<CChangePINDialog> m_panel;

public:
    ChangePinRequest m_request{.pRules = &kLongPins};
};

void EmbeddedPanel(const Visit& visit) {
    const ChangedPins pins;
    HostDialog host(true);
    const DialogDriver driver([&](Dialog& d) { visit(d, pins.Fields("embedded panel")); });
    EXPECT_EQ(host.DoModal(), IDOK);
    pins.Expect(host.m_request);
}

// A card whose callbacks take what they get, and hand out a code.
struct Card {
    const Secret pin{};
    const Secret code = Secret::UnlockCode();
    bool bRight = false;

    static int Unlock(void* pContext, CString strCode, CString strNewPin) {
        auto& card = *static_cast<Card*>(pContext);
        card.bRight = Is(strCode, card.code) && Is(strNewPin, card.pin);
        return 0;
    }
    static int Initialize(void* pContext, CString strNewPin, int, int, int, int, int, int) {
        auto& card = *static_cast<Card*>(pContext);
        card.bRight = Is(strNewPin, card.pin);
        return 0;
    }
    static int GetUnlockCode(void* pContext, CString& strCode) {
        const Secret& code = static_cast<Card*>(pContext)->code;
        for (std::size_t i = 0; i < code.size(); ++i) {
            strCode += code[i];
        }
        return 0;
    }
};

void FirstPin(const Visit& visit) {
    Card card;
    PINPolicies policies{4, 64, 3, 0, 3, 0, 0, 0, 1};
    CInitializePinDlg dialog(nullptr, &policies, &card, &Card::Initialize, nullptr,
                             &Card::GetUnlockCode, "Reader A");
    const DialogDriver driver([&](Dialog& d) {
        visit(d, {{"first PIN new", IDC_INITIALIZE_PIN_NEW_EDIT, card.pin},
                  {"first PIN again", IDC_INITIALIZE_PIN_CONFIRM_EDIT, card.pin}});
        Dialog display = d.Next();
        display.Click(IDC_UNLOCK_CODE_NEVER_AGAIN);
        display.Click(IDOK);
        display.WaitGone();
    });
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_TRUE(card.bRight);
}

void UnlockCard(const Visit& visit) {
    Card card;
    CUnlockCardDlg dialog(nullptr, &kLongPins, &card, &Card::Unlock, nullptr, "Reader A");
    const DialogDriver driver([&](Dialog& d) {
        visit(d, {{"unlock code", IDC_UNLOCK_CARD_CODE_EDIT, card.code, true},
                  {"unlock new", IDC_UNLOCK_CARD_NEW_EDIT, card.pin},
                  {"unlock again", IDC_UNLOCK_CARD_CONFIRM_EDIT, card.pin}});
        Dialog told = d.Next();
        told.Click(IDOK);
        told.WaitGone();
    });
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_TRUE(card.bRight);
}

void ShownCode(const Visit& visit) {
    Card card;
    const DialogDriver driver([&](Dialog& d) {
        visit(d, {{"shown unlock code", IDC_UNLOCK_CODE_CODE, card.code, true, false}});
    });
    EXPECT_EQ(DisplayUnlockCode(nullptr, &card, &Card::GetUnlockCode, nullptr, "Reader A"), 0);
}

void ResetCard(const Visit& visit) {
    class Frame : public CResetCardDialogMain {
    public:
        explicit Frame(const char* pszChallenge)
            : CResetCardDialogMain(0, nullptr, 0, 0, 0, "Reader A"), m_pszChallenge(pszChallenge) {}

    protected:
        BOOL OnInitDialog() override {
            const BOOL result = CResetCardDialogMain::OnInitDialog();
            Panel()->SetChallenge(m_pszChallenge);
            return result;
        }

    private:
        const char* m_pszChallenge;
    };
    const struct {
        const char* pszName;
        const char* pszChallenge;
        int nId;
    } routes[] = {{"reset PIN", nullptr, IDC_RESET_CARD_PIN_EDIT},
                  {"reset response", "0123456789ABCDEF", IDC_RESET_CARD_RESPONSE_EDIT},
                  {"reset code", nullptr, IDC_RESET_CARD_CODE_EDIT}};
    for (const auto& [name, challenge, id] : routes) {
        const bool byPin = id == IDC_RESET_CARD_PIN_EDIT;
        const Secret secret = byPin ? Secret() : Secret::UnlockCode();
        Frame dialog(challenge);
        const DialogDriver driver([&, name = name, id = id](Dialog& d) {
            d.Click(byPin ? IDC_RESET_CARD_PIN_ROUTE : IDC_RESET_CARD_CODE_ROUTE);
            visit(d, {{name, id, secret, !byPin}});
        });
        EXPECT_EQ(dialog.DoModal(), IDOK);
        EXPECT_TRUE(Is(dialog.GetPin(), secret)) << name;
    }
}

}  // namespace

void VisitEveryField(const Visit& visit) {
    for (const auto open :
         {&EnterPin, &ChangePin, &EmbeddedPanel, &FirstPin, &UnlockCard, &ResetCard, &ShownCode}) {
        open(visit);
    }
}

void VisitStockControls(const Visit& visit) {
    HostDialog host(false);
    const Secret secret;
    const DialogDriver driver([&](Dialog& d) {
        visit(d, {{"edit", StockControl::Password, secret},
                  {"edit without ES_PASSWORD", StockControl::NoPassword, secret},
                  {"edit of many lines", StockControl::ManyLines, secret},
                  {"rich edit", StockControl::Rich, secret}});
    });
    EXPECT_EQ(host.DoModal(), IDOK);
}

}  // namespace mvp::test
