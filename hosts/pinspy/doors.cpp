#include "pinspy/doors.h"

#include <oleacc.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <string_view>

#include <imm.h>
#include <richedit.h>

#include "common/accessible.h"
#include "common/keyboard.h"
#include "common/wait_for.h"
#include "pinspy/edit_pictures.h"
#include "platform/handle.h"

namespace mvp::spy {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kRoom = 512;  // bytes of a text, and what is read of a piece of memory

void SelectAll(HWND hEdit) {
    Ask(hEdit, EM_SETSEL, 0, LPARAM{-1});
}

std::string Got(char chKind, const void* pBytes, std::size_t nBytes) {
    return chKind + std::string(static_cast<const char*>(pBytes), nBytes);
}

// What `fill` puts into a buffer.
template <class Fill>
std::string Text(Fill fill) {
    std::array<char, kRoom> buffer{};
    fill(buffer.data());
    return Got('t', buffer.data(), buffer.size());
}
std::string GetText(HWND hEdit, bool bWide) {
    return Text([=](char* p) { Ask(hEdit, WM_GETTEXT, kRoom / 2, p, bWide); });
}
Loot Texts(HWND hEdit) {
    return {GetText(hEdit, false), GetText(hEdit, true)};
}

Loot Lines(HWND hEdit) {
    const auto line = [=](bool bWide) {
        return Text([=](char* p) {
            *reinterpret_cast<WORD*>(p) = kRoom / 2 - 1;
            Ask(hEdit, EM_GETLINE, 0, p, bWide);
        });
    };
    return {line(false), line(true)};
}

// On the spy's thread.
Loot FromProcedure(HWND hEdit) {
    const auto procedure = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(hEdit, GWLP_WNDPROC));
    return {Text([=](char* p) {
        CallWindowProcA(procedure, hEdit, WM_GETTEXT, kRoom, reinterpret_cast<LPARAM>(p));
    })};
}

// --- Memory of the edit's process ---

class Memory {
public:
    explicit Memory(HWND hEdit) {
        DWORD id = 0;
        GetWindowThreadProcessId(hEdit, &id);
        m_process.reset(
            OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id));
        m_pRoom = VirtualAllocEx(m_process.get(), nullptr, 2 * kRoom, MEM_COMMIT, PAGE_READWRITE);
    }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
    ~Memory() { VirtualFreeEx(m_process.get(), m_pRoom, 0, MEM_RELEASE); }

    // Room of its own there: a record, and a text of `kRoom` bytes behind.
    void* Record() const { return m_pRoom; }
    char* Room() const { return static_cast<char*>(m_pRoom) + kRoom; }
    template <class Parameter>
    void Write(const Parameter& record) const {
        const std::array<char, kRoom> none{};
        WriteProcessMemory(m_process.get(), Room(), none.data(), kRoom, nullptr);
        WriteProcessMemory(m_process.get(), Record(), &record, sizeof record, nullptr);
    }
    std::string Read(const void* p) const {
        std::array<char, kRoom> bytes{};
        SIZE_T read = 0;
        ReadProcessMemory(m_process.get(), p, bytes.data(), bytes.size(), &read);
        return {bytes.data(), read};
    }
    // What stands where a pointer leads to, and where what stands there leads to.
    void Follow(LONG_PTR nPointer, int nDepth, Loot& loot) const {
        constexpr LONG_PTR kLowest = 0x10000;
        const std::string bytes =
            nPointer < kLowest ? "" : Read(reinterpret_cast<const void*>(nPointer));
        if (!bytes.empty()) {
            loot.push_back('t' + bytes);
        }
        for (std::size_t i = 0; nDepth > 1 && i + sizeof nPointer <= bytes.size();
             i += sizeof nPointer) {
            std::copy_n(&bytes[i], sizeof nPointer, reinterpret_cast<char*>(&nPointer));
            Follow(nPointer, nDepth - 1, loot);
        }
    }

private:
    KernelHandle m_process;
    void* m_pRoom;
};

Loot TextHandle(HWND hEdit) {
    Loot loot;
    // A handle may be the place of the text, or where that place stands.
    Memory(hEdit).Follow(Ask(hEdit, EM_GETHANDLE), 2, loot);
    return loot;
}

