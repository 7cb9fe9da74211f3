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
#include "support/control_layout.h"

using mvp::test::Control;

class TemplateWindow {
public:
    // `percent` is the resolution, 100 for 96 dpi: the template's font, and with it every dialog
    // unit, grows as it does on such a screen. Throws when the window cannot be made.
    TemplateWindow(const ResourceModule& module, int dialog, int percent = 100) {
        const std::vector<WORD> words = LoadTemplate(module, dialog, percent);
        m_hWnd = CreateDialogIndirectParamA(
            module.get(), reinterpret_cast<LPCDLGTEMPLATEA>(words.data()), m_hHost,
            [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
        if (m_hWnd == nullptr) {
            throw std::runtime_error("cannot create dialog " + std::to_string(dialog));
        }
        LOGFONTA font{};
        GetObjectA(reinterpret_cast<HFONT>(SendMessageA(m_hWnd, WM_GETFONT, 0, 0)), sizeof font,
                   &font);
        font.lfWeight = FW_BOLD;
        m_bold.reset(CreateFontIndirectA(&font));
        SendDlgItemMessageA(m_hWnd, kBoldHeading, WM_SETFONT,
                            reinterpret_cast<WPARAM>(m_bold.get()), FALSE);
    }
    ~TemplateWindow() {
        DestroyWindow(m_hWnd);
        DestroyWindow(m_hHost);
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
    // The same number in every dialog that the code gives a bold heading; of others it is no text.
    static constexpr int kBoldHeading = IDC_UNLOCK_RESULT_HEADING;

    // The template with its font enlarged.
    static std::vector<WORD> LoadTemplate(const ResourceModule& module, int dialog, int percent) {
        const HRSRC resource = FindResourceA(module.get(), MAKEINTRESOURCEA(dialog), RT_DIALOG);
        const DWORD size = SizeofResource(module.get(), resource);
        // Created windows read the template by 32-bit fields; a vector is aligned well enough.
        std::vector<WORD> words((size + 1) / sizeof(WORD));
        if (resource != nullptr) {
            std::memcpy(words.data(), LockResource(LoadResource(module.get(), resource)), size);
        }
        mvp::test::EnlargeFont(words, percent);
        return words;
    }

    HWND m_hHost = CreateWindowExA(0, "STATIC", "host", WS_POPUP, 0, 0, 2000, 2000, nullptr,
                                   nullptr, nullptr, nullptr);
    HWND m_hWnd = nullptr;
    mvp::Font m_bold;
};

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
