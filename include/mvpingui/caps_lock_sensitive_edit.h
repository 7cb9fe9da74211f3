// CCapsLockSensitiveEdit: the edit of every PIN. It warns in a balloon while Caps Lock is on, in
// words about PINs or about passwords.
//
// The password edits of newer systems show a balloon of their own, which then only gets the
// library's words. On the oldest system, whose edits have none, the control makes its own balloon
// and shows and hides it by the focus and the keys.
//
// What is typed stays in locked memory of the control's own; the system's control gets one mask for
// each character, whatever its style. Nobody but the code of the window's own thread is told the
// text: by ReadSecret at any time; by WM_GETTEXT and EM_GETLINE unless the thread is handling a
// message that another one sent, which might be the one that asks. From other threads and processes
// no text can be set by message either. Nothing can be copied, cut or undone; a text can be pasted.
// The edit must be one of one line; one without ES_PASSWORD gets it, and keeps it. EN_ERRSPACE
// tells that there is no memory for more. A text that is given at creation is ignored.
//
// A screen reader gets a protected text by the name of its label, whose value is refused, and the
// warning as its description, also where no balloon shows.
//
// Bind it to a dialog's edit by data exchange or SubclassDlgItem. A dialog that moves calls
// ResetToolTip, so that no balloon stays behind.
#pragma once

#include <dlgfw/controls.h>
#include <mvpingui/export.h>

namespace mvp {
class SecretAccessible;
class SecretField;
}  // namespace mvp

class MVPINGUI_API CCapsLockSensitiveEdit : public CEdit {
public:
    CCapsLockSensitiveEdit();
    // Destroys the control's own balloon.
    ~CCapsLockSensitiveEdit() override;

    // Sets `strSecret` to what was typed: the one way out for it. The caller overwrites its copy
    // with CBaseDialog::HidePinFromMemory. False, and an empty text, when there is no memory and on
    // any thread but the window's.
    bool ReadSecret(CString& strSecret) const;

    // Sets the text, or takes it away, as WM_SETTEXT does. Null counts as empty. False when there
    // is no memory, and the text is empty then; and on any thread but the window's.
    bool WriteSecret(LPCSTR lpszSecret);
    void Empty() { WriteSecret(""); }

    // Shows what the edit holds, which must be bound: the system draws nothing but masks, and the
    // control each character by itself over its own. For codes that are copied from paper or read
    // out.
    void ShowText();

    // true (the default): the warning speaks of the PIN; false: of the password.
    void SetMode(bool bPin) { m_bPinMode = bPin; }

    // Takes the control's own balloon down until Caps Lock is noticed again.
    void ResetToolTip();

    // Shows the control's own balloon when the edit has the focus and Caps Lock is on, else takes
    // it down.
    void CheckCapsLockMessage();

protected:
    BOOL PreTranslateMessage(MSG* pMsg) override;
    BOOL PreCreateWindow(CREATESTRUCTA& cs) override;
    void PreSubclassWindow() override;
    // Does nothing with the keys of programs that the configuration refuses.
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    afx_msg void OnDestroy();
    afx_msg void OnSetFocus(CWnd* pOldWnd);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    afx_msg void OnPaint();
    afx_msg LRESULT OnGetObject(WPARAM wParam, LPARAM lParam);
    afx_msg void OnKeyUp(UINT nChar, UINT nRepCnt, UINT nFlags);
    // FALSE when it fails.
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;

    DECLARE_MESSAGE_MAP()

    // TRUE on the system whose edits show no Caps-Lock warning.
    BOOL m_bOldSystem;

private:
    // Characters of a text, with its terminator. Plain arrays: hosts may have another standard
    // library.
    static constexpr int kTextSize = 260;

    friend class mvp::SecretField;

    // What the system's control does by itself.
    LRESULT SystemProc(UINT message, WPARAM wParam, LPARAM lParam) {
        return CEdit::DefWindowProc(message, wParam, lParam);
    }
    // To a screen reader.
    void TellCapsLock();
    void CreateBalloon();
    void AddTool();
    void PlaceOwnBalloon();
    bool IsSystemWarning(const NMHDR& header) const;
    void AdoptSystemBalloon(const NMHDR& header);
    void GiveText(NMHDR& header);
    BOOL AnswerBalloon(WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    const char* Warning() const { return m_bPinMode ? m_szPinWarning : m_szPasswordWarning; }
    LRESULT OnBalloonMessage(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

    HWND m_hBalloon = nullptr;
    BOOL m_bHasFocus = FALSE;
    BOOL m_bSystemBalloonHooked = FALSE;
    HWND m_hSystemBalloon = nullptr;
    WNDPROC m_pOldBalloonProc = nullptr;
    char m_szTitle[kTextSize];
    char m_szPinWarning[kTextSize];
    char m_szPasswordWarning[kTextSize];
    bool m_bPinMode = true;
    mvp::SecretField* m_pField;  // owned
    bool* m_pbGone = nullptr;    // told when the object goes
    // What the system draws in the place of each character that the control shows; 0: it shows
    // none.
    char m_chShownMask = '\0';
    // What the system asks for in wide characters must outlive the answer.
    wchar_t m_szWideWarning[kTextSize]{};
    // Made when a screen reader asks for it.
    mvp::SecretAccessible* m_pAccessible = nullptr;
    // A screen reader was told last that Caps Lock is on.
    bool m_bCapsLockTold = false;
};
