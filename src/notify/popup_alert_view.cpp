// CPopupAlert: what is seen of it. The skin, the controls on it, and what a screen reader is told.
#include <windows.h>

#include <optional>
#include <utility>

#include "mvpingui/popup_alert.h"
#include "notify/popup_controls.h"
#include "notify/popup_kinds.h"
#include "notify/popup_region.h"
#include "platform/bitmap_file.h"
#include "platform/handle.h"
#include "platform/high_contrast.h"
#include "platform/scaled_bitmap.h"
#include "platform/window_dpi.h"
#include "resources/resource_numbers.h"
#include "richtext/control/html_static.h"
#include "services/log.h"
#include "services/named_accessible.h"
#include "services/resource_module.h"

namespace {

constexpr DWORD kSlideMilliseconds = 500;
// In pixels of 96 dpi, as all that follows.
constexpr int kSmallFontHeight = 11;
constexpr int kBulletSize = 18;
constexpr int kIconSize = 32;
constexpr POINT kIconPlace{12, 15};

// The skin is a light picture, whatever the system's colours are: so the text on it has colours of
// its own as well, as long as the skin is shown.
constexpr COLORREF kLinkColour = RGB(0x00, 0x00, 0xFF);

HICON g_hPopupIcon = nullptr;

// 65535 as the unsigned number that the caller means.
bool AreColours(short nRed, short nGreen, short nBlue) {
    return nRed != -1 && nGreen != -1 && nBlue != -1;
}

// What is cut out by its colour has that colour still, when it is scaled.
mvp::Scaling ScalingFor(short nRed, short nGreen, short nBlue) {
    return AreColours(nRed, nGreen, nBlue) ? mvp::Scaling::Exact : mvp::Scaling::Smooth;
}

LOGFONTA SmallFont(const CWnd& control, int nDpi) {
    auto* font = reinterpret_cast<HFONT>(control.SendMessage(WM_GETFONT));
    LOGFONTA description{};
    GetObjectA(font != nullptr ? font : GetStockObject(DEFAULT_GUI_FONT), sizeof description,
               &description);
    description.lfHeight = -mvp::PixelsAt(nDpi, kSmallFontHeight);
    return description;
}

void CopyBullet(HDC hSkin, UINT nBitmapID, const std::optional<mvp::SkinPoint>& place, int nDpi) {
    if (!place) {
        return;
    }
    const int size = mvp::PixelsAt(nDpi, kBulletSize);
    const mvp::Bitmap bullet = mvp::LoadResourcePicture(nBitmapID, nDpi);
    const mvp::MemoryDc source(CreateCompatibleDC(hSkin));
    const mvp::DcSelection selection(source.get(), bullet.get());
    BitBlt(hSkin, place->nX, place->nY, size, size, source.get(), 0, 0, SRCCOPY);
}

// The two styles of a face, as the sum of 1, 2 and 4.
void MakeStyle(CFont& font, LOGFONTA description, int nStyle) {
    description.lfWeight = (nStyle & 1) != 0 ? FW_BOLD : FW_NORMAL;
    description.lfItalic = (nStyle & 2) != 0 ? TRUE : FALSE;
    description.lfUnderline = (nStyle & 4) != 0 ? TRUE : FALSE;
    font.CreateFontIndirect(&description);
}

// A control without a window is neither shown nor hidden.
void ShowIf(const CHtmlStatic* pControl, bool bShow) {
    if (pControl != nullptr) {
        ::ShowWindow(pControl->m_hWnd, bShow ? SW_SHOW : SW_HIDE);
    }
}

}  // namespace

int CPopupAlert::SetSkin(UINT nBitmapID, bool bLinkBullet, bool bHelpBullet, short nRed,
                         short nGreen, short nBlue) {
    const mvp::LogScope scope("CPopupAlert::SetSkin");
    m_skinScaling = ScalingFor(nRed, nGreen, nBlue);
    PrepareBackgroundBitmap(nBitmapID, bLinkBullet, bHelpBullet);
    m_bFileSkin = false;
    MeasureSkin();
    m_bands = mvp::BandsOfResourceSkin(m_nSkinWidth, m_nSkinHeight, Dpi());
    CutOut(nRed, nGreen, nBlue);
    if (HasProgressBar()) {
        const CRect bar = mvp::RectOf(mvp::PlaceProgressBar(m_nSkinWidth, m_nSkinHeight, Dpi()));
        ::SetWindowPos(m_hProgressBar, nullptr, bar.left, bar.top, bar.Width(), bar.Height(),
                       SWP_NOZORDER);
    }
    return 1;
}

