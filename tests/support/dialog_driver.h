// Drives the modal dialogs of a test.
//
// A modal dialog keeps the test's thread until it is closed. A driver, made before it is opened,
// runs beside it on a thread of its own: one script for each dialog that opens, in order.
//
//     DialogDriver driver([](Dialog& warning) { warning.Click(IDOK); },
//                         [](Dialog& dialog) { dialog.Type(IDC_PIN, "1234"), dialog.Enter(); });
//     EXPECT_EQ(GetPINFromUser(...), 0u);
//     driver.Join();
//
// A dialog that opens over another one is reached from the script of the first, by Next(). A driver
// without scripts holds that no dialog opens. One driver at a time, for the thread that made it.
//
// Whatever goes wrong (a missed deadline, a dialog that nobody waits for or that a script leaves
// open, a failed ASSERT in a script) fails the test in good time, and every open dialog is
// cancelled. If one cannot be, the process is ended. EXPECT_ and ASSERT_ may be used in scripts.
#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <concepts>
#include <functional>
#include <initializer_list>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "support/ui_thread.h"

namespace mvp::test {

class DialogDriver;
class Secret;

// Why a driver gave up. Thrown and caught inside the driver's thread.
struct DriverFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// One open dialog, as a script sees and handles it.
//
// Every operation returns when the dialog's thread has handled it (or the dialog has gone over it),
// so what is read next is its outcome; one that cannot be done ends the script and fails the test.
// Controls are looked up among the dialog's children first, then within its child panels.
class Dialog {
public:
    Dialog(DialogDriver& driver, HWND hWnd) : m_driver(driver), m_hWnd(hWnd) {}

    HWND Handle() const { return m_hWnd; }
    std::string Title() const;
    bool IsOpen() const { return IsWindow(m_hWnd) != FALSE && IsWindowVisible(m_hWnd) != FALSE; }

    // --- Controls ---
    HWND Control(int nId) const;
    bool IsEnabled(int nId) const { return IsWindowEnabled(Control(nId)) != FALSE; }
    bool IsVisible(int nId) const { return IsWindowVisible(Control(nId)) != FALSE; }
    bool IsChecked(int nId) const { return Send(nId, BM_GETCHECK) == BST_CHECKED; }
    std::string Text(int nId) const;
    // As the dialog's own code would: nobody else may set a PIN.
    void SetText(int nId, const char* pszText) const;
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
    Dialog Next();
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

using Script = std::function<void(Dialog&)>;

class DialogDriver {
public:
    template <std::convertible_to<Script>... Scripts>
    explicit DialogDriver(Scripts&&... scripts)
        : DialogDriver(std::chrono::seconds(10), {Script(std::forward<Scripts>(scripts))...}) {}
    // `deadline` holds for each single wait.
    DialogDriver(std::chrono::milliseconds deadline, std::vector<Script> scripts);
    ~DialogDriver() { Join(); }

    // Waits until every script has run; the destructor does it too. The thread's messages are
    // handled meanwhile, so modeless dialogs live on.
    void Join();

private:
    friend class Dialog;
    enum class Phase {
        Scripts,
        Watch,  // every script has run; Join ends it
        Stop,
        Ended,
    };

    // On the driver's thread; the waits throw DriverFailure.
    void Main(const std::vector<Script>& scripts) noexcept;
    void RunScripts(const std::vector<Script>& scripts);
    void CancelWhatIsOpen();
    void Fail(const std::string& strReason);
    void WaitUntil(const std::string& strWhat, const std::function<bool()>& condition) const;
    // A dialog that is not yet in hand, initialised and ready for input.
    Dialog WaitForDialog();
    bool IsReady(HWND hWnd) const;
    std::vector<HWND> OpenDialogs() const;
    std::string DescribeWindows() const;

    UiThread m_ui;
    std::chrono::milliseconds m_deadline;
    std::set<HWND> m_inHand;
    bool m_bFailed = false;
    std::atomic<Phase> m_phase = Phase::Scripts;
    std::thread m_thread;
};

}  // namespace mvp::test
