// A user without hands: serves the dialogs that the library opens, with real key strokes, while the
// calling thread runs them.
//
//     AutomaticUser user(plan, GetCurrentThreadId());
//     const auto result = library.GetPINFromUser(...);
//     user.Finish();
//
// One dialog is meant by the plan. What opens before it or after it, a warning, a notice, a result,
// is accepted; if the dialog meant is open again after that, what the user wanted has failed, and
// it is cancelled.
//
// It waits for conditions, never for time to pass, and each wait has a deadline. When one is missed
// it cancels what is open, and Finish tells the reason.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <CLI/App.hpp>

namespace pinhost {

enum class Press { Nothing, Ok, Cancel };

struct UserPlan {
    // The first text goes where the dialog puts the focus, each other one to the next edit (Tab).
    std::vector<std::string> typed;
    Press press = Press::Nothing;
    std::string strScreenshot;      // a PNG file; taken after typing, before pressing. Empty: none
    std::string strNextScreenshot;  // the same of the first dialog that opens after it
    // The dialog meant is one with an edit to type into; one without that opens before it is
    // accepted.
    bool bNeedsEdit = false;
    bool bSecondChoice = false;  // before typing, chooses the second of two radio buttons
    bool bSeeksEdit = false;     // before typing, goes to the first edit: the focus is elsewhere
    bool bTick = false;          // ticks the first box of a dialog that is not ticked yet
    std::function<void(HWND)> look;  // before the picture, on the user's thread; empty: none

    bool IsEmpty() const {
        return typed.empty() && press == Press::Nothing && strScreenshot.empty();
    }
};

// The command-line options --press and --screenshot of a plan.
void AddPlanOptions(CLI::App& command, UserPlan& plan);

// The option --next-screenshot, of commands whose dialog is followed by another.
void AddNextScreenshotOption(CLI::App& command, UserPlan& plan);

class AutomaticUser {
public:
    // Does nothing when the plan is empty. The screenshots' paths are absolute.
    AutomaticUser(UserPlan plan, DWORD dwUiThreadId);
    AutomaticUser(const AutomaticUser&) = delete;
    AutomaticUser& operator=(const AutomaticUser&) = delete;
    ~AutomaticUser() = default;

    // To be called when the library has returned. Throws EnvironmentError when the plan could not
    // be carried out.
    void Finish();

    // What the user could not do and did not need to: OK that stayed disabled. Empty: nothing.
    const std::string& Remark() const { return m_strRemark; }

private:
    void Main(const std::stop_token& stop) noexcept;
    void ServeDialogs(const std::stop_token& stop);
    bool IsMeant(HWND hDialog) const;
    void Serve(HWND hDialog);
    void ServeOther(HWND hDialog);
    void Type(HWND hDialog) const;
    void ChooseSecond(HWND hDialog) const;
    void Tick(HWND hDialog) const;
    void MoveFocusTo(HWND hDialog, HWND hControl) const;
    void TakePicture(HWND hDialog, const std::string& strFile) const;
    void Answer(HWND hDialog, Press press) const;
    HWND FindDialog(HWND hExcept) const;
    HWND WaitForDialog(const std::stop_token& stop, HWND hAfter) const;
    void CancelUntil(const std::stop_token& stop) const;

    UserPlan m_plan;
    DWORD m_dwUiThreadId;
    std::string m_strFailure;
    std::string m_strRemark;
    HWND m_hMeant = nullptr;  // the dialog that the plan has been carried out in
    std::jthread m_thread;    // last: it uses the others
};

// The first edit that can be typed into; null when there is none.
HWND FindEdit(HWND hDialog);

// Whether a dialog of the thread is open that can be typed into, or any when none needs be.
bool IsDialogOpen(DWORD dwThreadId, bool bNeedsEdit);

}  // namespace pinhost
