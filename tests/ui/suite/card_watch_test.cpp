// The watch over the readers, with a smart-card service of the test's own behind the real
// functions.
#include "suite/vkevtsub/card_watch.h"

#include <windows.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_winscard.h"
#include "support/waiting.h"

namespace mvp {
namespace {

using test::WaitFor;

constexpr std::chrono::seconds kDeadline{20};
constexpr DWORD kEmpty = SCARD_STATE_EMPTY;
constexpr DWORD kCard = SCARD_STATE_PRESENT;
constexpr DWORD kMove = 0x10000;  // one movement more on the counter

std::string FakeModule() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(GetModuleHandleA("fake_winscard.dll"), path, sizeof(path));
    return path;
}

class CardWatch : public testing::Test {
protected:
    void Start() {
        m_watch = CCardWatch::Start(
            [this](const CCardWatch&, const std::string& strReader) {
                const std::lock_guard lock(m_lock);
                m_removed.push_back(strReader);
            },
            FakeModule());
        ASSERT_TRUE(m_watch);
    }
    ~CardWatch() override {
        if (m_watch)
            m_watch->End();
        // The watch's thread holds it as well, and lets it go when it ends.
        EXPECT_TRUE(WaitFor(kDeadline, [&] { return !m_watch || m_watch.use_count() == 1; }));
        EXPECT_EQ(FakeContexts(), 0);
        for (const char* pszReader : {"A", "B"})
            FakeRemoveReader(pszReader);
        FakeSetUp(TRUE);
    }

    // Whether these, and no others, were reported in time.
    testing::AssertionResult Removed(const std::vector<std::string>& expected) {
        const bool bAll = WaitFor(kDeadline, [&] {
            const std::lock_guard lock(m_lock);
            return m_removed.size() >= expected.size();
        });
        Sleep(50);  // for one too many
        const std::lock_guard lock(m_lock);
        if (bAll && m_removed == expected)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << testing::PrintToString(m_removed);
    }
    // Waits until the watch knows how things are now.
    void LetItLook() {
        EXPECT_TRUE(WaitFor(kDeadline, [] { return FakeIsSettled() != FALSE; }));
    }

    std::mutex m_lock;
    std::vector<std::string> m_removed;
    std::shared_ptr<CCardWatch> m_watch;
};

TEST_F(CardWatch, ReportsCardsAndReadersThatLeave) {
    FakeSetReader("A", kCard + kMove);
    FakeSetReader("B", kEmpty);
    Start();
    LetItLook();
    FakeSetReader("A", kEmpty + 2 * kMove);
    EXPECT_TRUE(Removed({"A"}));
    FakeSetReader("B", kCard + kMove);
    LetItLook();
    FakeSetReader("B", kCard + 3 * kMove);
    EXPECT_TRUE(Removed({"A", "B"}));
    FakeRemoveReader("B");
    EXPECT_TRUE(Removed({"A", "B", "B"}));
    FakeRemoveReader("A");
    LetItLook();
    FakeSetReader("A", kCard);
    LetItLook();
    FakeSetReader("A", kEmpty + kMove);
    EXPECT_TRUE(Removed({"A", "B", "B", "A"}));
}

TEST_F(CardWatch, OutlivesTheService) {
    FakeSetUp(FALSE);
    FakeSetReader("A", kCard);
    Start();
    Sleep(20);
    FakeSetUp(TRUE);
    LetItLook();
    FakeSetUp(FALSE);
    EXPECT_TRUE(WaitFor(kDeadline, [] { return FakeContexts() == 0; }));
    FakeSetReader("A", kEmpty);
    FakeSetUp(TRUE);
    EXPECT_TRUE(Removed({"A"}));
}

TEST_F(CardWatch, EndsSoonWhereverItIs) {
    for (const BOOL bUp : {TRUE, FALSE}) {
        for (const DWORD nDelay : {0UL, 1UL, 5UL, 50UL}) {
            FakeSetUp(bUp);
            Start();
            Sleep(nDelay);
            m_watch->End();
            EXPECT_TRUE(WaitFor(kDeadline, [&] { return m_watch.use_count() == 1; }));
        }
    }
}

TEST_F(CardWatch, EndsAWaitThatWouldLast) {
    FakeSetPatient(TRUE);
    Start();
    LetItLook();
    m_watch->End();
    EXPECT_TRUE(WaitFor(kDeadline, [&] { return m_watch.use_count() == 1; }));
    FakeSetPatient(FALSE);
}

TEST_F(CardWatch, IsSilentWithoutTheModule) {
    m_watch = CCardWatch::Start([](const CCardWatch&, const std::string&) { ADD_FAILURE(); },
                                "no such module.dll");
    ASSERT_TRUE(m_watch);
    Sleep(100);
}

}  // namespace
}  // namespace mvp
