#include "mvpingui/about_dialog.h"

#include <algorithm>

#include <dlgfw/dc.h>
#include <dlgfw/message_map.h>

#include "about/installer_library.h"
#include "about/product_information.h"
#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "dialogs/base/resource_dialog.h"
#include "platform/shell_document.h"
#include "resources/resource_numbers.h"
#include "services/format_text.h"
#include "services/registry_readers.h"
#include "settings/settings.h"

BEGIN_MESSAGE_MAP(CAboutDlg, CDialog)
    ON_WM_CTLCOLOR()
    ON_WM_SYSCOLORCHANGE()
    ON_BN_CLICKED(IDC_ABOUT_CREDITS, &CAboutDlg::OnBnClickedCredits)
END_MESSAGE_MAP()

namespace {

constexpr mvp::TextSetting kProductCode = mvp::settings::kProductCode;
constexpr mvp::TextSetting kLicenceFile = mvp::settings::kLicenceFile;
// Of the version's line, without the terminator.
constexpr int kLongestVersionLine = 255;

mvp::ProductInformation InstalledProduct() {
    const mvp::InstallerLibrary installer;
    if (!installer) {
        vklogLog(g_szLogTag, kLogError, "LoadLibrary msi.dll failed!");
        return {};
    }
    CString code;
    if (readStringFromRegistry_sz(kProductCode.pszKey, kProductCode.pszName, &code) != 0) {
        code = kProductCode.pszDefault;
        vklogLog(g_szLogTag, kLogError, "Using default product code!");
    }
    return mvp::ReadProductInformation(installer.Functions(), code);
}

}  // namespace

CAboutDlg::CAboutDlg(int nColorMode, CWnd* pParent, const char* pszCaption)
    : CDialog(IDD_ABOUT, pParent), m_strCaption(pszCaption), m_nColorMode(nColorMode) {
    m_brBackground.CreateSolidBrush(GetSysColor(COLOR_WINDOW));
}

INT_PTR CAboutDlg::DoModal() {
    return mvp::RunFromResourceModule(IDD_ABOUT, "CAboutDlg::DoModal",
                                      [this](HINSTANCE hModule) { return RunModalFrom(hModule); });
}

BOOL CAboutDlg::OnInitDialog() {
    const mvp::LogScope scope("CAboutDlg::OnInitDialog");
    const BOOL result = CDialog::OnInitDialog();
    SetWindowText(mvp::ResourceString(IDS_ABOUT_TITLE));
    // The box opens whatever becomes of this.
    const mvp::ProductInformation product = mvp::Guarded(
        mvp::ProductInformation(), [] { return InstalledProduct(); },
        mvp::LogException("CAboutDlg::OnInitDialog"));
    SetDlgItemText(IDC_ABOUT_NAME, product.strName.c_str());
    SetDlgItemText(IDC_ABOUT_VERSION,
                   mvp::FormatResourceText(IDS_ABOUT_VERSION_FORMAT, product.strVersion.c_str())
                       .Left(kLongestVersionLine));
    SetDlgItemText(IDC_ABOUT_NOTICE, mvp::ResourceString(IDS_ABOUT_NOTICE));
    SetDlgItemText(IDC_ABOUT_CREDITS_NOTE, mvp::ResourceString(IDS_ABOUT_CREDITS_NOTE));
    SetDlgItemText(IDC_ABOUT_CAPTION, m_strCaption);
    m_boldFont.Attach(mvp::MakeHeadingBold(*this, IDC_ABOUT_NAME).release());
    ShowMark();
    RedrawWindow();
    return result;
}

// As large as its place, which grows with the resolution.
void CAboutDlg::ShowMark() {
    const CRect place = mvp::PlaceOf(*this, IDC_ABOUT_MARK);
    if (HICON icon = mvp::LoadResourceIcon(IDI_ABOUT, std::min(place.Width(), place.Height()))) {
        SendDlgItemMessage(IDC_ABOUT_MARK, STM_SETICON, reinterpret_cast<WPARAM>(icon));
        mvp::KeepFromMirroring(GetDlgItem(IDC_ABOUT_MARK));
    }
}

HBRUSH CAboutDlg::OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor) {
    if (m_nColorMode == 0) {
        return mvp::Guarded(
            HBRUSH{nullptr}, [=, this] { return CDialog::OnCtlColor(pDC, pWnd, nCtlColor); },
            mvp::LogException("CAboutDlg::OnCtlColor"));
    }
    // The texts keep the opaque background they have: it is the dialog's own colour.
    pDC->SetBkColor(GetSysColor(COLOR_WINDOW));
    pDC->SetTextColor(GetSysColor(COLOR_WINDOWTEXT));
    return m_brBackground;
}

void CAboutDlg::OnSysColorChange() {
    mvp::Guarded(
        [this] {
            CDialog::OnSysColorChange();
            m_brBackground.DeleteObject();
            m_brBackground.CreateSolidBrush(GetSysColor(COLOR_WINDOW));
        },
        mvp::LogException("CAboutDlg::OnSysColorChange"));
}

void CAboutDlg::OnBnClickedCredits() {
    const mvp::LogScope scope("CAboutDlg::OnBnClickedCredits");
    CString path;
    readStringFromRegistry_sz(kLicenceFile.pszKey, kLicenceFile.pszName, &path);
    if (path.IsEmpty()) {
        vklogLog(g_szLogTag, kLogError, "readStringFromRegistry_sz S_REG_KEY_LICENCE_FILE failed");
        return;
    }
    const INT_PTR opened = mvp::OpenDocument(nullptr, path);
    if (opened <= mvp::kLastShellError) {
        vklogLog(g_szLogTag, kLogError, "ShellExecute %s failed (%d)", path.GetString(),
                 static_cast<int>(opened));
    }
}
