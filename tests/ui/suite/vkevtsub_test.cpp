#include <windows.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "platform/handle.h"
#include "support/log_recorder.h"
#include "support/resource_counts.h"
#include "support/waiting.h"

namespace {

constexpr unsigned kDeadlineMs = 20000;

// Before anybody subscribed.
const auto g_nThreadsAtStart = mvp::test::ResourceCounts::Now().threads;

class CSubscriber : public VKDelegateSubscriber {
public:
    using Handler = std::function<void(const VKEvent&)>;

    explicit CSubscriber(Handler handler, int nKind = VKEVENT_CARD_REMOVED)
        : m_handler(std::move(handler)) {
        EXPECT_EQ(Subscribe(nKind), VKEVTSUB_OK);
    }
    ~CSubscriber() override { UnSubscribe(); }

    void HandleEvent(const VKEvent& event) override { m_handler(event); }

    using VKDelegateSubscriber::Subscribe;
    using VKDelegateSubscriber::UnSubscribe;

private:
    Handler m_handler;
};

// Collects texts from any thread.
class CNotes {
public:
    void Add(const std::string& strText) {
        const std::lock_guard lock(m_lock);
        m_texts.push_back(strText);
    }
    std::vector<std::string> All() const {
        const std::lock_guard lock(m_lock);
        return m_texts;
    }

private:
    mutable std::mutex m_lock;
    std::vector<std::string> m_texts;
};
using Texts = std::vector<std::string>;

class CGate {
public:
    CGate() : m_event(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
    void Open() const { SetEvent(m_event.get()); }
    bool Wait() const { return WaitForSingleObject(m_event.get(), kDeadlineMs) == WAIT_OBJECT_0; }

private:
    mvp::KernelHandle m_event;
};

void Raise(const std::string& strReader) {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, strReader.c_str()), VKEVTSUB_OK);
}

void WaitForIdle() {
    EXPECT_EQ(VKWaitForIdle(kDeadlineMs), VKEVTSUB_OK);
}

TEST(VkEvtSub, DeliversInOrderOnOneThreadOfItsOwn) {
    CNotes notes;
    std::atomic<DWORD> nThread{0};
    std::atomic<bool> bOneThread{true};
    const auto note = [&](const char* pszWho, const VKEvent& event) {
        DWORD nNone = 0;
        if (!nThread.compare_exchange_strong(nNone, GetCurrentThreadId()))
            bOneThread = bOneThread && nThread == GetCurrentThreadId();
        EXPECT_EQ(event.nKind, VKEVENT_CARD_REMOVED);
        notes.Add(pszWho + std::string(event.pszReaderName));
    };
    const CSubscriber first([&](const VKEvent& event) { note("first ", event); });
    const CSubscriber second([&](const VKEvent& event) { note("second ", event); });
    const CSubscriber other([&](const VKEvent&) { notes.Add("other"); }, 77);
    Texts expected;
    for (int i = 0; i < 200; ++i) {
        std::string strReader = std::to_string(i);
        Raise(strReader);
        expected.push_back("first " + strReader);
        expected.push_back("second " + strReader);
        strReader.assign(strReader.size(), '?');  // the name has been copied
    }
    VKRaiseEvent(77, nullptr);
    expected.push_back("other");
    WaitForIdle();
    EXPECT_EQ(notes.All(), expected);
    EXPECT_TRUE(bOneThread);
    EXPECT_NE(nThread, GetCurrentThreadId());
}

TEST(VkEvtSub, NobodyHearsOfWhatWasRaisedBeforeHeSubscribed) {
    CNotes notes;
    const CGate running, go;
    const CSubscriber early([&](const VKEvent&) {
        running.Open();
        go.Wait();
    });
    Raise("holds the thread");
    ASSERT_TRUE(running.Wait());
    Raise("before");
    const CSubscriber late([&](const VKEvent& event) { notes.Add(event.pszReaderName); });
    Raise("after");
    go.Open();
    WaitForIdle();
    EXPECT_EQ(notes.All(), Texts{"after"});
}

