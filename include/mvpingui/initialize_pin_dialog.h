// CInitializePinDlg: gives a card its first PIN. The user enters it twice; the rules that come of
// the policy values are checked while he types, and OK hands PIN and values to the caller's
// callback. After success the card's unlock code is shown once, as DisplayUnlockCode does.
//
//     CInitializePinDlg dialog(pParent, nullptr, &card, &Initialize, &NeverDisplay, &GetUnlockCode,
//                              "Reader A");
//     if (dialog.DoModal() == IDOK && dialog.m_bUnlockCodePending != 0)
//         ShowUnlockCodeAnotherTime();
//
// A refused PIN is told, and the dialog stays open with what was typed. DoModal returns IDOK once
// the card has its PIN; IDCANCEL when the user cancelled or the card left its reader; -1 when the
// dialog could not be shown. All calls are made on the thread that created the object.
#pragma once

#include <cstdint>

#include <dlgfw/gdi_object.h>
#include <dlgfw/string.h>
#include <mvpingui/caps_lock_sensitive_edit.h>
#include <mvpingui/card_callbacks.h>
#include <mvpingui/detect_card_removed_dialog.h>
#include <mvpingui/pin_policies.h>
#include <mvpingui/rule_panel.h>

class MVPINGUI_API CInitializePinDlg : public VKDetectCardRemovedDlg {
public:
    // pParent           parent window, not owned; may be null
    // pPolicies         the caller's policy values, read here; null: the configuration's. The
    //                   configuration is read at construction
    // pContext          handed to the callbacks
    // pfnInitialize     gives the card the PIN; null: every attempt fails
    // pfnNeverDisplay, pfnGetUnlockCode  see DisplayUnlockCode; may be null
    // pszReader         the reader that holds the card; null or empty: any reader
    CInitializePinDlg(CWnd* pParent, const PINPolicies* pPolicies, void* pContext,
                      MvpInitializeCallback pfnInitialize, MvpNeverDisplayCallback pfnNeverDisplay,
                      MvpGetUnlockCodeCallback pfnGetUnlockCode, const char* pszReader);
    ~CInitializePinDlg() override;

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    void OnOK() override;
    afx_msg LRESULT OnDisplayPINPolicies(WPARAM wParam, LPARAM lParam);
    afx_msg void OnChangeEditNewPin();
    afx_msg void OnMove(int x, int y);

    DECLARE_MESSAGE_MAP()

private:
    bool IsAllowed();
    void ResetToolTip();
    int Initialize();
    void OnInitialized();
    void TellFailure(int nCode);
    void ErasePins();

    CCapsLockSensitiveEdit m_editNewPin;
    CCapsLockSensitiveEdit m_editConfirmPin;
    CString m_strNewPin;
    CString m_strConfirmPin;
    CFont m_boldFont;
    void* m_pContext;
    CString m_strReader;

public:
    // After IDOK: 1 while the user has not accepted the unlock code, because it could not be
    // fetched, is not to be displayed, or was not ticked off; else 0.
    std::int32_t m_bUnlockCodePending = 0;

private:
    MvpNeverDisplayCallback m_pfnNeverDisplay;
    MvpGetUnlockCodeCallback m_pfnGetUnlockCode;
    mvp::RulePanel m_rulePanel;
    PINPolicies m_policies{};
    MvpInitializeCallback m_pfnInitialize;
    bool m_bInitializing = false;
};
