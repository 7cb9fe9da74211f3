#include "notify/card_expiry_cancel.h"

#include <array>

#include "platform/barrier.h"
#include "platform/module_thread.h"
#include "services/log.h"

namespace mvp {
namespace {

constexpr char kThreadName[] = "CCardExpiryNotifyDlg::DetectCancelThreadProc";

void LogUnwatched(DWORD error) {
    vklogLog(g_szLogTag, kLogError, "The cancel event cannot be waited for (error %d)",
             static_cast<int>(error));
}

DWORD DetectCancelThreadProc(const CancelWait& wait) {
    const LogScope scope(kThreadName);
    const std::array<HANDLE, 3> handles{wait.hCancel, wait.ended.get(), wait.dialogOwner.get()};
    const DWORD signalled =
        WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE, INFINITE);
    if (signalled == WAIT_OBJECT_0) {
        vklogLog(g_szLogTag, kLogInfo, "Cancel Event detected. Close the dialog");
        PostMessageA(wait.hDialog, WM_COMMAND, IDCANCEL, 0);
    } else if (signalled == WAIT_FAILED) {
        LogUnwatched(GetLastError());
    }
    return 0;
}

}  // namespace

void CancelWatch::Start(HWND hDialog, HANDLE hCancel) {
    Stop();
    if (hCancel == nullptr) {
        return;
    }
    // The handle of an event that has been closed would be that of the next thing made here.
    DWORD flags = 0;
    if (!GetHandleInformation(hCancel, &flags)) {
        LogUnwatched(GetLastError());
        return;
    }
    m_wait = std::make_shared<CancelWait>(
        CancelWait{hDialog, hCancel, KernelHandle(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
                   KernelHandle(OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId()))});
    m_thread = StartModuleThread([wait = m_wait] { DetectCancelThreadProc(*wait); },
                                 LogException(kThreadName));
    if (!m_thread) {
        vklogLog(g_szLogTag, kLogError, "The cancel thread cannot be started (error %d)",
                 static_cast<int>(GetLastError()));
    }
}

void CancelWatch::Stop() noexcept {
    if (m_thread) {
        SetEvent(m_wait->ended.get());
        WaitForSingleObject(m_thread.get(), INFINITE);
    }
    m_thread.reset();
    m_wait.reset();
}

}  // namespace mvp
