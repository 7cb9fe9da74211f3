// The two subscribers to card-removed events.
//
// Events arrive on a thread of the event module. The subscriber's owner deletes it before it
// destroys the target: the destructor unsubscribes, which waits for a call that is running.
//
// An owner that can no longer delete it, because its thread ended with the dialog up and took the
// stack along, leaves a subscriber that hears of every removal until the process ends. It does
// nothing then: it knows the window by its handle and its thread alone, and keeps the library
// loaded for as long as it is called.
#pragma once

#include <windows.h>

#include <dlgfw/wnd.h>
#include <vkevtsub/vkevtsub.h>

#include "platform/handle.h"

// Turns the removal of a card into a message posted to a window.
class VKDelegateSubscriberCardRemoved : public VKDelegateSubscriber {
public:
    // pWnd      the target, which has its window; the object is not kept. Null: no target
    // nMessage  the message to post, with wParam 1 and lParam 0
    // strReader the reader whose card matters, compared without regard to case; empty: any reader
    //
    // Construct on the window's thread, which is initialised for COM. When the subscription fails
    // that is only logged: the window then never hears of a removal.
    VKDelegateSubscriberCardRemoved(CWnd* pWnd, UINT nMessage, const CString& strReader);
    VKDelegateSubscriberCardRemoved(const VKDelegateSubscriberCardRemoved&) = delete;
    VKDelegateSubscriberCardRemoved& operator=(const VKDelegateSubscriberCardRemoved&) = delete;
    ~VKDelegateSubscriberCardRemoved() override;

    void HandleEvent(const VKEvent& event) override;

private:
    bool IsTargetThere() const;
    bool Concerns(const VKEvent& event) const;

    HWND m_hTarget;
    UINT m_nMessage;
    CString m_strReader;
    // With the handle it tells the target from a window that got the same handle after it.
    DWORD m_nTargetThread;
    mvp::ModuleHandle m_library;
};

// Something on the screen that a card's removal takes down.
class CHideable {
public:
    // May be called on any thread.
    virtual void Hide() = 0;

protected:
    CHideable() = default;
    CHideable(const CHideable&) = default;
    CHideable& operator=(const CHideable&) = default;
    ~CHideable() = default;
};

// Hides a popup, on the event thread, when a card is removed from any reader.
class CCardRemoved : public VKDelegateSubscriber {
public:
    // pPopupAlert  the popup to hide, not owned
    explicit CCardRemoved(CHideable* pPopupAlert);
    CCardRemoved(const CCardRemoved&) = delete;
    CCardRemoved& operator=(const CCardRemoved&) = delete;
    ~CCardRemoved() override;

    void HandleEvent(const VKEvent& event) override;

private:
    CString m_strUnused;  // always empty
    CHideable* m_pPopupAlert;
};
