// From a call until its modal dialog is painted and takes key strokes.
//
// A dialog is ready when it has been shown, its message loop takes a message that was posted after
// that, and nothing of it is left to be painted; it is cancelled at once. What it posts to itself
// while it opens comes before. Only what the loop takes is watched: a watch over messages that are
// sent would cost both sides as much as the dialog itself. The baseline is the system's modal call
// on the very same template, with the panel at its bottom and the same controls shown in that, all
// made before the dialog shows.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <set>

#include "bench.h"
#include "platform/handle.h"

namespace mvp::bench {

class DialogReady {
public:
    DialogReady() {
        m_taken = SetWindowsHookExA(WH_GETMESSAGE, OnTaken, nullptr, GetCurrentThreadId());
    }
    DialogReady(const DialogReady&) = delete;
    DialogReady& operator=(const DialogReady&) = delete;
    ~DialogReady() { UnhookWindowsHookEx(m_taken); }

    bool IsWatching() const { return m_taken != nullptr; }

    // What is done with the ready dialog before it is cancelled; empty: nothing.
    static inline std::function<void(HWND)> whenReady;

    template <class Value, class Baseline>
    static Comparison Compare(const Value& value, const Baseline& baseline) {
        const auto time = [](const auto& call) { return TimeToReady(call); };
        return TakeTurns(kOpenings, time, value, baseline);
    }

    // The baseline: dialog `nTemplate` of the resource module with the template of a panel in it,
    // or without one (0).
    static void RunBare(int nTemplate, int nPanel = 0) {
        static const ModuleHandle texts(
            LoadLibraryExA(R"(.\Resources\Localized\mvpinguirc.dll)", nullptr,
                           LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
        s_bare = {texts.get(), nPanel};
        DialogBoxParamA(texts.get(), MAKEINTRESOURCEA(nTemplate), nullptr, BareProc, 0);
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr UINT kReady = WM_APP + 77;
    static constexpr int kOpenings = 151;  // single ones scatter widely

    struct Bare {
        HMODULE hTexts;
        int nPanel;
    };

    // Nanoseconds.
    template <class Call>
    static double TimeToReady(const Call& call) {
        const Clock::time_point start = Clock::now();
        call();
        return std::chrono::duration<double, std::nano>(s_ready - start).count();
    }

    static bool IsOpenDialog(HWND hWnd) {
        char className[8] = "";
        return GetClassNameA(hWnd, className, sizeof className) != 0 && className[0] == '#' &&
               IsWindowVisible(hWnd);
    }

    static LRESULT CALLBACK OnTaken(int nCode, WPARAM wParam, LPARAM lParam) {
        const auto& message = *reinterpret_cast<const MSG*>(lParam);
        if (nCode != HC_ACTION || wParam != PM_REMOVE) {
            return CallNextHookEx(nullptr, nCode, wParam, lParam);
        }
        HWND dialog = GetActiveWindow();
        if (dialog != s_hAsked && IsOpenDialog(dialog)) {
            s_hAsked = dialog;
            PostMessageA(dialog, kReady, 0, 0);
        } else if (message.message == kReady) {
            RedrawWindow(message.hwnd, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
            s_ready = Clock::now();
            s_shown.clear();
            EnumChildWindows(message.hwnd, NoteShown, 0);
            if (whenReady) {
                whenReady(message.hwnd);
            }
            PostMessageA(message.hwnd, WM_COMMAND, IDCANCEL, 0);
        }
        return CallNextHookEx(nullptr, nCode, wParam, lParam);
    }

    static INT_PTR CALLBACK PanelProc(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

    // Below everything else; most of a panel's controls are hidden in its template.
    static void MakePanel(HWND hDialog) {
        HWND panel = CreateDialogParamA(s_bare.hTexts, MAKEINTRESOURCEA(s_bare.nPanel), hDialog,
                                        PanelProc, 0);
        RECT client{};
        RECT window{};
        RECT place{};
        GetClientRect(hDialog, &client);
        GetWindowRect(hDialog, &window);
        GetWindowRect(panel, &place);
        SetWindowPos(hDialog, nullptr, 0, 0, window.right - window.left,
                     window.bottom - window.top + place.bottom - place.top,
                     SWP_NOMOVE | SWP_NOZORDER);
        for (const int id : s_shown) {
            if (HWND control = GetDlgItem(panel, id)) {
                ShowWindow(control, SW_SHOW);
            }
        }
        SetWindowPos(panel, nullptr, 0, client.bottom, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_SHOWWINDOW);
    }

    static BOOL CALLBACK NoteShown(HWND hControl, LPARAM) {
        if (IsWindowVisible(hControl)) {
            s_shown.insert(GetDlgCtrlID(hControl));
        }
        return TRUE;
    }

    static INT_PTR CALLBACK BareProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM) {
        if (message == WM_INITDIALOG) {
            if (s_bare.nPanel != 0) {
                MakePanel(hWnd);
            }
            ShowWindow(hWnd, SW_SHOW);
        } else if (message == WM_COMMAND && wParam == IDCANCEL) {
            EndDialog(hWnd, IDCANCEL);
        }
        return message == WM_INITDIALOG ? TRUE : FALSE;
    }

    static inline HWND s_hAsked;          // the dialog that the message was posted to last
    static inline std::set<int> s_shown;  // the controls that were visible in the last dialog
    static inline Clock::time_point s_ready;
    static inline Bare s_bare{};
    HHOOK m_taken;
};

}  // namespace mvp::bench