int CPopupAlert::SetSkin(const char* pszFileName, short nRed, short nGreen, short nBlue) {
    const mvp::LogScope scope("CPopupAlert::SetSkin");
    mvp::Bitmap skin = pszFileName != nullptr ? mvp::LoadBitmapFile(pszFileName) : mvp::Bitmap();
    if (!skin) {
        return 0;
    }
    m_skinScaling = ScalingFor(nRed, nGreen, nBlue);
    m_background.DeleteObject();
    m_background.Attach(mvp::ScaledTo(Dpi(), std::move(skin), m_skinScaling).release());
    m_bFileSkin = true;
    MeasureSkin();
    m_bands = mvp::BandsOfFileSkin(m_nSkinWidth, m_nSkinHeight, Dpi());
    CutOut(nRed, nGreen, nBlue);
    return 1;
}

int CPopupAlert::Dpi() const {
    return mvp::WindowDpi(m_hWnd);
}

// Without a skin there is nothing to see.
void CPopupAlert::MeasureSkin() {
    BITMAP skin{};
    m_background.GetBitmap(&skin);
    m_nSkinWidth = skin.bmWidth;
    m_nSkinHeight = skin.bmHeight;
}

void CPopupAlert::CutOut(short nRed, short nGreen, short nBlue) {
    if (!AreColours(nRed, nGreen, nBlue)) {
        return;
    }
    mvp::Region region(GenerateRegion(m_background, static_cast<BYTE>(nRed),
                                      static_cast<BYTE>(nGreen), static_cast<BYTE>(nBlue)));
    m_hRegion = SetWindowRgn(region.get(), TRUE) != 0 ? region.release() : nullptr;
}

int CPopupAlert::PrepareBackgroundBitmap(UINT nBitmapID, bool bLinkBullet, bool bHelpBullet) {
    const mvp::LogScope scope("CPopupAlert::PrepareBackgroundBitmap");
    m_background.DeleteObject();
    const int dpi = Dpi();
    mvp::Bitmap skin = mvp::LoadResourcePicture(nBitmapID, dpi, m_skinScaling);
    if (!skin) {
        return 0;
    }
    const bool bullets = !HasProgressBar();
    const mvp::SkinBullets places =
        mvp::PlaceBullets(mvp::SizeOf(skin).nHeight, bullets && bLinkBullet,
                          bullets && bHelpBullet && m_bDisplayHelp != FALSE, dpi);
    {
        const mvp::MemoryDc dc(CreateCompatibleDC(nullptr));
        const mvp::DcSelection selection(dc.get(), skin.get());
        CopyBullet(dc.get(), IDB_POPUP_LINK_BULLET, places.link, dpi);
        CopyBullet(dc.get(), IDB_POPUP_HELP_BULLET, places.help, dpi);
    }
    m_background.Attach(skin.release());
    return 1;
}

HRGN CPopupAlert::GenerateRegion(HBITMAP hBitmap, BYTE red, BYTE green, BYTE blue) {
    const mvp::LogScope scope("CPopupAlert::GenerateRegion");
    WORD width = 0;
    WORD height = 0;
    const mvp::Pixels pixels(Get24BitPixels(hBitmap, &width, &height));
    return mvp::RegionOfPixels(pixels.get(), width, height, red, green, blue).release();
}

BYTE* CPopupAlert::Get24BitPixels(HBITMAP hBitmap, WORD* pwWidth, WORD* pwHeight) {
    const mvp::LogScope scope("CPopupAlert::Get24BitPixels");
    return mvp::Get24BitPixels(hBitmap, *pwWidth, *pwHeight).release();
}

// The title stands below the message and above the links, so it has no place beside a busy bar.
BOOL CPopupAlert::OnEraseBkgnd(CDC* pDC) {
    const mvp::LogScope scope("CPopupAlert::OnEraseBkgnd");
    DrawSkin(pDC->m_hDC);
    ShowIf(m_pTitle.get(), !HasProgressBar());
    if (g_hPopupIcon != nullptr) {
        const int size = mvp::PixelsAt(Dpi(), kIconSize);
        ::DrawIconEx(pDC->m_hDC, mvp::PixelsAt(Dpi(), kIconPlace.x),
                     mvp::PixelsAt(Dpi(), kIconPlace.y), g_hPopupIcon, size, size, 0, nullptr,
                     DI_NORMAL);
    }
    return TRUE;
}

