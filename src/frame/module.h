// What the library keeps for as long as it is loaded, and its attach and detach.
//
// All of it is touched from the user interface's thread only and has no lock.
#pragma once

#include <windows.h>

#include <cstdint>

#include <dlgfw/string.h>

namespace mvp {

struct ModuleState {
    // 1 from the opening of an enter-PIN dialog until FreeGetPinBuffer: it says that the caller
    // still holds a PIN, not only that a dialog is on the screen.
    std::int32_t nPinDialogInProgress = 0;
    // What SetPinPromptString was given; empty: the dialog's own text stays.
    CString strPrompt;
};
ModuleState& Module() noexcept;

// What the loader's notifications do. Attach returns false when the framework refuses the library.
bool AttachLibrary(HINSTANCE hInstance) noexcept;
void DetachLibrary() noexcept;

}  // namespace mvp
