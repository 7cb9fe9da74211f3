// The PIN edit: what it refuses on purpose, what hosts do while it tells them of a change, and what
// it does when memory runs out.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include <gtest/gtest.h>
#include <imm.h>

#include "mvpingui/caps_lock_sensitive_edit.h"
#include "platform/handle.h"
#include "support/freed_blocks.h"
#include "ui/dialogs/base/secret_field_host.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

// What the system's own control holds.
std::string SystemText(HWND hEdit) {
    WNDCLASSA info{};
    GetClassInfoA(nullptr, "EDIT", &info);
    std::array<char, 64> text{};
    CallWindowProcA(info.lpfnWndProc, hEdit, WM_GETTEXT, text.size(), At(text.data()));
    return text.data();
}

BOOL WINAPI RefuseLock(void*, SIZE_T) {
    return FALSE;
}
void* WINAPI RefusePages(void*, SIZE_T, DWORD, DWORD) {
    return nullptr;
}

TEST(SecretField, FollowsHostsThatChangeTheTextWhenTheyAreToldOfAChange) {
    const std::function<void(HWND)> answers[] = {
        [](HWND hEdit) { SetWindowTextA(hEdit, ""); },
        [](HWND hEdit) { SetWindowTextA(hEdit, "other"); },
        [](HWND hEdit) { SendMessageA(hEdit, EM_REPLACESEL, FALSE, At("two")); },
        [](HWND hEdit) { SendMessageA(hEdit, WM_CHAR, VK_BACK, 1); },
        [](HWND hEdit) { SendMessageA(hEdit, EM_SETSEL, 0, -1); },
        [](HWND hEdit) { SendMessageA(hEdit, WM_CHAR, 'y', 1); },
        [](HWND hEdit) { SendMessageA(hEdit, EM_SETSEL, 0, 1); },
        [](HWND hEdit) { SendMessageA(hEdit, EM_SETSEL, 3, 3); },
        [](HWND hEdit) { SendMessageA(hEdit, WM_KEYDOWN, VK_HOME, 1); },
        [](HWND hEdit) { EnableWindow(hEdit, FALSE); },
    };
    const Message changes[] = {{WM_CHAR, 'x'},
                               {WM_CHAR, VK_BACK},
                               {EM_REPLACESEL, 0, At("abc")},
                               {WM_SETTEXT, 0, At("new")},
                               {WM_CLEAR},
                               {WM_PASTE}};
    PutOnClipboard(L"paste");
    for (int round = 0; round < 8; ++round) {
        const int code = round % 2 == 0 ? EN_UPDATE : EN_CHANGE;
        for (const auto& answer : answers) {
            for (const Message& change : changes) {
                std::string seen[2];
                for (const bool stock : {false, true}) {
                    Field field(stock);
                    field.bAsks = round / 2 % 2 == 0;
                    field.Send(EM_SETSEL, 2, round < 4 ? 5 : 2);
                    field.onTold = [&, done = false](WORD nCode) mutable {
                        if (nCode == code && !std::exchange(done, true)) {
                            answer(field.hEdit);
                        }
                    };
                    field.Send(change.message, change.wParam, change.lParam);
                    seen[stock ? 1 : 0] = field.strTold + "| " + StateOf(field.hEdit);
                }
                EXPECT_EQ(seen[0], seen[1])
                    << code << ", " << change.message << " and answer " << &answer - answers;
            }
        }
    }
}

// Not by a character: the stock control itself does not survive that.
TEST(SecretField, MayBeDeletedWhenItTellsOfSomething) {
    const PatchedImports patched(nullptr, {{"VirtualAlloc", Address(&RefusePages)}});
    for (const auto& [code, text] : {std::pair<int, const char*>{EN_SETFOCUS, nullptr},
                                     {EN_KILLFOCUS, nullptr},
                                     {EN_CHANGE, ""},
                                     {EN_ERRSPACE, "new"}}) {
        Host host;
        auto object = std::make_unique<CCapsLockSensitiveEdit>();
        const HWND edit = host.MakeEdit(kUsualStyle);
        object->SubclassWindow(edit);
        host.onTold = [&, wanted = code](WORD nCode) {
            if (nCode == wanted) {
                object.reset();
            }
        };
        SetFocus(edit);
        if (text != nullptr) {
            SetWindowTextA(edit, text);
        }
        host.LeaveEdit();
        EXPECT_FALSE(IsWindow(edit)) << code;
    }
}

