// What the recording vklog.dll exports beside the functions of the module it stands in for. Tests
// use the class over it: LogRecorder.
//
// It hands every call on to the receiver that was set last; null sets none. Nothing of the
// language's library crosses the boundary, for every binary has its own.
#pragma once

#include <windows.h>

#include <stdexcept>

#include "platform/system_library.h"

namespace mvp::test {

// vklog.dll exports "vklogRecordTo". Called under the module's lock, on the thread that logs; the
// receiver must not log. When vklogRecordTo returns, no call to the former receiver is running.
using LogReceiver = void (*)(void* pContext, const char* pszTag, int nLevel, const char* pszText);

// Throws std::runtime_error when the module beside the test is not the recording one.
inline void RecordLogTo(LogReceiver receiver, void* pContext) {
    // Not given back: the module under test, which uses it too, may come and go.
    const auto recordTo =
        FindFunction<void (*)(LogReceiver, void*)>(LoadLibraryA("vklog.dll"), "vklogRecordTo");
    if (recordTo == nullptr) {
        throw std::runtime_error("vklog.dll is not the recording module");
    }
    recordTo(receiver, pContext);
}

}  // namespace mvp::test
