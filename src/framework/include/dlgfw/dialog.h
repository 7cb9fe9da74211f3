// CDialog: a dialog made from a template, modal or modeless.
//
//     AskDlg dlg(pParent);           // AskDlg() : CDialog(IDD_ASK, pParent)
//     if (dlg.DoModal() == IDOK)
//         Use(dlg.m_strName);
//
// Modal: DoModal creates the window, runs messages until EndDialog, destroys the window and returns
// the result. The parent is disabled meanwhile. The dialog stands in the middle of its owner, or of
// the screen's work area without one, unless the template gives it another place than (0, 0), or
// OnInitDialog gives it any.
// Modeless: Create, and DestroyWindow (not EndDialog, which only hides) in OnOK and OnCancel; an
// object made with `new` deletes itself in PostNcDestroy. Its keyboard handling works in the modal
// loops of this framework, and in a message loop that calls AfxPreTranslateMessage before it
// dispatches.
//
// Child panels. A dialog whose template has WS_CHILD (DS_CONTROL or not) and that stands inside
// another dialog takes part in that dialog's keyboard handling: Tab and the arrow keys walk through
// both, mnemonics of both work, Enter and Esc go to the OK and Cancel of the outermost dialog, a
// focused push button of the panel excepted, which Enter presses.
#pragma once

#include <dlgfw/wnd.h>

class DLGFW_API CDialog : public CWnd {
public:
    // For InitModalIndirect and CreateIndirect.
    CDialog();
    // The template is looked for when the dialog is created. A null parent stands for none.
    explicit CDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    ~CDialog() override;

    // Modal from a template in memory, which must live until DoModal returns.
    BOOL InitModalIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd = nullptr);
    // Returns what EndDialog was given, -1 when the dialog could not be shown, was destroyed from
    // outside, was ended by WM_QUIT (posted again) or by an exception.
    virtual INT_PTR DoModal();

    // Modeless; the window is shown only when the template has WS_VISIBLE.
    using CWnd::Create;
    BOOL Create(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    BOOL CreateIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd = nullptr,
                        HINSTANCE hInst = nullptr);

    // Ends DoModal with the result, once the handler that calls it has returned.
    void EndDialog(int nResult);

    // TRUE lets the system put the focus on the first control.
    virtual BOOL OnInitDialog();

    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    LPCSTR m_lpszTemplateName = nullptr;          // MAKEINTRESOURCE of its number
    LPCDLGTEMPLATE m_lpDialogTemplate = nullptr;  // not owned
    CWnd* m_pParentWnd = nullptr;

    // UpdateData(TRUE), then EndDialog(IDOK).
    virtual void OnOK();
    // EndDialog(IDCANCEL).
    virtual void OnCancel();

    // The modal loop in named steps. RunModalFrom finds the template by number in hInst, or takes
    // the one in memory (-1 without any); PreModal; disables the parent; CreateModalWindow; runs
    // the loop if the dialog was not ended yet; hides the window; enables the parent, activates it
    // if the dialog was active; destroys the window; PostModal. An exception in between makes the
    // result -1.
    INT_PTR RunModalFrom(HINSTANCE hInst);

    struct ModalParent {
        HWND hWnd;       // null for none
        BOOL bReenable;  // it was disabled for this dialog
    };
    // Creates the window. An override may log, try again, and forget the parent by clearing its
    // fields, which then stays disabled. See CWnd::CreateDlgIndirect on what FALSE means.
    virtual BOOL CreateModalWindow(LPCDLGTEMPLATE lpDialogTemplate, ModalParent& parent,
                                   HINSTANCE hInst);

    // Finds the window that is to own the dialog; disables the window on top of it when that is
    // another one. PostModal undoes it.
    HWND PreModal();
    void PostModal();

    afx_msg LRESULT HandleInitDialog(WPARAM wParam, LPARAM lParam);

    DECLARE_MESSAGE_MAP()

private:
    INT_PTR RunModal(LPCDLGTEMPLATE lpDialogTemplate, HINSTANCE hInst);
    BOOL CreateFromTemplate(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd, HINSTANCE hInst);
    bool IsCentered() const;

    HWND m_hWndTop = nullptr;  // disabled by PreModal
    bool m_bCenter = false;    // the template says nothing of a place
};
