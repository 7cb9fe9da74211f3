// A user without hands: serves the dialog that the library opens, with real key strokes, while the
// calling thread runs it.
//
//     AutomaticUser user(plan, GetCurrentThreadId());
//     const auto result = library.GetPINFromUser(...);
//     user.Finish();
//
// It waits for conditions, never for time to pass, and each wait has a deadline. When one is missed
// it cancels what is open, and Finish tells the reason.
#pragma once

#include <windows.h>

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
    std::string strScreenshot;  // a PNG file; taken after typing, before pressing. Empty: none
    // The dialog meant is one with an edit; one without that opens before it is accepted.
    bool bNeedsEdit = false;

    bool IsEmpty() const {
        return typed.empty() && press == Press::Nothing && strScreenshot.empty();
    }
};

// The command-line options --press and --screenshot of a plan.
void AddPlanOptions(CLI::App& command, UserPlan& plan);

class AutomaticUser {
public:
    // Does nothing when the plan is empty. The screenshot's path is absolute.
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
    void Serve(HWND hDialog);
    void Type(HWND hDialog) const;
    void Answer(HWND hDialog, Press press) const;
    HWND WaitForDialog(const std::stop_token& stop, HWND hAfter) const;
    void CancelUntil(const std::stop_token& stop) const;

    UserPlan m_plan;
    DWORD m_dwUiThreadId;
    std::string m_strFailure;
    std::string m_strRemark;
    std::jthread m_thread;  // last: it uses the others
};

// The first edit that can be typed into; null when there is none.
HWND FindEdit(HWND hDialog);

}  // namespace pinhost
