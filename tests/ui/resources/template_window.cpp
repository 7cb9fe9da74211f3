#include "template_window.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <stdexcept>

namespace {

// The fixed part of an extended template, in 16-bit words; menu, class and title follow, then the
// font's size in points.
constexpr std::size_t kStyleWord = 6;
constexpr std::size_t kFixedWords = 13;

// Steps over a menu, class or title field: nothing, a number, or a text.
std::size_t AfterNameOrNumber(const std::vector<WORD>& words, std::size_t at) {
    if (words.at(at) == 0xFFFF)
        return at + 2;
    while (words.at(at) != 0)
        ++at;
    return at + 1;
}

std::vector<WORD> LoadTemplate(const ResourceModule& module, int dialog) {
    const HRSRC resource = FindResourceA(module.get(), MAKEINTRESOURCEA(dialog), RT_DIALOG);
    if (resource == nullptr)
        throw std::runtime_error("no template " + std::to_string(dialog));
    // Created windows read the template by 32-bit fields; a vector is aligned well enough.
    std::vector<WORD> words((SizeofResource(module.get(), resource) + 1) / sizeof(WORD));
    std::memcpy(words.data(), LockResource(LoadResource(module.get(), resource)),
                SizeofResource(module.get(), resource));
    if (words.at(0) != 1 || words.at(1) != 0xFFFF)
        throw std::runtime_error("not an extended template: " + std::to_string(dialog));
    return words;
}

void ScaleFont(std::vector<WORD>& words, int percent) {
    std::size_t at = kFixedWords;
    for (int field = 0; field < 3; ++field)
        at = AfterNameOrNumber(words, at);
    words.at(at) = static_cast<WORD>(words.at(at) * percent / 100);
}

INT_PTR CALLBACK TakeNothing(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

std::string TextOf(HWND hWnd) {
    std::string text(static_cast<std::size_t>(GetWindowTextLengthA(hWnd)) + 1, '\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextA(hWnd, text.data(), static_cast<int>(text.size()))));
    return text;
}

Control ControlOf(HWND hWnd, HWND hDialog) {
    std::array<char, 64> className{};
    GetClassNameA(hWnd, className.data(), static_cast<int>(className.size()));
    Control control{};
    control.hWnd = hWnd;
    control.nNumber = GetDlgCtrlID(hWnd);
    control.strClass = className.data();
    std::transform(control.strClass.begin(), control.strClass.end(), control.strClass.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    control.dwStyle = static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE));
    GetWindowRect(hWnd, &control.rect);
    MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT*>(&control.rect), 2);
    control.strText = TextOf(hWnd);
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

// What a static or button keeps of its width and height for other things than its text.
SIZE Reserved(const Control& control) {
    if (!control.IsButton())
        return {0, 0};
    switch (control.dwStyle & BS_TYPEMASK) {
        case BS_GROUPBOX:
            return {18, 0};  // the caption begins 9 pixels in
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX:
        case BS_3STATE:
        case BS_AUTO3STATE:
        case BS_RADIOBUTTON:
        case BS_AUTORADIOBUTTON:
            return {GetSystemMetrics(SM_CXMENUCHECK) + 4, 0};
        default:
            return {12, 4};  // frame, focus rectangle, and some air
    }
}

bool WrapsText(const Control& control) {
    if (control.IsButton())
        return (control.dwStyle & BS_MULTILINE) != 0;
    const DWORD type = control.dwStyle & SS_TYPEMASK;
    return type == SS_LEFT || type == SS_CENTER || type == SS_RIGHT;
}

}  // namespace

bool Control::IsTextStatic() const {
    const DWORD type = dwStyle & SS_TYPEMASK;
    return IsStatic() && (type == SS_LEFT || type == SS_CENTER || type == SS_RIGHT ||
                          type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP);
}

bool Control::HasPrefixText() const {
    return IsButton() || (IsTextStatic() && (dwStyle & SS_NOPREFIX) == 0);
}

TemplateWindow::TemplateWindow(const ResourceModule& module, int dialog, int percent) {
    std::vector<WORD> words = LoadTemplate(module, dialog);
    ScaleFont(words, percent);
    DWORD style = 0;
    std::memcpy(&style, &words.at(kStyleWord), sizeof(style));
    if ((style & WS_CHILD) != 0)
        m_hHost = CreateWindowExA(0, "STATIC", "host", WS_POPUP, 0, 0, 2000, 2000, nullptr, nullptr,
                                  nullptr, nullptr);
    m_hWnd = CreateDialogIndirectParamA(
        module.get(), reinterpret_cast<LPCDLGTEMPLATEA>(words.data()), m_hHost, TakeNothing, 0);
    if (m_hWnd == nullptr)
        throw std::runtime_error("cannot create dialog " + std::to_string(dialog));
}

TemplateWindow::~TemplateWindow() {
    DestroyWindow(m_hWnd);
    if (m_hHost != nullptr)
        DestroyWindow(m_hHost);
}

RECT TemplateWindow::ClientRect() const {
    RECT rect{};
    GetClientRect(m_hWnd, &rect);
    return rect;
}

std::vector<Control> TemplateWindow::Controls() const {
    std::vector<Control> controls;
    for (HWND hWnd = GetWindow(m_hWnd, GW_CHILD); hWnd != nullptr;
         hWnd = GetWindow(hWnd, GW_HWNDNEXT))
        controls.push_back(ControlOf(hWnd, m_hWnd));
    return controls;
}

std::string ClippedBecause(const Control& control) {
    if (control.strText.empty() || (!control.IsTextStatic() && !control.IsButton()))
        return {};
    const SIZE reserved = Reserved(control);
    const int width = static_cast<int>(control.rect.right - control.rect.left - reserved.cx);
    const int height = static_cast<int>(control.rect.bottom - control.rect.top - reserved.cy);
    UINT format = WrapsText(control) ? DT_WORDBREAK : DT_SINGLELINE;
    if (!control.HasPrefixText())
        format |= DT_NOPREFIX;
    const SIZE text = TextSize(control, format, width);
    if (text.cx <= width && text.cy <= height)
        return {};
    return "\"" + control.strText + "\" takes " + std::to_string(text.cx) + " x " +
           std::to_string(text.cy) + " pixels of " + std::to_string(width) + " x " +
           std::to_string(height);
}

char MnemonicOf(const Control& control) {
    if (!control.HasPrefixText())
        return 0;
    const std::string& text = control.strText;
    for (std::size_t at = text.find('&'); at != std::string::npos && at + 1 < text.size();
         at = text.find('&', at + 2)) {
        if (text[at + 1] != '&')
            return static_cast<char>(std::tolower(static_cast<unsigned char>(text[at + 1])));
    }
    return 0;
}
