#include "template_window.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <stdexcept>

namespace {

// The fixed part of an extended template, in 16-bit words. Behind it stand the menu and the class,
// the title, and the font's size in points.
constexpr std::size_t kStyleWord = 6;
constexpr std::size_t kMenuWord = 13;

// The template with its font enlarged. Ours have no menu, and the class of all dialogs.
std::vector<WORD> LoadTemplate(const ResourceModule& module, int dialog, int percent) {
    const HRSRC resource = FindResourceA(module.get(), MAKEINTRESOURCEA(dialog), RT_DIALOG);
    const DWORD size = SizeofResource(module.get(), resource);
    // Created windows read the template by 32-bit fields; a vector is aligned well enough.
    std::vector<WORD> words((size + 1) / sizeof(WORD));
    if (resource != nullptr) {
        std::memcpy(words.data(), LockResource(LoadResource(module.get(), resource)), size);
    }
    if (words.size() <= kMenuWord || words[0] != 1 || words[1] != 0xFFFF || words[kMenuWord] != 0 ||
        words[kMenuWord + 1] != 0) {
        throw std::runtime_error("no extended template: " + std::to_string(dialog));
    }
    WORD& points = *(std::find(words.begin() + kMenuWord + 2, words.end(), 0) + 1);
    points = static_cast<WORD>(points * percent / 100);
    return words;
}

INT_PTR CALLBACK TakeNothing(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

Control MakeControl(HWND hWnd, HWND hDialog) {
    std::array<char, 64> className{};
    std::array<char, 1024> text{};
    GetClassNameA(hWnd, className.data(), static_cast<int>(className.size()));
    GetWindowTextA(hWnd, text.data(), static_cast<int>(text.size()));
    CharLowerA(className.data());
    Control control{hWnd, GetDlgCtrlID(hWnd), className.data(), 0, {}, text.data()};
    control.dwStyle = static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE));
    GetWindowRect(hWnd, &control.rect);
    MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT*>(&control.rect), 2);
    return control;
}

// The size that the text takes, drawn with the control's font and broken at `width`.
SIZE TextSize(const Control& control, UINT format, int width) {
    const mvp::WindowDc dc(control.hWnd);
    auto* const font = reinterpret_cast<HGDIOBJ>(SendMessageA(control.hWnd, WM_GETFONT, 0, 0));
    const mvp::DcSelection selection(dc.get(), font);
    RECT rect{0, 0, width, 0};
    DrawTextA(dc.get(), control.strText.c_str(), -1, &rect, DT_CALCRECT | DT_EXPANDTABS | format);
    return {rect.right, rect.bottom};
}

// What a control keeps of its width and height for other things than its text.
SIZE Reserved(const Control& control) {
    return control.IsGroupBox()      ? SIZE{18, 0}  // the caption begins 9 pixels in
           : control.IsCheckButton() ? SIZE{20, 0}  // its mark
           : control.IsButton()      ? SIZE{12, 4}  // frame, focus rectangle, and some air
                                     : SIZE{0, 0};
}

}  // namespace

bool Control::WrapsText() const {
    const DWORD type = dwStyle & SS_TYPEMASK;
    return IsStatic() && (type == SS_LEFT || type == SS_CENTER || type == SS_RIGHT);
}

bool Control::IsTextStatic() const {
    const DWORD type = dwStyle & SS_TYPEMASK;
    return WrapsText() || (IsStatic() && (type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP));
}

bool Control::HasPrefixText() const {
    return IsButton() || (IsTextStatic() && (dwStyle & SS_NOPREFIX) == 0);
}

TemplateWindow::TemplateWindow(const ResourceModule& module, int dialog, int percent) {
    const std::vector<WORD> words = LoadTemplate(module, dialog, percent);
    DWORD style = 0;
    std::memcpy(&style, &words.at(kStyleWord), sizeof(style));
    if ((style & WS_CHILD) != 0) {
        m_hHost = CreateWindowExA(0, "STATIC", "host", WS_POPUP, 0, 0, 2000, 2000, nullptr, nullptr,
                                  nullptr, nullptr);
    }
    m_hWnd = CreateDialogIndirectParamA(
        module.get(), reinterpret_cast<LPCDLGTEMPLATEA>(words.data()), m_hHost, TakeNothing, 0);
    if (m_hWnd == nullptr) {
        throw std::runtime_error("cannot create dialog " + std::to_string(dialog));
    }
}

TemplateWindow::~TemplateWindow() {
    DestroyWindow(m_hWnd);
    if (m_hHost != nullptr) {
        DestroyWindow(m_hHost);
    }
}

RECT TemplateWindow::ClientRect() const {
    RECT rect{};
    GetClientRect(m_hWnd, &rect);
    return rect;
}

std::vector<Control> TemplateWindow::Controls() const {
    std::vector<Control> controls;
    for (HWND window = GetWindow(m_hWnd, GW_CHILD); window != nullptr;
         window = GetWindow(window, GW_HWNDNEXT)) {
        controls.push_back(MakeControl(window, m_hWnd));
    }
    return controls;
}

Control TemplateWindow::ControlOf(int nNumber) const {
    return MakeControl(GetDlgItem(m_hWnd, nNumber), m_hWnd);
}

std::string ClippedBecause(const Control& control) {
    if (control.strText.empty() || (!control.IsTextStatic() && !control.IsButton())) {
        return {};
    }
    const SIZE reserved = Reserved(control);
    const int width = static_cast<int>(control.rect.right - control.rect.left - reserved.cx);
    const int height = static_cast<int>(control.rect.bottom - control.rect.top - reserved.cy);
    UINT format = control.WrapsText() ? DT_WORDBREAK : DT_SINGLELINE;
    if (!control.HasPrefixText()) {
        format |= DT_NOPREFIX;
    }
    const SIZE text = TextSize(control, format, width);
    if (text.cx <= width && text.cy <= height) {
        return {};
    }
    return "\"" + control.strText + "\" takes " + std::to_string(text.cx) + " x " +
           std::to_string(text.cy) + " pixels of " + std::to_string(width) + " x " +
           std::to_string(height);
}

char MnemonicOf(const Control& control) {
    if (!control.HasPrefixText()) {
        return 0;
    }
    const std::string& text = control.strText;
    for (std::size_t at = text.find('&'); at != std::string::npos && at + 1 < text.size();
         at = text.find('&', at + 2)) {
        if (text[at + 1] != '&') {
            return static_cast<char>(std::tolower(static_cast<unsigned char>(text[at + 1])));
        }
    }
    return 0;
}
