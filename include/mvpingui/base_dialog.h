// CBaseDialog: the common base of the library's dialogs and child panels. It takes its template
// from the resource module, stands where it is told, can draw itself in the window colour, and
// knows how to overwrite a PIN.
//
// Exceptions. No member of this library's classes lets one out: it is logged, and the call gives
// what its comment says of failure. Only a constructor throws, std::bad_alloc when there is no
// memory: there is no object then to tell it. DoDataExchange, which only the framework calls, may
// throw as well: the framework stops it.
#pragma once

#include <dlgfw/dialog.h>
#include <dlgfw/gdi_object.h>
#include <mvpingui/export.h>

class MVPINGUI_API CBaseDialog : public CDialog {
public:
    // nTemplate   number of the dialog template in the resource module
    // nColorMode  0: the framework's colours; otherwise a background in the system's window colour
    // pPosition   its left and top place the window: screen coordinates for a dialog, the parent's
    //             client coordinates for a child panel. Null: a dialog stands over the middle of
    //             its owner, or of the work area, and a child panel at (0, 0)
    // pParent     parent window, not owned; may be null
    CBaseDialog(UINT nTemplate, int nColorMode, const RECT* pPosition, CWnd* pParent);
    ~CBaseDialog() override;

    // Runs the dialog modally with its template from the resource module. Returns what the dialog
    // ended with, or -1 when the module or the template is missing or the dialog could not be
    // created.
    INT_PTR DoModal() override;

    // Overwrites every byte of the text with zero and empties it. Dialogs call it on every PIN
    // before they drop it.
    static void HidePinFromMemory(CString& strPin);

protected:
    // Ends the dialog with -1 and returns FALSE when the first data exchange fails.
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
    bool m_bPlaced;
};
