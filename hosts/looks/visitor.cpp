#include "looks/visitor.h"

#include <stdexcept>
#include <utility>

#include <mvpingui/popup_alert.h>

#include "common/thread_windows.h"

namespace looks {

namespace {

constexpr UINT kStepMs = 10;
constexpr int kSettlingSteps = 6;

Visitor* g_pVisitor = nullptr;

// The uppermost window of this thread that somebody could work with.
HWND OpenWindow() {
    for (HWND window : mvp::VisibleWindows(GetCurrentThreadId())) {
        if (IsWindowEnabled(window) && mvp::ClassOf(window) != "tooltips_class32") {
            return window;
        }
    }
    return nullptr;
}

// What has been set off comes to its end.
void HandleMessages() {
    MSG message{};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageA(&message);
    }
}

}  // namespace

Visitor::Visitor(Look look, Look photograph)
    : m_look(std::move(look)),
      m_photograph(std::move(photograph)),
      m_nTimer(SetTimer(nullptr, 0, kStepMs, &OnTimer)) {
    g_pVisitor = this;
}

Visitor::~Visitor() {
    KillTimer(nullptr, m_nTimer);
    g_pVisitor = nullptr;
}

bool Visitor::Visit(const std::string& strDialog, const std::function<void()>& open,
                    std::vector<State> states, Closing closing) {
    m_strDialog = strDialog;
    m_states = std::move(states);
    m_closing = closing;
    m_bOpen = true;
    m_nState = 0;
    m_hClosing = nullptr;
    m_bAsAsked = true;
    open();
    m_bOpen = false;
    if (m_nState < m_states.size()) {
        throw std::runtime_error(strDialog + " was not seen in the state " +
                                 m_states[m_nState].strName);
    }
    return m_bAsAsked && m_hClosing != nullptr;
}

void CALLBACK Visitor::OnTimer(HWND, UINT, UINT_PTR, DWORD) {
    g_pVisitor->Step();
}

void Visitor::Step() {
    const HWND window = OpenWindow();
    if (window == nullptr || !m_bOpen || m_bStepping) {
        return;
    }
    m_bStepping = true;
    while (m_nState < m_states.size() && LookAt(window, m_states[m_nState])) {
        ++m_nState;
    }
    if (m_nState == m_states.size()) {
        Close(window);
    }
    m_bStepping = false;
}

bool Visitor::LookAt(HWND hWindow, const State& state) {
    if (m_nSettled == 0) {
        if (state.enter && !m_bTyped) {
            state.enter(hWindow);
        }
        // Keys are taken by the loop of the window that has them, which goes on until the next
        // step.
        m_bTyped = state.bTyped && !m_bTyped;
        if (m_bTyped) {
            return false;
        }
        HandleMessages();
        RedrawWindow(hWindow, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
        m_look(m_strDialog, state.strName, hWindow);
    }
    if (m_photograph) {
        if (++m_nSettled <= kSettlingSteps) {
            return false;
        }
        m_nSettled = 0;
        m_photograph(m_strDialog, state.strName, hWindow);
    }
    return true;
}

void Visitor::Close(HWND hWindow) {
    m_nClosings = hWindow == m_hClosing ? m_nClosings + 1 : 1;
    m_hClosing = hWindow;
    const bool notice = mvp::ClassOf(hWindow) != "#32770";
    m_bAsAsked = m_bAsAsked && !notice && m_nClosings == 1;
    if (notice) {
        PostMessageA(hWindow, WM_POPUP_LINK_CLICKED, 0, 0);
    } else if (m_nClosings > 2) {
        DestroyWindow(hWindow);
    } else if (m_nClosings == 2) {
        PostMessageA(hWindow, WM_COMMAND, IDOK, 0);
    } else if (m_closing == Closing::Escape) {
        const HWND focus = GetFocus();
        PostMessageA(focus != nullptr ? focus : hWindow, WM_KEYDOWN, VK_ESCAPE, 1);
    } else {
        PostMessageA(hWindow, WM_SYSCOMMAND, SC_CLOSE, 0);
    }
}

}  // namespace looks
