// The PIN edit beside the stock control: what hosts see of it is the same, message by message.
#include <windows.h>
#include <commctrl.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ui/dialogs/base/secret_field_host.h"

namespace mvp::test {
namespace {

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
        // Two bytes are one character in some code pages and two in others; so the program is run
        // under one of either kind.
        {"bytes of a Japanese character", {{WM_CHAR, 0x82}, {WM_CHAR, 0xA0}, {WM_CHAR, 'x'}}},
        {"and deleted", {{WM_CHAR, 0x82}, {WM_CHAR, 0xA0}, {WM_CHAR, VK_BACK}}},
        {"and over others", {{EM_SETSEL, 1, 4}, {WM_CHAR, 0x82}, {WM_CHAR, 0xA0}, {WM_CHAR, 0xB1}}},
        {"and given as a text",
         {{EM_REPLACESEL, TRUE, At("\x82\xA0y\x82\xA2")}, {EM_SETSEL, 3, 5}, {WM_CLEAR}}},
        {"and set", {{WM_SETTEXT, 0, At("\x82\xA0y\x82\xA2")}, {WM_KEYDOWN, VK_DELETE}}},
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
        {"up, Page Down", {{WM_KEYDOWN, VK_UP}, {WM_KEYDOWN, VK_NEXT}}},
        {"Shift+left, Delete", {{WM_KEYDOWN, VK_LEFT}, {WM_CHAR, VK_BACK}}, {VK_SHIFT}},
        {"Shift+right", {{WM_KEYDOWN, VK_RIGHT}}, {VK_SHIFT}},
        {"Ctrl+left", {{WM_KEYDOWN, VK_LEFT}}, {VK_CONTROL}},
        {"Ctrl+right", {{WM_KEYDOWN, VK_RIGHT}}, {VK_CONTROL}},
        {"Ctrl+Shift+left", {{WM_KEYDOWN, VK_LEFT}}, {VK_CONTROL, VK_SHIFT}},
        {"Insert", {{WM_KEYDOWN, VK_INSERT}, {WM_CHAR, 'x'}}},
        // Paste; the clipboard holds "paste", an end of line and "no".
        {"Ctrl+V", {{WM_CHAR, 0x16}}, {VK_CONTROL}},
        {"WM_PASTE", {{WM_PASTE}}},
        {"pasted over a selection", {{EM_SETSEL, 1, 7}, {WM_PASTE}}},
        {"Shift+Insert", {{WM_KEYDOWN, VK_INSERT}}, {VK_SHIFT}},
        {"pasted beyond the limit", {{EM_SETLIMITTEXT, 10}, {EM_SETSEL, 1, 3}, {WM_PASTE}}},
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
         {{EM_REPLACESEL, TRUE, At("mmm")}, {WM_CHAR, 'm'}, {WM_CHAR, 'm'}, {WM_CHAR, 'm'}},
         {},
         ES_PASSWORD},
        // State.
        {"read-only, typed", {{EM_SETREADONLY, TRUE}, {WM_CHAR, 'x'}, {WM_CHAR, VK_BACK}}},
        {"read-only, deleted",
         {{EM_SETREADONLY, TRUE}, {EM_SETSEL, 1, 3}, {WM_KEYDOWN, VK_DELETE}}},
        {"read-only, pasted",
         {{EM_SETREADONLY, TRUE}, {WM_PASTE}, {WM_CHAR, 0x16}, {WM_UNICHAR, 0x1F600}}},
        {"read-only, set",
         {{EM_SETREADONLY, TRUE}, {WM_SETTEXT, 0, At("new")}, {EM_REPLACESEL, TRUE, At("abc")}}},
        {"disabled", {{WM_ENABLE, FALSE}, {WM_CHAR, 'x'}}},
        {"focus and back", {{WM_KILLFOCUS}, {WM_SETFOCUS}, {WM_CHAR, 'x'}}},
        {"modified",
         {{EM_GETMODIFY}, {WM_CHAR, 'x'}, {EM_GETMODIFY}, {EM_SETMODIFY, FALSE}, {EM_GETMODIFY}}},
        {"wanted keys", {{WM_GETDLGCODE}, {WM_GETDLGCODE, VK_RETURN}, {WM_GETDLGCODE, VK_TAB}}},
        {"lines", {{EM_GETLINECOUNT}, {EM_LINELENGTH}, {EM_LINEINDEX}, {EM_LINEFROMCHAR, 3}}},
        {"the mask", {{EM_GETPASSWORDCHAR}, {EM_SETPASSWORDCHAR, '#'}, {EM_GETPASSWORDCHAR}}},
        {"a place",
         {{EM_SETPASSWORDCHAR, '*'}, {EM_CHARFROMPOS, 0, MAKELPARAM(30, 5)}, {EM_POSFROMCHAR, 3}}},
        {"a click",
         {{WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 5)},
          {WM_LBUTTONUP, 0, MAKELPARAM(3, 5)},
          {WM_CHAR, 'x'}}},
        {"a double click",
         {{WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(3, 5)}, {WM_LBUTTONUP, 0, MAKELPARAM(3, 5)}}},
        // Styles.
        {"digits only, digits",
         {{WM_CHAR, '9'}, {EM_SETSEL, 0, 2}, {WM_CHAR, '0'}},
         {},
         kUsualStyle | ES_NUMBER},
        {"digits only, others", {{WM_CHAR, 'x'}, {WM_CHAR, VK_BACK}}, {}, kUsualStyle | ES_NUMBER},
        {"capitals",
         {{WM_CHAR, 'x'}, {EM_REPLACESEL, TRUE, At("aBc")}, {WM_SETTEXT, 0, At("dEf")}},
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
    const Field field(bStock, row.dwStyle);
    std::string seen;
    const HeldKeys held(row.held);
    for (const Message& message : row.messages) {
        const LRESULT result = field.Send(message.message, message.wParam, message.lParam);
        seen += std::to_string(result) + "=" + StateOf(field.hEdit) + " ";
    }
    return seen + "| " + field.strTold;
}

TEST(SecretField, DoesWhatTheStockControlDoes) {
    ASSERT_GE(RowsLikeTheStockControl().size(), 60U);
    for (const Row& row : RowsLikeTheStockControl()) {
        PutOnClipboard(L"paste\r\nno");
        EXPECT_EQ(Watch(row, false), Watch(row, true)) << row.pszWhat;
    }
}

// The run that is to have another code page has it.
TEST(SecretField, RunsUnderTheCodePageThatIsWanted) {
    const char* wanted = std::getenv("MVP_CODE_PAGE");
    EXPECT_EQ(std::to_string(GetACP()), wanted == nullptr ? "1252" : wanted);
}

}  // namespace
}  // namespace mvp::test
