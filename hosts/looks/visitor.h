// Opens dialogs one after the other on the calling thread, brings each into its states, and looks
// at it there.
//
//     looks::Visitor visitor(look);
//     visitor.Visit("enter PIN", [] { ...open it modally... },
//                   {{"empty", {}}, {"typed", [](HWND hDialog) { ... }}});
//
// What it does in a dialog is done on the dialog's own thread, in a timer's message to it. When
// the last state has been looked at, the dialog is closed as a user would; one that cannot be is
// answered otherwise, and destroyed in the end.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace looks {

struct State {
    std::string strName;
    std::function<void(HWND hWindow)> enter;  // empty: the window is in it already
    bool bTyped = false;                      // by keys, which the window's own loop handles
};

class Visitor {
public:
    // Called with every window, in every state.
    using Look = std::function<void(const std::string& strDialog, const std::string& strState,
                                    HWND hWindow)>;

    // `look` is called first, and `photograph` when the system has had time to show what that may
    // have painted.
    Visitor(Look look, Look photograph);
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;
    ~Visitor();

    enum class Closing { Escape, CloseButton };

    // `open` returns when the dialog has closed. Returns whether the way of closing it was enough,
    // for each window that it has opened; a notice, which takes no focus, is closed by its link.
    // Throws std::runtime_error when a state was not seen.
    bool Visit(const std::string& strDialog, const std::function<void()>& open,
               std::vector<State> states, Closing closing);

private:
    static void CALLBACK OnTimer(HWND hWnd, UINT message, UINT_PTR nId, DWORD dwTime);
    void Step();
    // Returns whether it has been seen in the state: a picture takes a few steps.
    bool LookAt(HWND hWindow, const State& state);
    void Close(HWND hWindow);

    Look m_look;
    Look m_photograph;
    UINT_PTR m_nTimer;
    std::string m_strDialog;
    std::vector<State> m_states;
    Closing m_closing = Closing::Escape;
    bool m_bOpen = false;
    std::size_t m_nState = 0;
    bool m_bStepping = false;
    bool m_bTyped = false;  // the state has been typed and is looked at next
    int m_nSettled = 0;     // steps since it was looked at; what was painted is shown meanwhile
    HWND m_hClosing = nullptr;
    int m_nClosings = 0;  // how often that one has been told to close
    bool m_bAsAsked = true;
};

}  // namespace looks