Loot WindowData(HWND hEdit) {
    std::vector<LONG_PTR> values{GetWindowLongPtrA(hEdit, GWLP_USERDATA),
                                 GetWindowLongPtrA(hEdit, GWLP_WNDPROC)};
    constexpr int kStep = sizeof(LONG_PTR);
    for (int i = 0; i + kStep <= static_cast<int>(GetClassLongPtrA(hEdit, GCL_CBWNDEXTRA));
         i += kStep) {
        values.push_back(GetWindowLongPtrA(hEdit, i));
    }
    for (int i = 0; i + kStep <= static_cast<int>(GetClassLongPtrA(hEdit, GCL_CBCLSEXTRA));
         i += kStep) {
        values.push_back(static_cast<LONG_PTR>(GetClassLongPtrA(hEdit, i)));
    }
    const auto add = [](HWND, LPSTR, HANDLE hValue, ULONG_PTR pValues) -> BOOL {
        reinterpret_cast<std::vector<LONG_PTR>*>(pValues)->push_back(
            reinterpret_cast<LONG_PTR>(hValue));
        return TRUE;
    };
    EnumPropsExA(hEdit, add, reinterpret_cast<LPARAM>(&values));
    const Memory memory(hEdit);
    Loot loot;
    for (const LONG_PTR value : values) {
        memory.Follow(value, 2, loot);
    }
    return loot;
}

// --- Messages that newer and richer edits know ---

std::string g_strStreamed;

DWORD CALLBACK TakeStream(DWORD_PTR, LPBYTE pBytes, LONG nBytes, LONG* pnTaken) {
    g_strStreamed.append(reinterpret_cast<const char*>(pBytes), static_cast<std::size_t>(nBytes));
    *pnTaken = nBytes;
    return 0;
}
int CALLBACK TakeWord(LPWSTR psz, int, int nLength, int) {
    g_strStreamed.append(reinterpret_cast<const char*>(psz), 2 * static_cast<std::size_t>(nLength));
    return 0;
}

Loot RichMessages(HWND hEdit) {
    const Memory memory(hEdit);
    Loot loot;
    const auto ask = [&](UINT message, WPARAM wParam, LPARAM lParam) {
        Ask(hEdit, message, wParam, lParam);
        loot.push_back('t' + memory.Read(memory.Room()));
    };
    const auto room = reinterpret_cast<LPARAM>(memory.Room());
    const auto record = reinterpret_cast<LPARAM>(memory.Record());
    SelectAll(hEdit);
    memory.Write(0);
    ask(EM_GETSELTEXT, 0, room);
    memory.Write(TEXTRANGEA{{0, -1}, memory.Room()});
    ask(EM_GETTEXTRANGE, 0, record);
    memory.Write(GETTEXTEX{kRoom, GT_DEFAULT, CP_ACP, nullptr, nullptr});
    ask(EM_GETTEXTEX, static_cast<WPARAM>(record), room);
    return loot;
}

Loot Callbacks(HWND hEdit) {
    g_strStreamed.clear();
    EDITSTREAM stream{0, 0, &TakeStream};
    Ask(hEdit, EM_STREAMOUT, SF_TEXT, &stream);
    const LRESULT before = Ask(hEdit, EM_GETWORDBREAKPROC);
    Ask(hEdit, EM_SETWORDBREAKPROC, 0, reinterpret_cast<const void*>(&TakeWord));
    Ask(hEdit, WM_LBUTTONDBLCLK, 0, MAKELPARAM(12, 5));
    Ask(hEdit, WM_LBUTTONUP, 0, MAKELPARAM(12, 5));
    Ask(hEdit, EM_SETWORDBREAKPROC, 0, before);
    return {'t' + g_strStreamed};
}

// --- The clipboard ---

bool TakeClipboard() {
    return WaitFor(2s, [] { return OpenClipboard(nullptr) != FALSE; });
}

