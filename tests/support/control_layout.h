// Controls with their places and texts, what of a text does not show, and templates at other
// resolutions.
#pragma once

#include <windows.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/handle.h"

namespace mvp::test {

struct Control {
    HWND hWnd;
    int nNumber;
    std::string strClass;  // in lower case
    DWORD dwStyle;
    RECT rect;  // in the client area of the dialog
    std::string strText;

    static Control Of(HWND hWnd) {
        std::array<char, 64> className{};
        std::array<char, 1024> text{};
        GetClassNameA(hWnd, className.data(), static_cast<int>(className.size()));
        GetWindowTextA(hWnd, text.data(), static_cast<int>(text.size()));
        CharLowerA(className.data());
        RECT rect{};
        GetWindowRect(hWnd, &rect);
        MapWindowPoints(nullptr, GetParent(hWnd), reinterpret_cast<POINT*>(&rect), 2);
        const auto style = static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE));
        return {hWnd, GetDlgCtrlID(hWnd), className.data(), style, rect, text.data()};
    }

    bool IsStatic() const { return strClass == "static"; }
    bool IsEdit() const { return strClass == "edit"; }
    bool IsButton() const { return strClass == "button"; }
    bool IsGroupBox() const { return IsButton() && (dwStyle & BS_TYPEMASK) == BS_GROUPBOX; }
    bool IsCheckButton() const {
        const DWORD type = dwStyle & BS_TYPEMASK;
        return IsButton() && (type == BS_AUTORADIOBUTTON || type == BS_AUTOCHECKBOX);
    }
    bool IsVisible() const { return (dwStyle & WS_VISIBLE) != 0; }
    bool IsTabStop() const { return (dwStyle & WS_TABSTOP) != 0; }
    // A static that breaks its text into lines, or any that shows text, and no picture or frame.
    bool WrapsText() const {
        const DWORD type = dwStyle & SS_TYPEMASK;
        return IsStatic() && (type == SS_LEFT || type == SS_CENTER || type == SS_RIGHT);
    }
    bool IsTextStatic() const {
        const DWORD type = dwStyle & SS_TYPEMASK;
        return WrapsText() || (IsStatic() && (type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP));
    }
    // Whether an ampersand in the text marks a mnemonic.
    bool HasPrefixText() const {
        return IsButton() || (IsTextStatic() && (dwStyle & SS_NOPREFIX) == 0);
    }
};

// Why the text of the control does not show wholly in it; empty when it does.
inline std::string ClippedBecause(const Control& control) {
    if (control.strText.empty() || (!control.IsTextStatic() && !control.IsButton())) {
        return {};
    }
    // What a control keeps of its width and height for other things than its text.
    const SIZE reserved = control.IsGroupBox()      ? SIZE{18, 0}  // the caption begins 9 pixels in
                          : control.IsCheckButton() ? SIZE{20, 0}  // its mark
                          : control.IsButton()      ? SIZE{12, 4}  // frame, focus, some air
                                                    : SIZE{0, 0};
    const LONG width = control.rect.right - control.rect.left - reserved.cx;
    const LONG height = control.rect.bottom - control.rect.top - reserved.cy;
    // The size that the text takes, drawn with the control's font and broken at that width.
    RECT text{0, 0, width, 0};
    const WindowDc dc(control.hWnd);
    auto* const font = reinterpret_cast<HGDIOBJ>(SendMessageA(control.hWnd, WM_GETFONT, 0, 0));
    const DcSelection selection(dc.get(), font);
    DrawTextA(dc.get(), control.strText.c_str(), -1, &text,
              DT_CALCRECT | DT_EXPANDTABS | (control.WrapsText() ? DT_WORDBREAK : DT_SINGLELINE) |
                  (control.HasPrefixText() ? 0u : DT_NOPREFIX));
    if (text.right <= width && text.bottom <= height) {
        return {};
    }
    return "\"" + control.strText + "\" takes " + std::to_string(text.right) + " x " +
           std::to_string(text.bottom) + " pixels of " + std::to_string(width) + " x " +
           std::to_string(height);
}

// Enlarges the font of a template, and with it every dialog unit, as it is on a screen of that
// resolution, 100 for 96 dpi. The template is an extended one without a menu, and of the class of
// all dialogs; throws otherwise.
inline void EnlargeFont(std::vector<WORD>& words, int percent) {
    // Behind the fixed part, in 16-bit words, stand the menu and the class, the title, and the
    // font's size in points.
    constexpr std::size_t kMenuWord = 13;
    if (words.size() <= kMenuWord || words[0] != 1 || words[1] != 0xFFFF || words[kMenuWord] != 0 ||
        words[kMenuWord + 1] != 0) {
        throw std::runtime_error("no extended template");
    }
    WORD& points = *(std::find(words.begin() + kMenuWord + 2, words.end(), 0) + 1);
    points = static_cast<WORD>(points * percent / 100);
}

}  // namespace mvp::test
