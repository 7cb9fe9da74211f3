// The two subscribers to card-removed events.
//
// Events arrive on a thread of the event module. The subscriber's owner deletes it before it
// destroys the target: the destructor unsubscribes, which waits for a call that is running.
#pragma once

#include <windows.h>

#include <dlgfw/wnd.h>
#include <vkevtsub/vkevtsub.h>

// Turns the removal of a card into a message posted to a window.
class VKDelegateSubscriberCardRemoved : public VKDelegateSubscriber {
public:
    // pWnd      the target window, not owned
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
    bool Concerns(const VKEvent& event) const;

    CWnd* m_pWnd;
    UINT m_nMessage;
    CString m_strReader;
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
    CHideable* m_pPopupAlert;
};
