// CHtmlDrawer: one rich text on the screen. Lays it out in the width it is given, draws it, knows
// its links, and does what a link asks for when it is followed.
//
// The window it belongs to paints with Draw, tells it where the mouse is, and repaints the
// rectangles of a link whose look has changed. Every text is 8-bit, in the system's ANSI code page.
// Not for use by several threads at a time. Where memory or the system fails while it lays out or
// draws, the text is empty; members that are not noexcept may throw std::bad_alloc.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "richtext/control/link_opener.h"
#include "richtext/paint/gdi_measurer.h"
#include "richtext/paint/painter.h"
#include "richtext/pictures/picture_store.h"
#include "richtext/rich_text.h"

// No link, where a link is named by its number, 0 for the first of the text.
constexpr int kNoLink = -1;

class CHtmlDrawer {
public:
    // Is told what failed inside, as a line for the log; must not throw.
    using ReportFailure = void (*)(const char* pszFailure) noexcept;

    // pfnFind is called when a resource is needed and no module is named; null: the program itself.
    explicit CHtmlDrawer(mvp::richtext::FindResourceModule pfnFind = nullptr,
                         mvp::richtext::Shell& shell = mvp::richtext::SystemShell(),
                         ReportFailure pfnReport = nullptr);
    CHtmlDrawer(const CHtmlDrawer&) = delete;
    CHtmlDrawer& operator=(const CHtmlDrawer&) = delete;

    void SetText(std::string_view markup) noexcept;
    std::string_view Text() const noexcept { return m_text.Text(); }

    // Null: the built-in sheet.
    void SetStyleSheet(const char* pszSheet) noexcept;

    // Pixels between the edge and the text: left and right, top and bottom.
    void SetMargins(int nX, int nY) noexcept;
    POINT Margins() const noexcept { return m_margins; }

    // Text outside of any rule; links and links under the mouse, which is then underlined.
    void SetTextColor(COLORREF colour) noexcept;
    void SetLinkColors(COLORREF link, COLORREF hover) noexcept;

    // Face, size, weight and slant of text outside of any rule. The description is copied.
    void SetFont(const LOGFONTA& font) noexcept;

    // The list may be shown by "ilst" tags that name its handle; it must outlive the drawer.
    void AllowImageList(HIMAGELIST hImageList);

    // A link with a message sends `nMessage` to `hWnd`, with the address of the zero-terminated
    // message as wParam. No window or no message: nothing is sent.
    void SetLinkCallback(HWND hWnd, UINT nMessage, LPARAM lParam) noexcept;
    // The same, with the number of the link under the mouse, or kNoLink, as wParam.
    void SetHoverCallback(HWND hWnd, UINT nMessage, LPARAM lParam) noexcept;

    // Width of the area the text will be drawn in, margins included. Draw sets it too.
    void SetWidth(int nWidth) noexcept;
    // Size of the text with its margins in that width, which it takes over; wider than that when
    // something does not fit.
    SIZE Measure(int nWidth) noexcept;
    // Draws what lies in `dirty`. Both in logical coordinates of the context.
    void Draw(HDC hDC, const RECT& area, const RECT& dirty) noexcept;

    // The questions below are about the layout in the width set last.
    int LinkCount() noexcept;
    // The point counts from the area's top left corner.
    int LinkAt(POINT point) noexcept;
    // One for each part of a link; relative to the area's top left corner.
    std::vector<RECT> LinkRects(int nLink);
    std::string LinkText(int nLink);
    // What an href link opens; empty for the others.
    std::string LinkTarget(int nLink);
    // What is to be read, lines separated by line feeds.
    std::string PlainText();
    // The shortest time one image of an animated list is shown, milliseconds; 0 without any.
    UINT AnimationInterval() noexcept;
    std::vector<RECT> AnimatedRects();

    // How links look. Returns what it was before.
    int SetHoverLink(int nLink) noexcept;
    int HoverLink() const noexcept { return m_nHover; }
    int SetFocusLink(int nLink) noexcept;
    int FocusLink() const noexcept { return m_nFocus; }
    void SetClock(UINT nMilliseconds) noexcept { m_nClock = nMilliseconds; }

    // Tells the hover callback when `nLink`, the link under the mouse, is another than before.
    void Track(int nLink) noexcept;

    // Does what a click on the link does. The message may end the drawer: touch it no more.
    void FollowLink(int nLink) noexcept;

    const mvp::richtext::RichText& RichText() const noexcept { return m_text; }

private:
    struct Callback {
        HWND hWnd = nullptr;
        UINT nMessage = 0;
        LPARAM lParam = 0;
    };

    bool Layout() noexcept;
    void Rebuild() noexcept;
    void Check(bool bDone, const char* pszFailure) const noexcept;
    bool IsLink(int nLink) const noexcept;
    RECT RectOf(std::int32_t nX, std::int32_t nY, std::int32_t nWidth,
                std::int32_t nHeight) const noexcept;

    mvp::richtext::PictureStore m_pictures;
    mvp::richtext::GdiMeasurer m_measurer;
    mvp::richtext::RichText m_text;
    mvp::richtext::Shell& m_shell;
    ReportFailure m_pfnReport;
    mvp::richtext::BuildSettings m_settings;
    LOGFONTA m_font{};
    POINT m_margins{};
    int m_nWidth = 0;
    int m_nHover = kNoLink;
    int m_nTracked = kNoLink;
    int m_nFocus = kNoLink;
    UINT m_nClock = 0;
    Callback m_linkCallback;
    Callback m_hoverCallback;
};
