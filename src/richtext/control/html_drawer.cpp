#include "richtext/control/html_drawer.h"

#include <algorithm>
#include <utility>

#include "platform/barrier.h"
#include "platform/handle.h"
#include "richtext/document/plain_text.h"

using namespace mvp::richtext;  // NOLINT(google-build-using-namespace): its drawing side

namespace {

// Fonts that are kept from one text to the next.
constexpr std::size_t kKeptFonts = 32;

SystemColours DesktopColours() {
    SystemColours colours;
    for (int i = 0; i < SystemColours::kCount; ++i) {
        colours.aColour[static_cast<std::size_t>(i)] = GetSysColor(i);
    }
    return colours;
}

// The ones of the code page, asked once: it does not change while a process runs.
const CaseMaps& CodePageCaseMaps() {
    static const CaseMaps maps = [] {
        CaseMaps result = kWindows1252CaseMaps;
        for (unsigned n = 0; n < 256; ++n) {
            char upper = static_cast<char>(n);
            char lower = upper;
            CharUpperBuffA(&upper, 1);
            CharLowerBuffA(&lower, 1);
            result.upper[n] = upper;
            result.lower[n] = lower;
        }
        return result;
    }();
    return maps;
}

int HeightOf(const LOGFONTA& font) {
    return std::clamp(
        font.lfHeight < 0 ? -static_cast<int>(font.lfHeight) : static_cast<int>(font.lfHeight), 0,
        kMaxFontSize);
}

void Report(CHtmlDrawer::ReportFailure pfnReport, const char* pszFailure) noexcept {
    if (pfnReport != nullptr) {
        pfnReport(pszFailure);
    }
}

// What a barrier does with an exception. It holds a copy of the function, as the body may end the
// drawer.
struct ReportException {
    CHtmlDrawer::ReportFailure pfnReport;
    const char* pszFailure;
    void operator()() const noexcept { Report(pfnReport, pszFailure); }
};

}  // namespace

CHtmlDrawer::CHtmlDrawer(FindResourceModule pfnFind, Shell& shell, ReportFailure pfnReport)
    : m_pictures(pfnFind),
      m_measurer(m_pictures),
      m_text(m_measurer),
      m_shell(shell),
      m_pfnReport(pfnReport) {
    m_settings.colour = GetSysColor(COLOR_WINDOWTEXT);
    m_settings.pCaseMaps = &CodePageCaseMaps();
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) {
        SetFont(metrics.lfMessageFont);
    } else {
        Rebuild();
    }
}

void CHtmlDrawer::Check(bool bDone, const char* pszFailure) const noexcept {
    if (!bDone) {
        Report(m_pfnReport, pszFailure);
    }
}

// What the text starts from has changed, or what the desktop's colours may be.
void CHtmlDrawer::Rebuild() noexcept {
    m_settings.system = DesktopColours();
    m_settings.font.face = m_font.lfFaceName;
    Check(m_text.SetSettings(m_settings), "CHtmlDrawer::Rebuild: the settings were not taken");
    m_measurer.DropFontsBeyond(kKeptFonts);
}

void CHtmlDrawer::SetText(std::string_view markup) noexcept {
    m_pictures.Clear();
    Check(m_text.SetText(markup), "CHtmlDrawer::SetText: the text was not taken");
    m_nHover = m_nTracked = m_nFocus = kNoLink;
    Rebuild();
}

void CHtmlDrawer::SetStyleSheet(const char* pszSheet) noexcept {
    const auto sheet =
        pszSheet == nullptr ? std::nullopt : std::optional<std::string_view>(pszSheet);
    Check(m_text.SetStyleSheet(sheet), "CHtmlDrawer::SetStyleSheet: the sheet was not taken");
    Rebuild();
}

void CHtmlDrawer::SetMargins(int nX, int nY) noexcept {
    m_margins = {std::clamp(nX, 0, kMaxEdge), std::clamp(nY, 0, kMaxEdge)};
}

void CHtmlDrawer::SetTextColor(COLORREF colour) noexcept {
    m_settings.colour = colour & 0xFFFFFF;
    Rebuild();
}

