// VKPoliciesDlg: checks a new PIN against the rules of its card, and shows one line for each rule
// in force with an icon that tells whether it is met.
//
// The panel stands inside a host dialog. The host creates it with `new` and LocCreate, calls
// VerifyAndUpdatePolicies whenever one of its edits changes, enables its OK button by the verdict,
// and destroys the window and deletes the object in its own OnDestroy. The panel only reports: it
// shows no message and takes no input. All calls are made on the host's thread.
//
// The panel is invisible until the first check, or until the host shows it. It is as tall as its
// lines need: the host makes room by its window's rectangle.
//
// No exception leaves a member but the constructor, which lets std::bad_alloc pass, as `new` does,
// and DoDataExchange, which ends by the framework's own. What is stopped is a line of level 1 in
// the log; the result is then the one that lets no PIN through.
#pragma once

#include <cstdint>
#include <memory>

#include <dlgfw/controls.h>
#include <dlgfw/string.h>
#include <mvpingui/base_dialog.h>
#include <mvpingui/pwd_rule_args.h>

namespace mvp {
struct PinRules;
class RuleText;
enum class PinRule : std::uint8_t;
}  // namespace mvp

class MVPINGUI_API VKPoliciesDlg : public CBaseDialog {
public:
    // pRules            the card's rules, copied; null: only the confirmation is checked
    // bUseWindowColor   nonzero: drawn on the system's window colour
    // pPosition         its left and top place the panel in the parent's client area; may be null
    // pParent           the host, not owned
    // nTopMargin, nLeftIndent, nLineSpacing  pixels, of a screen of 96 dpi, above the first line,
    // before and between lines
    VKPoliciesDlg(const PwdRuleArgs* pRules, int bUseWindowColor, const RECT* pPosition,
                  CWnd* pParent, int nTopMargin, int nLeftIndent, int nLineSpacing);
    ~VKPoliciesDlg() override;

    // Creates the panel's window as a child of `pParent`, invisible. Nonzero on success. A text or
    // icon that the template lacks is left out.
    int LocCreate(CWnd* pParent);

    // Checks every rule in force, brings the lines up to date and shows the panel. Length, weakness
    // and digits are judged on `csValue`, sameness and confirmation on `csNewValue`. True when
    // every rule in force is satisfied. The panel's copies of the texts are overwritten.
    //
    // With detail logging on, the three values reach the log in clear.
    bool VerifyAndUpdatePolicies(CString csOldValue, CString csValue, CString csNewValue,
                                 CString csConfirmValue);

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;

    DECLARE_MESSAGE_MAP()

private:
    mvp::PinRules Rules() const;
    static bool IsPinWeak(const CString& strPin);
    static bool IsAlphaPinWeak(const CString& strPin);

    bool CheckAndShow(const CString& csOldValue, const CString& csValue, const CString& csNewValue,
                      const CString& csConfirmValue);
    void ShowRule(mvp::PinRule rule, bool bInForce, bool bSatisfied, const CString& csValue);
    void SetMinPINLen(int nMin, bool bShow, bool bSatisfied);
    void SetMaxPINLen(int nMax, bool bShow, bool bSatisfied);
    void SetWeakPIN(bool bShow, bool bSatisfied);
    void SetPreventSamePIN(bool bShow, bool bSatisfied);
    void SetAlphaPIN(bool bShow, bool bSatisfied);
    void SetConfirmPIN(bool bSatisfied);
    bool HasText(mvp::PinRule rule) const;
    void GiveText(mvp::PinRule rule, const CString& strText);
    void ShowLine(mvp::PinRule rule, bool bShow, bool bSatisfied);
    void SetPolicyIcon(CWnd* pIconControl, HICON hIcon);
    void PutPoliciesInBox();

    CStatic m_groupBox;
    std::unique_ptr<mvp::RuleText[]> m_texts;  // a rule each
    CStatic m_icons[6];                        // likewise
    int m_nTopMargin;
    int m_nLeftIndent;
    int m_nLineSpacing;
    std::uint32_t m_dwMinPINLen = MVP_NO_PIN_LENGTH_RULE;
    std::uint32_t m_dwMaxPINLen = MVP_NO_PIN_LENGTH_RULE;
    bool m_bPreventWeakPIN = false;
    bool m_bPreventAlphaPIN = false;
    bool m_bPreventSamePIN = false;
    unsigned m_nTextsSet = 0;  // a bit for each line that has its text
    // Shared icons of the resource module: never destroyed.
    HICON m_hSatisfied;
    HICON m_hViolated;
};
