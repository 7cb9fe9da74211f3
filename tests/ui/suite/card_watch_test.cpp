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
#include "suite/vkevtsub/pcsc_service.h"
#include "support/waiting.h"

namespace mvp {
namespace {

using test::WaitFor;
using Names = std::vector<std::string>;

constexpr std::chrono::seconds kDeadline{20};
constexpr DWORD kEmpty = SCARD_STATE_EMPTY;
constexpr DWORD kCard = SCARD_STATE_PRESENT;
constexpr DWORD kMove = 0x10000;  // one movement more on the counter

class CardWatch : public testing::Test {
protected:
    void Start() {
        m_nConnectsBefore = FakeConnects();
        m_watch = CCardWatch::Start(
            [this](const CCardWatch&, const std::string& strReader) {
                const std::lock_guard lock(m_lock);
                m_removed.push_back(strReader);
            },
            "fake_winscard.dll");
        ASSERT_TRUE(m_watch);
    }
    ~CardWatch() override {
        if (m_watch)
            ExpectEnd();
        EXPECT_EQ(FakeContexts(), 0);
        FakeRemoveReader("A");
        FakeRemoveReader("B");
        FakeSetUp(TRUE);
    }

    // What was reported until the watch knew how things are now.
    Names Removed() {
        EXPECT_TRUE(WaitFor(kDeadline, [] { return FakeIsSettled() != FALSE; }));
        const std::lock_guard lock(m_lock);
        return m_removed;
    }
    // Makes a change; what has been reported when the watch knows of it.
    Names After(const char* pszReader, DWORD nState) {
        FakeSetReader(pszReader, nState);
        return Removed();
    }
    // Waits until the watch has tried to connect.
    void LetItTry() const {
        EXPECT_TRUE(WaitFor(kDeadline, [this] { return FakeConnects() > m_nConnectsBefore; }));
    }
    // The watch's thread holds it as well, and lets it go when it ends.
    void ExpectEnd() {
        m_watch->End();
        EXPECT_TRUE(WaitFor(kDeadline, [&] { return m_watch.use_count() == 1; }));
    }

    int m_nConnectsBefore = 0;
    std::mutex m_lock;
    Names m_removed;
    std::shared_ptr<CCardWatch> m_watch;
};

TEST_F(CardWatch, ReportsCardsAndReadersThatLeave) {
    FakeSetReader("A", kCard + kMove);
    FakeSetReader("B", kEmpty);
    Start();
    EXPECT_EQ(Removed(), Names{});
    EXPECT_EQ(After("A", kEmpty + 2 * kMove), (Names{"A"}));
    EXPECT_EQ(After("B", kCard + kMove), (Names{"A"}));
    EXPECT_EQ(After("B", kCard + 3 * kMove), (Names{"A", "B"}));
    FakeRemoveReader("B");
    EXPECT_EQ(Removed(), (Names{"A", "B", "B"}));
    FakeRemoveReader("A");
    EXPECT_EQ(Removed(), (Names{"A", "B", "B"}));
    EXPECT_EQ(After("A", kCard), (Names{"A", "B", "B"}));
    EXPECT_EQ(After("A", kEmpty + kMove), (Names{"A", "B", "B", "A"}));
}

TEST_F(CardWatch, OutlivesTheService) {
    FakeSetUp(FALSE);
    FakeSetReader("A", kCard);
    Start();
    LetItTry();
    FakeSetUp(TRUE);
    EXPECT_EQ(Removed(), Names{});
    FakeSetUp(FALSE);
    EXPECT_TRUE(WaitFor(kDeadline, [] { return FakeContexts() == 0; }));
    FakeSetReader("A", kEmpty);
    FakeSetUp(TRUE);
    EXPECT_EQ(Removed(), (Names{"A"}));
}

TEST_F(CardWatch, EndsWhereverItIs) {
    for (const BOOL bUp : {TRUE, FALSE}) {
        FakeSetUp(bUp);
        Start();
        ExpectEnd();  // in the beginning
        Start();
        LetItTry();
        ExpectEnd();  // between two tries, or on its way to the wait
    }
    // In a wait that would last.
    FakeSetUp(TRUE);
    FakeSetPatient(TRUE);
    FakeSetReader("A", kEmpty);
    Start();
    Removed();
    ExpectEnd();
    FakeSetPatient(FALSE);
}

TEST(PcscService, CannotConnectWithoutTheModuleOrItsFunctions) {
    for (const char* pszModule : {"no such module.dll", "kernel32.dll"})
        EXPECT_FALSE(CPcscService(pszModule).Connect()) << pszModule;
}

}  // namespace
}  // namespace mvp