// A window whose messages go to a function.
class CTestWindow {
public:
    using Procedure = std::function<LRESULT(UINT nMessage)>;

    explicit CTestWindow(Procedure procedure) : m_procedure(std::move(procedure)) {
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = Dispatch;
        windowClass.lpszClassName = "VkEvtSubTest";
        RegisterClassA(&windowClass);
        m_hWnd = CreateWindowA("VkEvtSubTest", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                               nullptr);
        SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    CTestWindow(const CTestWindow&) = delete;
    CTestWindow& operator=(const CTestWindow&) = delete;
    ~CTestWindow() { DestroyWindow(m_hWnd); }

    HWND Handle() const { return m_hWnd; }

private:
    static LRESULT CALLBACK Dispatch(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
        const auto* pWindow =
            reinterpret_cast<CTestWindow*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
        if (pWindow != nullptr && nMessage >= WM_APP)
            return pWindow->m_procedure(nMessage);
        return DefWindowProcA(hWnd, nMessage, wParam, lParam);
    }

    Procedure m_procedure;
    HWND m_hWnd;
};

TEST(VkEvtSub, UnSubscribeWaitsForTheRunningCall) {
    const auto answer = [](UINT) { return LRESULT{1}; };
    const CTestWindow window(answer);
    const CGate running, ready;
    HWND hOther = nullptr;
    std::atomic<bool> bOver{false};
    CSubscriber subscriber([&](const VKEvent&) {
        running.Open();
        ready.Wait();
        // Each answers only when its thread waits in UnSubscribe.
        for (const HWND hWnd : {window.Handle(), hOther}) {
            DWORD_PTR nAnswer = 0;
            SendMessageTimeoutA(hWnd, WM_APP, 0, 0, SMTO_NORMAL, kDeadlineMs, &nAnswer);
            EXPECT_EQ(nAnswer, 1U);
        }
        bOver = true;
    });
    Raise("A");
    Raise("B");
    ASSERT_TRUE(running.Wait());
    std::thread other([&] {
        const CTestWindow windowOfOther(answer);
        hOther = windowOfOther.Handle();
        ready.Open();
        subscriber.UnSubscribe();
        EXPECT_TRUE(bOver);
    });
    subscriber.UnSubscribe();
    EXPECT_TRUE(bOver);
    other.join();
    bOver = false;
    WaitForIdle();
    EXPECT_FALSE(bOver) << "called after it had unsubscribed";
}

TEST(VkEvtSub, UnSubscribeServesSentMessagesAndLeavesPostedOnes) {
    int nSent = 0;
    int nPosted = 0;
    const CTestWindow window([&](UINT nMessage) {
        ++(nMessage == WM_APP ? nSent : nPosted);
        return LRESULT{42};
    });
    const CGate running;
    std::atomic<LRESULT> nAnswer{0};
    CSubscriber subscriber([&](const VKEvent&) {
        running.Open();
        for (int i = 0; i < 10; ++i)
            nAnswer += SendMessageA(window.Handle(), WM_APP, 0, 0);
    });
    Raise("A");
    ASSERT_TRUE(running.Wait());
    PostMessageA(window.Handle(), WM_APP + 1, 0, 0);
    PostQuitMessage(7);
    subscriber.UnSubscribe();
    EXPECT_EQ(nAnswer, 420);
    EXPECT_EQ(nSent, 10);
    EXPECT_EQ(nPosted, 0);

    MSG message;
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_APP + 1});
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT{WM_QUIT});
    EXPECT_EQ(message.wParam, WPARAM{7});
}

// The call sends a message, and the window that gets it unsubscribes the very subscriber: each
// would wait for the other.
TEST(VkEvtSub, UnSubscribeInAMessageThatTheCallSends) {
    std::unique_ptr<CSubscriber> subscriber;
    std::atomic<bool> bOver{false};
    const CTestWindow window([&](UINT) {
        subscriber.reset();
        EXPECT_TRUE(bOver);
        PostQuitMessage(0);
        return LRESULT{1};
    });
    subscriber = std::make_unique<CSubscriber>([&](const VKEvent&) {
        SendMessageA(window.Handle(), WM_APP, 0, 0);
        bOver = true;
    });
    Raise("A");
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0)
        DispatchMessageA(&message);
    EXPECT_EQ(subscriber, nullptr);
}

