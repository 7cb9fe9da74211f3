// One open dialog, as a test's driver sees and handles it.
//
// A DialogDriver hands it to the test's script, which runs on the driver's thread while the dialog
// runs on the test's own:
//
//     [](Dialog& dialog) {
//         dialog.Type(IDC_PIN, "1234");
//         EXPECT_TRUE(dialog.IsEnabled(IDOK));
//         dialog.Click(IDOK);
//     }
//
// Every operation returns when the dialog's thread has handled it (or the dialog has gone over it),
// so what is read next is its outcome. An operation that cannot be done (no such control, a click
// on a disabled button, a deadline missed) ends the script by an exception and fails the test.
//
// Controls are named by their identifiers and are looked up among the dialog's children first, then
// within its child panels.
#pragma once

#include <windows.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace mvp::test {

class DialogDriver;
class Secret;

// Which dialog is meant.
struct DialogMatch {
    std::string strTitle;  // empty: any
};

inline DialogMatch Titled(std::string strTitle) {
    return {std::move(strTitle)};
}

class Dialog {
public:
    Dialog(DialogDriver& driver, HWND hWnd) : m_driver(driver), m_hWnd(hWnd) {}

    HWND Handle() const { return m_hWnd; }
    std::string Title() const;
    bool IsOpen() const { return IsWindow(m_hWnd) != FALSE && IsWindowVisible(m_hWnd) != FALSE; }
    RECT ScreenRect() const;

    // --- Controls ---
    HWND Control(int nId) const;
    bool IsEnabled(int nId) const { return IsWindowEnabled(Control(nId)) != FALSE; }
    bool IsVisible(int nId) const { return IsWindowVisible(Control(nId)) != FALSE; }
    bool IsChecked(int nId) const { return Send(nId, BM_GETCHECK) == BST_CHECKED; }
    std::string Text(int nId) const;
    RECT Rect(int nId) const;  // in this dialog's client coordinates
    LRESULT Send(int nId, UINT nMessage, WPARAM wParam = 0, LPARAM lParam = 0) const;
    int FocusedId() const;  // 0: no control has the focus

    // --- Acting by messages: fast, and independent of who has the foreground ---
    void Focus(int nId);
    // Puts the caret behind the control's text and types there, one character message each.
    void Type(int nId, std::string_view text);
    void Type(int nId, const Secret& secret);
    // Puts `text` on the clipboard and pastes it over the selection.
    void Paste(int nId, std::string_view text);
    void Click(int nId);
    // A key stroke for the control that has the focus. The state of Shift, Ctrl and Alt is not part
    // of a message: strokes with them need RealKey.
    void Press(WORD vk);
    void Tab() { Press(VK_TAB); }
    void Enter() { Press(VK_RETURN); }
    void Escape() { Press(VK_ESCAPE); }
    void Cancel();  // the command a dialog gets from its close box

    // --- Acting by real key strokes, through the system's input queue ---
    void RealType(int nId, std::string_view text);
    void RealKey(WORD vk, std::initializer_list<WORD> modifiers = {});

    // --- Waiting ---
    void WaitUntil(const std::string& strWhat, const std::function<bool()>& condition) const;
    void WaitGone() const;
    // The next dialog that the same thread opens, over this one or beside it.
    Dialog Next(const DialogMatch& match = {});
    // Until the dialog's thread has handled all that was posted to it.
    void Settle() const;

    // Runs `work` on the dialog's own thread, for state that only that thread may touch.
    void Run(const std::function<void()>& work) const;

private:
    HWND Usable(int nId) const;
    HWND FocusedControl() const;
    template <class Characters>
    void TypeEach(int nId, const Characters& text);
    void Post(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) const;
    void BringToForeground() const;
    void AwaitKeys(bool bSent) const;

    DialogDriver& m_driver;
    HWND m_hWnd;
};

}  // namespace mvp::test
