// Finds the recording function of a recording module.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "platform/system_library.h"

namespace mvp::test {

// Throws std::runtime_error when the module of that name beside the test is not the recording one.
template <class Function>
Function RecordingFunction(const char* pszModule, const char* pszFunction) {
    // Not given back: the module under test, which uses it too, may come and go.
    const auto function = FindFunction<Function>(LoadLibraryA(pszModule), pszFunction);
    if (function == nullptr) {
        throw std::runtime_error(std::string(pszModule) + " is not the recording module");
    }
    return function;
}

}  // namespace mvp::test