TEST(VkEvtSub, EverythingIsAllowedWithinACall) {
    CNotes notes;
    std::unique_ptr<CSubscriber> selfDeleting, victim, born;
    CSubscriber* pLeaving = nullptr;
    CSubscriber leaving([&](const VKEvent& event) {
        notes.Add("leaving " + std::string(event.pszReaderName));
        EXPECT_EQ(pLeaving->UnSubscribe(), VKEVTSUB_OK);
        EXPECT_EQ(pLeaving->UnSubscribe(), VKEVTSUB_NOT_SUBSCRIBED);
        EXPECT_EQ(VKWaitForIdle(0), VKEVTSUB_INVALID);
    });
    pLeaving = &leaving;
    selfDeleting = std::make_unique<CSubscriber>([&](const VKEvent& event) {
        notes.Add("deletes itself " + std::string(event.pszReaderName));
        victim.reset();
        born = std::make_unique<CSubscriber>(
            [&](const VKEvent& later) { notes.Add("born " + std::string(later.pszReaderName)); });
        Raise("B");
        selfDeleting.reset();
    });
    victim = std::make_unique<CSubscriber>([&](const VKEvent&) { notes.Add("victim"); });
    Raise("A");
    WaitForIdle();
    EXPECT_EQ(notes.All(), (Texts{"leaving A", "deletes itself A", "born B"}));
}

TEST(VkEvtSub, ExceptionsStayInside) {
    CNotes notes;
    mvp::test::LogRecorder log;
    const CSubscriber throwing([](const VKEvent& event) {
        if (std::string(event.pszReaderName) == "A")
            throw std::runtime_error("A");
        throw 5;
    });
    const CSubscriber next([&](const VKEvent& event) { notes.Add(event.pszReaderName); });
    Raise("A");
    Raise("B");
    WaitForIdle();
    EXPECT_EQ(notes.All(), (Texts{"A", "B"}));
    EXPECT_EQ(log.Texts(1), Texts(2, "VKDelegateSubscriber::HandleEvent: exception"));
}

TEST(VkEvtSub, RefusesWhatItCannotTake) {
    CNotes notes;
    CSubscriber subscriber([&](const VKEvent& event) { notes.Add(event.pszReaderName); });
    EXPECT_EQ(subscriber.Subscribe(VKEVENT_CARD_REMOVED), VKEVTSUB_SUBSCRIBED);
    EXPECT_EQ(subscriber.UnSubscribe(), VKEVTSUB_OK);
    EXPECT_EQ(subscriber.UnSubscribe(), VKEVTSUB_NOT_SUBSCRIBED);
    EXPECT_EQ(subscriber.Subscribe(0), VKEVTSUB_INVALID);
    EXPECT_EQ(subscriber.Subscribe(-1), VKEVTSUB_INVALID);
    EXPECT_EQ(VKRaiseEvent(0, "A"), VKEVTSUB_INVALID);
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, "nobody subscribes"), VKEVTSUB_OK);

    EXPECT_EQ(subscriber.Subscribe(VKEVENT_CARD_REMOVED), VKEVTSUB_OK);
    const std::string strLongest(1023, 'r');
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, (strLongest + 'r').c_str()), VKEVTSUB_INVALID);
    Raise(strLongest);
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, nullptr), VKEVTSUB_OK);
    WaitForIdle();
    EXPECT_EQ(notes.All(), (Texts{strLongest, ""}));
}

TEST(VkEvtSub, BoundsTheEventsThatWait) {
    std::atomic<int> nCalls{0};
    const CGate running, go;
    const CSubscriber subscriber([&](const VKEvent&) {
        ++nCalls;
        running.Open();
        go.Wait();
    });
    Raise("first");
    ASSERT_TRUE(running.Wait());
    for (int i = 0; i < 1024; ++i)
        Raise("waits");
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, "one too many"), VKEVTSUB_NO_RESOURCES);
    EXPECT_EQ(VKWaitForIdle(10), VKEVTSUB_TIMEOUT);
    go.Open();
    WaitForIdle();
    EXPECT_EQ(nCalls, 1025);
}

