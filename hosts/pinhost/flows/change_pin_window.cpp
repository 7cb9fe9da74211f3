#include "pinhost/flows/change_pin_window.h"

#include <windows.h>

#include <optional>
#include <utility>

#include <dlgfw/dlgfw.h>
#include <mvpingui/change_pin_dialog.h>
#include <mvpingui/mvpingui.h>
#include <vkevtsub/vkevtsub.h>

#include "pinhost/flows/flow_resources.h"
#include "platform/own_module.h"

namespace {

constexpr UINT kCardRemoved = WM_APP;

// Tells the window, from the thread that delivers the events, that its card is gone.
class CardGone : public VKDelegateSubscriber {
public:
    CardGone(HWND hWnd, CString strReader) : m_hWnd(hWnd), m_strReader(std::move(strReader)) {
        Subscribe(VKEVENT_CARD_REMOVED);
    }
    ~CardGone() override { UnSubscribe(); }

    void HandleEvent(const VKEvent& event) override {
        if (m_strReader.IsEmpty() || lstrcmpiA(event.pszReaderName, m_strReader) == 0) {
            ::PostMessageA(m_hWnd, kCardRemoved, 0, 0);
        }
    }

private:
    HWND m_hWnd;
    CString m_strReader;
};

class ChangePinWindow : public CDialog {
public:
    explicit ChangePinWindow(PinHostChangePin& request)
        : CDialog(IDD_CHANGE_PIN_WINDOW), m_request(request) {}
    ChangePinWindow(const ChangePinWindow&) = delete;
    ChangePinWindow& operator=(const ChangePinWindow&) = delete;
    ~ChangePinWindow() override {
        if (m_hWnd != nullptr) {
            DestroyWindow();
        }
    }

    INT_PTR DoModal() override { return RunModalFrom(mvp::OwnModule()); }

protected:
    BOOL OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    afx_msg LRESULT OnCardRemoved(WPARAM wParam, LPARAM lParam);
    afx_msg void OnMove(int x, int y);
    afx_msg void OnDestroy();

    DECLARE_MESSAGE_MAP()

private:
    bool CreatePanel();
    void EndBelowPanel(int nMargin);

    PinHostChangePin& m_request;
    CButton m_okButton;
    std::optional<CChangePINDialog> m_panel;
    std::optional<CardGone> m_cardGone;
};

BOOL ChangePinWindow::OnInitDialog() {
    CDialog::OnInitDialog();
    m_okButton.SubclassDlgItem(IDOK, this);
    if (m_request.pRules->bCancelDisabled != 0) {
        GetDlgItem(IDCANCEL)->EnableWindow(FALSE);
    }
    if (!CreatePanel()) {
        EndDialog(-1);
        return TRUE;
    }
    m_cardGone.emplace(m_hWnd, m_request.pszReader);
    return TRUE;
}

bool ChangePinWindow::CreatePanel() {
    CRect place;
    GetDlgItem(IDC_PANEL_PLACE)->GetWindowRect(&place);
    ScreenToClient(&place);
    m_panel.emplace(0, 0, m_request.bAskCurrentPin, &place, m_request.pRules, &m_okButton, this,
                    MVPINGUI_CHANGE_PIN_TOP_MARGIN, MVPINGUI_CHANGE_PIN_LEFT_INDENT,
                    MVPINGUI_CHANGE_PIN_LINE_SPACING);
    m_request.nSmallPinEntryPrevention = m_panel->SmallPinEntryPrevention();
    if (m_panel->LocCreate(this) == 0) {
        return false;
    }
    // Before the buttons, so that the panel gets the first focus, and behind what stands above it,
    // so that it is read after that.
    m_panel->SetWindowPos(GetDlgItem(IDC_PANEL_PLACE), 0, 0, 0, 0,
                          SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    m_panel->ShowWindow(SW_SHOW);
    EndBelowPanel(place.left);
    m_panel->SetFocus();
    return true;
}

// The panel is as tall as its rules need; only now is that known.
void ChangePinWindow::EndBelowPanel(int nMargin) {
    CRect panel;
    m_panel->GetWindowRect(&panel);
    ScreenToClient(&panel);
    CRect client;
    GetClientRect(&client);
    CRect window;
    GetWindowRect(&window);
    const int height = window.Height() + panel.bottom + nMargin - client.bottom;
    SetWindowPos(nullptr, 0, 0, window.Width(), height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void ChangePinWindow::OnOK() {
    // Enter comes here also while the button is disabled, and a message from elsewhere when the
    // panel has gone.
    if (!m_panel || !m_panel->ReadAndCheck()) {
        return;
    }
    const PinHostChangePin& request = m_request;
    if (GetChangePINInfoFromUser(request.pRules, 0, request.pszNewPin, request.pcbNewPin,
                                 request.pszOldPin, request.pcbOldPin, request.pszReader, m_hWnd,
                                 request.bAskCurrentPin) == MVPINGUI_OK) {
        EndDialog(IDOK);
    }
}

void ChangePinWindow::OnCancel() {
    if (m_request.pRules->bCancelDisabled == 0) {
        EndDialog(IDCANCEL);
    }
}

LRESULT ChangePinWindow::OnCardRemoved(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    EndDialog(IDCANCEL);
    return 0;
}

void ChangePinWindow::OnMove(int x, int y) {
    CDialog::OnMove(x, y);
    if (m_panel) {
        m_panel->ResetToolTip();
    }
}

void ChangePinWindow::OnDestroy() {
    m_cardGone.reset();
    m_panel.reset();
    CDialog::OnDestroy();
}

BEGIN_MESSAGE_MAP(ChangePinWindow, CDialog)
    ON_MESSAGE(kCardRemoved, &ChangePinWindow::OnCardRemoved)
    ON_WM_MOVE()
    ON_WM_DESTROY()
END_MESSAGE_MAP()

}  // namespace

namespace pinhost {

bool ChangePinEmbedded(PinHostChangePin& request) {
    return ChangePinWindow(request).DoModal() == IDOK;
}

}  // namespace pinhost
