// Before a card is reset its user proves the right to it, by its PIN or by an unlock code.
//
//     class ResetDialog : public CResetCardDialogMain {
//     public:
//         using CResetCardDialogMain::CResetCardDialogMain;
//
//     protected:
//         BOOL OnInitDialog() override {
//             const BOOL result = CResetCardDialogMain::OnInitDialog();
//             if (Panel() != nullptr)
//                 Panel()->SetChallenge("0123456789ABCDEF");  // "" for a fixed unlock code
//             return result;
//         }
//     };
//
//     ResetDialog dialog(0, pParent, 0, 0, 0, "Reader A");
//     if (dialog.DoModal() == IDOK) {
//         CString proof = dialog.GetPin();
//         Reset(proof);
//         CBaseDialog::HidePinFromMemory(proof);
//     }
//
// The panel comes to be with the dialog's window. A caller derives a class and calls SetChallenge,
// and DisablePIN where the card's PIN cannot be used, from its OnInitDialog after the frame's, and
// returns what that returned. Without SetChallenge the route of the unlock code has no field. All
// calls are made on the thread that created the objects.
//
// No exception leaves a member but a constructor, which lets std::bad_alloc pass.
#pragma once

#include <cstdint>

#include <dlgfw/controls.h>
#include <dlgfw/dialog.h>
#include <dlgfw/string.h>
#include <mvpingui/base_dialog.h>
#include <mvpingui/caps_lock_sensitive_edit.h>
#include <mvpingui/removal_watch.h>

namespace mvp {
enum class ResetField : std::uint8_t;
}  // namespace mvp

// The panel: two routes, and the fields of each. On the route of the unlock code it shows a
// challenge and takes the response, or takes a fixed code.
class MVPINGUI_API CResetCardDialog : public CBaseDialog {
public:
    // nMode      0: the framework's colours; else the system's window colour
    // pPosition  its left and top place the panel in the parent's client area; may be null
    // pOkButton  the host's OK button, not owned; enabled while the active field holds a character.
    //            May be null
    // pParent    the host, not owned
    CResetCardDialog(int nMode, const RECT* pPosition, CButton* pOkButton, CWnd* pParent);
    ~CResetCardDialog() override;

    // Creates the panel's window as a child of `pParent`, invisible. Nonzero on success.
    int LocCreate(CWnd* pParent);

    // Shows the challenge, grouped for reading; with an empty or null one the route asks for a
    // fixed unlock code. Clears every field, enables both routes and chooses that of the PIN.
    void SetChallenge(const char* pszChallenge);

    // Holds the user on the route of the unlock code: the card's PIN cannot be used.
    void DisablePIN();

    // What stands in the active field: the PIN, the response, or the fixed code as typed, dashes
    // included. When the window has gone, what stood there last. The caller overwrites it after
    // use.
    CString GetPin();

    // Overwrites what the object keeps of the fields since its window has gone.
    void EraseSecrets();

    // Clears the fields that are not active and puts the focus on the active one; clears that too
    // when `bClear` is nonzero.
    void CheckWindow(int bClear);

    // Takes the Caps-Lock balloons of the fields down. A host that moves calls it.
    void ResetToolTip();

    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    afx_msg void OnRadioClicked();
    afx_msg void OnCheckOkButton();
    afx_msg void OnDestroy();

    DECLARE_MESSAGE_MAP()

private:
    mvp::ResetField ActiveField() const;
    CString& ActiveText();
    CCapsLockSensitiveEdit& ActiveEdit();
    void FocusActiveEdit();
    void ShowChallengePart(bool bShow);
    void EnableCodeRoute(bool bEnable);

    CCapsLockSensitiveEdit m_editResponse;
    CCapsLockSensitiveEdit m_editPin;
    CCapsLockSensitiveEdit m_editUnlockCode;
    std::int32_t m_bPinMode = 0;
    CButton* m_pOkButton;
    std::int32_t m_bChallenge = 1;
    CString m_strResponse;
    CString m_strPin;
    CString m_strUnlockCode;
};

// The modal frame around the panel. DoModal returns IDOK, IDCANCEL when the user cancelled or the
// card left its reader, or -1 when the dialog could not be shown.
class MVPINGUI_API CResetCardDialogMain : public CDialog {
public:
    // nMode      the panel's nMode
    // pParent    parent window, not owned; may be null
    // nFirst, nSecond, nThird  kept and not used
    // pszReader  the reader that holds the card; null or empty: any reader
    CResetCardDialogMain(int nMode, CWnd* pParent, int nFirst, int nSecond, int nThird,
                         const char* pszReader);
    ~CResetCardDialogMain() override;

    INT_PTR DoModal() override;

    // The panel's GetPin, also after DoModal returned IDOK; after anything else, and without a
    // panel, an empty text. The caller overwrites it after use.
    CString GetPin();

    // The panel; null before the dialog is shown and when it could not be made.
    CResetCardDialog* Panel() { return m_pResetCardDialog; }

    // Ends the watch for the card's removal.
    void StopDetectingRemoveEvent();

protected:
    BOOL OnInitDialog() override;
    void OnOK() override;
    afx_msg LRESULT OnCardEvent(WPARAM wParam, LPARAM lParam);
    afx_msg void OnDestroy();
    afx_msg void OnMove(int x, int y);

    DECLARE_MESSAGE_MAP()

private:
    void CreatePanel();
    void ResizeDlg(int dx, int dy);
    void MoveDlgItem(int nId, int dx, int dy);

    CResetCardDialog* m_pResetCardDialog = nullptr;  // owned
    CButton m_okButton;
    [[maybe_unused]] int m_nFirst;
    [[maybe_unused]] int m_nSecond;
    [[maybe_unused]] int m_nThird;
    int m_nMode;
    mvp::RemovalWatch m_removalWatch;
    CString m_strReader;
};
