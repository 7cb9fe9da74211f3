// The PIN edit beside the stock control: what hosts see of it is the same, message by message, but
// for what is refused on purpose.
#include <windows.h>
#include <commctrl.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <imm.h>

#include "dialogs/base/text_change.h"
#include "mvpingui/caps_lock_sensitive_edit.h"
#include "support/patched_imports.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr char kText[] = "12345678";
constexpr DWORD kUsualStyle = ES_PASSWORD | ES_AUTOHSCROLL;

std::string TextOf(HWND hEdit) {
    std::string text(static_cast<size_t>(GetWindowTextLengthA(hEdit)) + 1, '\0');
    text.resize(
        static_cast<size_t>(GetWindowTextA(hEdit, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::string StateOf(HWND hEdit) {
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

private:
    static LRESULT CALLBACK Procedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* host = reinterpret_cast<Host*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
        if (message == WM_COMMAND && lParam != 0) {
            auto* const edit = reinterpret_cast<HWND>(lParam);
            host->strTold += std::to_string(HIWORD(wParam)) + ":" + StateOf(edit) + " ";
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

void PutOnClipboard(const std::wstring& strText) {
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
    explicit HeldKeys(std::initializer_list<int> keys) {
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

LPARAM At(const char* pszText) {
    return reinterpret_cast<LPARAM>(pszText);
}

struct Row {
    const char* pszWhat;
    std::vector<Message> messages;
    std::initializer_list<int> held = {};
    DWORD dwStyle = kUsualStyle;
};

const std::vector<Row>& RowsLikeTheStockControl() {
    static const std::vector<Row> rows = {
        // Characters.
        {"a character at the caret", {{WM_CHAR, 'x'}}},
        {"characters in a row", {{WM_CHAR, 'x'}, {WM_CHAR, 'y'}, {WM_CHAR, ' '}, {WM_CHAR, 'z'}}},
        {"a character over one", {{EM_SETSEL, 2, 3}, {WM_CHAR, 'x'}}},
        {"a character over three", {{EM_SETSEL, 2, 5}, {WM_CHAR, 'x'}}},
        {"a character over all", {{EM_SETSEL, 0, -1}, {WM_CHAR, 'x'}}},
        {"selected from right to left", {{EM_SETSEL, 6, 2}, {WM_CHAR, 'x'}}},
        {"beyond ASCII", {{WM_CHAR, 0xE9}, {WM_CHAR, 0x80}, {WM_CHAR, 0xFF}}},
        {"Enter, Tab, Esc", {{WM_CHAR, '\r'}, {WM_CHAR, '\t'}, {WM_CHAR, 0x1B}, {WM_CHAR, '\n'}}},
        {"other control characters", {{WM_CHAR, 0x02}, {WM_CHAR, 0x04}, {WM_CHAR, 0x1F}}},
        {"Ctrl+A", {{WM_CHAR, 0x01}}, {VK_CONTROL}},
        {"a character of 16 bits", {{WM_UNICHAR, 0xE9}, {WM_UNICHAR, UNICODE_NOCHAR}}},
        {"a dead key", {{WM_DEADCHAR, '^'}}},
        // Keys that delete.
        {"Backspace", {{WM_CHAR, VK_BACK}}},
        {"Backspace at the beginning", {{EM_SETSEL, 0, 0}, {WM_CHAR, VK_BACK}}},
        {"Backspace over a selection", {{EM_SETSEL, 1, 4}, {WM_CHAR, VK_BACK}}},
        {"all by Backspace",
         {{EM_SETSEL, 2, 2}, {WM_CHAR, VK_BACK}, {WM_CHAR, VK_BACK}, {WM_CHAR, VK_BACK}}},
        {"Ctrl+Backspace", {{WM_KEYDOWN, VK_BACK}, {WM_CHAR, 0x7F}}, {VK_CONTROL}},
        {"Delete", {{WM_KEYDOWN, VK_DELETE}, {WM_KEYUP, VK_DELETE}}},
        {"Delete at the end", {{EM_SETSEL, 8, 8}, {WM_KEYDOWN, VK_DELETE}}},
        {"Delete over a selection", {{EM_SETSEL, 0, 3}, {WM_KEYDOWN, VK_DELETE}}},
        {"Ctrl+Delete", {{WM_KEYDOWN, VK_DELETE}}, {VK_CONTROL}},
        // Keys that move.
        {"Home", {{WM_KEYDOWN, VK_HOME}}},
        {"End", {{WM_KEYDOWN, VK_END}}},
        {"Shift+Home", {{WM_KEYDOWN, VK_HOME}}, {VK_SHIFT}},
        {"Shift+End, then typed", {{WM_KEYDOWN, VK_END}, {WM_CHAR, 'x'}}, {VK_SHIFT}},
        {"left", {{WM_KEYDOWN, VK_LEFT}}},
        {"right", {{WM_KEYDOWN, VK_RIGHT}}},
        {"up and down", {{WM_KEYDOWN, VK_UP}, {WM_KEYDOWN, VK_DOWN}}},
        {"Page Up and Page Down", {{WM_KEYDOWN, VK_PRIOR}, {WM_KEYDOWN, VK_NEXT}}},
        {"Shift+left, Delete", {{WM_KEYDOWN, VK_LEFT}, {WM_CHAR, VK_BACK}}, {VK_SHIFT}},
        {"Shift+right", {{WM_KEYDOWN, VK_RIGHT}}, {VK_SHIFT}},
        {"Ctrl+left", {{WM_KEYDOWN, VK_LEFT}}, {VK_CONTROL}},
        {"Ctrl+right", {{WM_KEYDOWN, VK_RIGHT}}, {VK_CONTROL}},
        {"Ctrl+Shift+left", {{WM_KEYDOWN, VK_LEFT}}, {VK_CONTROL, VK_SHIFT}},
        {"Ctrl+Home", {{WM_KEYDOWN, VK_HOME}}, {VK_CONTROL}},
        {"Insert", {{WM_KEYDOWN, VK_INSERT}, {WM_CHAR, 'x'}}},
        {"function keys", {{WM_KEYDOWN, VK_F1}, {WM_KEYUP, VK_F1}}},
        // Paste; the clipboard holds "paste", an end of line and "no".
        {"Ctrl+V", {{WM_CHAR, 0x16}}, {VK_CONTROL}},
        {"WM_PASTE", {{WM_PASTE}}},
        {"pasted over a selection", {{EM_SETSEL, 1, 7}, {WM_PASTE}}},
        {"Shift+Insert", {{WM_KEYDOWN, VK_INSERT}}, {VK_SHIFT}},
        {"pasted beyond the limit", {{EM_SETLIMITTEXT, 10}, {WM_PASTE}}},
        // Messages that set.
        {"WM_SETTEXT", {{WM_SETTEXT, 0, At("new")}}},
        {"WM_SETTEXT with nothing", {{WM_SETTEXT, 0, At("")}}},
        {"WM_SETTEXT with null", {{WM_SETTEXT}}},
        {"WM_SETTEXT with the same", {{WM_SETTEXT, 0, At(kText)}}},
        {"WM_SETTEXT beyond the limit", {{EM_SETLIMITTEXT, 4}, {WM_SETTEXT, 0, At("0123456789")}}},
        {"EM_REPLACESEL", {{EM_REPLACESEL, TRUE, At("abc")}}},
        {"EM_REPLACESEL over all", {{EM_SETSEL, 0, -1}, {EM_REPLACESEL, FALSE, At("abc")}}},
        {"EM_REPLACESEL with nothing", {{EM_SETSEL, 2, 4}, {EM_REPLACESEL, TRUE, At("")}}},
        {"EM_REPLACESEL beyond the limit",
         {{EM_SETLIMITTEXT, 9}, {EM_REPLACESEL, TRUE, At("abc")}}},
        {"WM_CLEAR", {{EM_SETSEL, 2, 4}, {WM_CLEAR}}},
        {"WM_CLEAR without a selection", {{WM_CLEAR}}},
        // The limit.
        {"typed at the limit", {{EM_SETLIMITTEXT, 8}, {WM_CHAR, 'x'}, {WM_CHAR, 'y'}}},
        {"typed over at the limit", {{EM_SETLIMITTEXT, 8}, {EM_SETSEL, 0, 2}, {WM_CHAR, 'x'}}},
        {"the limit",
         {{EM_SETLIMITTEXT, 5}, {EM_GETLIMITTEXT}, {EM_SETLIMITTEXT}, {EM_GETLIMITTEXT}}},
        {"as long as the edit is wide",
         {{WM_CHAR, 'm'},
          {WM_CHAR, 'm'},
          {WM_CHAR, 'm'},
          {WM_CHAR, 'm'},
          {WM_CHAR, 'm'},
          {WM_CHAR, 'm'}},
         {},
         ES_PASSWORD},
        // State.
        {"read-only, typed", {{EM_SETREADONLY, TRUE}, {WM_CHAR, 'x'}, {WM_CHAR, VK_BACK}}},
        {"read-only, deleted",
         {{EM_SETREADONLY, TRUE}, {EM_SETSEL, 1, 3}, {WM_KEYDOWN, VK_DELETE}}},
        {"read-only, pasted", {{EM_SETREADONLY, TRUE}, {WM_PASTE}, {WM_CHAR, 0x16}}},
        {"read-only, set",
         {{EM_SETREADONLY, TRUE}, {WM_SETTEXT, 0, At("new")}, {EM_REPLACESEL, TRUE, At("abc")}}},
        {"disabled", {{WM_ENABLE, FALSE}, {WM_CHAR, 'x'}}},
        {"focus and back", {{WM_KILLFOCUS}, {WM_SETFOCUS}, {WM_CHAR, 'x'}}},
        {"modified",
         {{EM_GETMODIFY}, {WM_CHAR, 'x'}, {EM_GETMODIFY}, {EM_SETMODIFY, FALSE}, {EM_GETMODIFY}}},
        {"wanted keys", {{WM_GETDLGCODE}, {WM_GETDLGCODE, VK_RETURN}, {WM_GETDLGCODE, VK_TAB}}},
        {"lines", {{EM_GETLINECOUNT}, {EM_LINELENGTH}, {EM_LINEINDEX}, {EM_LINEFROMCHAR, 3}}},
        {"the mask", {{EM_GETPASSWORDCHAR}, {EM_SETPASSWORDCHAR, '#'}, {EM_GETPASSWORDCHAR}}},
        {"margins", {{EM_SETMARGINS, 3, MAKELPARAM(4, 5)}, {EM_GETMARGINS}}},
        {"a place",
         {{EM_SETPASSWORDCHAR, '*'}, {EM_CHARFROMPOS, 0, MAKELPARAM(30, 5)}, {EM_POSFROMCHAR, 3}}},
        {"a click",
         {{WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 5)},
          {WM_LBUTTONUP, 0, MAKELPARAM(3, 5)},
          {WM_CHAR, 'x'}}},
        {"a double click",
         {{WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(3, 5)}, {WM_LBUTTONUP, 0, MAKELPARAM(3, 5)}}},
        {"what richer edits know", {{WM_USER + 74}, {WM_USER + 62}, {WM_USER + 94}}},
        // Styles.
        {"digits only, digits",
         {{WM_CHAR, '9'}, {EM_SETSEL, 0, 2}, {WM_CHAR, '0'}},
         {},
         kUsualStyle | ES_NUMBER},
        {"digits only, others", {{WM_CHAR, 'x'}, {WM_CHAR, VK_BACK}}, {}, kUsualStyle | ES_NUMBER},
        {"capitals",
         {{WM_CHAR, 'x'}, {EM_REPLACESEL, TRUE, At("aBc")}},
         {},
         kUsualStyle | ES_UPPERCASE},
        {"small letters",
         {{WM_CHAR, 'X'}, {EM_REPLACESEL, TRUE, At("aBc")}},
         {},
         kUsualStyle | ES_LOWERCASE},
    };
    return rows;
}

// All that a host can see of the edit while the row's messages come.
std::string Watch(const Row& row, bool bStock) {
    Host host;
    CCapsLockSensitiveEdit object;
    const HWND edit = host.MakeEdit(row.dwStyle);
    if (!bStock) {
        object.SubclassWindow(edit);
    }
    SetFocus(edit);
    SetWindowTextA(edit, kText);
    SendMessageA(edit, EM_SETSEL, 3, 3);
    SendMessageA(edit, EM_SETMODIFY, FALSE, 0);
    host.strTold = "";
    std::string seen;
    const HeldKeys held(row.held);
    for (const Message& message : row.messages) {
        const LRESULT result = SendMessageA(edit, message.message, message.wParam, message.lParam);
        seen += std::to_string(result) + "=" + StateOf(edit) + " ";
    }
    return seen + "| " + host.strTold;
}

TEST(SecretField, DoesWhatTheStockControlDoes) {
    ASSERT_GE(RowsLikeTheStockControl().size(), 60U);
    for (const Row& row : RowsLikeTheStockControl()) {
        PutOnClipboard(L"paste\r\nno");
        EXPECT_EQ(Watch(row, false), Watch(row, true)) << row.pszWhat;
    }
}

}  // namespace
}  // namespace mvp::test
