#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "support/log_recorder.h"
#include "support/resource_counts.h"
#include "support/ui_thread.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

using Texts = std::vector<std::string>;
constexpr std::chrono::seconds kDeadline(20);

// Before anybody subscribed.
// With the one to come that watches over the thread of the tests.
const auto g_nThreadsAtStart = ResourceCounts::Now().threads + 1;

class Subscriber : public VKDelegateSubscriber {
public:
    using Handler = std::function<void(const VKEvent&)>;

    explicit Subscriber(Handler handler, int nKind = VKEVENT_CARD_REMOVED)
        : m_handler(std::move(handler)) {
        EXPECT_EQ(Subscribe(nKind), VKEVTSUB_OK);
    }
    ~Subscriber() override { UnSubscribe(); }

    void HandleEvent(const VKEvent& event) override { m_handler(event); }

    using VKDelegateSubscriber::Subscribe;
    using VKDelegateSubscriber::UnSubscribe;

private:
    Handler m_handler;
};

void Raise(const std::string& strReader) {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, strReader.c_str()), VKEVTSUB_OK);
}

void WaitForIdle() {
    EXPECT_EQ(VKWaitForIdle(20000), VKEVTSUB_OK);
}

class VkEvtSub : public testing::Test {
protected:
    void Note(const std::string& strText) {
        const std::lock_guard lock(m_lock);
        m_notes.push_back(strText);
        m_threads.insert(GetCurrentThreadId());
    }
    // What was noted when all that was raised had been delivered.
    Texts Notes() {
        WaitForIdle();
        const std::lock_guard lock(m_lock);
        return m_notes;
    }
    // A subscriber's handler: notes the reader, after `strWho`.
    Subscriber::Handler Noting(const std::string& strWho = "") {
        return [this, strWho](const VKEvent& event) { Note(strWho + event.pszReaderName); };
    }
    // In a call: tells that it runs, and waits.
    void Hold() {
        m_bRunning = true;
        EXPECT_TRUE(WaitFor(kDeadline, [this] { return m_bGo.load(); }));
    }
    void AwaitCall() {
        EXPECT_TRUE(WaitFor(kDeadline, [this] { return m_bRunning.load(); }));
    }

    UiThread m_window;  // a window of the test's thread
    std::atomic<bool> m_bRunning = false;
    std::atomic<bool> m_bGo = false;
    std::set<DWORD> m_threads;  // those on which something was noted

private:
    std::mutex m_lock;
    Texts m_notes;
};

TEST_F(VkEvtSub, DeliversInOrderOnOneThreadOfItsOwn) {
    const Subscriber first([&](const VKEvent& event) {
        EXPECT_EQ(event.nKind, VKEVENT_CARD_REMOVED);
        Note("first " + std::string(event.pszReaderName));
    });
    const Subscriber second(Noting("second "));
    const Subscriber other([&](const VKEvent&) { Note("other"); }, 77);
    Texts expected;
    for (int i = 0; i < 200; ++i) {
        std::string reader = std::to_string(i);
        Raise(reader);
        expected.push_back("first " + reader);
        expected.push_back("second " + reader);
        reader.assign(reader.size(), '?');  // the name has been copied
    }
    VKRaiseEvent(77, nullptr);
    expected.push_back("other");
    EXPECT_EQ(Notes(), expected);
    EXPECT_EQ(m_threads.size(), 1U);
    EXPECT_FALSE(m_threads.contains(GetCurrentThreadId()));
}

TEST_F(VkEvtSub, NobodyHearsOfWhatWasRaisedBeforeHeSubscribed) {
    const Subscriber early([&](const VKEvent&) { Hold(); });
    Raise("holds the thread");
    AwaitCall();
    Raise("before");
    const Subscriber late(Noting());
    Raise("after");
    m_bGo = true;
    EXPECT_EQ(Notes(), Texts{"after"});
}

