#include "pinentry/windows/dialog_watch.h"

#include <utility>

#include "pinentry/windows/stdio_channel.h"
#include "platform/barrier.h"

namespace pinentry {
namespace {

constexpr UINT kDialogMade = WM_APP;
constexpr UINT kClientGone = WM_APP + 1;
constexpr char kClassName[] = "pinentry dialog watch";

// The hook has no argument of its own.
DialogWatch* g_pWatch = nullptr;

// A panel within a dialog is made of a template as well.
bool IsDialog(HWND hWnd, const CREATESTRUCTA& create) {
    char name[16] = {};
    return (create.style & WS_CHILD) == 0 && GetClassNameA(hWnd, name, sizeof name) != 0 &&
           lstrcmpA(name, "#32770") == 0;
}

}  // namespace

DialogWatch::DialogWatch(StdioChannel* pChannel, std::uint32_t nTimeout, Dress dress)
    : m_pChannel(pChannel),
      m_nTimeout(nTimeout),
      m_dress(std::move(dress)),
      m_hWnd(MakeWindow()),
      m_hHook(SetWindowsHookExA(WH_CBT, OnHook, nullptr, GetCurrentThreadId())) {
    g_pWatch = this;
    SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

DialogWatch::~DialogWatch() {
    if (m_pChannel != nullptr) {
        m_pChannel->TellEnd(nullptr, 0);
    }
    UnhookWindowsHookEx(m_hHook);
    g_pWatch = nullptr;
    DestroyWindow(m_hWnd);
}

HWND DialogWatch::MakeWindow() {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, kClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                           windowClass.hInstance, nullptr);
}

Answer DialogWatch::Result(bool bConfirmed) const {
    // What was confirmed stands, even when the time was up in the same moment.
    if (bConfirmed && m_ending != Answer::ClientGone) {
        return Answer::Confirmed;
    }
    if (m_ending) {
        return *m_ending;
    }
    if (!m_bOpen) {
        return Answer::NotShown;
    }
    return m_bClosed ? Answer::Closed : Answer::Canceled;
}

// The dialog is not ready yet. Its loop takes the posted message before it shows the dialog.
LRESULT CALLBACK DialogWatch::OnHook(int nCode, WPARAM wParam, LPARAM lParam) {
    DialogWatch* watch = g_pWatch;
    auto* const window = reinterpret_cast<HWND>(wParam);
    if (nCode == HCBT_CREATEWND && watch != nullptr && watch->m_hDialog == nullptr &&
        IsDialog(window, *reinterpret_cast<const CBT_CREATEWNDA*>(lParam)->lpcs)) {
        watch->m_hDialog = window;
        PostMessageA(watch->m_hWnd, kDialogMade, 0, 0);
    }
    // Whoever made the dialog takes its close button for the one that cancels.
    if (nCode == HCBT_SYSCOMMAND && watch != nullptr && (wParam & 0xFFF0) == SC_CLOSE) {
        watch->m_bClosed = true;
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

LRESULT CALLBACK DialogWatch::WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    auto* watch = reinterpret_cast<DialogWatch*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    if (watch != nullptr &&
        (nMessage == kDialogMade || nMessage == kClientGone || nMessage == WM_TIMER)) {
        // A dialog that could not be dressed still asks.
        mvp::Guarded([=] { watch->OnMessage(nMessage); }, [] {});
        return 0;
    }
    return DefWindowProcA(hWnd, nMessage, wParam, lParam);
}

void DialogWatch::OnMessage(UINT nMessage) {
    if (nMessage == kDialogMade) {
        Open();
    } else {
        EndWith(nMessage == WM_TIMER ? Answer::TimedOut : Answer::ClientGone);
    }
}

void DialogWatch::Open() {
    m_bOpen = true;
    if (m_nTimeout != 0) {
        SetTimer(m_hWnd, 1, m_nTimeout * 1000, nullptr);
    }
    if (m_pChannel != nullptr) {
        m_pChannel->TellEnd(m_hWnd, kClientGone);
    }
    m_dress(m_hDialog);
}

void DialogWatch::EndWith(Answer answer) {
    KillTimer(m_hWnd, 1);
    m_ending = answer;
    PostMessageA(m_hDialog, WM_COMMAND, IDCANCEL, 0);
}

}  // namespace pinentry
