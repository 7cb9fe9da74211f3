// The two subscribers to card removal, on real events of the suite's event module.
#include "services/card_removed_subscriber.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/failing_heap.h"
#include "support/waiting.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr UINT kRemoved = WM_APP + 7;

void Remove(const char* pszReader) {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, pszReader), VKEVTSUB_OK);
    EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
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

struct Popup final : CHideable {
    explicit Popup(std::function<void()> hide) : onHide(std::move(hide)) {}
    void Hide() override { onHide(); }
    const std::function<void()> onHide;
};

using CardRemovedOfAPopup = LibraryTest;
using CardRemovedOfAWindow = LibraryTest;

TEST_F(CardRemovedOfAPopup, HidesItOnTheEventThreadWhateverTheReader) {
    m_log.Clear();
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
    const std::string handled =
        "CCardRemoved::HandleEvent{2 CCardRemoved::HandleEvent: m_pPopupAlert->Hide ; ";
    EXPECT_EQ(LogShape(), "CCardRemoved::CCardRemoved() - contructor{} " + handled + "} " +
                              handled + "1 CCardRemoved::HandleEvent: exception; } " + handled +
                              "} CCardRemoved::~CCardRemoved() - destructor{} ");

    const CCardRemoved subscriber(nullptr);
    m_log.Clear();
    Remove("Reader A");
    EXPECT_EQ(LogShape(),
              "CCardRemoved::HandleEvent{1 CCardRemoved::HandleEvent: m_pPopupAlert = "
              "NULL; } ");
}

TEST_F(CardRemovedOfAPopup, UnsubscribesFirst) {
    const auto waitFor = [&](const char* pszEntry) {
        EXPECT_TRUE(WaitFor(std::chrono::seconds(10), [&] { return m_log.Contains(8, pszEntry); }));
    };
    // Goes on only once the destructor waits for it.
    Popup popup([&] { waitFor("CCardRemoved::~CCardRemoved() - destructor"); });
    auto subscriber = std::make_unique<CCardRemoved>(&popup);
    m_log.Clear();
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, ""), VKEVTSUB_OK);
    waitFor("CCardRemoved::HandleEvent");
    subscriber.reset();
    EXPECT_EQ(m_log.Texts(16),
              (std::vector<std::string>{"CCardRemoved::HandleEvent",
                                        "CCardRemoved::~CCardRemoved() - destructor"}));
}

TEST_F(CardRemovedOfAWindow, IsPostedWhileTheWindowIsThere) {
    auto window = std::make_unique<HostWindow>();
    VKDelegateSubscriberCardRemoved subscriber(window.get(), kRemoved, "reader a");
    Remove("READER A");
    EXPECT_EQ(TakePosted(), 1);
    Remove("Reader B");
    EXPECT_EQ(TakePosted(), 0);
    // The object goes, and its window with it; what stood there may be anything.
    CWnd* const storage = window.get();
    window->DestroyWindow();
    window.release()->~HostWindow();
    memset(static_cast<void*>(storage), 0x5A, sizeof(HostWindow));
    m_log.Clear();
    Remove("Reader A");
    EXPECT_EQ(TakePosted(), 0);
    EXPECT_EQ(LogShape(), "VKDelegateSubscriberCardRemoved::HandleEvent{} ");
    ::operator delete(storage);
}

TEST_F(CardRemovedOfAWindow, IsNotPostedWithoutATargetOrToAWindowOfAnotherThread) {
    // As when the target's thread has ended and its handle serves another thread's window.
    HostWindow window;
    std::unique_ptr<VKDelegateSubscriberCardRemoved> subscriber;
    std::thread([&] {
        subscriber = std::make_unique<VKDelegateSubscriberCardRemoved>(&window, kRemoved, "");
    }).join();
    const VKDelegateSubscriberCardRemoved targetless(nullptr, kRemoved, "");
    Remove("Reader A");
    EXPECT_EQ(TakePosted(), 0);
}

TEST_F(CardRemovedOfAWindow, IsNotHeardOfWhenTheSubscriptionFails) {
    HostWindow window;
    FailingHeap heap("vkevtsub.dll");
    heap.FailAt(0);
    const VKDelegateSubscriberCardRemoved subscriber(&window, kRemoved, "");
    EXPECT_TRUE(heap.Stop());
    EXPECT_TRUE(m_log.Contains(1, "Subscribe failed (4)")) << m_log.Dump();
    Remove("Reader A");
    EXPECT_EQ(TakePosted(), 0);
}

}  // namespace
}  // namespace mvp::test
