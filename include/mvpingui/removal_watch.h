/* mvp::RemovalWatch: a dialog's watch for the removal of its card, for the library's own dialogs.
 * It is a member of theirs, and ends with them at the latest; a host has no use for it. */
#pragma once

#include <dlgfw/string.h>
#include <dlgfw/wnd.h>

class VKDelegateSubscriberCardRemoved;

namespace mvp {

class RemovalWatch {
public:
    RemovalWatch() = default;
    RemovalWatch(const RemovalWatch&) = delete;
    RemovalWatch& operator=(const RemovalWatch&) = delete;
    ~RemovalWatch() { Stop(); }

    // From now on `dialog`, whose window is there, gets the registered card-removed message when
    // the card leaves the reader `strReader`; empty: any reader. Without a watch, for want of
    // memory, which the log tells, the dialog just does not react. On the window's thread.
    void Start(CWnd& dialog, const CString& strReader);

    // Serves the messages that were sent to the thread meanwhile, one of which may lead here again.
    // A message that was posted before may still come afterwards.
    void Stop();

    explicit operator bool() const { return m_pCardRemoved != nullptr; }

private:
    VKDelegateSubscriberCardRemoved* m_pCardRemoved = nullptr;  // owned
};

}  // namespace mvp
