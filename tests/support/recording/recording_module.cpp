#include "support/recording/recording_module.h"

#include <stdexcept>
#include <string>

namespace mvp::test {

FARPROC FindRecordingFunction(const char* pszModule, const char* pszFunction) {
    // Not given back: the module under test, which uses it too, may come and go.
    const HMODULE hModule = LoadLibraryA(pszModule);
    const FARPROC function = hModule != nullptr ? GetProcAddress(hModule, pszFunction) : nullptr;
    if (function == nullptr)
        throw std::runtime_error(std::string(pszModule) + " is not the recording module");
    return function;
}

}  // namespace mvp::test
