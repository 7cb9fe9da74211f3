// Drives the modal dialogs of a test.
//
// A modal dialog keeps the test's thread until it is closed. A driver, made before the dialog is
// opened, runs beside it on a thread of its own: it waits for the dialog, hands it to the test's
// script, and waits for it to go. One script for each dialog that opens, in order:
//
//     DialogDriver driver(
//         [](Dialog& warning) { warning.Click(IDOK); },
//         Step(Titled("Enter PIN"), [](Dialog& dialog) {
//             dialog.Type(IDC_PIN, "1234");
//             EXPECT_TRUE(dialog.IsEnabled(IDOK));
//             dialog.Enter();
//         }));
//     EXPECT_EQ(GetPINFromUser(...), 0u);
//     driver.Join();
//
// A dialog that opens over another one is reached from the script of the first:
// `Dialog help = dialog.Next(); help.Click(IDOK); help.WaitGone();`.
//
// A driver without scripts holds that no dialog opens: `DialogDriver noDialog;`.
//
// Whatever goes wrong ends in good time with a reason: a missed deadline, a dialog that nobody
// waits for, a script that leaves its dialog open, a failed ASSERT in a script all fail the test,
// and every open dialog is cancelled, so that the test's thread gets on. If a dialog cannot be
// cancelled the process is ended. EXPECT_ and ASSERT_ may be used in scripts.
//
// A driver drives the dialogs of the thread that made it, one driver at a time.
#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <concepts>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/dialog.h"
#include "support/ui_thread.h"

namespace mvp::test {

// Why a driver gave up. Thrown and caught inside the driver's thread.
struct DriverFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

using Script = std::function<void(Dialog&)>;

struct Step {
    template <std::invocable<Dialog&> Function>
    Step(Function function) : script(std::move(function)) {}
    Step(DialogMatch wanted, Script function)
        : match(std::move(wanted)), script(std::move(function)) {}

    DialogMatch match;
    Script script;
};

class DialogDriver {
public:
    static constexpr std::chrono::milliseconds kDeadline = std::chrono::seconds(10);

    template <std::convertible_to<Step>... Steps>
    explicit DialogDriver(Steps&&... steps)
        : DialogDriver(kDeadline, std::forward<Steps>(steps)...) {}
    // `deadline` holds for each single wait.
    template <std::convertible_to<Step>... Steps>
    explicit DialogDriver(std::chrono::milliseconds deadline, Steps&&... steps)
        : DialogDriver(deadline, std::vector<Step>{Step(std::forward<Steps>(steps))...}) {}
    DialogDriver(std::chrono::milliseconds deadline, std::vector<Step> steps);
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
    void Main(const std::vector<Step>& steps) noexcept;
    void RunSteps(const std::vector<Step>& steps);
    void CancelWhatIsOpen();
    void Fail(const std::string& strReason);
    void WaitUntil(const std::string& strWhat, const std::function<bool()>& condition) const;
    // A dialog that is not yet in hand, initialised and ready for input.
    Dialog WaitForDialog(const DialogMatch& match);
    bool IsReady(HWND hWnd, const DialogMatch& match) const;
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
