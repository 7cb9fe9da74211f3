// Finds the recording function of a recording module.
#pragma once

#include <windows.h>

namespace mvp::test {

// Throws std::runtime_error when the module of that name beside the test is not the recording one.
// The module stays loaded.
FARPROC FindRecordingFunction(const char* pszModule, const char* pszFunction);

template <class Function>
Function RecordingFunction(const char* pszModule, const char* pszFunction) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(FindRecordingFunction(pszModule, pszFunction)));
}

}  // namespace mvp::test
