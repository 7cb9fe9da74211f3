#include "common/keyboard.h"

#include <windows.h>

#include <atomic>
#include <vector>

#include "platform/handle.h"

namespace mvp {
namespace {

// No keyboard has this key and no layout assigns it: its release does nothing anywhere, but it
// takes its turn in the queue behind the strokes before it. Its scan code tells one marker from
// another, as one that was given up may still arrive.
constexpr WORD kMarkerKey = 0xE8;
std::atomic<WORD> s_wMarkerScan = 0;

// Kept for the life of the process: the hook may still be running when a wait is given up.
HANDLE MarkerSeen() {
    static const KernelHandle event(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    return event.get();
}

INPUT KeyInput(WORD vk, DWORD dwFlags) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = vk;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyA(vk, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = dwFlags;
    return input;
}

INPUT CharacterInput(wchar_t ch, DWORD dwFlags) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wScan = ch;
    input.ki.dwFlags = KEYEVENTF_UNICODE | dwFlags;
    return input;
}

void AddStroke(std::vector<INPUT>& inputs, WORD vk, const std::vector<WORD>& modifiers) {
    for (const WORD modifier : modifiers) {
        inputs.push_back(KeyInput(modifier, 0));
    }
    inputs.push_back(KeyInput(vk, 0));
    inputs.push_back(KeyInput(vk, KEYEVENTF_KEYUP));
    for (const WORD modifier : std::vector<WORD>(modifiers.rbegin(), modifiers.rend())) {
        inputs.push_back(KeyInput(modifier, KEYEVENTF_KEYUP));
    }
}

void AddCharacter(std::vector<INPUT>& inputs, char ch) {
    wchar_t wide = 0;
    if (MultiByteToWideChar(CP_ACP, 0, &ch, 1, &wide, 1) != 1) {
        return;
    }
    const int key = VkKeyScanW(wide);
    const int shiftState = (key >> 8) & 0xFF;
    // Only what Shift alone reaches: Ctrl and Alt combinations differ between layouts' dead keys.
    if (key == -1 || (shiftState & ~1) != 0) {
        inputs.push_back(CharacterInput(wide, 0));
        inputs.push_back(CharacterInput(wide, KEYEVENTF_KEYUP));
        return;
    }
    std::vector<WORD> modifiers;
    if (shiftState != 0) {
        modifiers.push_back(VK_SHIFT);
    }
    AddStroke(inputs, static_cast<WORD>(key & 0xFF), modifiers);
}

bool Send(std::vector<INPUT>& inputs) {
    const auto count = static_cast<UINT>(inputs.size());
    return count == 0 || SendInput(count, inputs.data(), sizeof(INPUT)) == count;
}

LRESULT CALLBACK OnMessageTaken(int nCode, WPARAM wParam, LPARAM lParam) {
    const auto* message = reinterpret_cast<const MSG*>(lParam);
    if (nCode == HC_ACTION && wParam == PM_REMOVE && message->message == WM_KEYUP &&
        message->wParam == kMarkerKey && ((message->lParam >> 16) & 0xFF) == s_wMarkerScan) {
        SetEvent(MarkerSeen());
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

struct HookTraits {
    using Handle = HHOOK;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { UnhookWindowsHookEx(handle); }
};

}  // namespace

bool SendKey(WORD vk, std::initializer_list<WORD> modifiers) {
    std::vector<INPUT> inputs;
    AddStroke(inputs, vk, modifiers);
    return Send(inputs);
}

bool SendText(std::string_view text) {
    std::vector<INPUT> inputs;
    inputs.reserve(text.size() * 4);
    for (const char ch : text) {
        AddCharacter(inputs, ch);
    }
    const bool sent = Send(inputs);
    SecureZeroMemory(inputs.data(), inputs.size() * sizeof(INPUT));
    return sent;
}

bool WaitForKeys(DWORD dwThreadId, std::chrono::milliseconds timeout) {
    ResetEvent(MarkerSeen());
    s_wMarkerScan = static_cast<WORD>(s_wMarkerScan % 127 + 1);
    const UniqueHandle<HookTraits> hook(
        SetWindowsHookExA(WH_GETMESSAGE, OnMessageTaken, nullptr, dwThreadId));
    INPUT marker = KeyInput(kMarkerKey, KEYEVENTF_KEYUP);
    marker.ki.wScan = s_wMarkerScan;
    if (!hook || SendInput(1, &marker, sizeof marker) != 1) {
        return false;
    }
    return WaitForSingleObject(MarkerSeen(), static_cast<DWORD>(timeout.count())) == WAIT_OBJECT_0;
}

}  // namespace mvp
