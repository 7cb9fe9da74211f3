// CUnlockCardDlg: unblocks a card whose PIN is blocked. The user enters the card's unlock code and
// a new PIN twice; the rules are checked while he types, and OK hands both to the caller's
// callback.
//
//     CUnlockCardDlg dialog(pParent, &rules, &card, &Unlock, &GetChallenge, "Reader A");
//     const bool unlocked = dialog.DoModal() == IDOK;
//
// Where the challenge callback succeeds, the dialog shows the challenge and the help desk's number:
// the help desk answers with the unlock code. Otherwise the user has a fixed code.
//
// A refused attempt is told, and the dialog stays open with what was typed; how many the card
// allows is the callback's affair. DoModal returns IDOK once the card is unlocked; IDCANCEL when
// the user cancelled or the card left its reader; -1 when the dialog could not be shown. A card
// that is pulled while the callback runs, or while its failure is shown, ends the dialog after
// that.
//
// All calls are made on the thread that created the object; the dialog runs there. What was typed
// is overwritten when it has been handed over, and in the edits when their window goes.
#pragma once

#include <dlgfw/gdi_object.h>
#include <dlgfw/string.h>
#include <mvpingui/base_dialog.h>
#include <mvpingui/caps_lock_sensitive_edit.h>
#include <mvpingui/card_callbacks.h>
#include <mvpingui/pwd_rule_args.h>
#include <mvpingui/removal_watch.h>
#include <mvpingui/rule_panel.h>

class MVPINGUI_API CUnlockCardDlg : public CBaseDialog {
public:
    // pParent         parent window, not owned; may be null
    // pRules          the card's rules; those of the lengths, digits and weakness are copied. Null:
    //                 only the confirmation is checked
    // pContext        handed to the callbacks
    // pfnUnlock       unblocks the card; null: every attempt fails
    // pfnGetChallenge called once, when the dialog opens; null: the card takes a fixed code
    // pszReader       the reader that holds the card; null or empty: any reader
    CUnlockCardDlg(CWnd* pParent, const PwdRuleArgs* pRules, void* pContext,
                   MvpUnlockCallback pfnUnlock, MvpChallengeCallback pfnGetChallenge,
                   const char* pszReader);
    ~CUnlockCardDlg() override;

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    void OnOK() override;
    void OnCancel() override;
    // Shows the help topic; F1 does it.
    virtual void OnContextualHelp();
    afx_msg BOOL OnHelpInfo(HELPINFO* pHelpInfo);
    afx_msg void OnChangeEdit();
    afx_msg void OnBnClickedStaticNp();
    afx_msg LRESULT OnDisplayPINPolicies(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnCardEvent(WPARAM wParam, LPARAM lParam);
    afx_msg void OnDestroy();
    afx_msg void OnMove(int x, int y);

    DECLARE_MESSAGE_MAP()

private:
    // What was typed; overwritten when it goes.
    struct Entries {
        CString strNewPin;
        CString strConfirmPin;
        CString strUnlockCode;
        Entries() = default;
        Entries(const Entries&) = delete;
        Entries& operator=(const Entries&) = delete;
        ~Entries();
    };

    void ShowHelpDesk();
    void ChooseMode();
    void ShowStaticMode();
    void ShowChallenge(const CString& strChallenge);
    void MoveUpWindow(int nId, int dy);
    bool HasPanel() const;
    void CreatePanel();
    bool ReadEntries(Entries& entries) const;
    bool IsAllowed(const Entries& entries);
    void EnableOk(bool bEnable);
    int Unlock(const Entries& entries);
    void OnUnlocked();
    void TellFailure(int nCode);
    void TryToUnlock();

    CCapsLockSensitiveEdit m_editNewPin;
    CCapsLockSensitiveEdit m_editConfirmPin;
    void* m_pContext;
    CFont m_boldFont;
    mvp::RemovalWatch m_removalWatch;
    CString m_strReader;
    mvp::RulePanel m_rulePanel;
    PwdRuleArgs m_rules{0, 0, 0, 0, MVP_NO_PIN_LENGTH_RULE, MVP_NO_PIN_LENGTH_RULE, 0};
    MvpUnlockCallback m_pfnUnlock;
    MvpChallengeCallback m_pfnGetChallenge;
    // Typed in clear, but as secret as a PIN.
    CCapsLockSensitiveEdit m_editUnlockCode;
    bool m_bUnlocking = false;
};
