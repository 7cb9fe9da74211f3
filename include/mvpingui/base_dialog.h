// CBaseDialog: the common base of the library's dialogs and child panels. It takes its template
// from the resource module, stands where it is told, can draw itself in the window colour, and
// knows how to overwrite a PIN.
#pragma once

#include <dlgfw/dialog.h>
#include <dlgfw/gdi_object.h>
#include <mvpingui/export.h>

class MVPINGUI_API CBaseDialog : public CDialog {
public:
    // nTemplate   number of the dialog template in the resource module
    // nColorMode  0: the framework's colours; otherwise a background in the system's window colour
    // pPosition   its left and top place the window: screen coordinates for a dialog, the parent's
    //             client coordinates for a child panel; null: at (0, 0)
    // pParent     parent window, not owned; may be null
    CBaseDialog(UINT nTemplate, int nColorMode, const RECT* pPosition, CWnd* pParent);
    ~CBaseDialog() override;

    // Runs the dialog modally with its template from the resource module. Returns what the dialog
    // ended with, or -1 when the module or the template is missing or the dialog could not be
    // created.
    INT_PTR DoModal() override;

    // Overwrites every byte of the text with zero, its length included. Dialogs call it on every
    // PIN before they drop it.
    static void HidePinFromMemory(CString& strPin);

protected:
    BOOL OnInitDialog() override;

    // Makes control `nId` (0: the dialog itself) smaller by the given numbers of pixels and redraws
    // it at once; negative numbers make it larger. A missing control is ignored.
    void ResizeDlg(UINT nId, int nWidthDecrease, int nHeightDecrease);

    afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor);
    afx_msg void OnSysColorChange();

    // Creates a panel's window as a modeless child of `pParent`, from the resource module. Returns
    // nonzero on success.
    int CreateFromResourceModule(CWnd* pParent);

    DECLARE_MESSAGE_MAP()

private:
    int m_nLeft;
    int m_nTop;
    int m_nColorMode;
    UINT m_nTemplate;
    CBrush m_brBackground;
};