// A picture has colours that the system does not have.
void CPopupAlert::DrawSkin(HDC hDC) const {
    if (m_bHighContrast) {
        const RECT all{0, 0, m_nSkinWidth, m_nSkinHeight};
        ::FillRect(hDC, &all, GetSysColorBrush(COLOR_WINDOW));
        return;
    }
    const mvp::MemoryDc skin(CreateCompatibleDC(hDC));
    const mvp::DcSelection selection(skin.get(), m_background.m_hObject);
    ::BitBlt(hDC, 0, 0, m_nSkinWidth, m_nSkinHeight, skin.get(), 0, 0, SRCCOPY);
}

bool CPopupAlert::DressAs(int iWndType, CString& csText, DWORD& dwDuration) {
    const mvp::PopupKind kind = mvp::PopupKindOf(iWndType);
    if (!kind.IsKnown()) {
        vklogLog(g_szLogTag, kLogInfo, "CPopupAlert::InitWindow: iWndType = %d", iWndType);
    } else {
        vklogLog(g_szLogTag, kLogInfo, "%s", kind.pszInitLog);
    }
    // Without a skin it is as large as its frame, and says nothing.
    bool result = SetSkin(IDB_POPUP_SKIN, kind.bLinkBullet, kind.bHelpBullet, -1, -1, -1) == 1 &&
                  m_background.m_hObject != nullptr;
    if (kind.IsKnown()) {
        result = GetRegistryParameters(csText, &dwDuration, iWndType) && result;
        m_motion.SetSlides(kSlideMilliseconds, kSlideMilliseconds);
        SetTextColor(0x000000, 0xB59285);
    }
    g_hPopupIcon = kind.nIcon != 0 ? mvp::LoadResourceIcon(static_cast<UINT>(kind.nIcon),
                                                           mvp::PixelsAt(Dpi(), kIconSize))
                                   : nullptr;
    return result;
}

void CPopupAlert::CreateControls(int iWndType) {
    const mvp::PopupKind kind = mvp::PopupKindOf(iWndType);
    const bool help = kind.bHelpBullet && m_bDisplayHelp;
    const bool links = !HasProgressBar();
    const mvp::NoticeControls places = mvp::PlaceControls(m_bands, help);

    // In the order in which they are read, from the top to the bottom.
    m_bPassword = false;
    m_pMessage = CreateText(mvp::RectOf(places.message), mvp::kTextId, mvp::kTextMargins);
    m_pMessage->SetWindowText(m_csText);
    LOGFONTA description = SmallFont(*m_pMessage, Dpi());
    // The controls draw with the description of a font; they do not need the font itself.
    CFont smallFont;
    smallFont.CreateFontIndirect(&description);
    m_pMessage->SetFont(&smallFont);

    description.lfWeight = FW_BOLD;
    CFont boldFont;
    boldFont.CreateFontIndirect(&description);
    m_pTitle = CreateText(mvp::RectOf(places.title), mvp::kTextId, mvp::kLinkMargins);
    m_pTitle->SetWindowText(mvp::ResourceString(IDS_POPUP_TITLE));
    m_pTitle->SetFont(&boldFont);

    m_pCloseLink = CreateText(mvp::RectOf(places.closeLink), mvp::kLinkId, mvp::kLinkMargins);
    MakeLink(*m_pCloseLink, IDS_POPUP_CLOSE_LINK, WM_POPUP_LINK_CLICKED, smallFont);

    m_pHelpLink = CreateText(mvp::RectOf(places.helpLink), mvp::kLinkId, mvp::kLinkMargins);
    MakeLink(*m_pHelpLink, IDS_POPUP_HELP_LINK, WM_POPUP_HELP_CLICKED, smallFont);
    ShowLinks(links && kind.bLinkBullet, links && help);
}

void CPopupAlert::ShowLinks(bool bClose, bool bHelp) {
    ShowIf(m_pCloseLink.get(), bClose);
    ShowIf(m_pHelpLink.get(), bHelp);
}

