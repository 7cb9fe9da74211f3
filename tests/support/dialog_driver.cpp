#include "support/dialog_driver.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "common/thread_windows.h"
#include "platform/barrier.h"
#include "support/driver_core.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

using Clock = std::chrono::steady_clock;

// How long a dialog may resist being cancelled before the process is ended.
constexpr auto kCancelDeadline = std::chrono::seconds(3);

// Handles the calling thread's messages until `handle` is signalled. A WM_QUIT is put back: it is
// meant for whoever reads the thread's messages next.
void PumpUntil(HANDLE handle) {
    std::optional<int> quitCode;
    while (MsgWaitForMultipleObjects(1, &handle, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
        MSG message = {};
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) {
                quitCode = static_cast<int>(message.wParam);
                continue;
            }
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    if (quitCode)
        PostQuitMessage(*quitCode);
}

}  // namespace

DialogDriver::DialogDriver(std::chrono::milliseconds deadline, std::vector<Step> steps)
    : m_core(std::make_unique<DriverCore>(deadline)),
      m_scriptsDone(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      m_stop(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      m_ended(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      m_thread([this, steps = std::move(steps)] { Main(steps); }) {}

DialogDriver::~DialogDriver() {
    Join();
}

void DialogDriver::Join() {
    if (!m_thread.joinable())
        return;
    PumpUntil(m_scriptsDone.get());
    SetEvent(m_stop.get());
    PumpUntil(m_ended.get());
    m_thread.join();
}

void DialogDriver::Main(const std::vector<Step>& steps) noexcept {
    Guarded(
        0,
        [&] {
            try {
                RunSteps(steps);
            } catch (const std::exception& error) {
                Fail(error.what());
            }
            SetEvent(m_scriptsDone.get());
            WatchUntilStopped();
            return 0;
        },
        [] { EndTestProcess("the dialog driver failed"); });
    SetEvent(m_ended.get());
}

void DialogDriver::RunSteps(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        Dialog dialog = m_core->WaitForDialog(step.match);
        step.script(dialog);
        if (testing::Test::HasFatalFailure()) {
            m_bFailed = true;  // has been reported; the dialog is cancelled now, not waited for
            return;
        }
        if (!m_core->IsLeftOpen(dialog.Handle()))
            dialog.WaitGone();
    }
}

// From here on nobody waits for a dialog: one that opens would keep the test's thread for ever.
void DialogDriver::WatchUntilStopped() {
    while (WaitForSingleObject(m_stop.get(), 5) == WAIT_TIMEOUT) {
        const std::vector<HWND> dialogs = m_core->OpenDialogs();
        if (dialogs.empty())
            continue;
        if (!m_bFailed)
            Fail("no script waits for what is open: " + m_core->DescribeWindows());
        CancelDialogs(dialogs);
    }
}

void DialogDriver::CancelDialogs(const std::vector<HWND>& dialogs) {
    for (HWND hDialog : dialogs) {
        const std::string strTitle = TitleOf(hDialog);
        const auto isGone = [hDialog] { return IsGone(hDialog); };
        const auto end = Clock::now() + kCancelDeadline;
        // A dialog below another one takes the command only when that has gone, so it is repeated;
        // a dialog that knows no Cancel may know the close box or another answer.
        while (!isGone()) {
            for (const int nCommand : {IDCANCEL, IDOK, IDNO, IDABORT}) {
                PostMessageA(hDialog, WM_COMMAND, static_cast<WPARAM>(nCommand), 0);
                if (WaitFor(std::chrono::milliseconds(200), isGone))
                    break;
            }
            PostMessageA(hDialog, WM_CLOSE, 0, 0);
            if (Clock::now() >= end)
                EndTestProcess("the dialog \"" + strTitle + "\" cannot be cancelled");
        }
    }
}

void DialogDriver::Fail(const std::string& strReason) {
    m_bFailed = true;
    ADD_FAILURE() << "dialog driver: " << strReason;
}

}  // namespace mvp::test
