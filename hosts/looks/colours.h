// The system's colours, set for as long as this lives, as somebody sets them who needs contrast.
#pragma once

#include <windows.h>

#include <array>
#include <stdexcept>
#include <string>

namespace looks {

class SystemColours {
public:
    // "usual" changes nothing. Throws std::runtime_error for a name that is none.
    explicit SystemColours(const std::string& strName) {
        for (std::size_t i = 0; i < kElements.size(); ++i) {
            m_before.at(i) = GetSysColor(kElements.at(i));
        }
        if (strName == "black-on-white") {
            Set(RGB(0, 0, 0), RGB(255, 255, 255), RGB(0, 0, 128), RGB(255, 255, 255));
        } else if (strName == "white-on-black") {
            Set(RGB(255, 255, 255), RGB(0, 0, 0), RGB(255, 255, 0), RGB(0, 0, 0));
        } else if (strName != "usual") {
            throw std::runtime_error("no colours are called " + strName);
        }
    }
    SystemColours(const SystemColours&) = delete;
    SystemColours& operator=(const SystemColours&) = delete;
    ~SystemColours() { SetSysColors(kCount, kElements.data(), m_before.data()); }

private:
    static constexpr int kCount = 12;
    static constexpr std::array<int, kCount> kElements = {
        COLOR_WINDOW,       COLOR_BTNFACE,    COLOR_WINDOWTEXT,    COLOR_BTNTEXT,
        COLOR_GRAYTEXT,     COLOR_HIGHLIGHT,  COLOR_HIGHLIGHTTEXT, COLOR_BTNSHADOW,
        COLOR_BTNHIGHLIGHT, COLOR_3DDKSHADOW, COLOR_HOTLIGHT,      COLOR_WINDOWFRAME};

    void Set(COLORREF text, COLORREF ground, COLORREF highlight, COLORREF highlightText) {
        const std::array<COLORREF, kCount> colours = {ground, ground,    text,          text,
                                                      text,   highlight, highlightText, text,
                                                      text,   text,      highlight,     text};
        SetSysColors(kCount, kElements.data(), colours.data());
        // The common controls keep the colours in mind, until one of them is told of others.
        const HWND list = CreateWindowExA(0, "SysListView32", "", WS_POPUP, 0, 0, 0, 0, nullptr,
                                          nullptr, nullptr, nullptr);
        SendMessageA(list, WM_SYSCOLORCHANGE, 0, 0);
        DestroyWindow(list);
    }

    std::array<COLORREF, kCount> m_before{};
};

}  // namespace looks
