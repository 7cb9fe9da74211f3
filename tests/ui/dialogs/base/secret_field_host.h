// A PIN edit, or a stock one, in a host's window that writes down what it is told.
#pragma once

#include <windows.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mvpingui/caps_lock_sensitive_edit.h"

namespace mvp::test {

inline constexpr char kText[] = "12345678";
inline constexpr DWORD kUsualStyle = ES_PASSWORD | ES_AUTOHSCROLL;

inline std::string TextOf(HWND hEdit) {
    std::string text(static_cast<size_t>(GetWindowTextLengthA(hEdit)) + 1, '\0');
    text.resize(
        static_cast<size_t>(GetWindowTextA(hEdit, text.data(), static_cast<int>(text.size()))));
    return text;
}

inline std::string StateOf(HWND hEdit) {
    DWORD begin = 0;
    DWORD end = 0;
    SendMessageA(hEdit, EM_GETSEL, reinterpret_cast<WPARAM>(&begin),
                 reinterpret_cast<LPARAM>(&end));
    return TextOf(hEdit) + "[" + std::to_string(begin) + "," + std::to_string(end) + "]" +
           std::to_string(GetWindowTextLengthA(hEdit));
}

// A host's window that writes down what its edit tells it, with the text at that moment.
class Host {
public:
    Host() {
        m_hWnd = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 50, 50, 400, 200, nullptr,
                                 nullptr, nullptr, nullptr);
        SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        m_old = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrA(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure)));
        m_button = CreateWindowExA(0, "BUTTON", "", WS_CHILD | WS_VISIBLE, 0, 50, 50, 20, m_hWnd,
                                   nullptr, nullptr, nullptr);
        SetForegroundWindow(m_hWnd);
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() { DestroyWindow(m_hWnd); }

    HWND MakeEdit(DWORD dwStyle, const char* pszText = "") const {
        return CreateWindowExA(0, "EDIT", pszText, WS_CHILD | WS_VISIBLE | WS_TABSTOP | dwStyle, 0,
                               0, 90, 20, m_hWnd, nullptr, nullptr, nullptr);
    }
    void LeaveEdit() const { SetFocus(m_button); }

    std::string strTold;
    std::function<void(WORD nCode)> onTold;
    bool bDeaf = false;
    bool bAsks = true;  // for the text, whenever it is told of something

private:
    static LRESULT CALLBACK Procedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* host = reinterpret_cast<Host*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
        if (message == WM_COMMAND && lParam != 0 && !host->bDeaf) {
            auto* const edit = reinterpret_cast<HWND>(lParam);
            host->strTold += std::to_string(HIWORD(wParam)) +
                             (host->bAsks ? ":" + StateOf(edit) : std::string()) + " ";
            if (host->onTold) {
                host->onTold(HIWORD(wParam));
            }
        }
        return CallWindowProcA(host->m_old, hWnd, message, wParam, lParam);
    }

    HWND m_hWnd;
    HWND m_button;
    WNDPROC m_old;
};

inline void PutOnClipboard(const std::wstring& strText) {
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    if (!strText.empty()) {
        const size_t size = (strText.size() + 1) * sizeof(wchar_t);
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
        std::memcpy(GlobalLock(memory), strText.c_str(), size);
        GlobalUnlock(memory);
        SetClipboardData(CF_UNICODETEXT, memory);
    }
    CloseClipboard();
}

// The virtual keys that are down, of Shift and Ctrl.
struct HeldKeys {
    explicit HeldKeys(const std::vector<int>& keys) {
        std::array<BYTE, 256> state{};
        for (const int key : keys) {
            state.at(static_cast<size_t>(key)) = 0x80;
        }
        SetKeyboardState(state.data());
    }
    HeldKeys(const HeldKeys&) = delete;
    HeldKeys& operator=(const HeldKeys&) = delete;
    ~HeldKeys() {
        std::array<BYTE, 256> none{};
        SetKeyboardState(none.data());
    }
};

struct Message {
    UINT message;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

struct Row {
    const char* pszWhat;
    std::vector<Message> messages;
    std::vector<int> held = {};
    DWORD dwStyle = kUsualStyle;
};

inline LPARAM At(const char* pszText) {
    return reinterpret_cast<LPARAM>(pszText);
}

// An edit of a host that has "12345678" in it, the caret behind the third character.
struct Field : Host {
    explicit Field(bool bStock = false, DWORD dwStyle = kUsualStyle) : hEdit(MakeEdit(dwStyle)) {
        if (!bStock) {
            object.SubclassWindow(hEdit);
        }
        SetFocus(hEdit);
        SetWindowTextA(hEdit, kText);
        SendMessageA(hEdit, EM_SETSEL, 3, 3);
        SendMessageA(hEdit, EM_SETMODIFY, FALSE, 0);
        strTold = "";
    }
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageA(hEdit, message, wParam, lParam);
    }

    CCapsLockSensitiveEdit object;
    HWND hEdit;
};

}  // namespace mvp::test