// What of the edit's text `act` brings there.
template <class Act>
Loot OnClipboard(HWND hEdit, Act act) {
    if (TakeClipboard()) {
        EmptyClipboard();
        CloseClipboard();
    }
    const DWORD before = GetClipboardSequenceNumber();
    SelectAll(hEdit);
    act();
    Loot loot;
    if (GetClipboardSequenceNumber() != before && TakeClipboard()) {
        for (UINT format = 0; (format = EnumClipboardFormats(format)) != 0;) {
            const HANDLE data = GetClipboardData(format);
            if (const void* p = GlobalLock(data); p != nullptr) {
                loot.push_back(Got('t', p, GlobalSize(data)));
                GlobalUnlock(data);
            }
        }
        CloseClipboard();
    }
    return loot;
}

// Until the edit, of which something is selected, has got what was posted to it.
void AwaitPosted(HWND hEdit) {
    PostMessageA(hEdit, EM_SETSEL, 0, 0);
    WaitFor(1s, [=] { return Ask(hEdit, EM_GETSEL) == 0; });
}

Loot Copied(HWND hEdit) {
    return OnClipboard(hEdit, [=] { Ask(hEdit, WM_COPY); });
}
Loot Cut(HWND hEdit) {
    return OnClipboard(hEdit, [=] { Ask(hEdit, WM_CUT); });
}

Loot TypedKeys(HWND hEdit) {
    return OnClipboard(hEdit, [=] {
        SendKey('C', {VK_CONTROL});
        SendKey(VK_INSERT, {VK_CONTROL});
        SendKey(VK_DELETE, {VK_SHIFT});
        // A stroke behind them, whose effect can be seen.
        SendKey(VK_HOME);
        WaitFor(2s, [=] { return Ask(hEdit, EM_GETSEL) == 0; });
    });
}

constexpr int kMenuItems = 4;

// Chooses the next item, as long as it is called.
Loot ContextMenu(HWND hEdit) {
    static int chosen = 0;
    const auto isOpen = [] { return IsWindowVisible(FindWindowA("#32768", nullptr)) != FALSE; };
    return OnClipboard(hEdit, [=] {
        PostMessageA(hEdit, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(hEdit), MAKELPARAM(300, 300));
        if (!WaitFor(2s, isOpen)) {
            return;
        }
        for (int i = 0; i <= chosen % kMenuItems; ++i) {
            PostMessageA(hEdit, WM_KEYDOWN, VK_DOWN, 1);
        }
        ++chosen;
        PostMessageA(hEdit, WM_CHAR, VK_RETURN, 1);
        // For an item that cannot be chosen.
        PostMessageA(hEdit, WM_CANCELMODE, 0, 0);
        WaitFor(2s, [=] { return !isOpen(); });
        AwaitPosted(hEdit);  // as the command that was chosen may be
    });
}

Loot Drag(HWND hEdit) {
    return OnClipboard(hEdit, [=] {
        PostMessageA(hEdit, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(12, 5));
        for (const int y : {10, 40, 80}) {
            PostMessageA(hEdit, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(12, y));
        }
        PostMessageA(hEdit, WM_LBUTTONUP, 0, MAKELPARAM(12, 80));
        AwaitPosted(hEdit);
    });
}

// --- Changes ---

Loot SetTextFromOutside(HWND hEdit) {
    Ask(hEdit, WM_SETTEXT, 0, kPlanted);
    return {};
}
Loot ReplaceFromOutside(HWND hEdit) {
    Ask(hEdit, EM_REPLACESEL, TRUE, kPlanted);
    return {};
}
Loot EditUndo(HWND hEdit) {
    Ask(hEdit, EM_UNDO);
    return Texts(hEdit);
}
Loot WindowUndo(HWND hEdit) {
    Ask(hEdit, WM_UNDO);
    return Texts(hEdit);
}

// --- Other ways to the text ---

Loot WindowTexts(HWND hEdit) {
    constexpr int kCount = kRoom / 2;
    return {Text([=](char* p) { GetWindowTextA(hEdit, p, kCount); }),
            Text([=](char* p) { GetWindowTextW(hEdit, reinterpret_cast<LPWSTR>(p), kCount); })};
}
Loot InternalText(HWND hEdit) {
    return {Text(
        [=](char* p) { InternalGetWindowText(hEdit, reinterpret_cast<LPWSTR>(p), kRoom / 2); })};
}
Loot ItemTexts(HWND hEdit) {
    const HWND dialog = GetParent(hEdit);
    const int id = GetDlgCtrlID(hEdit);
    return {Text([=](char* p) { GetDlgItemTextA(dialog, id, p, kRoom / 2); }), Text([=](char* p) {
                GetDlgItemTextW(dialog, id, reinterpret_cast<LPWSTR>(p), kRoom / 2);
            })};
}

