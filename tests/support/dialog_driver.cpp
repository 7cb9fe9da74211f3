#include "support/dialog_driver.h"

#include <optional>

#include <gtest/gtest.h>

#include "common/thread_windows.h"
#include "platform/barrier.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

// Handles the calling thread's messages as long as `condition` holds. A WM_QUIT is put back: it is
// meant for whoever reads the thread's messages next.
template <class Condition>
void PumpWhile(Condition condition) {
    std::optional<int> quitCode;
    do {
        constexpr DWORD kLookMs = 2;  // how often the condition is asked
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kLookMs, QS_ALLINPUT);
        for (MSG message = {}; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            if (message.message == WM_QUIT) {
                quitCode = static_cast<int>(message.wParam);
            }
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    } while (condition());
    if (quitCode) {
        PostQuitMessage(*quitCode);
    }
}

}  // namespace

DialogDriver::DialogDriver(std::chrono::milliseconds deadline, std::vector<Step> steps)
    : m_deadline(deadline), m_thread([this, steps = std::move(steps)] { Main(steps); }) {}

void DialogDriver::Join() {
    if (!m_thread.joinable()) {
        return;
    }
    PumpWhile([this] { return m_phase == Phase::Scripts; });
    m_phase = Phase::Stop;
    PumpWhile([this] { return m_phase != Phase::Ended; });
    m_thread.join();
}

void DialogDriver::Main(const std::vector<Step>& steps) noexcept {
    Guarded(
        [&] {
            try {
                RunSteps(steps);
            } catch (const std::exception& error) {
                Fail(error.what());
            }
            m_phase = Phase::Watch;
            // From here on nobody waits for a dialog: one that opens would keep the test's thread
            // for ever.
            for (; m_phase == Phase::Watch; Sleep(5)) {
                CancelWhatIsOpen();
            }
        },
        [] { EndTestProcess("the dialog driver failed"); });
    m_phase = Phase::Ended;
}

void DialogDriver::RunSteps(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        Dialog dialog = WaitForDialog(step.match);
        step.script(dialog);
        m_bFailed = testing::Test::HasFatalFailure();
        if (m_bFailed) {
            return;  // has been reported; the dialog is cancelled now, not waited for
        }
        dialog.WaitGone();
    }
}

void DialogDriver::CancelWhatIsOpen() {
    for (HWND dialog : OpenDialogs()) {
        if (!m_bFailed) {
            Fail("no script waits for what is open: " + DescribeWindows());
        }
        const std::string title = TitleOf(dialog);
        // A dialog below another one takes the command only when that has gone, so it is repeated;
        // a dialog that knows no Cancel may know another answer.
        constexpr int kAnswers[] = {IDCANCEL, IDOK, IDNO, IDABORT};
        int tries = 0;
        do {
            if (tries == 12) {
                EndTestProcess("the dialog \"" + title + "\" cannot be cancelled");
            }
            PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(kAnswers[tries++ % 4]), 0);
        } while (!WaitFor(std::chrono::milliseconds(250), [=] { return IsGone(dialog); }));
    }
}

void DialogDriver::Fail(const std::string& strReason) {
    m_bFailed = true;
    ADD_FAILURE() << "dialog driver: " << strReason;
}

void DialogDriver::WaitUntil(const std::string& strWhat,
                             const std::function<bool()>& condition) const {
    if (!WaitFor(m_deadline, condition)) {
        throw DriverFailure("waited " + std::to_string(m_deadline.count()) + " ms until " +
                            strWhat + "; open are: " + DescribeWindows());
    }
}

Dialog DialogDriver::WaitForDialog(const DialogMatch& match) {
    HWND found = nullptr;
    WaitUntil("a dialog \"" + match.strTitle + "\" opens", [&] {
        for (HWND window : OpenDialogs()) {
            if (IsReady(window, match)) {
                found = window;
                return true;
            }
        }
        return false;
    });
    m_inHand.insert(found);
    return {*this, found};
}

bool DialogDriver::IsReady(HWND hWnd, const DialogMatch& match) const {
    const auto isWanted = [&] {
        return IsWindowVisible(hWnd) && IsWindowEnabled(hWnd) && !m_inHand.contains(hWnd) &&
               (match.strTitle.empty() || TitleOf(hWnd) == match.strTitle);
    };
    // Answered once the dialog's initialisation is over, which may have closed it again.
    DWORD_PTR result = 0;
    return isWanted() &&
           SendMessageTimeoutA(hWnd, WM_NULL, 0, 0, SMTO_ABORTIFHUNG,
                               static_cast<UINT>(m_deadline.count()), &result) != 0 &&
           isWanted();
}

std::vector<HWND> DialogDriver::OpenDialogs() const {
    std::vector<HWND> dialogs = VisibleWindows(m_ui.Id());
    std::erase_if(dialogs, [](HWND hWnd) { return !IsDialog(hWnd); });
    return dialogs;
}

// Every visible top-level window of the thread, for failure texts.
std::string DialogDriver::DescribeWindows() const {
    std::string text;
    for (HWND window : VisibleWindows(m_ui.Id())) {
        text += (text.empty() ? "" : ", ") + ClassOf(window) + " \"" + TitleOf(window) + "\"" +
                (IsWindowEnabled(window) ? "" : " (disabled)");
    }
    return text.empty() ? "none" : text;
}

}  // namespace mvp::test
