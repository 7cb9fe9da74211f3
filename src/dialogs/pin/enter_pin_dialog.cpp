#include "dialogs/pin/enter_pin_dialog.h"

#include <array>

#include <dlgfw/data_exchange.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/dialog_looks.h"
#include "dialogs/base/optional_control.h"
#include "dialogs/pin/enter_pin_rules.h"
#include "platform/bitmap_file.h"
#include "platform/window_dpi.h"
#include "resources/resource_numbers.h"
#include "services/help_topic.h"
#include "services/log.h"
#include "services/registry_value.h"
#include "services/resource_module.h"
#include "services/wipe.h"

BEGIN_MESSAGE_MAP(CEnterPinDlg, VKDetectCardRemovedDlg)
    ON_EN_CHANGE(IDC_ENTER_PIN_EDIT, &CEnterPinDlg::OnEnChangeEditPassword)
    ON_WM_DESTROY()
    ON_WM_MOVE()
    ON_WM_HELPINFO()
END_MESSAGE_MAP()

namespace {

constexpr int kHelpTopic = 1015;
constexpr DWORD kPathCapacity = mvp::settings::kBannerHiRes.nCapacity;  // the others', too

bool IsFile(const char* pszPath) {
    const DWORD attributes = GetFileAttributesA(pszPath);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// For the log texts that print a pointer or handle whole.
void* Pointer(void* p) {
    return p;
}

// Takes the picture that the system loaded for a control of the template, which not every system
// frees with the control.
mvp::Bitmap TakePicture(CWnd& dialog, int nControl) {
    return mvp::Bitmap(reinterpret_cast<HBITMAP>(
        dialog.SendDlgItemMessage(nControl, STM_SETIMAGE, IMAGE_BITMAP, 0)));
}

// Away from 96 dpi the system would stretch what it has loaded: the control gets one that is made
// for its size, and that `picture` keeps.
void FitPicture(CWnd& dialog, int nControl, UINT nBitmap, mvp::Bitmap& picture) {
    const int dpi = mvp::WindowDpi(dialog.m_hWnd);
    CWnd* control = dialog.GetDlgItem(nControl);
    if (dpi == mvp::kDesignDpi || control == nullptr) {
        return;
    }
    CRect client;
    control->GetClientRect(&client);
    picture = mvp::LoadResourcePicture(nBitmap, dpi, mvp::Scaling::Smooth,
                                       mvp::PixelSize{client.Width(), client.Height()});
    if (picture) {
        const mvp::Bitmap loaded(reinterpret_cast<HBITMAP>(control->SendMessage(
            STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(picture.get()))));
    }
}

// A control may show a copy of what it was given.
void DropPicture(CWnd& dialog, int nControl, mvp::Bitmap& picture) {
    const mvp::Bitmap shown = TakePicture(dialog, nControl);
    if (shown.get() == picture.get()) {
        picture.release();
    }
    picture.reset();
}

// The system leaves a control whose picture the resource module lacks empty, and says nothing.
void LogMissingPicture(CWnd& dialog, int nControl) {
    if (dialog.GetDlgItem(nControl) != nullptr &&
        dialog.SendDlgItemMessage(nControl, STM_GETIMAGE, IMAGE_BITMAP, 0) == 0) {
        vklogLog(g_szLogTag, kLogError,
                 "The picture of control %d is missing from the resource module", nControl);
    }
}

}  // namespace

CEnterPinDlg::CEnterPinDlg(CWnd* pParent, const char* pszReader, std::uint32_t dwMinLength,
                           std::uint32_t dwMaxLength, const CString& strPrompt)
    : VKDetectCardRemovedDlg(IDD_ENTER_PIN, pParent, pszReader),
      m_dwMinLength(dwMinLength),
      m_dwMaxLength(dwMaxLength),
      m_strPrompt(strPrompt) {
    const mvp::LogScope scope("CEnterPinDlg");
    vklogLog(g_szLogTag, kLogInfo, "CEnterPinDlg: pParent = %x, Reader = %s", mvp::LowBits(pParent),
             pszReader != nullptr ? pszReader : "");
    m_bHighColor = IsHighColorSupported();
}

CEnterPinDlg::~CEnterPinDlg() {
    const mvp::LogScope scope("~CEnterPinDlg");
    HidePinFromMemory(m_strPin);
}

CString CEnterPinDlg::GetPinValue() const {
    vklogLog(g_szLogTag, kLogDetail, "CEnterPinDlg::GetPinValue");
    return m_strPin;
}

void CEnterPinDlg::DoDataExchange(CDataExchange* pDX) {
    VKDetectCardRemovedDlg::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_ENTER_PIN_EDIT, m_editPin);
    mvp::BindIfThere(pDX, IDC_ENTER_PIN_BRAND_BANNER, m_banner);
    mvp::BindIfThere(pDX, IDC_ENTER_PIN_BRAND_PROGRESS, m_progressBar);
}

