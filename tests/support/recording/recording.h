// What the recording modules export beside the functions of the modules they stand in for. Tests
// use the classes over it: LogRecorder, MessageBoxRecorder.
//
// A recording module hands every call on to the receiver that was set last; null sets none. Nothing
// of the language's library crosses the boundary, for every binary has its own.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "platform/system_library.h"

namespace mvp::test {

// vklog.dll exports "vklogRecordTo". Called under the module's lock, on the thread that logs; the
// receiver must not log. When vklogRecordTo returns, no call to the former receiver is running.
using LogReceiver = void (*)(void* pContext, const char* pszTag, int nLevel, const char* pszText);

struct MessageBoxArguments {
    // VKErrMesDisplayExWithParentParamAndReader, not VKErrMesDisplayEx, which leaves the parent,
    // what is reserved and the reader null.
    bool bWithParentAndReader;
    HWND hParent;
    int nMessageType;
    UINT nButtons;
    UINT nIcon;
    UINT nFlags;
    const void* pReserved;
};

// vkerrmes.dll exports "VKErrMesRecordTo". The receiver's result is the answer; without a receiver
// it is 1.
using MessageBoxReceiver = int (*)(void* pContext, const MessageBoxArguments& arguments,
                                   const char* pszText, const char* pszReader);

// Throws std::runtime_error when the module of that name beside the test is not the recording one.
template <class Receiver>
void RecordTo(const char* pszModule, const char* pszFunction, Receiver receiver, void* pContext) {
    // Not given back: the module under test, which uses it too, may come and go.
    const auto recordTo =
        FindFunction<void (*)(Receiver, void*)>(LoadLibraryA(pszModule), pszFunction);
    if (recordTo == nullptr) {
        throw std::runtime_error(std::string(pszModule) + " is not the recording module");
    }
    recordTo(receiver, pContext);
}
inline void RecordLogTo(LogReceiver receiver, void* pContext) {
    RecordTo("vklog.dll", "vklogRecordTo", receiver, pContext);
}
inline void RecordBoxesTo(MessageBoxReceiver receiver, void* pContext) {
    RecordTo("vkerrmes.dll", "VKErrMesRecordTo", receiver, pContext);
}

}  // namespace mvp::test
