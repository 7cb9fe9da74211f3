#include "looks/walker.h"

#include <algorithm>
#include <string>
#include <vector>

#include "common/thread_windows.h"
#include "common/utf8.h"
#include "looks/contrast.h"
#include "platform/handle.h"
#include "platform/window_dpi.h"

namespace looks {

namespace {

using Json = nlohmann::ordered_json;

std::wstring TextOf(HWND hWnd) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(hWnd)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextW(hWnd, text.data(), static_cast<int>(text.size()))));
    return text;
}

bool IsMirrored(HWND hWnd) {
    return (GetWindowLongPtrW(hWnd, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0;
}

RECT RectIn(HWND hWindow, HWND hControl) {
    RECT rect{};
    GetWindowRect(hControl, &rect);
    MapWindowPoints(nullptr, hWindow, reinterpret_cast<POINT*>(&rect), 2);
    // In a mirrored window the left edge comes out on the right.
    if (rect.left > rect.right) {
        std::swap(rect.left, rect.right);
    }
    return rect;
}

Json Numbers(const RECT& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

// Pixels for a hundred dialog units each way, so that nothing is lost to rounding.
Json UnitsOf(HWND hDialog) {
    RECT hundred{0, 0, 100, 100};
    if (!MapDialogRect(hDialog, &hundred)) {
        return nullptr;
    }
    return {hundred.right, hundred.bottom};
}

LOGFONTW FontOf(HWND hWnd) {
    LOGFONTW font{};
    auto* handle = reinterpret_cast<HFONT>(SendMessageW(hWnd, WM_GETFONT, 0, 0));
    GetObjectW(handle != nullptr ? handle : GetStockObject(SYSTEM_FONT), sizeof font, &font);
    return font;
}

// How the control's class draws its text; 0: it is none that draws one.
UINT FormatOf(const std::string& strClass, LONG_PTR style) {
    if (strClass == "Static") {
        const LONG_PTR type = style & SS_TYPEMASK;
        if (type == SS_LEFTNOWORDWRAP || type == SS_SIMPLE) {
            return DT_SINGLELINE;
        }
        return type <= SS_RIGHT ? DT_WORDBREAK : 0;
    }
    if (strClass == "Button") {
        return (style & BS_MULTILINE) != 0 ? DT_WORDBREAK : DT_SINGLELINE;
    }
    return 0;
}

// The room that the text needs; a text of several lines in the control's own width.
Json ExtentOf(HWND hWnd, UINT nFormat, bool bPrefix, const std::wstring& text) {
    const mvp::WindowDc device(hWnd);
    auto* font = reinterpret_cast<HFONT>(SendMessageW(hWnd, WM_GETFONT, 0, 0));
    const mvp::DcSelection selection(device.get(),
                                     font != nullptr ? font : GetStockObject(SYSTEM_FONT));
    RECT room{};
    GetClientRect(hWnd, &room);
    DrawTextW(device.get(), text.c_str(), static_cast<int>(text.size()), &room,
              DT_CALCRECT | nFormat | (bPrefix ? 0U : DT_NOPREFIX));
    TEXTMETRICW metrics{};
    GetTextMetricsW(device.get(), &metrics);
    return {{"width", room.right - room.left},
            {"height", room.bottom - room.top},
            {"line", metrics.tmHeight},
            {"ascent", metrics.tmAscent}};
}

// Where the text is drawn: the frame of a control, and the mark of a choice, tell nothing of it.
RECT TextPart(HWND hWindow, HWND hControl, const std::string& strClass, LONG_PTR style) {
    RECT rect = RectIn(hWindow, hControl);
    // A mirrored panel in a window that is not: its left is on the right.
    const bool flipped = IsMirrored(hWindow) != IsMirrored(hControl);
    constexpr int kFrame = 4;
    constexpr int kMark = 16;
    const int dots = GetDeviceCaps(mvp::WindowDc(hWindow).get(), LOGPIXELSY);
    const bool button = strClass == "Button" && (style & BS_TYPEMASK) != BS_GROUPBOX;
    const int mark = MulDiv(kMark, dots, USER_DEFAULT_SCREEN_DPI);
    if (button && (style & BS_TYPEMASK) > BS_DEFPUSHBUTTON) {
        (flipped ? rect.right : rect.left) += flipped ? -mark : mark;
    } else if (strClass == "Button" && !button) {
        // The caption of a group box: the half in which it begins.
        const LONG middle = (rect.left + rect.right) / 2;
        (flipped ? rect.left : rect.right) = middle;
        (flipped ? rect.right : rect.left) += flipped ? -mark / 2 : mark / 2;
        rect.bottom = rect.top + mark;
    } else if (button || strClass == "Edit") {
        const int frame = MulDiv(kFrame, dots, USER_DEFAULT_SCREEN_DPI);
        InflateRect(&rect, -frame, -frame);
    }
    return rect;
}

// The window that this one belongs to, if it is seen.
Json OwnerOf(HWND hWindow) {
    const HWND owner = GetWindow(hWindow, GW_OWNER);
    if (owner == nullptr || !IsWindowVisible(owner)) {
        return nullptr;
    }
    RECT rect{};
    GetWindowRect(owner, &rect);
    return Numbers(rect);
}

Json Describe(HWND hWindow, HWND hControl, const Picture& picture) {
    const std::string name = mvp::ClassOf(hControl);
    const LONG_PTR style = GetWindowLongPtrW(hControl, GWL_STYLE);
    const std::wstring text = TextOf(hControl);
    const RECT rect = RectIn(hWindow, hControl);
    const LOGFONTW font = FontOf(hControl);
    Json control{
        {"id", GetDlgCtrlID(hControl)},
        {"class", name},
        {"text", mvp::Utf8(text)},
        {"rect", Numbers(rect)},
        {"style", static_cast<std::uint32_t>(style)},
        {"mirrored", IsMirrored(hControl)},
        {"visible", IsWindowVisible(hControl) != FALSE},
        {"enabled", IsWindowEnabled(hControl) != FALSE},
        {"focus", GetFocus() == hControl},
        {"code", SendMessageW(hControl, WM_GETDLGCODE, 0, 0)},
        {"font",
         {mvp::Utf8(static_cast<const wchar_t*>(font.lfFaceName)), font.lfHeight, font.lfWeight}}};
    const UINT format = FormatOf(name, style);
    if (format != 0 && !text.empty()) {
        const bool prefix = name != "Static" || (style & SS_NOPREFIX) == 0;
        control["extent"] = ExtentOf(hControl, format, prefix, text);
    }
    if (IsWindowVisible(hControl)) {
        control["contrast"] = picture.ContrastIn(TextPart(hWindow, hControl, name, style));
        if (name == "Static" && (style & SS_TYPEMASK) == SS_ICON) {
            control["grey"] = picture.GreyOf(rect);
            // Which icon it is.
            control["icon"] = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(
                reinterpret_cast<void*>(SendMessageW(hControl, STM_GETICON, 0, 0))));
        }
    }
    return control;
}

// The room that the title needs, and what the caption has for it between icon and close button.
Json CaptionOf(HWND hWindow) {
    const LONG_PTR style = GetWindowLongPtrW(hWindow, GWL_STYLE);
    if ((style & WS_CAPTION) != WS_CAPTION) {
        return nullptr;
    }
    constexpr int kGap = 2;
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const mvp::Font font(CreateFontIndirectW(&metrics.lfCaptionFont));
    const mvp::WindowDc device(hWindow);
    const mvp::DcSelection selection(device.get(), font.get());
    const std::wstring title = TextOf(hWindow);
    RECT need{};
    DrawTextW(device.get(), title.c_str(), static_cast<int>(title.size()), &need,
              DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
    RECT client{};
    GetClientRect(hWindow, &client);
    const int button = (style & WS_SYSMENU) != 0 ? metrics.iCaptionWidth : 0;
    const bool drawn = SendMessageW(hWindow, WM_GETICON, ICON_SMALL, 0) != 0 ||
                       SendMessageW(hWindow, WM_GETICON, ICON_BIG, 0) != 0;
    const int icon = drawn ? GetSystemMetrics(SM_CXSMICON) + kGap : 0;
    return {{"width", need.right}, {"room", client.right - icon - button - 2 * kGap}};
}

BOOL CALLBACK Collect(HWND hWnd, LPARAM lParam) {
    reinterpret_cast<std::vector<HWND>*>(lParam)->push_back(hWnd);
    return TRUE;
}

// The controls in the order of the Tab key, from the first.
std::vector<HWND> TabOrder(HWND hWindow) {
    std::vector<HWND> order;
    HWND control = GetNextDlgTabItem(hWindow, nullptr, FALSE);
    while (control != nullptr && std::ranges::find(order, control) == order.end()) {
        order.push_back(control);
        control = GetNextDlgTabItem(hWindow, control, FALSE);
    }
    return order;
}

// The numbers of the controls that look the same with the focus in them and in the next one: nobody
// can tell where it is.
Json FocusUnseen(HWND hWindow, const std::vector<HWND>& order) {
    const HWND before = GetFocus();
    SendMessageW(hWindow, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS | UISF_HIDEACCEL),
                 0);
    const auto focus = [hWindow](HWND hControl) {
        SetFocus(hControl);
        RedrawWindow(hWindow, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
    };
    Json unseen = Json::array();
    for (std::size_t i = 0; i < order.size() && order.size() > 1; ++i) {
        // A caret stands in an edit, which blinks.
        if ((SendMessageW(order[i], WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0) {
            continue;
        }
        const RECT part = RectIn(hWindow, order[i]);
        focus(order[i]);
        const Picture with(hWindow, part);
        focus(order[(i + 1) % order.size()]);
        if (!with.DiffersFrom(Picture(hWindow, part))) {
            unseen.push_back(GetDlgCtrlID(order[i]));
        }
    }
    SetFocus(before);
    return unseen;
}

void PaintAnew(HWND hWindow) {
    RedrawWindow(hWindow, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
}

// Where each text of a notice is drawn: every other control is out of sight, and its own one
// reaches down to the window's end.
std::vector<RECT> InkOf(HWND hWindow, const std::vector<HWND>& controls) {
    RECT client{};
    GetClientRect(hWindow, &client);
    const auto move = [](HWND hControl, const RECT& place) {
        SetWindowPos(hControl, nullptr, place.left, place.top, place.right - place.left,
                     place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    };
    std::vector<RECT> places;
    for (HWND control : controls) {
        places.push_back(RectIn(hWindow, control));
        RECT away = places.back();
        OffsetRect(&away, client.right - away.left, 0);
        move(control, away);
    }
    PaintAnew(hWindow);
    const Picture ground(hWindow);
    std::vector<RECT> ink;
    for (std::size_t i = 0; i < controls.size(); ++i) {
        RECT tall = places[i];
        tall.bottom = client.bottom;
        move(controls[i], tall);
        PaintAnew(hWindow);
        ink.push_back(Picture(hWindow).DifferenceFrom(ground));
        OffsetRect(&tall, client.right - tall.left, 0);
        move(controls[i], tall);
    }
    for (std::size_t i = 0; i < controls.size(); ++i) {
        move(controls[i], places[i]);
    }
    PaintAnew(hWindow);
    return ink;
}

}  // namespace

Json Walk(HWND hWindow) {
    const Picture picture(hWindow);
    RECT whole{};
    GetWindowRect(hWindow, &whole);
    RECT client{};
    GetClientRect(hWindow, &client);
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    Json walked{{"class", mvp::ClassOf(hWindow)},
                {"title", mvp::Utf8(TextOf(hWindow))},
                {"rect", Numbers(whole)},
                {"caption", CaptionOf(hWindow)},
                {"owner", OwnerOf(hWindow)},
                {"mirrored", IsMirrored(hWindow)},
                {"client", {client.right, client.bottom}},
                {"workArea", Numbers(work)},
                {"style", static_cast<std::uint32_t>(GetWindowLongPtrW(hWindow, GWL_STYLE))},
                {"units", UnitsOf(hWindow)},
                {"dpi", mvp::WindowDpi(hWindow)},
                {"default", LOWORD(SendMessageW(hWindow, DM_GETDEFID, 0, 0))},
                {"controls", Json::array()},
                {"tabOrder", Json::array()}};
    std::vector<HWND> controls;
    EnumChildWindows(hWindow, &Collect, reinterpret_cast<LPARAM>(&controls));
    for (HWND control : controls) {
        walked["controls"].push_back(Describe(hWindow, control, picture));
        // The control that it stands in, by its place among them.
        const auto parent = std::ranges::find(controls, GetParent(control));
        walked["controls"].back()["parent"] =
            parent == controls.end() ? Json() : Json(parent - controls.begin());
    }
    // The texts of a notice are the rich-text engine's, and it takes no focus.
    const bool notice = walked["units"].is_null();
    if (notice) {
        const std::vector<RECT> ink = InkOf(hWindow, controls);
        for (std::size_t i = 0; i < controls.size(); ++i) {
            if (mvp::ClassOf(controls[i]) == "Static") {
                walked["controls"][i]["ink"] = Numbers(ink[i]);
            }
        }
    }
    const std::vector<HWND> order = TabOrder(hWindow);
    for (HWND control : order) {
        walked["tabOrder"].push_back(GetDlgCtrlID(control));
    }
    walked["focusUnseen"] = notice ? Json::array() : FocusUnseen(hWindow, order);
    return walked;
}

}  // namespace looks
