#include "support/dialog.h"

#include <cstring>
#include <deque>

#include "common/keyboard.h"
#include "common/screenshot.h"
#include "common/thread_windows.h"
#include "support/clipboard.h"
#include "support/driver_core.h"
#include "support/memory_scan.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

std::vector<HWND> Children(HWND hWnd) {
    std::vector<HWND> children;
    for (HWND hChild = GetWindow(hWnd, GW_CHILD); hChild != nullptr;
         hChild = GetWindow(hChild, GW_HWNDNEXT))
        children.push_back(hChild);
    return children;
}

bool IsPanel(HWND hWnd) {
    return (GetWindowLongA(hWnd, GWL_EXSTYLE) & WS_EX_CONTROLPARENT) != 0 || IsDialog(hWnd);
}

// Breadth first: a dialog's own control stands before one of the same number in a panel.
HWND FindControl(HWND hDialog, int nId) {
    std::deque<HWND> panels{hDialog};
    for (; !panels.empty(); panels.pop_front()) {
        if (HWND hControl = GetDlgItem(panels.front(), nId))
            return hControl;
        for (HWND hChild : Children(panels.front()))
            if (IsPanel(hChild))
                panels.push_back(hChild);
    }
    return nullptr;
}

LPARAM KeyData(WORD vk, bool bUp) {
    const LPARAM nScan = static_cast<LPARAM>(MapVirtualKeyA(vk, MAPVK_VK_TO_VSC)) << 16;
    return 1 | nScan | (bUp ? static_cast<LPARAM>(0xC0000000u) : 0);
}

}  // namespace

DialogMatch AnyDialog() {
    return {};
}

DialogMatch Titled(const std::string& strTitle) {
    DialogMatch match;
    match.strTitle = strTitle;
    match.strDescription = "a dialog \"" + strTitle + "\"";
    return match;
}

DialogMatch OfClass(const std::string& strClass) {
    DialogMatch match;
    match.strClass = strClass;
    match.strDescription = "a window of class " + strClass;
    return match;
}

DialogMatch WithControl(int nId) {
    DialogMatch match;
    match.isWanted = [nId](HWND hWnd) { return FindControl(hWnd, nId) != nullptr; };
    match.strDescription = "a dialog with control " + std::to_string(nId);
    return match;
}

// --- What it shows ---

std::string Dialog::Title() const {
    return TitleOf(m_hWnd);
}

RECT Dialog::ScreenRect() const {
    RECT rect = {};
    GetWindowRect(m_hWnd, &rect);
    return rect;
}

std::vector<Dialog> Dialog::Panels() const {
    std::vector<Dialog> panels;
    for (HWND hChild : Children(m_hWnd))
        if (IsDialog(hChild) && IsWindowVisible(hChild))
            panels.emplace_back(m_core, hChild);
    return panels;
}

HWND Dialog::Find(int nId) const {
    return FindControl(m_hWnd, nId);
}

HWND Dialog::Control(int nId) const {
    HWND hControl = Find(nId);
    if (hControl == nullptr)
        throw DriverFailure("the dialog \"" + Title() + "\" has no control " + std::to_string(nId));
    return hControl;
}

HWND Dialog::Usable(int nId) const {
    HWND hControl = Control(nId);
    if (!IsWindowVisible(hControl) || !IsWindowEnabled(hControl))
        throw DriverFailure("control " + std::to_string(nId) + " of the dialog \"" + Title() +
                            "\" is disabled or hidden");
    return hControl;
}

std::string Dialog::Text(int nId) const {
    HWND hControl = Control(nId);
    const auto nLength = static_cast<size_t>(m_core.Send(hControl, WM_GETTEXTLENGTH, 0, 0));
    std::string strText(nLength + 1, '\0');
    const LRESULT nCopied =
        m_core.Send(hControl, WM_GETTEXT, strText.size(), reinterpret_cast<LPARAM>(strText.data()));
    strText.resize(static_cast<size_t>(nCopied));
    return strText;
}

RECT Dialog::ScreenRect(int nId) const {
    RECT rect = {};
    GetWindowRect(Control(nId), &rect);
    return rect;
}

