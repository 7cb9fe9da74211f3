// Sees to the next dialog that the calling thread opens, whoever makes it: dresses it before it is
// shown, and cancels it when its time is up or the client has gone.
//
//     DialogWatch watch(channel, 30, [](HWND hDialog) { ... });
//     const bool confirmed = library.GetPINFromUser(...) == MVPINGUI_OK;
//     const Answer answer = watch.Result(confirmed);
//
// One at a time, used on the thread that runs the dialog.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "pinentry/core/user_interface.h"

namespace pinentry {

class StdioChannel;

class DialogWatch {
public:
    using Dress = std::function<void(HWND)>;

    // pChannel  whose client is watched; null: none
    // nTimeout  seconds from when the dialog opens; 0: no end
    DialogWatch(StdioChannel* pChannel, std::uint32_t nTimeout, Dress dress);
    DialogWatch(const DialogWatch&) = delete;
    DialogWatch& operator=(const DialogWatch&) = delete;
    ~DialogWatch();

    // What the dialog came to that ended with OK or otherwise.
    Answer Result(bool bConfirmed) const;

private:
    static LRESULT CALLBACK OnHook(int nCode, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    static HWND MakeWindow();

    void OnMessage(UINT nMessage);
    void Open();
    void EndWith(Answer answer);

    StdioChannel* m_pChannel;
    std::uint32_t m_nTimeout;
    Dress m_dress;
    std::optional<Answer> m_ending;
    HWND m_hDialog = nullptr;
    bool m_bOpen = false;
    bool m_bClosed = false;
    HWND m_hWnd;
    HHOOK m_hHook;
};

}  // namespace pinentry
