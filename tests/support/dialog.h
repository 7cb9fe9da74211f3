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
#include <vector>

namespace mvp::test {

class DriverCore;
class Secret;

// Which dialog is meant. Every field that is set has to match.
struct DialogMatch {
    std::string strClass = "#32770";
    std::string strTitle;                     // empty: any
    std::function<bool(HWND)> isWanted;       // empty: any; called on the driver's thread
    std::string strDescription = "a dialog";  // for the failure text
};

DialogMatch AnyDialog();
DialogMatch Titled(const std::string& strTitle);
DialogMatch OfClass(const std::string& strClass);
DialogMatch WithControl(int nId);

class Dialog {
public:
    Dialog(DriverCore& core, HWND hWnd) : m_core(core), m_hWnd(hWnd) {}

    HWND Handle() const { return m_hWnd; }
    std::string Title() const;
    bool IsOpen() const { return IsWindow(m_hWnd) != FALSE && IsWindowVisible(m_hWnd) != FALSE; }
    RECT ScreenRect() const;
    // The visible child dialogs, in z-order.
    std::vector<Dialog> Panels() const;

    // --- Controls ---
    HWND Control(int nId) const;
    bool Has(int nId) const { return Find(nId) != nullptr; }
    bool IsEnabled(int nId) const { return IsWindowEnabled(Control(nId)) != FALSE; }
    bool IsVisible(int nId) const { return IsWindowVisible(Control(nId)) != FALSE; }
    bool IsChecked(int nId) const { return Send(nId, BM_GETCHECK) == BST_CHECKED; }
    std::string Text(int nId) const;
    RECT Rect(int nId) const;  // in this dialog's client coordinates
    RECT ScreenRect(int nId) const;
    LRESULT Send(int nId, UINT nMessage, WPARAM wParam = 0, LPARAM lParam = 0) const;

    // --- Acting by messages: fast, and independent of who has the foreground ---
    void Focus(int nId);
    // Puts the caret behind the control's text and types there, one character message each.
    void Type(int nId, std::string_view text);
    void Type(int nId, const Secret& secret);
    // Puts `text` on the clipboard and pastes it over the selection.
    void Paste(int nId, std::string_view text);
    void Click(int nId);
    void ClickAt(int nId, POINT point);  // in the control's client coordinates
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

    // --- Focus ---
    HWND FocusedControl() const;
    int FocusedId() const;  // 0: no control has it

    // --- Waiting ---
    void WaitUntil(const std::string& strWhat, const std::function<bool()>& condition) const;
    void WaitGone() const;
    // The next dialog that the same thread opens, over this one or beside it.
    Dialog Next(const DialogMatch& match = AnyDialog());
    // Until the dialog's thread has handled all that was posted to it.
    void Settle() const;
    // The script may end with this dialog still open.
    void LeaveOpen();

    // Runs `work` on the dialog's own thread, for state that only that thread may touch.
    void Run(const std::function<void()>& work) const;

    // What the screen shows where the dialog stands, as a PNG file.
    void Screenshot(const std::string& strFile) const;

private:
    HWND Find(int nId) const;
    HWND Usable(int nId) const;
    template <class Characters>
    void TypeEach(int nId, const Characters& text);
    void Post(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) const;
    void BringToForeground() const;

    DriverCore& m_core;
    HWND m_hWnd;
};

}  // namespace mvp::test