// A subscriber that notices when it is called after its end.
class CMortal : public VKDelegateSubscriber {
public:
    CMortal(unsigned nSeed, HWND hWnd) : m_random(nSeed), m_hWnd(hWnd) {
        Subscribe(VKEVENT_CARD_REMOVED);
    }
    ~CMortal() override {
        UnSubscribe();
        m_nAlive = 0;
    }
    void HandleEvent(const VKEvent&) override {
        if (m_nAlive != kAlive)
            ++s_nCallsOfDead;
        ++s_nCalls;
        switch (m_random() % 8) {
            case 0:
                UnSubscribe();
                break;
            case 1:
                SendMessageA(m_hWnd, WM_APP, 0, 0);
                break;
            case 2:
                Sleep(0);
                break;
            default:
                break;
        }
        if (m_nAlive != kAlive)
            ++s_nCallsOfDead;
    }

    static inline std::atomic<int> s_nCalls{0};
    static inline std::atomic<int> s_nCallsOfDead{0};

private:
    static constexpr unsigned kAlive = 0xA11FE;
    std::mt19937 m_random;
    HWND m_hWnd;
    volatile unsigned m_nAlive = kAlive;
};

void LiveAndDie(unsigned nSeed, HWND hWnd, int nSteps, const std::function<void()>& between) {
    std::mt19937 random(nSeed);
    std::vector<std::unique_ptr<CMortal>> mortals(6);
    for (int i = 0; i < nSteps; ++i) {
        auto& place = mortals[random() % mortals.size()];
        switch (random() % 3) {
            case 0:
                place = std::make_unique<CMortal>(random(), hWnd);
                break;
            case 1:
                place.reset();
                break;
            default:
                VKRaiseEvent(VKEVENT_CARD_REMOVED, "A");
        }
        between();
    }
}

TEST(VkEvtSub, SurvivesARaceOfDeletionsAndEvents) {
    const unsigned nSeed = 4711;
    const CTestWindow window([](UINT) { return LRESULT{0}; });
    std::atomic<int> nRunning{3};
    std::vector<std::thread> threads;
    for (unsigned i = 1; i <= 3; ++i)
        threads.emplace_back([&, i] {
            LiveAndDie(nSeed + i, window.Handle(), 3000, [] {});
            --nRunning;
        });
    const auto serve = [] {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
    };
    LiveAndDie(nSeed, window.Handle(), 3000, serve);
    EXPECT_TRUE(mvp::test::WaitFor(std::chrono::seconds(100), [&] {
        serve();
        return nRunning == 0;
    }));
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(CMortal::s_nCallsOfDead, 0) << "seed " << nSeed;
    EXPECT_GT(CMortal::s_nCalls, 1000);
}

TEST(VkEvtSub, EndsItsThreadsAndKeepsNothing) {
    const auto live = [](int nCycles) {
        for (int i = 0; i < nCycles; ++i) {
            const CSubscriber subscriber([](const VKEvent&) {});
            Raise("A");
        }
    };
    // Those that are ending still count.
    const auto waitForTheEnd = [] {
        EXPECT_TRUE(mvp::test::WaitFor(std::chrono::seconds(20), [] {
            return mvp::test::ResourceCounts::Now().threads <= g_nThreadsAtStart;
        }));
    };
    live(20);
    waitForTheEnd();
    const auto before = mvp::test::ResourceCounts::Now();
    live(1000);
    waitForTheEnd();
    // How many threads were ending at a time varies, and with it what the system keeps of them.
    mvp::test::GrowthAllowance allowance;
    allowance.privateBytes = 4 << 20;
    mvp::test::ExpectNoGrowth(before, mvp::test::ResourceCounts::Now(), allowance);
}

}  // namespace
