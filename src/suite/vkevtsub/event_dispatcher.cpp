#include "suite/vkevtsub/event_dispatcher.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/barrier.h"
#include "platform/module_thread.h"
#include "suite/log_exception.h"
#include "suite/vkevtsub/sent_message_wait.h"

namespace mvp {

EventDispatcher::EventDispatcher() noexcept : m_idle(CreateEventA(nullptr, TRUE, TRUE, nullptr)) {
    InitializeConditionVariable(&m_wake);
}

int EventDispatcher::Subscribe(VKDelegateSubscriber& subscriber, int nKind) {
    if (nKind <= 0) {
        return VKEVTSUB_INVALID;
    }
    const auto subscription = std::make_shared<Subscription>();
    subscription->pSubscriber = &subscriber;
    subscription->nKind = nKind;
    subscription->noCall.reset(CreateEventA(nullptr, TRUE, TRUE, nullptr));
    if (!subscription->noCall) {
        return VKEVTSUB_NO_RESOURCES;
    }

    const ScopedLock lock(m_lock);
    if (IsSubscribed(subscriber)) {
        return VKEVTSUB_SUBSCRIBED;
    }
    m_subscriptions.reserve(m_subscriptions.size() + 1);
    if (!StartThreads(nKind)) {
        return VKEVTSUB_NO_RESOURCES;
    }
    subscription->nNumber = m_nNextNumber++;
    m_subscriptions.push_back(subscription);
    return VKEVTSUB_OK;
}

int EventDispatcher::UnSubscribe(VKDelegateSubscriber& subscriber) noexcept {
    SubscriptionPtr called;
    ThreadPtr thread;
    std::size_t erased = 0;
    {
        const ScopedLock lock(m_lock);
        erased = std::erase_if(m_subscriptions, [&](const SubscriptionPtr& each) {
            return each->pSubscriber == &subscriber;
        });
        if (m_subscriptions.empty()) {
            WakeConditionVariable(&m_wake);
        }
        // Another thread may be unsubscribing it as well; then both wait.
        if (m_called && m_called->pSubscriber == &subscriber && !IsOnDeliveryThread()) {
            called = m_called;
            thread = m_thread;
        }
    }
    if (called) {
        WaitForEndOfCall(called, thread);
    }
    return erased > 0 ? VKEVTSUB_OK : VKEVTSUB_NOT_SUBSCRIBED;
}

int EventDispatcher::Raise(int nKind, const char* pszReaderName) {
    const char* const reader = pszReaderName != nullptr ? pszReaderName : "";
    if (nKind <= 0 || strnlen(reader, kReaderNameMax + 1) > kReaderNameMax) {
        return VKEVTSUB_INVALID;
    }
    std::string readerName = reader;
    const ScopedLock lock(m_lock);
    return Enqueue(nKind, std::move(readerName));
}

int EventDispatcher::WaitForIdle(DWORD nTimeoutMs) noexcept {
    {
        const ScopedLock lock(m_lock);
        if (IsOnDeliveryThread()) {
            return VKEVTSUB_INVALID;
        }
    }
    return WaitServingSentMessages({m_idle.get()}, nTimeoutMs) ? VKEVTSUB_OK : VKEVTSUB_TIMEOUT;
}

bool EventDispatcher::IsSubscribed(const VKDelegateSubscriber& subscriber) const noexcept {
    return std::ranges::any_of(m_subscriptions, [&](const SubscriptionPtr& each) {
        return each->pSubscriber == &subscriber;
    });
}

// Starts what a subscription to `nKind` needs and is not there. A delivery thread that is started
// in vain ends by itself.
bool EventDispatcher::StartThreads(int nKind) {
    if (!m_thread) {
        const auto thread = std::make_shared<KernelHandle>();
        *thread = StartModuleThread([this] { Run(); },
                                    LogSuiteException("VKEVTSUB", "EventDispatcher::Run"));
        if (!*thread) {
            return false;
        }
        m_thread = thread;
    }
    if (nKind == VKEVENT_CARD_REMOVED && !m_watch) {
        m_watch = CardWatch::Start([this](const CardWatch& watch, const std::string& strReader) {
            OnCardRemoved(watch, strReader);
        });
    }
    return nKind != VKEVENT_CARD_REMOVED || m_watch;
}

int EventDispatcher::Enqueue(int nKind, std::string strReader) {
    if (m_subscriptions.empty()) {
        return VKEVTSUB_OK;
    }
    if (m_queue.size() >= kQueueMax) {
        return VKEVTSUB_NO_RESOURCES;
    }
    m_queue.push_back({nKind, std::move(strReader), m_nNextNumber++});
    ResetEvent(m_idle.get());
    WakeConditionVariable(&m_wake);
    return VKEVTSUB_OK;
}

void EventDispatcher::OnCardRemoved(const CardWatch& watch, const std::string& strReader) noexcept {
    Guarded(
        [&] {
            const ScopedLock lock(m_lock);
            // A watch that has been ended may still be reporting what it saw before.
            if (m_watch.get() == &watch) {
                Enqueue(VKEVENT_CARD_REMOVED, strReader);
            }
        },
        LogSuiteException("VKEVTSUB", "EventDispatcher::OnCardRemoved"));
}

bool EventDispatcher::IsOnDeliveryThread() const noexcept {
    return m_thread && m_nThreadId == GetCurrentThreadId();
}

void EventDispatcher::WaitForEndOfCall(const SubscriptionPtr& subscription,
                                       const ThreadPtr& thread) noexcept {
    // A process that ends kills the delivery thread, and the call with it.
    const std::initializer_list<HANDLE> objects = {subscription->noCall.get(), thread->get()};
    if (WaitServingSentMessages(objects, kReplyAfterMs)) {
        return;
    }
    ReplyToSender();
    while (!WaitServingSentMessages(objects, INFINITE) && IsBeingCalled(subscription)) {
        Sleep(1);  // the system could not wait
    }
}

bool EventDispatcher::IsBeingCalled(const SubscriptionPtr& subscription) noexcept {
    const ScopedLock lock(m_lock);
    return m_called == subscription;
}

void EventDispatcher::Run() noexcept {
    std::shared_ptr<CardWatch> watch;
    for (Event event; TakeEvent(event, watch);) {
        Deliver(event);
    }
    // Outside of the lock: the service's part in it may take long.
    if (watch) {
        watch->End();
    }
}

// Waits for the next event. False when nobody has subscribed for kLingerMs; both threads are
// forgotten then, `watch` is the one to end, and the next subscription starts others.
bool EventDispatcher::TakeEvent(Event& event, std::shared_ptr<CardWatch>& watch) noexcept {
    const ScopedLock lock(m_lock);
    m_nThreadId = GetCurrentThreadId();
    if (m_queue.empty()) {
        SetEvent(m_idle.get());
    }
    while (m_queue.empty()) {
        const bool lingers = m_subscriptions.empty();
        if (!SleepConditionVariableCS(&m_wake, m_lock.get(), lingers ? kLingerMs : INFINITE) &&
            lingers && m_subscriptions.empty() && m_queue.empty()) {
            m_thread = nullptr;
            m_nThreadId = 0;
            watch = std::exchange(m_watch, nullptr);
            return false;
        }
    }
    event = std::move(m_queue.front());
    m_queue.pop_front();
    return true;
}

void EventDispatcher::Deliver(const Event& event) noexcept {
    const VKEvent delivered = {event.strReader.c_str(), event.nKind};
    std::uint64_t last = 0;
    m_lock.Enter();
    while (const SubscriptionPtr subscription = NextFor(event, last)) {
        last = subscription->nNumber;
        m_called = subscription;
        ResetEvent(subscription->noCall.get());
        m_lock.Leave();
        Guarded([&] { subscription->pSubscriber->HandleEvent(delivered); },
                LogSuiteException("VKEVTSUB", "VKDelegateSubscriber::HandleEvent"));
        m_lock.Enter();
        m_called = nullptr;
        SetEvent(subscription->noCall.get());
    }
    m_lock.Leave();
}

// The first subscription after number `nAfter` that is to get the event. The list is looked through
// anew each time, for every call may have changed it.
EventDispatcher::SubscriptionPtr EventDispatcher::NextFor(const Event& event,
                                                          std::uint64_t nAfter) const noexcept {
    const auto next = std::ranges::find_if(m_subscriptions, [&](const SubscriptionPtr& each) {
        return each->nNumber > nAfter && each->nNumber < event.nNumber &&
               each->nKind == event.nKind;
    });
    return next != m_subscriptions.end() ? *next : nullptr;
}

}  // namespace mvp
