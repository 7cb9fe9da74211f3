// The two subscribers to card removal, on real events of the suite's event module.
#include "services/card_removed_subscriber.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>

#include "platform/handle.h"
#include "support/failing_heap.h"
#include "support/log_recorder.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

using Texts = std::vector<std::string>;

constexpr UINT kRemoved = WM_APP + 7;
constexpr unsigned kIdleTimeout = 10'000;

void Remove(const char* pszReader) {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, pszReader), VKEVTSUB_OK);
    EXPECT_EQ(VKWaitForIdle(kIdleTimeout), VKEVTSUB_OK);
}

// How many removals have been posted to windows of this thread.
int TakePosted() {
    int count = 0;
    MSG message;
    while (PeekMessageA(&message, nullptr, kRemoved, kRemoved, PM_REMOVE)) {
        count += message.wParam == 1 && message.lParam == 0 ? 1 : 1000;
    }
    return count;
}

Texts Lines(const LogRecorder& log) {
    Texts lines;
    for (const RecordedLine& line : log.Lines()) {
        lines.push_back(std::to_string(line.nLevel) + " " + line.strText);
    }
    return lines;
}

class Popup final : public CHideable {
public:
    explicit Popup(std::function<void()> onHide) : m_onHide(std::move(onHide)) {}
    void Hide() override { m_onHide(); }

private:
    std::function<void()> m_onHide;
};

class Window : public CWnd {
public:
    Window() { CreateEx(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr); }
};

TEST(CardRemovedOfAPopup, HidesItOnTheEventThreadWhateverTheReader) {
    LogRecorder log;
    std::vector<DWORD> threads;
    bool throws = false;
    Popup popup([&] {
        threads.push_back(GetCurrentThreadId());
        if (throws) {
            throw std::runtime_error("a popup's fault");
        }
    });
    {
        const CCardRemoved subscriber(&popup);
        Remove("Reader A");
        throws = true;
        Remove(nullptr);
        throws = false;
        Remove("");
    }
    Remove("Reader A");
    ASSERT_EQ(threads.size(), 3U) << "none after the end";
    EXPECT_NE(threads[0], GetCurrentThreadId());
    Texts expected = {"8 CCardRemoved::CCardRemoved() - contructor",
                      "16 CCardRemoved::CCardRemoved() - contructor"};
    for (const bool threw : {false, true, false}) {
        expected.insert(expected.end(), {"8 CCardRemoved::HandleEvent",
                                         "2 CCardRemoved::HandleEvent: m_pPopupAlert->Hide "});
        if (threw) {
            expected.emplace_back("1 CCardRemoved::HandleEvent: exception");
        }
        expected.emplace_back("16 CCardRemoved::HandleEvent");
    }
    expected.insert(expected.end(), {"8 CCardRemoved::~CCardRemoved() - destructor",
                                     "16 CCardRemoved::~CCardRemoved() - destructor"});
    EXPECT_EQ(Lines(log), expected);

    const CCardRemoved subscriber(nullptr);
    log.Clear();
    Remove("Reader A");
    EXPECT_EQ(Lines(log), (Texts{"8 CCardRemoved::HandleEvent",
                                 "1 CCardRemoved::HandleEvent: m_pPopupAlert = NULL",
                                 "16 CCardRemoved::HandleEvent"}));
}

TEST(CardRemovedOfAPopup, UnsubscribesFirst) {
    LogRecorder log;
    const auto waitFor = [&](const char* pszEntry) {
        EXPECT_TRUE(WaitFor(std::chrono::seconds(10), [&] { return log.Contains(8, pszEntry); }));
    };
    // Goes on only once the destructor waits for it.
    Popup popup([&] { waitFor("CCardRemoved::~CCardRemoved() - destructor"); });
    auto subscriber = std::make_unique<CCardRemoved>(&popup);
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, ""), VKEVTSUB_OK);
    waitFor("CCardRemoved::HandleEvent");
    subscriber.reset();
    EXPECT_EQ(log.Texts(16),
              (Texts{"CCardRemoved::CCardRemoved() - contructor", "CCardRemoved::HandleEvent",
                     "CCardRemoved::~CCardRemoved() - destructor"}));
}

TEST(CardRemovedOfAWindow, IsPostedWhileTheWindowIsThere) {
    LogRecorder log;
    auto window = std::make_unique<Window>();
    VKDelegateSubscriberCardRemoved subscriber(window.get(), kRemoved, "reader a");
    Remove("READER A");
    EXPECT_EQ(TakePosted(), 1);
    Remove("Reader B");
    EXPECT_EQ(TakePosted(), 0);
    // The object goes, and its window with it; what stood there may be anything.
    CWnd* const storage = window.get();
    window->DestroyWindow();
    window.release()->~Window();
    memset(static_cast<void*>(storage), 0x5A, sizeof(Window));
    log.Clear();
    Remove("Reader A");
    EXPECT_EQ(TakePosted(), 0);
    const char kHandled[] = "VKDelegateSubscriberCardRemoved::HandleEvent";
    EXPECT_EQ(Lines(log), (Texts{std::string("8 ") + kHandled, std::string("16 ") + kHandled}));
    ::operator delete(storage);
}

TEST(CardRemovedOfAWindow, IsNotPostedWithoutATargetOrToAWindowOfAnotherThread) {
    // As when the target's thread has ended and its handle serves another thread's window.
    Window window;
    std::unique_ptr<VKDelegateSubscriberCardRemoved> subscriber;
    std::thread([&] {
        subscriber = std::make_unique<VKDelegateSubscriberCardRemoved>(&window, kRemoved, "");
    }).join();
    const VKDelegateSubscriberCardRemoved targetless(nullptr, kRemoved, "");
    Remove("Reader A");
    EXPECT_EQ(TakePosted(), 0);
}

TEST(CardRemovedOfAWindow, IsNotHeardOfWhenTheSubscriptionFails) {
    LogRecorder log;
    Window window;
    FailingHeap heap("vkevtsub.dll");
    heap.FailAt(0);
    const VKDelegateSubscriberCardRemoved subscriber(&window, kRemoved, "");
    EXPECT_TRUE(heap.Stop());
    EXPECT_TRUE(log.Contains(1, "Subscribe failed (4)")) << log.Dump();
    Remove("Reader A");
    EXPECT_EQ(TakePosted(), 0);
}

}  // namespace
}  // namespace mvp::test
