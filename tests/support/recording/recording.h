// What the recording modules export beside the functions of the modules they stand in for. Tests
// use the classes over it: LogRecorder, MessageBoxRecorder.
//
// A recording module hands every call on to the receiver that was set last; null sets none. Nothing
// of the language's library crosses the boundary, for every binary has its own.
#pragma once

#include <windows.h>

namespace mvp::test {

// vklog.dll exports "vklogRecordTo". Called under the module's lock, on the thread that logs; the
// receiver must not log. When vklogRecordTo returns, no call to the former receiver is running.
using LogReceiver = void (*)(void* pContext, const char* pszTag, int nLevel, const char* pszText);
using LogRecordTo = void (*)(LogReceiver receiver, void* pContext);

// vkerrmes.dll exports "VKErrMesRecordTo". The receiver's result is the answer; without a receiver
// it is 1.
struct MessageBoxRecord {
    bool bWithParentAndReader;  // which of the two functions; hParent and what follows nFlags are
                                // null for the other one
    HWND hParent;
    int nMessageType;
    const char* pszText;
    UINT nButtons;
    UINT nIcon;
    UINT nFlags;
    const void* pReserved;
    const char* pszReader;
};
using MessageBoxReceiver = int (*)(void* pContext, const MessageBoxRecord& record);
using MessageBoxRecordTo = void (*)(MessageBoxReceiver receiver, void* pContext);

}  // namespace mvp::test
