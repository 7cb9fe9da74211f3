// typist: looks at dialogs of other processes and types into them, with real key strokes.
//
// It reads an order a line and answers each with one line of JSON: null for done, a dialog, or the
// member "error".
//
//     wait           waits for a dialog that can be used, and tells its texts and places
//     next           the same, for another dialog than the last one
//     type TEXT      types into the edit with the focus (UTF-8)
//     key NAME       presses enter, escape, tab, space, close (Alt+F4) or alt+LETTER
//     picture FILE   takes a picture of the dialog
//     gone           waits until the dialog has gone
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/crash_exit.h"
#include "common/keyboard.h"
#include "common/screenshot.h"
#include "common/thread_windows.h"
#include "common/wait_for.h"
#include "platform/barrier.h"
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

constexpr std::chrono::seconds kDeadline{40};

HWND g_hDialog = nullptr;

std::string Converted(const std::string& str, UINT nFrom, UINT nTo) {
    std::wstring wide(str.size(), L'\0');
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(nFrom, 0, str.data(), static_cast<int>(str.size()), wide.data(),
                            static_cast<int>(wide.size()))));
    std::string text(wide.size() * 4, '\0');
    text.resize(static_cast<std::size_t>(
        WideCharToMultiByte(nTo, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

std::string TextOf(HWND hWnd) {
    std::wstring wide(4096, L'\0');
    // The texts of another process's controls come by message alone.
    DWORD_PTR length = 0;
    SendMessageTimeoutW(hWnd, WM_GETTEXT, wide.size(), reinterpret_cast<LPARAM>(wide.data()),
                        SMTO_ABORTIFHUNG, 2000, &length);
    std::string text(length * 4, '\0');
    text.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(length), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

BOOL CALLBACK TakeDialog(HWND hWnd, LPARAM lParam) {
    if (!IsWindowVisible(hWnd) || !IsWindowEnabled(hWnd) || !mvp::IsDialog(hWnd)) {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(lParam) = hWnd;
    return FALSE;
}

RECT PlaceOf(HWND hWnd) {
    RECT place{};
    GetWindowRect(hWnd, &place);
    return place;
}

// What the windows around it, and the screen, let be seen of it.
RECT VisiblePart(HWND hWnd) {
    RECT part = PlaceOf(hWnd);
    for (HWND outer = GetAncestor(hWnd, GA_PARENT); outer != nullptr;
         outer = GetAncestor(outer, GA_PARENT)) {
        RECT room{};
        GetClientRect(outer, &room);
        MapWindowPoints(outer, nullptr, reinterpret_cast<POINT*>(&room), 2);
        const RECT seen = part;
        IntersectRect(&part, &seen, &room);
    }
    return part;
}

bool IsSeenWhole(HWND hWnd) {
    const RECT place = PlaceOf(hWnd);
    const RECT part = VisiblePart(hWnd);
    return EqualRect(&place, &part) != FALSE;
}

Json Told(const RECT& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

void TellPlace(Json& dialog, const std::string& strText, HWND hWnd) {
    dialog["places"][strText] = Told(PlaceOf(hWnd));
    if (!IsSeenWhole(hWnd)) {
        dialog["cut"].push_back(strText);
    }
}

BOOL CALLBACK TellControl(HWND hWnd, LPARAM lParam) {
    auto& dialog = *reinterpret_cast<Json*>(lParam);
    const std::string name = mvp::ClassOf(hWnd);
    const bool isButton = lstrcmpiA(name.c_str(), "Button") == 0;
    if (!IsWindowVisible(hWnd)) {
        return TRUE;
    }
    if (lstrcmpiA(name.c_str(), "Edit") == 0) {
        DWORD_PTR mask = 0;
        SendMessageTimeoutA(hWnd, EM_GETPASSWORDCHAR, 0, 0, SMTO_ABORTIFHUNG, 2000, &mask);
        dialog["masks"].push_back(std::string(1, static_cast<char>(mask)));
    }
    if (!isButton && lstrcmpiA(name.c_str(), "Static") != 0) {
        return TRUE;
    }
    const std::string text = TextOf(hWnd);
    dialog[isButton ? "buttons" : "texts"].push_back(text);
    if (!text.empty()) {
        TellPlace(dialog, text, hWnd);
    }
    return TRUE;
}

// Ready for keys: in the foreground, with the focus on one of its controls.
bool IsReady(HWND hDialog) {
    if (GetForegroundWindow() != hDialog) {
        SetForegroundWindow(hDialog);
        return false;
    }
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(GetWindowThreadProcessId(hDialog, nullptr), &info) &&
           info.hwndFocus != nullptr && IsChild(hDialog, info.hwndFocus);
}

// hExcept: a dialog that is not meant; may be null.
Json WaitForDialog(HWND hExcept) {
    const bool found = mvp::WaitFor(kDeadline, [=] {
        g_hDialog = nullptr;
        EnumWindows(TakeDialog, reinterpret_cast<LPARAM>(&g_hDialog));
        return g_hDialog != nullptr && g_hDialog != hExcept && IsReady(g_hDialog);
    });
    if (!found) {
        throw std::runtime_error("no dialog was opened");
    }
    const auto number = [](HWND hWnd) { return reinterpret_cast<UINT_PTR>(hWnd); };
    const HWND owner = GetWindow(g_hDialog, GW_OWNER);
    // `cut`: what is not seen whole.
    Json dialog{{"window", number(g_hDialog)},
                {"owner", number(owner)},
                {"ownerTakesInput", IsWindowEnabled(owner) != FALSE},
                {"topmost", (GetWindowLongA(g_hDialog, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0},
                {"onScreen", IsSeenWhole(g_hDialog)},
                {"title", TextOf(g_hDialog)},
                {"texts", Json::array()},
                {"masks", Json::array()},
                {"buttons", Json::array()},
                {"place", Told(PlaceOf(g_hDialog))},
                {"places", Json::object()},
                {"cut", Json::array()}};
    EnumChildWindows(g_hDialog, TellControl, reinterpret_cast<LPARAM>(&dialog));
    return dialog;
}

void Expect(bool bSent) {
    if (!bSent) {
        throw std::runtime_error("the system refused the key strokes");
    }
}

void Press(const std::string& strName) {
    if (strName == "close") {
        Expect(mvp::SendKey(VK_F4, {VK_MENU}));
    } else if (strName.rfind("alt+", 0) == 0 && strName.size() == 5) {
        const SHORT key = VkKeyScanA(strName.back());
        Expect(mvp::SendKey(static_cast<WORD>(key & 0xFF), {VK_MENU}));
    } else if (strName == "enter") {
        Expect(mvp::SendKey(VK_RETURN));
    } else if (strName == "escape") {
        Expect(mvp::SendKey(VK_ESCAPE));
    } else if (strName == "tab") {
        Expect(mvp::SendKey(VK_TAB));
    } else if (strName == "space") {
        Expect(mvp::SendKey(VK_SPACE));
    } else {
        throw std::runtime_error("no such key: " + strName);
    }
}

void TakePicture(const std::string& strFile) {
    std::string error;
    if (!mvp::SaveWindowPng(g_hDialog, Converted(strFile, CP_UTF8, CP_ACP), error)) {
        throw std::runtime_error(error);
    }
}

Json Obey(const std::string& strOrder) {
    const std::size_t end = std::min(strOrder.find(' '), strOrder.size());
    const std::string word = strOrder.substr(0, end);
    const std::string rest = end < strOrder.size() ? strOrder.substr(end + 1) : "";
    if (word == "wait" || word == "next") {
        return WaitForDialog(word == "next" ? g_hDialog : nullptr);
    }
    if (word == "type") {
        Expect(mvp::SendText(Converted(rest, CP_UTF8, CP_ACP)));
    } else if (word == "key") {
        Press(rest);
    } else if (word == "picture") {
        TakePicture(rest);
    } else if (word == "gone") {
        if (!mvp::WaitFor(kDeadline, [] { return mvp::IsGone(g_hDialog); })) {
            throw std::runtime_error("the dialog stayed open");
        }
    } else {
        throw std::runtime_error("no such order: " + strOrder);
    }
    return {};
}

int Main() {
    for (std::string order; std::getline(std::cin, order);) {
        if (!order.empty() && order.back() == '\r') {
            order.pop_back();
        }
        Json answer;
        try {
            answer = Obey(order);
        } catch (const std::exception& error) {
            answer = {{"error", error.what()}};
        }
        std::cout << answer.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
    }
    return 0;
}

}  // namespace

int main() {
    mvp::EndWithCodeOnCrash(4);
    return mvp::Guarded(3, Main, [] {});
}
