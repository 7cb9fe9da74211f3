// What the framework keeps for each thread, made at the thread's first use of it and freed when the
// thread ends.
#pragma once

#include <windows.h>

#include "framework/temporaries.h"

namespace dlgfw {

struct ThreadState {
    static ThreadState& Get();
    // Null when the thread has not used the framework yet, or no longer.
    static ThreadState* TryGet() noexcept;

    Temporaries temporaries;

    MSG lastMessage{};          // the one being dispatched
    int nDispatchDepth = 0;     // window procedures on the stack
    int nModalLoops = 0;        // modal loops on the stack
    HWND hWndLocked = nullptr;  // inside UpdateData, where notifications are not dispatched

    CWnd* pCreating = nullptr;  // waits for its window to be created
    HHOOK hCreationHook = nullptr;

    char szWndClass[96] = "";  // the result of AfxRegisterWndClass
};

// From DllMain.
bool AttachProcess() noexcept;
void DetachThread() noexcept;
void DetachProcess() noexcept;

}  // namespace dlgfw
