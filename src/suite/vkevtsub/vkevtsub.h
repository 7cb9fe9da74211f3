// vkevtsub: the card events of the suite.
//
// A class that wants to hear of events derives from VKDelegateSubscriber:
//
//     class CardGone : public VKDelegateSubscriber {
//     public:
//         CardGone() { Subscribe(VKEVENT_CARD_REMOVED); }
//         ~CardGone() override { UnSubscribe(); }
//         void HandleEvent(const VKEvent& event) override { PostMessage(...); }
//     };
//
// Events come from two sources: the smart-card service of the system, whose readers are watched
// while anyone subscribes to VKEVENT_CARD_REMOVED, and VKRaiseEvent. A system without smart-card
// service has the second source only; the service may start, stop and start again at any time.
//
// HandleEvent runs on the module's one delivery thread, never under a lock: events arrive one after
// the other, in the order they were raised, at the subscribers in the order they subscribed. A
// subscriber hears of what was raised after it subscribed and of nothing that was raised before.
// Within HandleEvent everything is allowed: to subscribe, to unsubscribe or delete this or other
// subscribers, to raise events, to send messages to windows. An exception that leaves HandleEvent
// is dropped.
//
// The module's threads start with the first subscriber and end a second after the last one
// unsubscribed. They keep the module loaded until they have left its code, so it may be freed at
// any time.
#pragma once

#if defined(VKEVTSUB_EXPORTS)
#define VKEVTSUB_API __declspec(dllexport)
#else
#define VKEVTSUB_API __declspec(dllimport)
#endif

// Event kinds.
enum : int {
    VKEVENT_CARD_REMOVED = 2,  // a card left a reader, or the reader left with it
};

// Results: 0 is success.
enum : int {
    VKEVTSUB_OK = 0,
    VKEVTSUB_INVALID = 1,     // an argument that means nothing, or a call from the wrong place
    VKEVTSUB_SUBSCRIBED = 2,  // subscribed already
    VKEVTSUB_NOT_SUBSCRIBED = 3,
    VKEVTSUB_NO_RESOURCES = 4,  // no memory or thread, or too many events wait
    VKEVTSUB_TIMEOUT = 5,
};

// Valid during HandleEvent alone.
struct VKEvent {
    const char* pszReaderName;  // the reader concerned, in the ANSI code page; never null
    int nKind;
};

class VKEVTSUB_API VKDelegateSubscriber {
public:
    VKDelegateSubscriber();
    VKDelegateSubscriber(const VKDelegateSubscriber&) = delete;
    VKDelegateSubscriber& operator=(const VKDelegateSubscriber&) = delete;

    // Unsubscribes as a last resort. A derived class must call UnSubscribe in its own destructor:
    // an event that comes after that destructor would find no HandleEvent.
    virtual ~VKDelegateSubscriber();

    virtual void HandleEvent(const VKEvent& event) = 0;

protected:
    // From any thread; nEventKind is greater than 0. A subscriber has one kind at a time.
    int Subscribe(int nEventKind);

    // From any thread. When it returns, no call of HandleEvent of this object is running or will
    // follow, so it may be deleted; only when UnSubscribe is called from within that very call does
    // it return at once.
    //
    // While it waits for a running call it serves messages sent to the calling thread, because that
    // call may be sending one; posted messages stay where they are. If it is called while such a
    // sent message is being handled, it replies to that message (with 0), or the two would wait for
    // each other.
    int UnSubscribe();
};

extern "C" {

// Raises an event by hand, from any thread. Both arguments are copied; the event is delivered
// later, on the delivery thread. Null names no reader. VKEVTSUB_OK means that it was taken, also
// when nobody subscribes; VKEVTSUB_INVALID that the kind is not greater than 0 or the name is
// longer than 1,023 bytes; VKEVTSUB_NO_RESOURCES that 1,024 events wait already.
VKEVTSUB_API int __cdecl VKRaiseEvent(int nEventKind, const char* pszReaderName);

// Waits until every event raised so far has been delivered and no HandleEvent runs; serves sent
// messages as UnSubscribe does. For tests. VKEVTSUB_OK, VKEVTSUB_TIMEOUT, or VKEVTSUB_INVALID on
// the delivery thread itself.
VKEVTSUB_API int __cdecl VKWaitForIdle(unsigned nTimeoutMs);
}
