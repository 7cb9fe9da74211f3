#include "pinhost/automatic_user.h"

#include <array>
#include <chrono>
#include <stdexcept>

#include "common/keyboard.h"
#include "common/screenshot.h"
#include "common/thread_windows.h"
#include "common/wait_for.h"
#include "pinhost/command.h"
#include "pinhost/ending.h"
#include "pinhost/option_values.h"
#include "pinhost/text.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

using namespace std::chrono_literals;

constexpr auto kDeadline = 20s;        // for what should happen at once
constexpr auto kOkDeadline = 1s;       // for OK to follow the typing
constexpr auto kCancelDeadline = 10s;  // for a dialog to obey Cancel

class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The dialog has closed by itself, as one does whose card is pulled: nothing is left to do.
struct DialogGone {};

template <class Condition>
void Await(const char* pszWhat, Condition&& condition) {
    if (!mvp::WaitFor(kDeadline, condition)) {
        throw Failure(std::string("the automatic user waited in vain: ") + pszWhat);
    }
}

template <class Condition>
void AwaitWhileOpen(HWND hDialog, const char* pszWhat, Condition&& condition) {
    Await(pszWhat, [&] { return mvp::IsGone(hDialog) || condition(); });
    if (mvp::IsGone(hDialog)) {
        throw DialogGone();
    }
}

BOOL CALLBACK FindEditProc(HWND hWnd, LPARAM lParam) {
    if (lstrcmpiA(mvp::ClassOf(hWnd).c_str(), "EDIT") != 0 || !IsWindowVisible(hWnd) ||
        !IsWindowEnabled(hWnd)) {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(lParam) = hWnd;
    return FALSE;
}

// Answered when the dialog's initialisation is over.
bool Answers(HWND hDialog) {
    DWORD_PTR result = 0;
    return SendMessageTimeoutA(hDialog, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 1000, &result) != 0;
}

HWND FocusOf(DWORD dwThreadId) {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(dwThreadId, &info) ? info.hwndFocus : nullptr;
}

void AwaitForeground(HWND hDialog) {
    if (GetForegroundWindow() != hDialog) {
        SetForegroundWindow(hDialog);
    }
    AwaitWhileOpen(hDialog, "the dialog did not come to the foreground",
                   [hDialog] { return GetForegroundWindow() == hDialog; });
}

void AwaitKeys(HWND hDialog) {
    const DWORD threadId = GetWindowThreadProcessId(hDialog, nullptr);
    AwaitWhileOpen(hDialog, "the dialog did not take the typed keys",
                   [&] { return mvp::WaitForKeys(threadId, 200ms); });
}

}  // namespace

HWND FindEdit(HWND hDialog) {
    HWND edit = nullptr;
    EnumChildWindows(hDialog, FindEditProc, reinterpret_cast<LPARAM>(&edit));
    return edit;
}

void AddPlanOptions(CLI::App& command, UserPlan& plan) {
    command
        .add_option_function<std::string>(
            "--press",
            [&plan](const std::string& strPress) {
                plan.press = strPress == "ok" ? Press::Ok : Press::Cancel;
            },
            "after typing, press ok or cancel")
        ->check(OneOf({"ok", "cancel"}))
        ->type_name("ok|cancel");
    command
        .add_option("--screenshot", plan.strScreenshot,
                    "before that, save a picture of the dialog as this PNG file")
        ->type_name("FILE.png");
}

AutomaticUser::AutomaticUser(UserPlan plan, DWORD dwUiThreadId)
    : m_plan(std::move(plan)), m_dwUiThreadId(dwUiThreadId) {
    if (!m_plan.IsEmpty()) {
        m_thread = std::jthread([this](const std::stop_token& stop) { Main(stop); });
    }
}

void AutomaticUser::Finish() {
    m_thread = {};  // asks it to stop, and waits
    if (!m_strFailure.empty()) {
        throw EnvironmentError(m_strFailure);
    }
}

void AutomaticUser::Main(const std::stop_token& stop) noexcept {
    mvp::Guarded(
        [&] {
            try {
                ServeDialogs(stop);
            } catch (const DialogGone&) {
                // The library returns, and its result says why.
                return;
            } catch (const std::exception& error) {
                m_strFailure = error.what();
                CancelUntil(stop);
            }
        },
        [] { EndNow("the automatic user failed"); });
}