void CHtmlDrawer::SetLinkColors(COLORREF link, COLORREF hover) noexcept {
    Check(m_text.SetLinkRules(link & 0xFFFFFF, false, hover & 0xFFFFFF, true),
          "CHtmlDrawer::SetLinkColors: the colours were not taken");
    Rebuild();
}

void CHtmlDrawer::SetFont(const LOGFONTA& font) noexcept {
    m_font = font;
    m_font.lfFaceName[LF_FACESIZE - 1] = '\0';
    const int height = HeightOf(font);
    m_settings.font.nSize = height != 0 ? height : 13;
    m_settings.font.nWeight = font.lfWeight != 0 ? std::clamp<int>(font.lfWeight, 1, 1000) : 400;
    m_settings.font.bItalic = font.lfItalic != 0;
    mvp::Guarded([&] { m_measurer.SetBaseFont(m_font); },
                 ReportException{m_pfnReport, "CHtmlDrawer::SetFont: exception"});
    Rebuild();
}

void CHtmlDrawer::AllowImageList(HIMAGELIST hImageList) {
    m_pictures.AllowImageList(hImageList);
    m_text.Invalidate();
}

void CHtmlDrawer::SetLinkCallback(HWND hWnd, UINT nMessage, LPARAM lParam) noexcept {
    m_linkCallback = {hWnd, nMessage, lParam};
}

void CHtmlDrawer::SetHoverCallback(HWND hWnd, UINT nMessage, LPARAM lParam) noexcept {
    m_hoverCallback = {hWnd, nMessage, lParam};
}

bool CHtmlDrawer::Layout() noexcept {
    const bool done = m_text.Layout(std::max(0, m_nWidth - 2 * static_cast<int>(m_margins.x)));
    Check(done, "CHtmlDrawer::Layout: the text was not laid out");
    return done;
}

void CHtmlDrawer::SetWidth(int nWidth) noexcept {
    m_nWidth = std::max(nWidth, 0);
}

SIZE CHtmlDrawer::Measure(int nWidth) noexcept {
    SetWidth(nWidth);
    Layout();
    const LayoutBoxes& boxes = m_text.Boxes();
    return {boxes.nWidth + 2 * m_margins.x, boxes.nHeight + 2 * m_margins.y};
}

void CHtmlDrawer::Draw(HDC hDC, const RECT& area, const RECT& dirty) noexcept {
    RECT visible{};
    SetWidth(static_cast<int>(area.right - area.left));
    if (!Layout() || !IntersectRect(&visible, &area, &dirty)) {
        return;
    }
    mvp::Guarded(
        [&] {
            const auto number = [](int nLink) {
                return nLink == kNoLink ? kNone : static_cast<std::uint32_t>(nLink);
            };
            Painter painter(hDC, visible, m_measurer, m_pictures);
            painter.MoveTo({area.left + m_margins.x, area.top + m_margins.y});
            painter.Paint(m_text.Document(), m_text.Boxes(),
                          {number(m_nHover), number(m_nFocus), m_nClock});
        },
        ReportException{m_pfnReport, "CHtmlDrawer::Draw: exception"});
}

bool CHtmlDrawer::IsLink(int nLink) const noexcept {
    return nLink >= 0 && static_cast<std::size_t>(nLink) < m_text.Document().aLinks.size();
}

int CHtmlDrawer::LinkCount() noexcept {
    Layout();
    return static_cast<int>(m_text.Document().aLinks.size());
}

int CHtmlDrawer::LinkAt(POINT point) noexcept {
    Layout();
    const HitResult hit = HitTest(m_text.Boxes(), static_cast<std::int32_t>(point.x - m_margins.x),
                                  static_cast<std::int32_t>(point.y - m_margins.y));
    return hit.nLink == kNone ? kNoLink : static_cast<int>(hit.nLink);
}

RECT CHtmlDrawer::RectOf(std::int32_t nX, std::int32_t nY, std::int32_t nWidth,
                         std::int32_t nHeight) const noexcept {
    const auto at = [](std::int64_t n) { return static_cast<LONG>(HeldCoordinate(n)); };
    const std::int64_t left = std::int64_t{nX} + m_margins.x;
    const std::int64_t top = std::int64_t{nY} + m_margins.y;
    return {at(left), at(top), at(left + nWidth), at(top + nHeight)};
}

