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

std::string FakeModule() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(GetModuleHandleA("fake_winscard.dll"), path, sizeof(path));
    return path;
}

class CardWatch : public testing::Test {
protected:
    void Start() {
        m_nConnectsBefore = FakeConnects();
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
            ExpectEnd();
        EXPECT_EQ(FakeContexts(), 0);
        for (const char* pszReader : {"A", "B"})
            FakeRemoveReader(pszReader);
        FakeSetUp(TRUE);
    }

    // Waits until the watch knows how things are now.
    void LetItLook() {
        EXPECT_TRUE(WaitFor(kDeadline, [] { return FakeIsSettled() != FALSE; }));
    }
    // What was reported by then.
    Names Removed() {
        LetItLook();
        const std::lock_guard lock(m_lock);
        return m_removed;
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
    LetItLook();
    FakeSetReader("A", kEmpty + 2 * kMove);
    EXPECT_EQ(Removed(), (Names{"A"}));
    FakeSetReader("B", kCard + kMove);
    LetItLook();
    FakeSetReader("B", kCard + 3 * kMove);
    EXPECT_EQ(Removed(), (Names{"A", "B"}));
    FakeRemoveReader("B");
    EXPECT_EQ(Removed(), (Names{"A", "B", "B"}));
    FakeRemoveReader("A");
    LetItLook();
    FakeSetReader("A", kCard);
    LetItLook();
    FakeSetReader("A", kEmpty + kMove);
    EXPECT_EQ(Removed(), (Names{"A", "B", "B", "A"}));
}

TEST_F(CardWatch, OutlivesTheService) {
    FakeSetUp(FALSE);
    FakeSetReader("A", kCard);
    Start();
    LetItTry();
    FakeSetUp(TRUE);
    LetItLook();
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
    LetItLook();
    ExpectEnd();
    FakeSetPatient(FALSE);
}

TEST(PcscService, CannotConnectWithoutTheModuleOrItsFunctions) {
    for (const char* pszModule : {"no such module.dll", "kernel32.dll"})
        EXPECT_FALSE(CPcscService(pszModule).Connect()) << pszModule;
}

}  // namespace
}  // namespace mvp
