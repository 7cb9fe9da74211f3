/* mvp::RulePanel: the rule lines of a dialog that takes a new PIN, for the library's own dialogs.
 * It is a member of theirs; a host has no use for it. */
#pragma once

#include <dlgfw/string.h>
#include <dlgfw/wnd.h>
#include <mvpingui/pwd_rule_args.h>

class VKPoliciesDlg;

namespace mvp {

struct WindowFit;

class RulePanel {
public:
    // How the lines look, see VKPoliciesDlg. All numbers are pixels of 96 dpi.
    struct Layout {
        int bUseWindowColor;
        int nTopMargin;
        int nLeftIndent;
        int nLineSpacing;
    };

    RulePanel() = default;
    RulePanel(const RulePanel&) = delete;
    RulePanel& operator=(const RulePanel&) = delete;
    ~RulePanel() { Destroy(); }

    // Makes the panel and its window at the place of control `nPlaceholder` of `dialog`, at (0, 0)
    // without one. False when its window could not be made: without it the rules are judged all
    // the same; without memory for the panel itself there are none. What failed is logged.
    bool Create(CWnd& dialog, int nPlaceholder, const PwdRuleArgs& rules, const Layout& layout);

    // Shows the window and paints it.
    void Show();

    // Paints what has changed.
    void Update();

    // Makes the window and the list of the rules `nWidth` pixels wide.
    void SetWidth(int nWidth);

    // The height of the window in pixels; 0 without one.
    int Height() const;

    // The same of the list of the rules, or of the window where the template lacks the list.
    int ListHeight() const;

    // How `dialog` fits the panel that stands in the place of control `nPlaceholder`.
    WindowFit FitToPlaceholder(const CWnd& dialog, int nPlaceholder) const;

    // Checks the texts as VKPoliciesDlg::VerifyAndUpdatePolicies does, and brings the lines up to
    // date. True without a panel.
    bool Check(const CString& strOld, const CString& strValue, const CString& strNew,
               const CString& strConfirmation);

    // Destroys the window and the panel.
    void Destroy();

    // Null while there is none.
    const VKPoliciesDlg* Dialog() const { return m_pPoliciesDlg; }

private:
    VKPoliciesDlg* m_pPoliciesDlg = nullptr;  // owned
};

}  // namespace mvp