// Shown is what would be handed over, whatever is done to the control behind the field's back.
TEST(SecretField, LosesATextRatherThanShowAnother) {
    Field field;
    WNDCLASSA info{};
    GetClassInfoA(nullptr, "EDIT", &info);
    field.onTold = [&, done = false](WORD) mutable {
        if (!std::exchange(done, true)) {
            CallWindowProcA(info.lpfnWndProc, field.hEdit, WM_CHAR, '*', 1);
            CallWindowProcA(info.lpfnWndProc, field.hEdit, WM_CHAR, '*', 1);
        }
    };
    field.Send(WM_CHAR, VK_BACK);
    EXPECT_EQ(StateOf(field.hEdit), "[0,0]0");
    EXPECT_EQ(SystemText(field.hEdit), "");
}

// A character that comes while another one is told of needs room, too.
TEST(SecretField, HasRoomForCharactersWithinEachOther) {
    Field field;
    SetWindowTextA(field.hEdit, std::string(2'047, 'a').c_str());
    field.onTold = [&, done = 0](WORD nCode) mutable {
        if (nCode == EN_UPDATE && ++done < 5) {
            field.Send(WM_CHAR, 'b');
        }
    };
    field.bAsks = false;
    field.Send(WM_CHAR, 'c');
    EXPECT_EQ(TextOf(field.hEdit).substr(0, 5), "cbbbb");
    EXPECT_EQ(field.Send(WM_GETTEXTLENGTH), 2'052);
}

// What the stock control does, and this one does not, be it typed, sent or chosen from a menu.
TEST(SecretField, KeepsItsTextFromClipboardUndoingAndInputMethods) {
    const Row rows[] = {
        {"WM_COPY", {{WM_COPY}}},
        {"WM_CUT", {{WM_CUT}}},
        {"Ctrl+C", {{WM_CHAR, 0x03}}, {VK_CONTROL}},
        {"Ctrl+X", {{WM_CHAR, 0x18}}, {VK_CONTROL}},
        {"Ctrl+Insert", {{WM_KEYDOWN, VK_INSERT}}, {VK_CONTROL}},
        {"Shift+Delete", {{WM_KEYDOWN, VK_DELETE}}, {VK_SHIFT}},
        {"WM_UNDO", {{WM_UNDO}}},
        {"EM_UNDO", {{EM_UNDO}, {EM_CANUNDO}}},
        {"Ctrl+Z", {{WM_CHAR, 0x1A}}, {VK_CONTROL}},
        {"Alt+Backspace", {{WM_SYSKEYDOWN, VK_BACK, 0x2000}, {WM_SYSKEYDOWN, VK_BACK, 1 << 29}}},
        {"a choice of the control's own menu", {{WM_COMMAND, WM_PASTE}, {WM_COMMAND, EM_UNDO}}},
        {"its memory", {{EM_SETHANDLE}, {EM_GETHANDLE}}},
        {"input methods",
         {{WM_IME_STARTCOMPOSITION},
          {WM_IME_REQUEST, IMR_RECONVERTSTRING},
          {WM_IME_ENDCOMPOSITION}}},
    };
    EXPECT_NE(ImmGetContext(Field(true).hEdit), nullptr) << "which the system offers";
    for (const Row& row : rows) {
        const Field field;
        field.Send(WM_CHAR, VK_BACK);
        field.Send(EM_SETSEL, 0, -1);
        field.Send(EM_SETMODIFY, FALSE);
        PutOnClipboard(L"mark\nno");
        const HeldKeys held(row.held);
        for (const Message& message : row.messages) {
            const LRESULT result = field.Send(message.message, message.wParam, message.lParam);
            EXPECT_EQ(result, message.message == WM_CHAR) << row.pszWhat;
        }
        EXPECT_EQ(StateOf(field.hEdit), "1245678[0,7]7") << row.pszWhat;
        EXPECT_FALSE(field.Send(EM_GETMODIFY)) << row.pszWhat;
        field.Send(WM_PASTE);
        EXPECT_EQ(TextOf(field.hEdit), "mark") << row.pszWhat;
        EXPECT_EQ(ImmGetContext(field.hEdit), nullptr);
    }
}

TEST(SecretField, CannotBeMadeToShowItsText) {
    for (const DWORD style : {kUsualStyle, DWORD{ES_AUTOHSCROLL}}) {
        const Field field(false, style);
        field.Send(EM_SETPASSWORDCHAR, 0);
        field.Send(EM_SETPASSWORDCHAR, 0x100);
        field.Send(WM_STYLECHANGING, static_cast<WPARAM>(GWL_STYLE), 0);
        SetWindowLongPtrA(field.hEdit, GWL_STYLE,
                          GetWindowLongPtrA(field.hEdit, GWL_STYLE) & ~ES_PASSWORD);
        EXPECT_NE(field.Send(EM_GETPASSWORDCHAR), 0);
        EXPECT_NE(GetWindowLongPtrA(field.hEdit, GWL_STYLE) & ES_PASSWORD, 0);
    }
}

TEST(SecretField, TakesOverWhatAWindowHoldsAndNothingThatIsGivenAtCreation) {
    Host host;
    const HWND edit = host.MakeEdit(kUsualStyle, "before");
    CCapsLockSensitiveEdit bound;
    bound.SubclassWindow(edit);
    EXPECT_EQ(TextOf(edit), "before");
    EXPECT_EQ(SystemText(edit), "******");
    bound.Detach();
    const HWND next = host.MakeEdit(kUsualStyle | WS_BORDER);
    SetWindowLongPtrA(next, GWL_EXSTYLE, WS_EX_ACCEPTFILES);
    bound.ShowText();
    bound.SubclassWindow(next);
    EXPECT_EQ(StateOf(next), "[0,0]0") << "bound to another one";
    EXPECT_EQ(GetWindowLongPtrA(next, GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
    CCapsLockSensitiveEdit made;
    for (int window = 0; window < 2; ++window) {
        made.CreateEx(0, "EDIT", "text", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr);
        EXPECT_EQ(StateOf(made.m_hWnd), "[0,0]0");
        SetWindowTextA(made.m_hWnd, "later");
        EXPECT_EQ(StateOf(made.m_hWnd), "later[0,0]5");
        made.DestroyWindow();
    }
}

TEST(SecretField, IsReadAndWrittenByItsOwnThreadAlone) {
    Field field;
    CString text;
    EXPECT_TRUE(field.object.ReadSecret(text));
    EXPECT_STREQ(text, kText);
    const std::jthread other([&] {
        CString stolen("x");
        EXPECT_FALSE(field.object.ReadSecret(stolen));
        EXPECT_TRUE(stolen.IsEmpty());
        EXPECT_FALSE(field.object.WriteSecret("x"));
    });
    CCapsLockSensitiveEdit unbound;
    EXPECT_FALSE(unbound.WriteSecret("1"));
    EXPECT_TRUE(field.object.WriteSecret(nullptr));
    EXPECT_EQ(StateOf(field.hEdit), "[0,0]0");
    EXPECT_TRUE(unbound.ReadSecret(text));
    EXPECT_TRUE(text.IsEmpty());
}

TEST(SecretField, GivesAsMuchAsThereIsRoomFor) {
    const Field field;
    for (const WPARAM room : {0U, 1U, 2U, 8U, 9U, 0x7FFFFFFFU}) {
        char buffer[20] = "##########";
        const auto expected = room == 0 ? 0 : std::min<WPARAM>(room - 1, 8);
        EXPECT_EQ(static_cast<WPARAM>(field.Send(WM_GETTEXT, room, At(buffer))), expected);
        EXPECT_EQ(std::string(buffer).substr(0, expected), std::string(kText).substr(0, expected));
        EXPECT_EQ(buffer[expected], room == 0 ? '#' : '\0');
    }
    // No half of a character.
    SetWindowTextA(field.hEdit, "\x82\xA0\x82\xA2");
    char half[20] = "";
    EXPECT_EQ(field.Send(WM_GETTEXT, 4, At(half)), GetACP() == 932 ? 2 : 3);
    const Message typed[] = {
        {WM_CHAR, 0x82}, {WM_KILLFOCUS}, {WM_CHAR, 'x'}, {WM_IME_CHAR, 0x82A0}};
    for (const Message& each : typed) {
        field.Send(each.message, each.wParam);
    }
    EXPECT_EQ(TextOf(field.hEdit).find("x\x82\xA0\x82"), GetACP() == 932 ? 0U : std::string::npos);
    SetWindowTextA(field.hEdit, kText);
    EXPECT_EQ(field.Send(WM_GETTEXT, 20, 0), 0);
    EXPECT_EQ(field.Send(EM_GETLINE, 0, 0), 0);
    char line[20] = "\x05\0##########";
    EXPECT_EQ(field.Send(EM_GETLINE, 0, At(line)), 5);
    EXPECT_STREQ(line, "12345#######");
}

// Typed beyond the first page, pasted up to 10,000 characters, typed into the middle; then a
// megabyte from the clipboard.
TEST(SecretField, HoldsLongTexts) {
    Field field;
    field.bDeaf = true;
    std::string expected = kText;
    const auto type = [&](size_t nAt, size_t nCount) {
        field.Send(EM_SETSEL, nAt, static_cast<LPARAM>(nAt));
        for (size_t i = 0; i < nCount; ++i) {
            const char ch = static_cast<char>('A' + i % 53);
            expected.insert(nAt + i, 1, ch);
            field.Send(WM_CHAR, static_cast<WPARAM>(ch));
        }
    };
    const auto paste = [&](size_t nAt, size_t nOver, size_t nOffered, size_t nTaken) {
        PutOnClipboard(std::wstring(nOffered, L'p'));
        field.Send(EM_SETSEL, nAt, static_cast<LPARAM>(nAt + nOver));
        field.Send(WM_PASTE);
        expected.replace(nAt, nOver, nTaken, 'p');
    };
    bool clean = true;
    const FreedBlocks freed({nullptr}, [&](const void* p, size_t nBytes) {
        const std::wstring_view block(static_cast<const wchar_t*>(p), nBytes / sizeof(wchar_t));
        clean = clean && block.find(L"123ABC") == std::wstring_view::npos;
    });
    type(3, 2'100);
    field.Send(EM_SETLIMITTEXT, 9'900);
    paste(50, 0, 9'000, 9'900 - expected.size());
    field.Send(EM_SETLIMITTEXT, 10'000);
    type(5'000, 100);
    field.Send(WM_CHAR, 'x');
    EXPECT_TRUE(TextOf(field.hEdit) == expected);
    field.Send(EM_SETLIMITTEXT, 0);
    paste(100, 8'900, size_t{1} << 20, size_t{1} << 20);
    EXPECT_TRUE(TextOf(field.hEdit) == expected);
    CString all;
    EXPECT_TRUE(field.object.ReadSecret(all));
    EXPECT_TRUE(all == expected.c_str());
    EXPECT_TRUE(clean) << "where the text stood before it grew";
}

TEST(SecretField, TellsOfMemoryThatItDoesNotGet) {
    LogRecorder log;
    {
        const PatchedImports patched(nullptr, {{"VirtualLock", Address(&RefuseLock)}});
        EXPECT_EQ(StateOf(Field().hEdit), "12345678[3,3]8");
        EXPECT_NE(log.Dump().find("VirtualLock failed"), std::string::npos);
    }
    const PatchedImports patched(nullptr, {{"VirtualAlloc", Address(&RefusePages)}});
    Field field;
    PutOnClipboard(L"paste");
    for (const Message& change : {Message{WM_CHAR, 'x'},
                                  {WM_UNICHAR, 0x1F600},
                                  {WM_PASTE},
                                  {WM_SETTEXT, 0, At("new")},
                                  {EM_REPLACESEL, 0, At("new")}}) {
        log.Clear();
        field.strTold = "";
        EXPECT_EQ(field.Send(change.message, change.wParam, change.lParam), 0) << change.message;
        EXPECT_NE(field.strTold.find(std::to_string(EN_ERRSPACE) + ":[0,0]0 "), std::string::npos)
            << change.message;
        EXPECT_NE(log.Dump().find("no memory for what is typed"), std::string::npos);
    }
}

int g_nInputScope = 0;

HRESULT WINAPI RecordInputScope(HWND, int nScope) {
    g_nInputScope = nScope;
    return S_OK;
}
// Knows no other function.
FARPROC WINAPI FindRecorder(HMODULE, LPCSTR pszName) {
    return std::strcmp(pszName, "SetInputScope") == 0
               ? reinterpret_cast<FARPROC>(Address(&RecordInputScope))
               : nullptr;
}

TEST(SecretField, TellsTextServicesThatItTakesAPassword) {
    const ModuleHandle services(LoadLibraryA("msctf.dll"));
    const PatchedImports patched(nullptr, {{"GetProcAddress", Address(&FindRecorder)}});
    const Field field;
    EXPECT_EQ(g_nInputScope, 31);
}

// The menu that was shown last, as "Paste Delete- SelectAll", and what is chosen from it.
std::string g_strMenu;
UINT g_nChoice;

BOOL WINAPI ChooseFrom(HMENU hMenu, UINT, int x, int y, int, HWND hWnd, const RECT*) {
    g_strMenu = WindowFromPoint({x, y}) == hWnd && GetFocus() == hWnd ? "" : "elsewhere ";
    for (int i = 0; i < GetMenuItemCount(hMenu); ++i) {
        const UINT state = GetMenuState(hMenu, static_cast<UINT>(i), MF_BYPOSITION);
        g_strMenu += (state & MF_SEPARATOR) != 0 ? '|' : (state & MF_GRAYED) != 0 ? '-' : '+';
    }
    return static_cast<BOOL>(g_nChoice);
}

using SecretFieldMenu = LibraryTest;

TEST_F(SecretFieldMenu, OffersWhatCanBeDone) {
    const PatchedImports patched(nullptr, {{"TrackPopupMenu", Address(&ChooseFrom)}});
    const struct {
        const wchar_t* pszClipboard;
        BOOL bReadOnly;
        int nSelected;
        UINT nChoice;
        const char* pszMenu;
        const char* pszState;
    } cases[] = {
        {L"ab", FALSE, 0, 1, "+-|+", "ab12345678[2,2]10"},
        {L"", FALSE, 3, 2, "-+|+", "45678[0,0]5"},
        {L"ab", FALSE, 8, 0, "++|-", "12345678[0,8]8"},
        {L"ab", TRUE, 3, 3, "--|+", "12345678[0,8]8"},
    };
    for (const auto& c : cases) {
        const Field field;
        field.Send(EM_SETREADONLY, static_cast<WPARAM>(c.bReadOnly));
        field.Send(EM_SETSEL, 0, c.nSelected);
        PutOnClipboard(c.pszClipboard);
        g_nChoice = c.nChoice;
        field.LeaveEdit();
        field.Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(field.hEdit), -1);
        EXPECT_EQ(g_strMenu, c.pszMenu);
        EXPECT_EQ(StateOf(field.hEdit), c.pszState);
    }
}

}  // namespace
}  // namespace mvp::test
