#include <windows.h>

#include "framework/thread_state.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, LPVOID lpReserved) {
    switch (dwReason) {
        case DLL_PROCESS_ATTACH:
            return dlgfw::AttachProcess() ? TRUE : FALSE;
        case DLL_THREAD_DETACH:
            dlgfw::DetachThread();
            break;
        case DLL_PROCESS_DETACH:
            // When the whole process ends, the other threads are gone and the system takes the
            // memory back.
            if (lpReserved == nullptr) {
                dlgfw::DetachProcess();
            }
            break;
        default:
            break;
    }
    return TRUE;
}
