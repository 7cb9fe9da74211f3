// CChangePINDialog: the panel that asks for the current PIN, the new one and its confirmation, and
// checks the new one against the card's rules while the user types.
//
// A window that embeds it creates it with `new` and LocCreate and hands it the OK button, which the
// panel enables while every rule is met. GetChangePINInfoFromUser, called with the window's handle,
// then reads the PINs out of the panel. Destroy the window and delete the object when the window
// goes; the destructor overwrites the PINs. All calls are made on the window's thread.
//
// The panel's window is invisible until the host shows it. It is as wide as its template and as
// tall as the rules in force need, which is known once it has been created: the host makes room by
// its window's rectangle. It has no margins of its own; those around the rule lines are the host's
// choice, and the constants below are what suits the panel. The integration guide has a whole
// example.
//
// No exception leaves a member but the constructor, which lets std::bad_alloc pass, as `new` does,
// and leaves nothing behind then, and DoDataExchange, which ends by the framework's own. What is
// stopped is a line of level 1 in the log; the result is then the one that lets no PIN through, and
// the OK button is disabled.
#pragma once

#include <cstdint>

#include <dlgfw/controls.h>
#include <dlgfw/string.h>
#include <mvpingui/base_dialog.h>
#include <mvpingui/caps_lock_sensitive_edit.h>
#include <mvpingui/pwd_rule_args.h>
#include <mvpingui/rule_panel.h>

// The layout of the rule lines in the library's own change-PIN dialog, in pixels of a screen
// of 96 dpi.
constexpr int MVPINGUI_CHANGE_PIN_TOP_MARGIN = 15;
constexpr int MVPINGUI_CHANGE_PIN_LEFT_INDENT = 0;
constexpr int MVPINGUI_CHANGE_PIN_LINE_SPACING = 6;

class MVPINGUI_API CChangePINDialog : public CBaseDialog {
public:
    // nIgnored          accepted and not used
    // bUseWindowColor   nonzero: drawn on the system's window colour
    // bAskCurrentPin    false: the current PIN is not asked for and its edit is hidden
    // pPosition         its left and top place the panel in the parent's client area; may be null
    // pRules            the card's rules, copied; null: only the confirmation is checked
    // pOkButton         the host's OK button, not owned; may be null
    // pParent           the host, not owned
    // nTopMargin, nLeftIndent, nLineSpacing  layout of the rule lines, see VKPoliciesDlg; the
    //                   MVPINGUI_CHANGE_PIN_ constants above if nothing speaks against them
    CChangePINDialog(int nIgnored, int bUseWindowColor, bool bAskCurrentPin, const RECT* pPosition,
                     const PwdRuleArgs* pRules, CButton* pOkButton, CWnd* pParent, int nTopMargin,
                     int nLeftIndent, int nLineSpacing);
    ~CChangePINDialog() override;

    // Creates the panel's window as a child of `pParent`, invisible, and puts the focus on its
    // first edit. Nonzero on success. A label that the template lacks is left out; without one of
    // the three edits there is no panel. Where the template of the rule lines
    // is missing the rules are judged all the same; where there is no memory for them, none is.
    int LocCreate(CWnd* pParent);

    // Checks `value` and the present texts of the edits, brings the rule lines up to date and
    // enables or disables the OK button. Returns whether every rule is met; OK may be disabled all
    // the same, while the current PIN is asked for and empty.
    bool VerifyAndUpdateAllPolicies(CString value);

    // Reads the three edits anew and checks them as VerifyAndUpdateAllPolicies does. Returns
    // whether OK may be obeyed: every rule is met, and the current PIN is there if it is asked for.
    // For the host's OnOK, which Enter and other programs reach while the button is disabled.
    bool ReadAndCheck();

    // Overwrites what CurrentPin and NewPin keep.
    void EraseAllPinBuffers();

    // Takes the Caps-Lock balloons of the three edits down. A host that moves calls it.
    void ResetToolTip();

    // What ReadAndCheck has found good, else what stands in the edits or stood there when the
    // window went. The object keeps it until an edit changes or it is erased. The caller overwrites
    // its copies.
    const CString& CurrentPin() const;
    const CString& NewPin() const;

    // What stands in the edits, of which the panel keeps nothing. False when there is no memory.
    bool ReadPins(CString& strCurrentPin, CString& strNewPin) const;

    // The configuration's "EnableSmallPINEntryPrevention", read when the panel was made; for the
    // module that embeds the panel.
    std::uint32_t SmallPinEntryPrevention() const { return m_dwSmallPINEntryPrevention; }

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    afx_msg void OnEnChangeEditPin();
    afx_msg void OnEnChangeEditPinNew();
    afx_msg void OnEnChangeEditPinConfirm();
    afx_msg void OnEnSetfocusEditPin();
    afx_msg void OnEnSetfocusEditPinNew();
    afx_msg void OnEnSetfocusEditPinConfirm();
    afx_msg void OnDestroy();
    afx_msg void OnMove(int x, int y);

    DECLARE_MESSAGE_MAP()

private:
    void SetUp();
    void SetTexts();
    void CreatePoliciesPanel();
    bool ReadEdits(CString& currentPin, CString& newPin, CString& confirmation) const;
    bool ReadAndJudge(const char* pszFunction, CString& currentPin, CString& newPin);
    bool Judge(CString& currentPin, CString& value, CString& newPin, CString& confirmation);
    void EnableOk(bool bEnable);
    void AfterException(const char* pszFunction);
    const CString& Kept(CString& strPin, const CCapsLockSensitiveEdit& edit) const;
    void ErasePins();

    mutable CString m_csPin;
    mutable CString m_csNewPin;
    CStatic m_labelPin;
    CStatic m_labelNewPin;
    CStatic m_labelConfirm;
    CCapsLockSensitiveEdit m_editPin;
    CCapsLockSensitiveEdit m_editNewPin;
    CCapsLockSensitiveEdit m_editConfirm;
    // Without a record: no rule but the confirmation's.
    PwdRuleArgs m_rules{0, 0, 0, 0, MVP_NO_PIN_LENGTH_RULE, MVP_NO_PIN_LENGTH_RULE, 0};
    int m_bUseWindowColor;
    mvp::RulePanel m_rulePanel;
    CButton* m_pOkButton;
    CStatic m_instruction;
    std::uint32_t m_dwSmallPINEntryPrevention = 0;
    int m_nTopMargin;
    int m_nLeftIndent;
    int m_nLineSpacing;
    bool m_bAskCurrentPin;
};