BOOL CEnterPinDlg::OnInitDialog() {
    const mvp::LogScope scope("CEnterPinDlg::OnInitDialog");
    VKDetectCardRemovedDlg::OnInitDialog();
    if (!m_strPrompt.IsEmpty()) {
        SetDlgItemText(IDC_ENTER_PIN_PROMPT, m_strPrompt);
    }
    for (const int picture : {IDC_ENTER_PIN_BANNER, IDC_ENTER_PIN_PROGRESS,
                              IDC_ENTER_PIN_BRAND_BANNER, IDC_ENTER_PIN_BRAND_PROGRESS}) {
        mvp::KeepFromMirroring(GetDlgItem(picture));
        // It has no text. Not every system keeps the number of the picture out of it, which a
        // screen reader would then say.
        ::DefWindowProcA(::GetDlgItem(m_hWnd, picture), WM_SETTEXT, 0,
                         reinterpret_cast<LPARAM>(""));
    }
    LogMissingPicture(*this, IDC_ENTER_PIN_BANNER);
    LogMissingPicture(*this, IDC_ENTER_PIN_PROGRESS);
    FitPicture(*this, IDC_ENTER_PIN_BANNER, IDB_ENTER_PIN_BANNER, m_hOwnBanner);
    FitPicture(*this, IDC_ENTER_PIN_PROGRESS, IDB_ENTER_PIN_PROGRESS, m_hOwnProgressBar);
    TryToInsertBitmap();
    mvp::BringToFront(*this);
    OnEnChangeEditPassword();
    return TRUE;
}

void CEnterPinDlg::OnOK() {
    const mvp::LogScope scope("CEnterPinDlg::OnOK");
    // What has ended the dialog before stands: another OK judges nothing anew.
    if ((m_nFlags & WF_CONTINUEMODAL) == 0) {
        return;
    }
    if (!m_editPin.ReadSecret(m_strPin) || !IsAllowed(m_strPin)) {
        mvp::Wipe(m_strPin);
        return;
    }
    StopDetectingRemoveEvent();
    EndDialog(IDOK);
}

bool CEnterPinDlg::IsAllowed(const CString& strPin) const {
    return mvp::IsPinLengthAllowed(static_cast<std::size_t>(strPin.GetLength()), m_dwMinLength,
                                   m_dwMaxLength);
}

BOOL CEnterPinDlg::CreateModalWindow(LPCDLGTEMPLATE pTemplate, ModalParent& parent,
                                     HINSTANCE hInst) {
    // These lines have always carried the help handler's name; log readers search for it.
    vklogLog(g_szLogTag, kLogInfo,
             "CEnterPinDlg::OnContextualHelp: this:%p,hWndParent:%p,m_hWnd:%p,hInst:%p",
             Pointer(this), Pointer(parent.hWnd), Pointer(m_hWnd), Pointer(hInst));
    vklogLog(g_szLogTag, kLogInfo,
             "CEnterPinDlg::OnContextualHelp: CreateDlgIndirect with hWndParent");
    BOOL created = VKDetectCardRemovedDlg::CreateModalWindow(pTemplate, parent, hInst);
    // A dialog that was made and ended at once is no failure of its parent.
    if (!created && (m_nFlags & WF_CONTINUEMODAL) != 0) {
        vklogLog(g_szLogTag, kLogInfo,
                 "CEnterPinDlg::OnContextualHelp: Now try to CreateDlgIndirect with NULL");
        // The disabled parent stays disabled: a window that cannot own a dialog is not in a state
        // to be given back to the user.
        parent = {nullptr, FALSE};
        created = VKDetectCardRemovedDlg::CreateModalWindow(pTemplate, parent, hInst);
    }
    if (created) {
        vklogLog(
            g_szLogTag, kLogInfo,
            "CEnterPinDlg::OnContextualHelp: CreateDlgIndirect success (Flags 0x%x, m_hWnd:%p)",
            m_nFlags, Pointer(m_hWnd));
    }
    return created;
}

void CEnterPinDlg::OnEnChangeEditPassword() {
    vklogLog(g_szLogTag, kLogDetail, "CEnterPinDlg::OnEnChangeEditPassword:BEG");
    // What OK has taken stays as it was.
    if ((m_nFlags & WF_CONTINUEMODAL) != 0) {
        // While the dialog is open the PIN stands in the edit alone.
        CString pin;
        m_editPin.ReadSecret(pin);
        const bool allowed = IsAllowed(pin);
        mvp::Wipe(pin);
        if (CWnd* ok = GetDlgItem(IDOK)) {
            ok->EnableWindow(allowed);
        }
    }
    vklogLog(g_szLogTag, kLogDetail, "CEnterPinDlg::OnEnChangeEditPassword:END");
}

