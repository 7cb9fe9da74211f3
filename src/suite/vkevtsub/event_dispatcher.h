// The subscriptions of the process, the events that wait, and the thread that delivers them.
//
// Everything is behind one lock, which is never held while a subscriber is called. What makes it
// safe to delete a subscriber is one rule: the delivery thread notes, under the lock, whom it is
// about to call, and only calls who is still subscribed then; UnSubscribe takes the subscriber off
// the list and, if it is the one noted, waits for the end of that call.
//
// Events and subscriptions are numbered in one row, so that a subscriber gets no event that was
// raised before it subscribed.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/handle.h"
#include "suite/vkevtsub/card_watch.h"
#include "suite/vkevtsub/vkevtsub.h"

namespace mvp {

class EventDispatcher {
public:
    static constexpr std::size_t kReaderNameMax = 1023;
    static constexpr std::size_t kQueueMax = 1024;

    EventDispatcher() noexcept;
    EventDispatcher(const EventDispatcher&) = delete;
    EventDispatcher& operator=(const EventDispatcher&) = delete;

    // As vkevtsub.h describes them. Subscribe and Raise may throw std::bad_alloc and have done
    // nothing then.
    int Subscribe(VKDelegateSubscriber& subscriber, int nKind);
    int UnSubscribe(VKDelegateSubscriber& subscriber) noexcept;
    int Raise(int nKind, const char* pszReaderName);
    int WaitForIdle(DWORD nTimeoutMs) noexcept;

private:
    struct Subscription {
        VKDelegateSubscriber* pSubscriber;
        int nKind;
        std::uint64_t nNumber;
        KernelHandle noCall;  // signalled while no call into the subscriber runs
    };
    using SubscriptionPtr = std::shared_ptr<Subscription>;
    struct Event {
        int nKind;
        std::string strReader;
        std::uint64_t nNumber;
    };
    // Kept by whoever waits for the thread, beyond the thread's end.
    using ThreadPtr = std::shared_ptr<KernelHandle>;

    // How long an UnSubscribe waits before it answers the sent message that it was called from.
    static constexpr DWORD kReplyAfterMs = 100;
    // How long the threads stay when nobody subscribes any more. Windows that watch a card follow
    // one another, and two threads and the service's library anew are a third of what the smallest
    // of them takes to open.
    static constexpr DWORD kLingerMs = 1000;

    // Under the lock.
    bool IsSubscribed(const VKDelegateSubscriber& subscriber) const noexcept;
    bool StartThreads(int nKind);
    int Enqueue(int nKind, std::string strReader);
    SubscriptionPtr NextFor(const Event& event, std::uint64_t nAfter) const noexcept;
    bool IsOnDeliveryThread() const noexcept;

    // Without the lock.
    void OnCardRemoved(const CardWatch& watch, const std::string& strReader) noexcept;
    bool IsBeingCalled(const SubscriptionPtr& subscription) noexcept;
    void WaitForEndOfCall(const SubscriptionPtr& subscription, const ThreadPtr& thread) noexcept;

    // On the delivery thread.
    void Run() noexcept;
    bool TakeEvent(Event& event, std::shared_ptr<CardWatch>& watch) noexcept;
    void Deliver(const Event& event) noexcept;

    CriticalSection m_lock;
    CONDITION_VARIABLE m_wake;
    std::vector<SubscriptionPtr> m_subscriptions;  // by their numbers
    std::deque<Event> m_queue;
    std::uint64_t m_nNextNumber = 1;
    SubscriptionPtr m_called;  // whose HandleEvent runs
    KernelHandle m_idle;       // signalled while no event waits or is being delivered
    ThreadPtr m_thread;        // null when there is none
    DWORD m_nThreadId = 0;     // of the delivery thread once it runs
    std::shared_ptr<CardWatch> m_watch;
};

}  // namespace mvp
