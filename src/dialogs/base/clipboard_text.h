// The clipboard, open for one paste.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace mvp {

class ClipboardText {
public:
    explicit ClipboardText(HWND hWnd) noexcept : m_bOpen(OpenClipboard(hWnd) != FALSE) {
        // The data is the clipboard's own.
        m_hData = m_bOpen ? GetClipboardData(CF_UNICODETEXT) : nullptr;
        m_pText = m_hData != nullptr ? static_cast<const wchar_t*>(GlobalLock(m_hData)) : nullptr;
    }
    ClipboardText(const ClipboardText&) = delete;
    ClipboardText& operator=(const ClipboardText&) = delete;
    ~ClipboardText() {
        if (m_pText != nullptr) {
            GlobalUnlock(m_hData);
        }
        if (m_bOpen) {
            CloseClipboard();
        }
    }

    // False while another program has it open.
    bool IsOpen() const noexcept { return m_bOpen; }

    // Up to the first end of a line; empty when there is no text. Valid while this lives.
    std::wstring_view FirstLine() const noexcept {
        if (m_pText == nullptr) {
            return {};
        }
        const std::wstring_view all(m_pText, GlobalSize(m_hData) / sizeof(wchar_t));
        constexpr std::wstring_view kEnds(L"\r\n\0", 3);
        return all.substr(0, all.find_first_of(kEnds));
    }

private:
    bool m_bOpen;
    HANDLE m_hData = nullptr;
    const wchar_t* m_pText = nullptr;
};

}  // namespace mvp