void CEnterPinDlg::OnMove(int x, int y) {
    const mvp::LogScope scope("CEnterPinDlg::OnMove");
    VKDetectCardRemovedDlg::OnMove(x, y);
    m_editPin.ResetToolTip();
}

void CEnterPinDlg::OnDestroy() {
    DropPicture(*this, IDC_ENTER_PIN_BANNER, m_hOwnBanner);
    DropPicture(*this, IDC_ENTER_PIN_PROGRESS, m_hOwnProgressBar);
    VKDetectCardRemovedDlg::OnDestroy();
}

bool CEnterPinDlg::IsHighColorSupported() {
    const mvp::LogScope scope("CEnterPinDlg::IsHighColorSupported");
    const mvp::MemoryDc screen(CreateCompatibleDC(nullptr));
    return GetDeviceCaps(screen.get(), BITSPIXEL) >= mvp::kHighColorBitsPerPixel;
}

// Returns whether there is one.
bool CEnterPinDlg::ReadPicture(BrandingPicture& picture) {
    // One byte more than is offered: a value that fills the buffer may come without a terminator.
    std::array<char, kPathCapacity + 1> buffer{};
    const mvp::RegistryRead read =
        mvp::ReadRegistry(mvp::ValueOf(picture.setting), buffer.data(), kPathCapacity);
    if (!read) {
        if (read.failed != mvp::RegistryStep::OpenKey && read.error != ERROR_FILE_NOT_FOUND) {
            mvp::LogIgnoredSetting(picture.setting, read.error == ERROR_MORE_DATA
                                                        ? "the value is longer than 260 bytes"
                                                        : "the value cannot be read");
        }
        return false;
    }
    picture.bText = read.type == REG_SZ || read.type == REG_EXPAND_SZ;
    if (buffer.front() == '\0') {
        if (!picture.bText) {
            mvp::LogIgnoredSetting(picture.setting, "the value is not a text");
        }
        return false;
    }
    picture.strFile = buffer.data();
    return true;
}

bool CEnterPinDlg::GetBrandingBitmaps(BrandingPictures& pictures) {
    const mvp::LogScope scope("CEnterPinDlg::GetBrandingBitmaps");
    bool found = ReadPicture(pictures.bannerLow);
    found |= ReadPicture(pictures.bannerHigh);
    found |= ReadPicture(pictures.progressLow);
    found |= ReadPicture(pictures.progressHigh);
    return found;
}

void CEnterPinDlg::TryToInsertBitmap() {
    const mvp::LogScope scope("CEnterPinDlg::TryToInsertBitmap");
    m_banner.ShowWindow(SW_HIDE);
    m_progressBar.ShowWindow(SW_HIDE);
    BrandingPictures pictures;
    if (!GetBrandingBitmaps(pictures)) {
        return;
    }
    ShowBranding(m_bHighColor ? pictures.bannerHigh : pictures.bannerLow, IDC_ENTER_PIN_BANNER,
                 m_banner, m_hBanner);
    ShowBranding(m_bHighColor ? pictures.progressHigh : pictures.progressLow,
                 IDC_ENTER_PIN_PROGRESS, m_progressBar, m_hProgressBar);
}

void CEnterPinDlg::ShowBranding(const BrandingPicture& branding, int nDefaultPicture,
                                CStatic& picture, mvp::Bitmap& bitmap) {
    const CString& file = branding.strFile;
    CWnd* fallback = GetDlgItem(nDefaultPicture);
    if (file.IsEmpty() || fallback == nullptr) {
        return;
    }
    bitmap = mvp::LoadBitmapFile(file);
    if (!bitmap) {
        picture.ShowWindow(SW_HIDE);
        mvp::LogIgnoredSetting(branding.setting, mvp::WhyNoPicture(static_cast<LPCSTR>(file),
                                                                   branding.bText, IsFile(file)));
        return;
    }
    fallback->ShowWindow(SW_HIDE);
    picture.SendMessage(STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap.get()));
    CRect client;
    fallback->GetClientRect(&client);
    picture.SetWindowPos(nullptr, 0, 0, client.Width(), client.Height(), SWP_NOMOVE | SWP_NOZORDER);
    picture.ShowWindow(SW_SHOW);
}

void CEnterPinDlg::OnContextualHelp() {
    vklogLog(g_szLogTag, kLogDetail, "CEnterPinDlg::OnContextualHelp");
    DoDisplayTopic(kHelpTopic);
}

BOOL CEnterPinDlg::OnHelpInfo(HELPINFO* /*pHelpInfo*/) {
    OnContextualHelp();
    return TRUE;
}