TEST_F(VkEvtSub, UnSubscribeWaitsForTheRunningCallAndServesSentMessagesOnly) {
    std::unique_ptr<UiThread> windowOfOther;
    int sent = 0;
    std::atomic<bool> over{false};
    Subscriber subscriber([&](const VKEvent&) {
        Hold();
        // Each answers only when its thread waits in UnSubscribe.
        for (int i = 0; i < 10; ++i) {
            m_window.Run([&] { ++sent; }, kDeadline, true);
        }
        windowOfOther->Run([] {}, kDeadline, true);
        over = true;
    });
    Raise("A");
    Raise("B");
    AwaitCall();
    std::thread other([&] {
        windowOfOther = std::make_unique<UiThread>();
        m_bGo = true;
        subscriber.UnSubscribe();
        EXPECT_TRUE(over);
        windowOfOther.reset();
    });
    PostThreadMessageA(GetCurrentThreadId(), WM_APP + 1, 0, 0);
    PostQuitMessage(7);
    subscriber.UnSubscribe();
    EXPECT_TRUE(over);
    EXPECT_EQ(sent, 10);
    other.join();
    over = false;
    WaitForIdle();
    EXPECT_FALSE(over) << "called after it had unsubscribed";

    for (const auto& wanted : {std::pair<UINT, WPARAM>{WM_APP + 1, 0}, {WM_QUIT, 7}}) {
        MSG message;
        EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
        EXPECT_EQ(std::pair(message.message, message.wParam), wanted);
    }
}

// The call sends a message, and the window that gets it unsubscribes the very subscriber: each
// would wait for the other.
TEST_F(VkEvtSub, UnSubscribeInAMessageThatTheCallSends) {
    std::unique_ptr<Subscriber> subscriber;
    std::atomic<bool> over{false};
    // The sender goes on while this still runs: nothing here may live in the sender's frame.
    const std::function<void()> leave = [&] {
        subscriber.reset();
        EXPECT_TRUE(over);
        PostQuitMessage(0);
    };
    subscriber = std::make_unique<Subscriber>([&](const VKEvent&) {
        m_window.Run(leave, kDeadline, true);
        over = true;
    });
    Raise("A");
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        DispatchMessageA(&message);
    }
    EXPECT_EQ(subscriber, nullptr);
}

TEST_F(VkEvtSub, EverythingIsAllowedWithinACall) {
    std::unique_ptr<Subscriber> selfDeleting;
    std::unique_ptr<Subscriber> victim;
    std::unique_ptr<Subscriber> born;
    Subscriber* leavingOne = nullptr;
    Subscriber leaving([&](const VKEvent& event) {
        Note("leaving " + std::string(event.pszReaderName));
        EXPECT_EQ(leavingOne->UnSubscribe(), VKEVTSUB_OK);
        EXPECT_EQ(leavingOne->UnSubscribe(), VKEVTSUB_NOT_SUBSCRIBED);
        EXPECT_EQ(VKWaitForIdle(0), VKEVTSUB_INVALID);
    });
    leavingOne = &leaving;
    selfDeleting = std::make_unique<Subscriber>([&](const VKEvent& event) {
        Note("deletes itself " + std::string(event.pszReaderName));
        victim.reset();
        born = std::make_unique<Subscriber>(Noting("born "));
        Raise("B");
        selfDeleting.reset();
    });
    victim = std::make_unique<Subscriber>(Noting("victim "));
    Raise("A");
    EXPECT_EQ(Notes(), (Texts{"leaving A", "deletes itself A", "born B"}));
}

TEST_F(VkEvtSub, ExceptionsStayInside) {
    LogRecorder log;
    const Subscriber throwing([](const VKEvent& event) {
        event.pszReaderName[0] == 'A' ? throw std::runtime_error("A") : throw 5;
    });
    const Subscriber next(Noting());
    Raise("A");
    Raise("B");
    EXPECT_EQ(Notes(), (Texts{"A", "B"}));
    EXPECT_EQ(log.Texts(1), Texts(2, "VKDelegateSubscriber::HandleEvent: exception"));
}

