// A dialog template made into real windows, to be looked at: its controls with their places and
// texts, at a resolution of choice.
//
//     TemplateWindow window(module, IDD_ENTER_PIN, 150);
//     for (const Control& control : window.Controls()) ...
#pragma once

#include <windows.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "resource_module.h"

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
        return {hWnd,
                GetDlgCtrlID(hWnd),
                className.data(),
                static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE)),
                rect,
                text.data()};
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

class TemplateWindow {
public:
    // `percent` is the resolution, 100 for 96 dpi: the template's font, and with it every dialog
    // unit, grows as it does on such a screen. A child template gets a host window. Throws when the
    // window cannot be made.
    TemplateWindow(const ResourceModule& module, int dialog, int percent = 100) {
        const std::vector<WORD> words = LoadTemplate(module, dialog, percent);
        DWORD style = 0;
        std::memcpy(&style, &words.at(kStyleWord), sizeof(style));
        if ((style & WS_CHILD) != 0) {
            m_hHost = CreateWindowExA(0, "STATIC", "host", WS_POPUP, 0, 0, 2000, 2000, nullptr,
                                      nullptr, nullptr, nullptr);
        }
        m_hWnd = CreateDialogIndirectParamA(
            module.get(), reinterpret_cast<LPCDLGTEMPLATEA>(words.data()), m_hHost,
            [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
        if (m_hWnd == nullptr) {
            throw std::runtime_error("cannot create dialog " + std::to_string(dialog));
        }
    }
    ~TemplateWindow() {
        DestroyWindow(m_hWnd);
        if (m_hHost != nullptr) {
            DestroyWindow(m_hHost);
        }
    }
    TemplateWindow(const TemplateWindow&) = delete;
    TemplateWindow& operator=(const TemplateWindow&) = delete;

    HWND get() const { return m_hWnd; }
    RECT ClientRect() const {
        RECT rect{};
        GetClientRect(m_hWnd, &rect);
        return rect;
    }
    // In the order of the template, which is the tab order.
    std::vector<Control> Controls() const {
        std::vector<Control> controls;
        for (HWND window = GetWindow(m_hWnd, GW_CHILD); window != nullptr;
             window = GetWindow(window, GW_HWNDNEXT)) {
            controls.push_back(Control::Of(window));
        }
        return controls;
    }

private:
    // The fixed part of an extended template, in 16-bit words. Behind it stand the menu and the
    // class, the title, and the font's size in points.
    static constexpr std::size_t kStyleWord = 6;
    static constexpr std::size_t kMenuWord = 13;

    // The template with its font enlarged. Ours have no menu, and the class of all dialogs.
    static std::vector<WORD> LoadTemplate(const ResourceModule& module, int dialog, int percent) {
        const HRSRC resource = FindResourceA(module.get(), MAKEINTRESOURCEA(dialog), RT_DIALOG);
        const DWORD size = SizeofResource(module.get(), resource);
        // Created windows read the template by 32-bit fields; a vector is aligned well enough.
        std::vector<WORD> words((size + 1) / sizeof(WORD));
        if (resource != nullptr) {
            std::memcpy(words.data(), LockResource(LoadResource(module.get(), resource)), size);
        }
        if (words.size() <= kMenuWord || words[0] != 1 || words[1] != 0xFFFF ||
            words[kMenuWord] != 0 || words[kMenuWord + 1] != 0) {
            throw std::runtime_error("no extended template: " + std::to_string(dialog));
        }
        WORD& points = *(std::find(words.begin() + kMenuWord + 2, words.end(), 0) + 1);
        points = static_cast<WORD>(points * percent / 100);
        return words;
    }

    HWND m_hHost = nullptr;
    HWND m_hWnd = nullptr;
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
    const mvp::WindowDc dc(control.hWnd);
    auto* const font = reinterpret_cast<HGDIOBJ>(SendMessageA(control.hWnd, WM_GETFONT, 0, 0));
    const mvp::DcSelection selection(dc.get(), font);
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

// The mnemonic of the text in lower case, or 0.
inline char MnemonicOf(const Control& control) {
    const std::string text = control.HasPrefixText() ? control.strText : "";
    for (std::size_t at = text.find('&'); at != std::string::npos && at + 1 < text.size();
         at = text.find('&', at + 2)) {
        if (text[at + 1] != '&') {
            return static_cast<char>(std::tolower(static_cast<unsigned char>(text[at + 1])));
        }
    }
    return 0;
}