std::unique_ptr<CHtmlStatic> CPopupAlert::CreateText(const RECT& place, UINT nId, SIZE margins) {
    auto text = std::make_unique<CHtmlStatic>();
    text->Create("", WS_CHILD | WS_VISIBLE, place, this, nId);
    text->SetMargins(mvp::PixelsAt(Dpi(), margins.cx), mvp::PixelsAt(Dpi(), margins.cy));
    text->SetDrawingMode(CHtmlStatic::kTransparent);
    Colour(*text, m_crNormal, kLinkColour);
    return text;
}

void CPopupAlert::Colour(CHtmlStatic& text, COLORREF crText, COLORREF crLink) const {
    if (m_bHighContrast) {
        crText = GetSysColor(COLOR_WINDOWTEXT);
        crLink = GetSysColor(COLOR_HOTLIGHT);
    }
    text.SetColors(crText, crLink, crLink);
}

// The system's colours, or that they are to be used, may be others now.
void CPopupAlert::FollowColours() {
    const bool former = std::exchange(m_bHighContrast, mvp::IsHighContrast());
    if (!former && !m_bHighContrast) {
        return;
    }
    for (CHtmlStatic* text : {m_pTitle.get(), m_pCloseLink.get(), m_pHelpLink.get()}) {
        if (text != nullptr) {
            Colour(*text, m_crNormal, kLinkColour);
        }
    }
    if (m_pMessage != nullptr) {
        ColourMessage();
    }
    ::RedrawWindow(m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void CPopupAlert::ColourMessage() const {
    Colour(*m_pMessage, m_bPassword ? mvp::kPasswordColour : m_crNormal,
           m_bPassword ? mvp::kPasswordColour : kLinkColour);
}

void CPopupAlert::MakeLink(CHtmlStatic& control, UINT nTextId, UINT nMessage, CFont& font) {
    control.SetLinkText(CHtmlStatic::LinkKind::Msg, "msg", mvp::ResourceString(nTextId));
    control.SetLinkCallback(m_hWnd, nMessage, 0);
    control.SetFont(&font);
}

bool CPopupAlert::HasProgressBar() const {
    return m_hProgressBar != nullptr && ::IsWindow(m_hProgressBar);
}

void CPopupAlert::SetTextFont(const char* pszFont, int nSize, int nNormalStyle,
                              int nSelectedStyle) {
    const mvp::LogScope scope("CPopupAlert::SetTextFont");
    CFont font;
    LOGFONTA description{};
    if (font.CreatePointFont(nSize, pszFont) && font.GetLogFont(&description) != 0) {
        MakeStyle(m_normalFont, description, nNormalStyle);
        MakeStyle(m_selectedFont, description, nSelectedStyle);
    }
}

void CPopupAlert::SetTextColor(COLORREF crNormal, COLORREF crSelected) {
    const mvp::LogScope scope("CPopupAlert::SetTextColor");
    m_crNormal = crNormal;
    m_crSelected = crSelected;
    if (m_hWnd != nullptr) {
        RedrawWindow();
    }
}

void CPopupAlert::SetTextRect(RECT rect) {
    const mvp::LogScope scope("CPopupAlert::SetTextRect");
    m_bands.text = {rect.left, rect.top, rect.right, rect.bottom};
}

// Title first, as it says who speaks.
std::string CPopupAlert::SpokenText() {
    std::string spoken;
    if (m_pTitle != nullptr && !HasProgressBar()) {
        spoken = m_pTitle->Drawer().PlainText();
    }
    const std::string message =
        m_pMessage != nullptr ? m_pMessage->Drawer().PlainText() : std::string();
    return spoken + (spoken.empty() || message.empty() ? "" : ": ") + message;
}

void CPopupAlert::Announce() {
    NotifyWinEvent(EVENT_SYSTEM_ALERT, m_hWnd, OBJID_CLIENT, CHILDID_SELF);
}

LRESULT CPopupAlert::AnswerGetObject(WPARAM wParam) {
    if (m_pAccessible == nullptr) {
        m_pAccessible.reset(mvp::NamedAccessible::Create(m_hWnd, ROLE_SYSTEM_ALERT,
                                                         [this] { return SpokenText(); }));
    }
    return m_pAccessible != nullptr ? mvp::AnswerGetObject(wParam, m_pAccessible.get()) : Default();
}
