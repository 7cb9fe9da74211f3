// CPopupAlert: what is seen of it. The skin, the controls on it, and what a screen reader is told.
#include <windows.h>

#include <optional>

#include "mvpingui/popup_alert.h"
#include "notify/popup_accessible.h"
#include "notify/popup_controls.h"
#include "notify/popup_kinds.h"
#include "notify/popup_region.h"
#include "platform/bitmap_file.h"
#include "platform/handle.h"
#include "resources/resource_numbers.h"
#include "richtext/control/html_static.h"
#include "services/log.h"
#include "services/resource_module.h"

namespace {

constexpr DWORD kSlideMilliseconds = 500;
constexpr int kSmallFontHeight = -11;
constexpr int kBulletSize = 18;
constexpr int kIconSize = 32;
// The skin is a light picture, whatever the system's colours are: so the text on it has colours of
// its own as well.
constexpr COLORREF kLinkColour = RGB(0x00, 0x00, 0xFF);
constexpr POINT kIconPlace{12, 15};

HICON g_hPopupIcon = nullptr;

// 65535 as the unsigned number that the caller means.
bool IsColour(short nValue) {
    return nValue != -1;
}

LOGFONTA SmallFont(const CWnd& control) {
    auto* font = reinterpret_cast<HFONT>(control.SendMessage(WM_GETFONT));
    LOGFONTA description{};
    GetObjectA(font != nullptr ? font : GetStockObject(DEFAULT_GUI_FONT), sizeof description,
               &description);
    description.lfHeight = kSmallFontHeight;
    return description;
}

void CopyBullet(HDC hSkin, UINT nBitmapID, const std::optional<mvp::SkinPoint>& place) {
    if (!place) {
        return;
    }
    const mvp::Bitmap bullet = mvp::LoadResourceBitmap(nBitmapID);
    const mvp::MemoryDc source(CreateCompatibleDC(hSkin));
    const mvp::DcSelection selection(source.get(), bullet.get());
    BitBlt(hSkin, place->nX, place->nY, kBulletSize, kBulletSize, source.get(), 0, 0, SRCCOPY);
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
    PrepareBackgroundBitmap(nBitmapID, bLinkBullet, bHelpBullet);
    m_bFileSkin = false;
    MeasureSkin();
    m_bands = mvp::BandsOfResourceSkin(m_nSkinWidth, m_nSkinHeight);
    CutOut(nRed, nGreen, nBlue);
    if (HasProgressBar()) {
        const CRect bar = mvp::RectOf(mvp::PlaceProgressBar(m_nSkinWidth, m_nSkinHeight));
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
    m_background.DeleteObject();
    m_background.Attach(skin.release());
    m_bFileSkin = true;
    MeasureSkin();
    m_bands = mvp::BandsOfFileSkin(m_nSkinWidth, m_nSkinHeight);
    CutOut(nRed, nGreen, nBlue);
    return 1;
}

// Without a skin there is nothing to see.
void CPopupAlert::MeasureSkin() {
    BITMAP skin{};
    m_background.GetBitmap(&skin);
    m_nSkinWidth = skin.bmWidth;
    m_nSkinHeight = skin.bmHeight;
}

void CPopupAlert::CutOut(short nRed, short nGreen, short nBlue) {
    if (!IsColour(nRed) || !IsColour(nGreen) || !IsColour(nBlue)) {
        return;
    }
    mvp::Region region(GenerateRegion(m_background, static_cast<BYTE>(nRed),
                                      static_cast<BYTE>(nGreen), static_cast<BYTE>(nBlue)));
    m_hRegion = SetWindowRgn(region.get(), TRUE) != 0 ? region.release() : nullptr;
}

int CPopupAlert::PrepareBackgroundBitmap(UINT nBitmapID, bool bLinkBullet, bool bHelpBullet) {
    const mvp::LogScope scope("CPopupAlert::PrepareBackgroundBitmap");
    m_background.DeleteObject();
    mvp::Bitmap skin = mvp::LoadResourceBitmap(nBitmapID);
    if (!skin) {
        return 0;
    }
    BITMAP size{};
    GetObjectA(skin.get(), sizeof size, &size);
    const bool bullets = !HasProgressBar();
    const mvp::SkinBullets places = mvp::PlaceBullets(
        size.bmHeight, bullets && bLinkBullet, bullets && bHelpBullet && m_bDisplayHelp != FALSE);
    {
        const mvp::MemoryDc dc(CreateCompatibleDC(nullptr));
        const mvp::DcSelection selection(dc.get(), skin.get());
        CopyBullet(dc.get(), IDB_POPUP_LINK_BULLET, places.link);
        CopyBullet(dc.get(), IDB_POPUP_HELP_BULLET, places.help);
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
    const mvp::MemoryDc skin(CreateCompatibleDC(pDC->m_hDC));
    const mvp::DcSelection selection(skin.get(), m_background.m_hObject);
    ::BitBlt(pDC->m_hDC, 0, 0, m_nSkinWidth, m_nSkinHeight, skin.get(), 0, 0, SRCCOPY);
    ShowIf(m_pTitle.get(), !HasProgressBar());
    if (g_hPopupIcon != nullptr) {
        ::DrawIconEx(pDC->m_hDC, kIconPlace.x, kIconPlace.y, g_hPopupIcon, kIconSize, kIconSize, 0,
                     nullptr, DI_NORMAL);
    }
    return TRUE;
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
    g_hPopupIcon =
        kind.nIcon != 0 ? mvp::LoadResourceIcon(static_cast<UINT>(kind.nIcon), kIconSize) : nullptr;
    return result;
}

void CPopupAlert::CreateControls(int iWndType) {
    const mvp::PopupKind kind = mvp::PopupKindOf(iWndType);
    const bool help = kind.bHelpBullet && m_bDisplayHelp;
    const bool links = !HasProgressBar();
    const mvp::NoticeControls places = mvp::PlaceControls(m_bands, help);

    m_pMessage = CreateText(mvp::RectOf(places.message), mvp::kTextId, mvp::kTextMargins);
    m_pMessage->SetWindowText(m_csText);
    LOGFONTA description = SmallFont(*m_pMessage);
    // The controls draw with the description of a font; they do not need the font itself.
    CFont smallFont;
    smallFont.CreateFontIndirect(&description);
    m_pMessage->SetFont(&smallFont);

    m_pCloseLink = CreateText(mvp::RectOf(places.closeLink), mvp::kLinkId, mvp::kLinkMargins);
    MakeLink(*m_pCloseLink, IDS_POPUP_CLOSE_LINK, WM_POPUP_LINK_CLICKED, smallFont);

    description.lfWeight = FW_BOLD;
    CFont boldFont;
    boldFont.CreateFontIndirect(&description);
    m_pTitle = CreateText(mvp::RectOf(places.title), mvp::kTextId, mvp::kLinkMargins);
    m_pTitle->SetWindowText(mvp::ResourceString(IDS_POPUP_TITLE));
    m_pTitle->SetFont(&boldFont);

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
    text->SetMargins(margins.cx, margins.cy);
    text->SetDrawingMode(CHtmlStatic::kTransparent);
    text->SetColors(m_crNormal, kLinkColour, kLinkColour);
    return text;
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
        m_pAccessible.reset(mvp::PopupAccessible::Create(m_hWnd, [this] { return SpokenText(); }));
    }
    return m_pAccessible != nullptr ? mvp::AnswerGetObject(wParam, m_pAccessible.get()) : Default();
}