std::vector<RECT> CHtmlDrawer::LinkRects(int nLink) {
    Layout();
    std::vector<RECT> rects;
    if (IsLink(nLink)) {
        for (const LinkBox& box : LinkBoxes(m_text.Boxes(), static_cast<std::uint32_t>(nLink))) {
            rects.push_back(RectOf(box.nX, box.nY, box.nWidth, box.nHeight));
        }
    }
    return rects;
}

std::string CHtmlDrawer::LinkText(int nLink) {
    Layout();
    return IsLink(nLink) ? LinkTextOf(m_text.Document(), static_cast<std::uint32_t>(nLink))
                         : std::string();
}

std::string CHtmlDrawer::LinkTarget(int nLink) {
    Layout();
    if (!IsLink(nLink)) {
        return {};
    }
    const StyledDocument& document = m_text.Document();
    const Link& link = document.aLinks[static_cast<std::size_t>(nLink)];
    return link.bMsg || !link.bHref ? std::string() : std::string(document.StringOf(link.href));
}

std::string CHtmlDrawer::PlainText() {
    Layout();
    return PlainTextOf(m_text.Document());
}

UINT CHtmlDrawer::AnimationInterval() noexcept {
    Layout();
    std::int32_t shortest = 0;
    for (const ImageAttributes& image : m_text.Document().aImages) {
        if (image.kind == ImageKind::ImageList && image.nSpeed > 0) {
            shortest = shortest == 0 ? image.nSpeed : std::min(shortest, image.nSpeed);
        }
    }
    return static_cast<UINT>(shortest);
}

std::vector<RECT> CHtmlDrawer::AnimatedRects() {
    Layout();
    std::vector<RECT> rects;
    for (const Fragment& fragment : m_text.Boxes().aFragments) {
        if (fragment.kind == FragmentKind::Image &&
            m_text.Document().aImages[fragment.nOffset].nSpeed > 0) {
            rects.push_back(RectOf(fragment.nX, fragment.nY, fragment.nWidth, fragment.nHeight));
        }
    }
    return rects;
}

int CHtmlDrawer::SetHoverLink(int nLink) noexcept {
    return std::exchange(m_nHover, IsLink(nLink) ? nLink : kNoLink);
}

int CHtmlDrawer::SetFocusLink(int nLink) noexcept {
    return std::exchange(m_nFocus, IsLink(nLink) ? nLink : kNoLink);
}

void CHtmlDrawer::Track(int nLink) noexcept {
    if (nLink == m_nTracked) {
        return;
    }
    m_nTracked = nLink;
    const Callback callback = m_hoverCallback;
    if (callback.hWnd != nullptr && callback.nMessage != 0) {
        SendMessageA(callback.hWnd, callback.nMessage, static_cast<WPARAM>(INT_PTR{nLink}),
                     callback.lParam);
    }
}

void CHtmlDrawer::FollowLink(int nLink) noexcept {
    Layout();
    if (!IsLink(nLink)) {
        return;
    }
    const ReportFailure reportFunction = m_pfnReport;
    mvp::Guarded(
        [&] {
            const StyledDocument& document = m_text.Document();
            const Link& link = document.aLinks[static_cast<std::size_t>(nLink)];
            // Copies: whoever is told may set another text, or end this object.
            if (link.bMsg) {
                const std::string message(document.StringOf(link.msg));
                const Callback callback = m_linkCallback;
                if (callback.hWnd != nullptr && callback.nMessage != 0) {
                    SendMessageA(callback.hWnd, callback.nMessage,
                                 reinterpret_cast<WPARAM>(message.c_str()), callback.lParam);
                }
            } else if (link.bHref &&
                       !OpenLinkTarget(m_shell, std::string(document.StringOf(link.href)))) {
                Report(reportFunction, "CHtmlDrawer::FollowLink: the link was not opened");
            }
        },
        ReportException{reportFunction, "CHtmlDrawer::FollowLink: exception"});
}