TEST_F(VkEvtSub, RefusesWhatItCannotTake) {
    Subscriber subscriber(Noting());
    EXPECT_EQ(subscriber.Subscribe(VKEVENT_CARD_REMOVED), VKEVTSUB_SUBSCRIBED);
    EXPECT_EQ(subscriber.UnSubscribe(), VKEVTSUB_OK);
    EXPECT_EQ(subscriber.UnSubscribe(), VKEVTSUB_NOT_SUBSCRIBED);
    EXPECT_EQ(subscriber.Subscribe(0), VKEVTSUB_INVALID);
    EXPECT_EQ(subscriber.Subscribe(-1), VKEVTSUB_INVALID);
    EXPECT_EQ(VKRaiseEvent(0, "A"), VKEVTSUB_INVALID);
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, "nobody subscribes"), VKEVTSUB_OK);

    EXPECT_EQ(subscriber.Subscribe(VKEVENT_CARD_REMOVED), VKEVTSUB_OK);
    const std::string longest(1023, 'r');
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, (longest + 'r').c_str()), VKEVTSUB_INVALID);
    Raise(longest);
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, nullptr), VKEVTSUB_OK);
    EXPECT_EQ(Notes(), (Texts{longest, ""}));
}

TEST_F(VkEvtSub, BoundsTheEventsThatWait) {
    std::atomic<int> calls{0};
    const Subscriber subscriber([&](const VKEvent&) {
        ++calls;
        Hold();
    });
    Raise("first");
    AwaitCall();
    for (int i = 0; i < 1024; ++i) {
        Raise("waits");
    }
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, "one too many"), VKEVTSUB_NO_RESOURCES);
    EXPECT_EQ(VKWaitForIdle(10), VKEVTSUB_TIMEOUT);
    m_bGo = true;
    WaitForIdle();
    EXPECT_EQ(calls, 1025);
}

// A subscriber that notices when it is called after its end.
class Mortal : public VKDelegateSubscriber {
public:
    explicit Mortal(UiThread& window) : m_window(window) { Subscribe(VKEVENT_CARD_REMOVED); }
    ~Mortal() override {
        UnSubscribe();
        m_nAlive = 0;
    }
    void HandleEvent(const VKEvent&) override {
        s_nCallsOfDead += m_nAlive != kAlive;
        const int call = ++s_nCalls % 8;
        if (call == 0) {
            UnSubscribe();
        } else if (call == 1) {
            m_window.Run([] {}, kDeadline, true);
        }
        s_nCallsOfDead += m_nAlive != kAlive;
    }

    static inline std::atomic<int> s_nCalls{0};
    static inline std::atomic<int> s_nCallsOfDead{0};

private:
    static constexpr unsigned kAlive = 0xA11FE;
    UiThread& m_window;
    volatile unsigned m_nAlive = kAlive;
};

TEST_F(VkEvtSub, SurvivesARaceOfDeletionsAndEvents) {
    std::atomic<int> running{4};
    const auto serve = [] {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageA(&message);
        }
    };
    const auto liveAndDie = [&](unsigned nSeed) {
        std::mt19937 random(nSeed);
        std::vector<std::unique_ptr<Mortal>> mortals(6);
        for (int i = 0; i < 3000; ++i) {
            auto& place = mortals[random() % mortals.size()];
            const unsigned what = random() % 3;
            if (what == 2) {
                VKRaiseEvent(VKEVENT_CARD_REMOVED, "A");
            } else {
                place = what == 0 ? std::make_unique<Mortal>(m_window) : nullptr;
            }
            serve();
        }
        mortals.clear();
        --running;
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 4712; seed < 4715; ++seed) {
        threads.emplace_back(liveAndDie, seed);
    }
    liveAndDie(4711);
    EXPECT_TRUE(WaitFor(std::chrono::seconds(100), [&] { return serve(), running == 0; }));
    std::ranges::for_each(threads, &std::thread::join);
    EXPECT_EQ(Mortal::s_nCallsOfDead, 0);
    EXPECT_GT(Mortal::s_nCalls, 1000);
}

TEST_F(VkEvtSub, EndsItsThreadsAndKeepsNothing) {
    const auto live = [](int nRound) {
        for (int i = 0; i < (nRound == 0 ? 20 : 500); ++i) {
            const Subscriber subscriber([](const VKEvent&) {});
            Raise("A");
        }
        // Those that are ending still count.
        EXPECT_TRUE(
            WaitFor(kDeadline, [] { return ResourceCounts::Now().threads <= g_nThreadsAtStart; }));
    };
    // How many threads were ending at a time varies, and with it what the system keeps of them.
    ExpectRoundsKeepNothing(1, 2, live, {.privateBytes = 4 << 20});
}

}  // namespace
}  // namespace mvp::test
