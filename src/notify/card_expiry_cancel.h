// Closes the expiry notice when its caller's event is signalled.
//
// A thread waits for the event, and ends with the notice at the latest. It knows the dialog by its
// window's handle alone, and does nothing to it but post Cancel.
#pragma once

#include <windows.h>

#include <memory>

#include "platform/handle.h"

namespace mvp {

// What the thread waits for and whom it tells. Shared with it, as the watch may go unseen: with a
// thread that ends in the middle of its dialog.
struct CancelWait {
    HWND hDialog;
    HANDLE hCancel;            // the caller's, not owned
    KernelHandle ended;        // signalled when the dialog ends
    KernelHandle dialogOwner;  // the dialog's thread
};

class CancelWatch {
public:
    CancelWatch() = default;
    CancelWatch(const CancelWatch&) = delete;
    CancelWatch& operator=(const CancelWatch&) = delete;
    ~CancelWatch() { Stop(); }

    // From now on `hDialog`, a window of this thread, gets Cancel when `hCancel` is signalled. When
    // that cannot be watched, which the log tells, or is null, the dialog is left to its user.
    void Start(HWND hDialog, HANDLE hCancel);

    // Returns when the thread has ended. A Cancel that it has posted may still come.
    void Stop() noexcept;

private:
    std::shared_ptr<CancelWait> m_wait;
    KernelHandle m_thread;
};

}  // namespace mvp
