#include "support/dialog.h"

#include <cstring>

#include "common/keyboard.h"
#include "common/thread_windows.h"
#include "support/dialog_driver.h"
#include "support/memory_scan.h"

namespace mvp::test {
namespace {

// A dialog's own control stands before one of the same number in a panel.
HWND FindControl(HWND hParent, int nId) {
    HWND found = GetDlgItem(hParent, nId);
    for (HWND child = GetWindow(hParent, GW_CHILD); found == nullptr && child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        found = FindControl(child, nId);
    }
    return found;
}

}  // namespace

// --- What it shows ---

std::string Dialog::Title() const {
    return TitleOf(m_hWnd);
}

RECT Dialog::ScreenRect() const {
    RECT rect = {};
    GetWindowRect(m_hWnd, &rect);
    return rect;
}

HWND Dialog::Control(int nId) const {
    HWND control = FindControl(m_hWnd, nId);
    if (control == nullptr) {
        throw DriverFailure("the dialog \"" + Title() + "\" has no control " + std::to_string(nId));
    }
    return control;
}

HWND Dialog::Usable(int nId) const {
    HWND control = Control(nId);
    if (!IsWindowVisible(control) || !IsWindowEnabled(control)) {
        throw DriverFailure("control " + std::to_string(nId) + " of the dialog \"" + Title() +
                            "\" is disabled or hidden");
    }
    return control;
}

std::string Dialog::Text(int nId) const {
    std::string text(static_cast<size_t>(Send(nId, WM_GETTEXTLENGTH)) + 1, '\0');
    text.resize(static_cast<size_t>(
        Send(nId, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

RECT Dialog::Rect(int nId) const {
    RECT rect = {};
    GetWindowRect(Control(nId), &rect);
    MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

LRESULT Dialog::Send(int nId, UINT nMessage, WPARAM wParam, LPARAM lParam) const {
    DWORD_PTR result = 0;
    if (SendMessageTimeoutA(Control(nId), nMessage, wParam, lParam, SMTO_ABORTIFHUNG,
                            static_cast<UINT>(m_driver.m_deadline.count()), &result) == 0) {
        throw DriverFailure("no answer to message " + std::to_string(nMessage));
    }
    return static_cast<LRESULT>(result);
}

HWND Dialog::FocusedControl() const {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(m_driver.m_ui.Id(), &info) ? info.hwndFocus : nullptr;
}

int Dialog::FocusedId() const {
    HWND focus = FocusedControl();
    return focus != nullptr && focus != m_hWnd ? GetDlgCtrlID(focus) : 0;
}

// --- Acting by messages ---

void Dialog::Post(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) const {
    if (!PostMessageA(hWnd, nMessage, wParam, lParam)) {
        throw DriverFailure("message " + std::to_string(nMessage) + " could not be posted, error " +
                            std::to_string(GetLastError()));
    }
}

void Dialog::Focus(int nId) {
    HWND control = Usable(nId);
    if (FocusedControl() == control) {
        return;
    }
    Run([control] { SetFocus(control); });
    WaitUntil("control " + std::to_string(nId) + " has the focus",
              [&] { return FocusedControl() == control; });
}

template <class Characters>
void Dialog::TypeEach(int nId, const Characters& text) {
    Focus(nId);
    const LRESULT length = Send(nId, WM_GETTEXTLENGTH);
    Send(nId, EM_SETSEL, static_cast<WPARAM>(length), length);
    HWND control = Control(nId);
    for (size_t i = 0; i < text.size(); ++i) {
        Post(control, WM_CHAR, static_cast<unsigned char>(text[i]), 1);
    }
    Settle();
}

void Dialog::Type(int nId, std::string_view text) {
    TypeEach(nId, text);
}

void Dialog::Type(int nId, const Secret& secret) {
    TypeEach(nId, secret);
}

void Dialog::Paste(int nId, std::string_view text) {
    HWND control = Usable(nId);
    WaitUntil("the clipboard is free", [] { return OpenClipboard(nullptr) != FALSE; });
    EmptyClipboard();
    const HGLOBAL textHandle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, text.size() + 1);
    std::memcpy(GlobalLock(textHandle), text.data(), text.size());
    GlobalUnlock(textHandle);
    SetClipboardData(CF_TEXT, textHandle);  // which owns it now
    CloseClipboard();
    Post(control, WM_PASTE, 0, 0);
    Settle();
}

void Dialog::Click(int nId) {
    Post(Usable(nId), BM_CLICK, 0, 0);
    Settle();
}

void Dialog::Press(WORD vk) {
    HWND top = GetAncestor(m_hWnd, GA_ROOT);
    HWND target = nullptr;
    // The focus may still be on its way here from a dialog that has just gone.
    WaitUntil("the dialog has the focus", [&] {
        target = FocusedControl();
        return target == top || IsChild(top, target);
    });
    const LPARAM data = 1 | static_cast<LPARAM>(MapVirtualKeyA(vk, MAPVK_VK_TO_VSC)) << 16;
    Post(target, WM_KEYDOWN, vk, data);
    PostMessageA(target, WM_KEYUP, vk, data | 0xC0000000);  // unless it has gone at the press
    // The press posts the key's character, which the second one waits for.
    Settle();
    Settle();
}

void Dialog::Cancel() {
    Post(m_hWnd, WM_COMMAND, IDCANCEL, 0);
    Settle();
}

// --- Acting by real key strokes ---

void Dialog::BringToForeground() const {
    HWND top = GetAncestor(m_hWnd, GA_ROOT);
    if (GetForegroundWindow() != top) {
        Run([top] { SetForegroundWindow(top); });
    }
    WaitUntil("the dialog is in the foreground", [top] { return GetForegroundWindow() == top; });
}

void Dialog::AwaitKeys(bool bSent) const {
    if (!bSent) {
        throw DriverFailure("the system refused a key stroke");
    }
    // A stroke may end the dialog, and with it the thread's taking of messages.
    WaitUntil("the keys are taken", [this] {
        return !IsOpen() || WaitForKeys(m_driver.m_ui.Id(), std::chrono::milliseconds(200));
    });
    Settle();
}

void Dialog::RealType(int nId, std::string_view text) {
    BringToForeground();
    Focus(nId);
    AwaitKeys(SendText(text));
}

void Dialog::RealKey(WORD vk, std::initializer_list<WORD> modifiers) {
    BringToForeground();
    AwaitKeys(SendKey(vk, modifiers));
}

// --- Waiting ---

void Dialog::WaitUntil(const std::string& strWhat, const std::function<bool()>& condition) const {
    m_driver.WaitUntil(strWhat, condition);
}

void Dialog::WaitGone() const {
    WaitUntil("the dialog \"" + Title() + "\" has gone", [this] { return !IsOpen(); });
    m_driver.m_inHand.erase(m_hWnd);
}

Dialog Dialog::Next(const DialogMatch& match) {
    return m_driver.WaitForDialog(match);
}

void Dialog::Settle() const {
    WaitUntil("the dialog's thread has handled what was posted",
              [this, isReached = m_driver.m_ui.PostMark()] { return isReached() || !IsOpen(); });
}

void Dialog::Run(const std::function<void()>& work) const {
    m_driver.m_ui.Run(work, m_driver.m_deadline);
}

}  // namespace mvp::test
