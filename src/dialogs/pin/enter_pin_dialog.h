// CEnterPinDlg: asks for a card's PIN.
//
// OK is enabled while the PIN's length lies within the caller's bounds; the dialog closes when the
// card leaves its reader. From OK on it keeps the PIN until it is destroyed, and overwrites it
// then.
#pragma once

#include <cstdint>

#include <dlgfw/controls.h>
#include <dlgfw/dialog.h>
#include <dlgfw/string.h>

#include "mvpingui/caps_lock_sensitive_edit.h"
#include "mvpingui/detect_card_removed_dialog.h"
#include "platform/handle.h"
#include "settings/settings.h"

class CEnterPinDlg : public VKDetectCardRemovedDlg {
public:
    // pParent      parent window, not owned; may be null
    // pszReader    the reader that holds the card; null or empty: any
    // dwMinLength, dwMaxLength  bounds of the PIN's length in bytes, inclusive
    // strPrompt    stands over the edit in place of the dialog's own text, unless it is empty
    CEnterPinDlg(CWnd* pParent, const char* pszReader, std::uint32_t dwMinLength,
                 std::uint32_t dwMaxLength, const CString& strPrompt);
    ~CEnterPinDlg() override;

    // A copy of what was confirmed. The caller overwrites it after use.
    CString GetPinValue() const;

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    // Ends the dialog when the text in the edit is a PIN within the bounds, whatever sent the
    // command.
    void OnOK() override;
    // Logs the creation, and tries it again without a parent when it fails: a parent that cannot be
    // used must not keep the user from entering the PIN.
    BOOL CreateModalWindow(LPCDLGTEMPLATE pTemplate, ModalParent& parent, HINSTANCE hInst) override;
    void OnContextualHelp();
    // F1.
    afx_msg BOOL OnHelpInfo(HELPINFO* pHelpInfo);
    afx_msg void OnEnChangeEditPassword();
    afx_msg void OnMove(int x, int y);
    afx_msg void OnDestroy();

    DECLARE_MESSAGE_MAP()

private:
    // A picture as the configuration has it.
    struct BrandingPicture {
        mvp::TextSetting setting;
        CString strFile = {};  // empty: none
        bool bText = true;
    };
    struct BrandingPictures {
        BrandingPicture bannerLow{mvp::settings::kBannerLowRes};
        BrandingPicture bannerHigh{mvp::settings::kBannerHiRes};
        BrandingPicture progressLow{mvp::settings::kProgressBarLowRes};
        BrandingPicture progressHigh{mvp::settings::kProgressBarHiRes};
    };

    static bool IsHighColorSupported();
    static bool ReadPicture(BrandingPicture& picture);
    static bool GetBrandingBitmaps(BrandingPictures& pictures);
    void TryToInsertBitmap();
    void ShowBranding(const BrandingPicture& branding, int nDefaultPicture, CStatic& picture,
                      mvp::Bitmap& bitmap);
    bool IsAllowed(const CString& strPin) const;

    std::uint32_t m_dwMinLength;
    std::uint32_t m_dwMaxLength;
    CString m_strPrompt;
    bool m_bHighColor = false;
    CString m_strPin;
    CCapsLockSensitiveEdit m_editPin;
    mvp::Bitmap m_hOwnBanner;  // the library's own, made for the resolution
    mvp::Bitmap m_hOwnProgressBar;
    mvp::Bitmap m_hBanner;
    mvp::Bitmap m_hProgressBar;
    CStatic m_banner;
    CStatic m_progressBar;
};
