#include "pinhost/automatic_user.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <utility>

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
constexpr auto kForever = 24h;         // for what the card takes its time with

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

// Visible and able to take the focus.
bool IsUsable(HWND hWnd) {
    return IsWindowVisible(hWnd) && IsWindowEnabled(hWnd);
}

bool HasClass(HWND hWnd, const char* pszClass) {
    return lstrcmpiA(mvp::ClassOf(hWnd).c_str(), pszClass) == 0;
}

bool IsEdit(HWND hWnd) {
    return HasClass(hWnd, "EDIT") && (GetWindowLongA(hWnd, GWL_STYLE) & ES_READONLY) == 0;
}

bool IsUntickedBox(HWND hWnd) {
    return HasClass(hWnd, "BUTTON") &&
           (GetWindowLongA(hWnd, GWL_STYLE) & BS_TYPEMASK) == BS_AUTOCHECKBOX &&
           SendMessageA(hWnd, BM_GETCHECK, 0, 0) == BST_UNCHECKED;
}

struct Search {
    bool (*pfnIsIt)(HWND);
    HWND hFound;
};

BOOL CALLBACK FindProc(HWND hWnd, LPARAM lParam) {
    auto& search = *reinterpret_cast<Search*>(lParam);
    if (!IsUsable(hWnd) || !search.pfnIsIt(hWnd)) {
        return TRUE;
    }
    search.hFound = hWnd;
    return FALSE;
}

HWND FindControl(HWND hDialog, bool (*pfnIsIt)(HWND)) {
    Search search{pfnIsIt, nullptr};
    EnumChildWindows(hDialog, FindProc, reinterpret_cast<LPARAM>(&search));
    return search.hFound;
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
    return FindControl(hDialog, IsEdit);
}

bool IsDialogOpen(DWORD dwThreadId, bool bNeedsEdit) {
    const auto windows = mvp::VisibleWindows(dwThreadId);
    return std::any_of(windows.begin(), windows.end(), [=](HWND hWnd) {
        return bNeedsEdit ? FindEdit(hWnd) != nullptr : mvp::IsDialog(hWnd);
    });
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

void AddNextScreenshotOption(CLI::App& command, UserPlan& plan) {
    command
        .add_option("--next-screenshot", plan.strNextScreenshot,
                    "save a picture of the dialog that comes next as this PNG file")
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
            } catch (const std::exception& error) {
                m_strFailure = error.what();
                CancelUntil(stop);
            }
        },
        [] { EndNow("the automatic user failed"); });
}

// Until the library returns, or the rest is a person's.
void AutomaticUser::ServeDialogs(const std::stop_token& stop) {
    HWND dialog = nullptr;
    while ((dialog = WaitForDialog(stop, dialog)) != nullptr) {
        try {
            if (m_hMeant != nullptr || !IsMeant(dialog)) {
                ServeOther(dialog);
                continue;
            }
            m_hMeant = dialog;
            Serve(dialog);
        } catch (const DialogGone&) {
            // The next one follows, or the library returns, and its result says why.
        }
        if (m_plan.press == Press::Nothing) {
            return;
        }
    }
}

bool AutomaticUser::IsMeant(HWND hDialog) const {
    return !m_plan.bNeedsEdit || FindEdit(hDialog) != nullptr;
}

// The foremost dialog that a user can act on.
HWND AutomaticUser::FindDialog(HWND hExcept) const {
    for (HWND window : mvp::VisibleWindows(m_dwUiThreadId)) {
        if (window != hExcept && mvp::IsDialog(window) && IsWindowEnabled(window)) {
            return window;
        }
    }
    return nullptr;
}

// Null when the library returns without opening one.
HWND AutomaticUser::WaitForDialog(const std::stop_token& stop, HWND hAfter) const {
    HWND found = nullptr;
    const auto isThere = [&] {
        found = FindDialog(hAfter);
        return (found != nullptr && Answers(found)) || stop.stop_requested();
    };
    if (m_hMeant == nullptr) {
        Await("no dialog was opened", isThere);
    } else {
        mvp::WaitFor(kForever, isThere);
    }
    return stop.stop_requested() ? nullptr : found;
}