Loot OddBuffers(HWND hEdit) {
    std::vector<char> huge(1 << 20);
    Loot loot;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{5}, huge.size()}) {
        Ask(hEdit, WM_GETTEXT, size, huge.data());
        loot.push_back(Got('t', huge.data(), std::min(kRoom, huge.size())));
        std::fill_n(huge.begin(), kRoom, '\0');
    }
    Ask(hEdit, WM_GETTEXT, 2, huge.data());
    loot.push_back(Got('c', huge.data(), 1));
    // NULLBUF Ask(hEdit, WM_GETTEXT, kRoom);
    return loot;
}

// Of the first. Equal steps from each character to the next tell their number alone.
Loot Positions(HWND hEdit) {
    const LRESULT length = std::min<LRESULT>(12, Ask(hEdit, WM_GETTEXTLENGTH));
    std::string steps = "w";
    for (LRESULT i = 0, last = 0; i < length; ++i) {
        const LRESULT x = LOWORD(Ask(hEdit, EM_POSFROMCHAR, static_cast<WPARAM>(i)));
        if (i > 0) {
            steps.push_back(static_cast<char>(x - last));
        }
        last = x;
    }
    // The number of pixels that belong to each, without the two at the edges.
    std::string runs = "w";
    LRESULT before = -1;
    for (int x = 0; x < 60; ++x, ++runs.back()) {
        const LRESULT at = LOWORD(Ask(hEdit, EM_CHARFROMPOS, 0, MAKELPARAM(x, 3)));
        if (at != before) {
            runs.push_back(0);
        }
        before = at;
    }
    runs = runs.size() > 4 ? 'w' + runs.substr(2, runs.size() - 4) : "w";
    return {steps, runs};
}

Loot AccessibleTexts(HWND hEdit) {
    Loot loot;
    const HRESULT initialized = CoInitialize(nullptr);
    const long objects[] = {OBJID_WINDOW, OBJID_CLIENT, OBJID_CARET, OBJID_NATIVEOM,
                            OBJID_QUERYCLASSNAMEIDX};
    for (const long object : objects) {
        UniqueHandle<AccessibleTraits> accessible;
        AccessibleObjectFromWindow(hEdit, static_cast<DWORD>(object), __uuidof(IAccessible),
                                   reinterpret_cast<void**>(accessible.put()));
        for (long child = 0; accessible && child < 3; ++child) {
            for (const auto getter :
                 {&IAccessible::get_accValue, &IAccessible::get_accName,
                  &IAccessible::get_accDescription, &IAccessible::get_accHelp,
                  &IAccessible::get_accKeyboardShortcut, &IAccessible::get_accDefaultAction}) {
                BSTR text = nullptr;
                if ((accessible.get()->*getter)(Child(child), &text) == S_OK) {
                    loot.push_back(Got('t', text, SysStringByteLen(text)));
                    SysFreeString(text);
                }
            }
        }
    }
    if (SUCCEEDED(initialized)) {
        CoUninitialize();
    }
    return loot;
}

// --- Input methods ---

Loot InputContext(HWND hEdit) {
    const HIMC context = ImmGetContext(hEdit);
    if (context == nullptr) {
        return {};
    }
    Loot loot{"i"};
    for (const DWORD index : {DWORD{GCS_COMPSTR}, DWORD{GCS_RESULTSTR}}) {
        loot.push_back(Text([=](char* p) { ImmGetCompositionStringW(context, index, p, kRoom); }));
    }
    ImmReleaseContext(hEdit, context);
    return loot;
}
Loot Reconversion(HWND hEdit) {
    const Memory memory(hEdit);
    Loot loot;
    SelectAll(hEdit);
    for (const WPARAM request : {WPARAM{IMR_RECONVERTSTRING}, WPARAM{IMR_DOCUMENTFEED}}) {
        RECONVERTSTRING record{};
        record.dwSize = 2 * kRoom;
        memory.Write(record);
        Ask(hEdit, WM_IME_REQUEST, request, memory.Record(), true);
        loot.insert(loot.end(),
                    {'t' + memory.Read(memory.Record()), 't' + memory.Read(memory.Room())});
    }
    return loot;
}

