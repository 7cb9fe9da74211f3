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
    if (!mvp::WaitFor(kDeadline, condition))
        throw Failure(std::string("the automatic user waited in vain: ") + pszWhat);
}

template <class Condition>
void AwaitWhileOpen(HWND hDialog, const char* pszWhat, Condition&& condition) {
    Await(pszWhat, [&] { return mvp::IsGone(hDialog) || condition(); });
    if (mvp::IsGone(hDialog))
        throw DialogGone();
}

BOOL CALLBACK FindEditProc(HWND hWnd, LPARAM lParam) {
    if (lstrcmpiA(mvp::ClassOf(hWnd).c_str(), "EDIT") != 0 || !IsWindowVisible(hWnd) ||
        !IsWindowEnabled(hWnd))
        return TRUE;
    *reinterpret_cast<HWND*>(lParam) = hWnd;
    return FALSE;
}

// Answered when the dialog's initialisation is over.
bool Answers(HWND hDialog) {
    DWORD_PTR dwResult = 0;
    return SendMessageTimeoutA(hDialog, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 1000, &dwResult) != 0;
}

HWND FocusOf(DWORD dwThreadId) {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(dwThreadId, &info) ? info.hwndFocus : nullptr;
}

void AwaitForeground(HWND hDialog) {
    if (GetForegroundWindow() != hDialog)
        SetForegroundWindow(hDialog);
    AwaitWhileOpen(hDialog, "the dialog did not come to the foreground",
                   [hDialog] { return GetForegroundWindow() == hDialog; });
}

void AwaitKeys(HWND hDialog) {
    const DWORD dwThreadId = GetWindowThreadProcessId(hDialog, nullptr);
    AwaitWhileOpen(hDialog, "the dialog did not take the typed keys",
                   [&] { return mvp::WaitForKeys(dwThreadId, 200ms); });
}

}  // namespace

HWND FindEdit(HWND hDialog) {
    HWND hEdit = nullptr;
    EnumChildWindows(hDialog, FindEditProc, reinterpret_cast<LPARAM>(&hEdit));
    return hEdit;
}

void AddPlanOptions(CLI::App& command, UserPlan& plan) {
    command
        .add_option_function<std::string>(
            "--press",
            [&plan](const std::string& strPress) {
                plan.press = strPress == "ok" ? Press::kOk : Press::kCancel;
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
    if (!m_plan.IsEmpty())
        m_thread = std::jthread([this](const std::stop_token& stop) { Main(stop); });
}

void AutomaticUser::Finish() {
    m_thread = {};  // asks it to stop, and waits
    if (!m_strFailure.empty())
        throw EnvironmentError(m_strFailure);
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
    HWND hDialog = WaitForDialog(stop, nullptr);
    while (hDialog != nullptr && m_plan.bNeedsEdit && FindEdit(hDialog) == nullptr) {
        Answer(hDialog, Press::kOk);
        hDialog = WaitForDialog(stop, hDialog);
    }
    if (hDialog != nullptr)
        Serve(hDialog);
}

// Null when the library returns without opening one.
HWND AutomaticUser::WaitForDialog(const std::stop_token& stop, HWND hAfter) const {
    HWND hFound = nullptr;
    Await("no dialog was opened", [&] {
        for (HWND hWnd : mvp::VisibleWindows(m_dwUiThreadId))
            if (hWnd != hAfter && mvp::IsDialog(hWnd) && IsWindowEnabled(hWnd) && Answers(hWnd))
                hFound = hWnd;
        return hFound != nullptr || stop.stop_requested();
    });
    return hFound;
}

void AutomaticUser::Type(HWND hDialog) const {
    AwaitForeground(hDialog);
    HWND hBefore = nullptr;
    for (const std::string& strText : m_plan.typed) {
        if (hBefore != nullptr)
            mvp::SendKey(VK_TAB);
        AwaitWhileOpen(hDialog, "no edit got the focus", [&] {
            const HWND hFocus = FocusOf(m_dwUiThreadId);
            if (hFocus == hBefore || lstrcmpiA(mvp::ClassOf(hFocus).c_str(), "EDIT") != 0)
                return false;
            hBefore = hFocus;
            return true;
        });
        if (!mvp::SendText(strText))
            throw Failure("the system refused the typed keys");
        AwaitKeys(hDialog);
    }
}

void AutomaticUser::Serve(HWND hDialog) {
    if (!m_plan.typed.empty())
        Type(hDialog);
    if (!m_plan.strScreenshot.empty()) {
        AwaitForeground(hDialog);
        std::string strError;
        const bool bSaved = mvp::SaveWindowPng(hDialog, m_plan.strScreenshot, strError);
        if (!bSaved && mvp::IsGone(hDialog))
            throw DialogGone();
        if (!bSaved)
            throw Failure("no screenshot " + Utf8FromAnsi(m_plan.strScreenshot) + ": " + strError);
    }
    Press press = m_plan.press;
    const auto isOkEnabled = [hDialog] { return IsWindowEnabled(GetDlgItem(hDialog, IDOK)); };
    if (press == Press::kOk && !mvp::WaitFor(kOkDeadline, isOkEnabled) && !mvp::IsGone(hDialog)) {
        m_strRemark = "OK stayed disabled, so the dialog was cancelled";
        press = Press::kCancel;
    }
    if (press != Press::kNothing)
        Answer(hDialog, press);
}

void AutomaticUser::Answer(HWND hDialog, Press press) const {
    AwaitForeground(hDialog);
    if (press == Press::kOk && FindEdit(hDialog) == nullptr)
        // Of a dialog's buttons Enter presses the one with the focus, wherever it begins.
        AwaitWhileOpen(hDialog, "OK did not get the focus", [&] {
            if (FocusOf(m_dwUiThreadId) == GetDlgItem(hDialog, IDOK))
                return true;
            mvp::SendKey(VK_TAB);
            AwaitKeys(hDialog);
            return false;
        });
    mvp::SendKey(press == Press::kOk ? VK_RETURN : VK_ESCAPE);
    Await("the dialog stayed open", [hDialog] { return mvp::IsGone(hDialog); });
}

void AutomaticUser::CancelUntil(const std::stop_token& stop) const {
    const bool bStopped = mvp::WaitFor(kCancelDeadline, [&] {
        for (HWND hWnd : mvp::VisibleWindows(m_dwUiThreadId))
            if (mvp::IsDialog(hWnd))
                PostMessageA(hWnd, WM_COMMAND, IDCANCEL, 0);
        Sleep(50);
        return stop.stop_requested();
    });
    if (!bStopped)
        EndNow((m_strFailure + "; a dialog cannot be cancelled").c_str());
}

}  // namespace pinhost
