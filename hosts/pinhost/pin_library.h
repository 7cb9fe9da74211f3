// The PIN library, loaded at run time as the middleware loads it.
//
//     const PinLibrary library(options);
//     library.DisplayLastPINTry("Reader A");
//
// The library finds the texts of its language relative to the current directory, so loading makes
// the language's folder current: relative paths from the command line are made absolute before.
#pragma once

#include <string>

#include <mvpingui/mvpingui.h>

#include "pinhost/command.h"
#include "platform/handle.h"
#include "platform/system_library.h"

namespace pinhost {

class PinLibrary {
public:
    // Loads the library and initialises it. Throws EnvironmentError when a module, a function in it
    // or the library's texts are missing.
    explicit PinLibrary(const HostOptions& options);

private:
    mvp::ModuleHandle m_library;

public:
    decltype(&::GetErrorString) GetErrorString = nullptr;
    decltype(&::DisplayLastPINTry) DisplayLastPINTry = nullptr;
    decltype(&::SetPinPromptString) SetPinPromptString = nullptr;
    decltype(&::GetPINFromUser) GetPINFromUser = nullptr;
    decltype(&::GetChangePINInfoFromUser) GetChangePINInfoFromUser = nullptr;
    decltype(&::FreeGetPinBuffer) FreeGetPinBuffer = nullptr;
    decltype(&::ShowAbout) ShowAbout = nullptr;
};

// Turns the suite's log on if it is asked for; it writes while the module is held. Throws
// EnvironmentError when the file cannot be written.
mvp::ModuleHandle TurnLogOn(const HostOptions& options);

// Loads a module of the suite from the program's own folder. Throws EnvironmentError.
mvp::ModuleHandle LoadOwnModule(const char* pszName);

// Finds a function of the module. Throws EnvironmentError.
template <class Function>
void Find(const mvp::ModuleHandle& module, const char* pszName, Function& function) {
    function = mvp::FindFunction<Function>(module.get(), pszName);
    if (function == nullptr) {
        throw EnvironmentError(std::string("the library has no function ") + pszName);
    }
}

}  // namespace pinhost