void AutomaticUser::Type(HWND hDialog) const {
    AwaitForeground(hDialog);
    if (m_plan.bSeeksEdit) {
        MoveFocusTo(hDialog, FindEdit(hDialog));
    }
    HWND before = nullptr;
    for (const std::string& text : m_plan.typed) {
        if (before != nullptr) {
            mvp::SendKey(VK_TAB);
        }
        AwaitWhileOpen(hDialog, "no edit got the focus", [&] {
            const HWND focus = FocusOf(m_dwUiThreadId);
            if (focus == before || !IsEdit(focus)) {
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

// The dialog opens with the focus in the edit of the first choice, and moves it to the second's.
void AutomaticUser::ChooseSecond(HWND hDialog) const {
    AwaitForeground(hDialog);
    AwaitWhileOpen(hDialog, "no edit got the focus",
                   [this] { return IsEdit(FocusOf(m_dwUiThreadId)); });
    const HWND first = FocusOf(m_dwUiThreadId);
    mvp::SendKey(VK_TAB, {VK_SHIFT});
    AwaitWhileOpen(hDialog, "no radio button got the focus",
                   [this] { return HasClass(FocusOf(m_dwUiThreadId), "BUTTON"); });
    mvp::SendKey(VK_DOWN);
    AwaitWhileOpen(hDialog, "the second choice did not get the focus", [&] {
        const HWND focus = FocusOf(m_dwUiThreadId);
        return focus != first && IsEdit(focus);
    });
}

void AutomaticUser::Tick(HWND hDialog) const {
    const HWND box = FindControl(hDialog, IsUntickedBox);
    if (box == nullptr) {
        return;
    }
    AwaitForeground(hDialog);
    MoveFocusTo(hDialog, box);
    mvp::SendKey(VK_SPACE);
    AwaitWhileOpen(hDialog, "the box was not ticked",
                   [box] { return SendMessageA(box, BM_GETCHECK, 0, 0) == BST_CHECKED; });
}

void AutomaticUser::MoveFocusTo(HWND hDialog, HWND hControl) const {
    AwaitWhileOpen(hDialog, "a button did not get the focus", [&] {
        if (FocusOf(m_dwUiThreadId) == hControl) {
            return true;
        }
        mvp::SendKey(VK_TAB);
        AwaitKeys(hDialog);
        return false;
    });
}

void AutomaticUser::TakePicture(HWND hDialog, const std::string& strFile) const {
    if (strFile.empty()) {
        return;
    }
    AwaitForeground(hDialog);
    std::string error;
    const bool saved = mvp::SaveWindowPng(hDialog, strFile, error);
    if (!saved && mvp::IsGone(hDialog)) {
        throw DialogGone();
    }
    if (!saved) {
        throw Failure("no screenshot " + Utf8FromAnsi(strFile) + ": " + error);
    }
}

void AutomaticUser::Serve(HWND hDialog) {
    if (m_plan.bSecondChoice) {
        ChooseSecond(hDialog);
    }
    if (!m_plan.typed.empty()) {
        Type(hDialog);
    }
    if (m_plan.bTick) {
        Tick(hDialog);
    }
    if (m_plan.look) {
        m_plan.look(hDialog);
    }
    TakePicture(hDialog, m_plan.strScreenshot);
    Press press = m_plan.press;
    const auto isOkEnabled = [hDialog] {
        const HWND ok = GetDlgItem(hDialog, IDOK);
        return ok == nullptr || IsWindowEnabled(ok);
    };
    if (press == Press::Ok && !mvp::WaitFor(kOkDeadline, isOkEnabled) && !mvp::IsGone(hDialog)) {
        m_strRemark = "OK stayed disabled, so the dialog was cancelled";
        press = Press::Cancel;
    }
    if (press != Press::Nothing) {
        Answer(hDialog, press);
    }
}

// One that comes before or after the one that is meant, or that one again.
void AutomaticUser::ServeOther(HWND hDialog) {
    if (hDialog == m_hMeant) {
        // One that is about to close stands there a moment, but takes no keys any more.
        AwaitForeground(hDialog);
        AwaitKeys(hDialog);
        Answer(hDialog, Press::Cancel);
        return;
    }
    if (m_hMeant != nullptr) {
        if (m_plan.bTick) {
            Tick(hDialog);
        }
        TakePicture(hDialog, std::exchange(m_plan.strNextScreenshot, {}));
    }
    Answer(hDialog, Press::Ok);
}

void AutomaticUser::Answer(HWND hDialog, Press press) const {
    AwaitForeground(hDialog);
    const HWND ok = GetDlgItem(hDialog, IDOK);
    if (press == Press::Ok && ok != nullptr && IsUsable(ok) && FindEdit(hDialog) == nullptr) {
        // Of a dialog's buttons Enter presses the one with the focus, wherever it begins.
        MoveFocusTo(hDialog, ok);
    }
    mvp::SendKey(press == Press::Ok ? VK_RETURN : VK_ESCAPE);
    // A dialog that shows another one stays open below it.
    Await("the dialog stayed open", [&] {
        return mvp::IsGone(hDialog) || !IsWindowEnabled(hDialog) || FindDialog(hDialog) != nullptr;
    });
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