void AutomaticUser::ServeDialogs(const std::stop_token& stop) {
    HWND dialog = WaitForDialog(stop, nullptr);
    while (dialog != nullptr && m_plan.bNeedsEdit && FindEdit(dialog) == nullptr) {
        Answer(dialog, Press::Ok);
        dialog = WaitForDialog(stop, dialog);
    }
    if (dialog != nullptr) {
        Serve(dialog);
    }
}

// Null when the library returns without opening one.
HWND AutomaticUser::WaitForDialog(const std::stop_token& stop, HWND hAfter) const {
    HWND found = nullptr;
    Await("no dialog was opened", [&] {
        for (HWND window : mvp::VisibleWindows(m_dwUiThreadId)) {
            if (window != hAfter && mvp::IsDialog(window) && IsWindowEnabled(window) &&
                Answers(window)) {
                found = window;
            }
        }
        return found != nullptr || stop.stop_requested();
    });
    return found;
}

void AutomaticUser::Type(HWND hDialog) const {
    AwaitForeground(hDialog);
    HWND before = nullptr;
    for (const std::string& text : m_plan.typed) {
        if (before != nullptr) {
            mvp::SendKey(VK_TAB);
        }
        AwaitWhileOpen(hDialog, "no edit got the focus", [&] {
            const HWND focus = FocusOf(m_dwUiThreadId);
            if (focus == before || lstrcmpiA(mvp::ClassOf(focus).c_str(), "EDIT") != 0) {
                return false;
            }
            before = focus;
            return true;
        });
        if (!mvp::SendText(text)) {
            throw Failure("the system refused the typed keys");
        }
        AwaitKeys(hDialog);
    }
}

void AutomaticUser::Serve(HWND hDialog) {
    if (!m_plan.typed.empty()) {
        Type(hDialog);
    }
    if (!m_plan.strScreenshot.empty()) {
        AwaitForeground(hDialog);
        std::string error;
        const bool saved = mvp::SaveWindowPng(hDialog, m_plan.strScreenshot, error);
        if (!saved && mvp::IsGone(hDialog)) {
            throw DialogGone();
        }
        if (!saved) {
            throw Failure("no screenshot " + Utf8FromAnsi(m_plan.strScreenshot) + ": " + error);
        }
    }
    Press press = m_plan.press;
    const auto isOkEnabled = [hDialog] { return IsWindowEnabled(GetDlgItem(hDialog, IDOK)); };
    if (press == Press::Ok && !mvp::WaitFor(kOkDeadline, isOkEnabled) && !mvp::IsGone(hDialog)) {
        m_strRemark = "OK stayed disabled, so the dialog was cancelled";
        press = Press::Cancel;
    }
    if (press != Press::Nothing) {
        Answer(hDialog, press);
    }
}

void AutomaticUser::Answer(HWND hDialog, Press press) const {
    AwaitForeground(hDialog);
    if (press == Press::Ok && FindEdit(hDialog) == nullptr) {
        // Of a dialog's buttons Enter presses the one with the focus, wherever it begins.
        AwaitWhileOpen(hDialog, "OK did not get the focus", [&] {
            if (FocusOf(m_dwUiThreadId) == GetDlgItem(hDialog, IDOK)) {
                return true;
            }
            mvp::SendKey(VK_TAB);
            AwaitKeys(hDialog);
            return false;
        });
    }
    mvp::SendKey(press == Press::Ok ? VK_RETURN : VK_ESCAPE);
    Await("the dialog stayed open", [hDialog] { return mvp::IsGone(hDialog); });
}

void AutomaticUser::CancelUntil(const std::stop_token& stop) const {
    const bool stopped = mvp::WaitFor(kCancelDeadline, [&] {
        for (HWND window : mvp::VisibleWindows(m_dwUiThreadId)) {
            if (mvp::IsDialog(window)) {
                PostMessageA(window, WM_COMMAND, IDCANCEL, 0);
            }
        }
        Sleep(50);
        return stop.stop_requested();
    });
    if (!stopped) {
        EndNow((m_strFailure + "; a dialog cannot be cancelled").c_str());
    }
}

}  // namespace pinhost