// --- Without the mask ---

template <class Off, Loot (*open)(HWND)>
Loot Without(HWND hEdit) {
    const Off off(hEdit);
    return open(hEdit);
}
constexpr Door kDoors[] = {
    {1, "`WM_GETTEXT`, 8-bit and 16-bit", Texts, "PP"},
    {1, "`WM_GETTEXT` by a call of the window's procedure", FromProcedure, "-P", DoorKind::Inside},
    {2, "`EM_GETLINE`", Lines, "-P", DoorKind::Inside},
    {3, "`EM_GETHANDLE`, and what it leads to", TextHandle, "MM"},
    {4, "`WM_COPY`", Copied, "PP"},
    {5, "`WM_CUT`", Cut, "PP"},
    {6, "Ctrl+C, Ctrl+Insert, Shift+Delete typed", TypedKeys, "PP", DoorKind::Keys},
    {7, "each of the first four items of the context menu", ContextMenu, "EE", DoorKind::Plain,
     kMenuItems},
    {8, "`WM_SETTEXT`", SetTextFromOutside, "PP", DoorKind::Change},
    {9, "`EM_GETSELTEXT`, `EM_GETTEXTRANGE`, `EM_GETTEXTEX`", RichMessages, "RR"},
    {9, "`EM_STREAMOUT`, `EM_SETWORDBREAKPROC`", Callbacks, "-P", DoorKind::Inside},
    {10, "`EM_POSFROMCHAR`, `EM_CHARFROMPOS`", Positions, "EE"},
    {10, "the same after `EM_SETPASSWORDCHAR` 0", Without<MaskOff, Positions>, "PP"},
    {11, "`GetWindowText`", WindowTexts, "-P"},
    {11, "`InternalGetWindowText`", InternalText, "--"},
    {12, "`GetDlgItemText`", ItemTexts, "PP"},
    {13, "window and class data, properties, and what they lead to", WindowData, "PP"},
    {14, "accessible value, name, description", AccessibleTexts, "EE"},
    {15, "`EM_SETPASSWORDCHAR` 0, `WM_GETTEXT`", Without<MaskOff, Texts>, "PP"},
    {15, "`EM_SETPASSWORDCHAR` 0, `PrintWindow`", Without<MaskOff, Printed>, "-P",
     DoorKind::Picture},
    {15, "`EM_SETPASSWORDCHAR` 0, `BitBlt` from the window", Without<MaskOff, CopiedFromWindow>,
     "-P", DoorKind::Picture},
    {15, "`EM_SETPASSWORDCHAR` 0, `BitBlt` from the screen", Without<MaskOff, CopiedFromScreen>,
     "PP", DoorKind::Picture},
    {15, "`EM_SETPASSWORDCHAR` 0, `WM_PRINT`", Without<MaskOff, PrintedByMessage>, "-P",
     DoorKind::Picture},
    {16, "`ES_PASSWORD` taken off, `WM_GETTEXT`", Without<StyleOff, Texts>, "PP"},
    {16, "`ES_PASSWORD` taken off, `BitBlt` from the window", Without<StyleOff, CopiedFromWindow>,
     "-E", DoorKind::Picture},
    {17, "the selection dragged", Drag, "--"},
    {18, "the input method's context", InputContext, "-P"},
    {19, "`WM_IME_REQUEST`", Reconversion, "--"},
    {20, "`EM_UNDO` after a deletion", EditUndo, "PP", DoorKind::Undo},
    {20, "`WM_UNDO` after a deletion", WindowUndo, "PP", DoorKind::Undo},
    {21, "`EM_REPLACESEL`", ReplaceFromOutside, "PP", DoorKind::Change},
    {22, "`WM_GETTEXT` into buffers of 0, 1, 2, 5, 1,048,576 and none", OddBuffers, "PP"},
};

}  // namespace

std::span<const Door> Doors() {
    return kDoors;
}

}  // namespace mvp::spy