RECT Dialog::Rect(int nId) const {
    RECT rect = ScreenRect(nId);
    MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

LRESULT Dialog::Send(int nId, UINT nMessage, WPARAM wParam, LPARAM lParam) const {
    return m_core.Send(Control(nId), nMessage, wParam, lParam);
}

// --- Acting by messages ---

void Dialog::Post(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) const {
    if (!PostMessageA(hWnd, nMessage, wParam, lParam))
        throw DriverFailure("message " + std::to_string(nMessage) + " could not be posted, error " +
                            std::to_string(GetLastError()));
}

void Dialog::Settle() const {
    m_core.Ui().Settle(m_core.Deadline(), [this] { return !IsOpen(); });
}

void Dialog::Focus(int nId) {
    HWND hControl = Usable(nId);
    Run([hControl] { SetFocus(hControl); });
    WaitUntil("control " + std::to_string(nId) + " has the focus",
              [&] { return FocusedControl() == hControl; });
}

template <class Characters>
void Dialog::TypeEach(int nId, const Characters& text) {
    HWND hControl = Usable(nId);
    if (FocusedControl() != hControl)
        Focus(nId);
    const LRESULT nLength = m_core.Send(hControl, WM_GETTEXTLENGTH, 0, 0);
    m_core.Send(hControl, EM_SETSEL, static_cast<WPARAM>(nLength), nLength);
    for (size_t i = 0; i < text.size(); ++i)
        Post(hControl, WM_CHAR, static_cast<unsigned char>(text[i]), 1);
    Settle();
}

void Dialog::Type(int nId, std::string_view text) {
    TypeEach(nId, text);
}

void Dialog::Type(int nId, const Secret& secret) {
    TypeEach(nId, secret);
}

void Dialog::Paste(int nId, std::string_view text) {
    HWND hControl = Usable(nId);
    SetClipboardText(text, m_core.Deadline());
    Post(hControl, WM_PASTE, 0, 0);
    Settle();
}

void Dialog::Click(int nId) {
    Post(Usable(nId), BM_CLICK, 0, 0);
    Settle();
}

void Dialog::ClickAt(int nId, POINT point) {
    HWND hControl = Usable(nId);
    const LPARAM where = MAKELPARAM(point.x, point.y);
    Post(hControl, WM_LBUTTONDOWN, MK_LBUTTON, where);
    PostMessageA(hControl, WM_LBUTTONUP, 0, where);  // unless it has gone at the button's press
    Settle();
}

void Dialog::Press(WORD vk) {
    HWND hTop = GetAncestor(m_hWnd, GA_ROOT);
    HWND hTarget = nullptr;
    // The focus may still be on its way here from a dialog that has just gone.
    WaitUntil("the dialog has the focus", [&] {
        hTarget = FocusedControl();
        return hTarget == hTop || IsChild(hTop, hTarget);
    });
    Post(hTarget, WM_KEYDOWN, vk, KeyData(vk, false));
    PostMessageA(hTarget, WM_KEYUP, vk,
                 KeyData(vk, true));  // unless it has gone at the key's press
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
    HWND hTop = GetAncestor(m_hWnd, GA_ROOT);
    if (GetForegroundWindow() != hTop)
        Run([hTop] { SetForegroundWindow(hTop); });
    WaitUntil("the dialog is in the foreground", [hTop] { return GetForegroundWindow() == hTop; });
}

void Dialog::RealType(int nId, std::string_view text) {
    HWND hControl = Usable(nId);
    BringToForeground();
    if (FocusedControl() != hControl)
        Focus(nId);
    if (!SendText(text) || !WaitForKeys(m_core.Ui().Id(), m_core.Deadline()))
        throw DriverFailure("typed keys were not taken within " +
                            InMilliseconds(m_core.Deadline()));
    Settle();
}

void Dialog::RealKey(WORD vk, std::initializer_list<WORD> modifiers) {
    BringToForeground();
    if (!SendKey(vk, modifiers))
        throw DriverFailure("the system refused a key stroke");
    // The stroke may end the dialog, and with it the thread's taking of messages.
    const auto end = std::chrono::steady_clock::now() + m_core.Deadline();
    while (IsOpen() && !WaitForKeys(m_core.Ui().Id(), std::chrono::milliseconds(200)))
        if (std::chrono::steady_clock::now() >= end)
            throw DriverFailure("a key stroke was not taken within " +
                                InMilliseconds(m_core.Deadline()));
    Settle();
}

// --- Focus ---

HWND Dialog::FocusedControl() const {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(m_core.Ui().Id(), &info) ? info.hwndFocus : nullptr;
}

int Dialog::FocusedId() const {
    HWND hFocus = FocusedControl();
    return hFocus != nullptr && hFocus != m_hWnd ? GetDlgCtrlID(hFocus) : 0;
}

// --- Waiting ---

void Dialog::WaitUntil(const std::string& strWhat, const std::function<bool()>& condition) const {
    if (!WaitFor(m_core.Deadline(), condition))
        throw DriverFailure("waited " + InMilliseconds(m_core.Deadline()) + " until " + strWhat);
}

void Dialog::WaitGone() const {
    m_core.WaitGone(m_hWnd);
}

Dialog Dialog::Next(const DialogMatch& match) {
    return m_core.WaitForDialog(match);
}

void Dialog::LeaveOpen() {
    m_core.LeaveOpen(m_hWnd);
}

void Dialog::Run(const std::function<void()>& work) const {
    m_core.Ui().Run(work, m_core.Deadline());
}

void Dialog::Screenshot(const std::string& strFile) const {
    // Painting is what an idle thread does, and what it drew may still wait to be shown.
    Run([this] {
        RedrawWindow(m_hWnd, nullptr, nullptr, RDW_ALLCHILDREN | RDW_ERASENOW | RDW_UPDATENOW);
        GdiFlush();
    });
    std::string strError;
    if (!SaveWindowPng(m_hWnd, strFile, strError))
        throw DriverFailure("no screenshot " + strFile + ": " + strError);
}

}  // namespace mvp::test
