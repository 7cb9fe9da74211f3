// The watch over the readers, with a smart-card service of the test's own behind the real
// functions: this program exports what PcscService uses, and is the module that it loads.
#include "suite/vkevtsub/card_watch.h"

#include <windows.h>
#include <winscard.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "suite/vkevtsub/pcsc_service.h"
#include "support/waiting.h"

namespace {

struct World {
    unsigned nChange = 1;      // the number of the last change
    unsigned nSeenChange = 0;  // the last one that a wait has taken note of
    bool bUp = true;
    bool bPatient = false;                 // a wait goes on when its time is over
    std::map<std::string, DWORD> readers;  // name and state
    std::set<SCARDCONTEXT> contexts;
    std::set<SCARDCONTEXT> cancelled;
    SCARDCONTEXT nLast = 0;
    int nConnects = 0;
};
World g_world;
std::mutex g_lock;

World Now() {
    const std::lock_guard lock(g_lock);
    return g_world;
}
template <class Function>
void Change(Function change) {
    const std::lock_guard lock(g_lock);
    change(g_world);
    ++g_world.nChange;
}
void SetReader(const std::string& strReader, DWORD nState) {
    Change([&](World& world) { world.readers[strReader] = nState; });
}
void RemoveReader(const std::string& strReader) {
    Change([&](World& world) { world.readers.erase(strReader); });
}
void SetService(bool bUp) {
    Change([=](World& world) { world.bUp = bUp; });
}

constexpr char kComingAndGoing[] = R"(\\?PnP?\Notification)";

// What a wait finds now; SCARD_E_TIMEOUT when nothing differs from what is known.
LONG Look(LPSCARD_READERSTATEA pStates, DWORD nStates) {
    if (!g_world.bUp) {
        return SCARD_E_SERVICE_STOPPED;
    }
    bool change = false;
    for (DWORD i = 0; i < nStates; ++i) {
        SCARD_READERSTATEA& state = pStates[i];
        const auto reader = g_world.readers.find(state.szReader);
        const bool readers = std::strcmp(state.szReader, kComingAndGoing) == 0;
        if (!readers && reader == g_world.readers.end()) {
            return SCARD_E_UNKNOWN_READER;
        }
        state.dwEventState =
            readers ? static_cast<DWORD>(g_world.readers.size()) << 16 : reader->second;
        if (state.dwEventState != (state.dwCurrentState & ~DWORD{SCARD_STATE_CHANGED})) {
            state.dwEventState |= SCARD_STATE_CHANGED;
            change = true;
        }
    }
    return change ? SCARD_S_SUCCESS : SCARD_E_TIMEOUT;
}

}  // namespace

extern "C" {

__declspec(dllexport) LONG WINAPI
    SCardEstablishContext(DWORD, LPCVOID, LPCVOID, LPSCARDCONTEXT phContext) {
    const std::lock_guard lock(g_lock);
    ++g_world.nConnects;
    if (!g_world.bUp) {
        return SCARD_E_NO_SERVICE;
    }
    *phContext = ++g_world.nLast;
    g_world.contexts.insert(*phContext);
    return SCARD_S_SUCCESS;
}

__declspec(dllexport) LONG WINAPI SCardReleaseContext(SCARDCONTEXT hContext) {
    const std::lock_guard lock(g_lock);
    return g_world.contexts.erase(hContext) > 0 ? SCARD_S_SUCCESS : SCARD_E_INVALID_HANDLE;
}

__declspec(dllexport) LONG WINAPI
    SCardListReadersA(SCARDCONTEXT, LPCSTR, LPSTR mszReaders, LPDWORD pcchReaders) {
    const std::lock_guard lock(g_lock);
    if (!g_world.bUp) {
        return SCARD_E_SERVICE_STOPPED;
    }
    if (g_world.readers.empty()) {
        return SCARD_E_NO_READERS_AVAILABLE;
    }
    std::string list;
    for (const auto& [name, state] : g_world.readers) {
        list += name + '\0';
    }
    list += '\0';
    const DWORD room = std::exchange(*pcchReaders, static_cast<DWORD>(list.size()));
    if (mszReaders != nullptr && room < list.size()) {
        return SCARD_E_INSUFFICIENT_BUFFER;
    }
    std::copy_n(list.begin(), mszReaders != nullptr ? list.size() : 0, mszReaders);
    return SCARD_S_SUCCESS;
}

__declspec(dllexport) LONG WINAPI
    SCardGetStatusChangeA(SCARDCONTEXT hContext, DWORD dwTimeout,
                          LPSCARD_READERSTATEA rgReaderStates, DWORD cReaders) {
    for (const ULONGLONG end = GetTickCount64() + dwTimeout;; Sleep(1)) {
        const std::lock_guard lock(g_lock);
        if (g_world.cancelled.erase(hContext) > 0) {
            return SCARD_E_CANCELLED;
        }
        const LONG result = Look(rgReaderStates, cReaders);
        if (result != SCARD_E_TIMEOUT || (GetTickCount64() >= end && !g_world.bPatient)) {
            return result;
        }
        g_world.nSeenChange = g_world.nChange;
    }
}

__declspec(dllexport) LONG WINAPI SCardCancel(SCARDCONTEXT hContext) {
    const std::lock_guard lock(g_lock);
    g_world.cancelled.insert(hContext);
    return SCARD_S_SUCCESS;
}

}  // extern "C"

namespace mvp {
namespace {

using test::WaitFor;

constexpr std::chrono::seconds kDeadline{20};
constexpr DWORD kEmpty = SCARD_STATE_EMPTY;
constexpr DWORD kCard = SCARD_STATE_PRESENT;
constexpr DWORD kMove = 0x10000;  // one movement more on the counter

class CardWatchTest : public testing::Test {
protected:
    void Start() {
        m_nConnectsBefore = Now().nConnects;
        m_watch = CardWatch::Start(
            [this](const CardWatch&, const std::string& strReader) {
                const std::lock_guard lock(m_lock);
                m_removed += strReader;
            },
            "card_watch_test.exe");
        ASSERT_TRUE(m_watch);
    }
    ~CardWatchTest() override {
        if (m_watch) {
            ExpectEnd();
        }
        EXPECT_TRUE(Now().contexts.empty());
        Change([](World& world) {
            world.readers.clear();
            world.bUp = true;
            world.bPatient = false;
        });
    }

    // What was reported until the watch knew how things are now.
    std::string Removed() {
        EXPECT_TRUE(WaitFor(kDeadline, [] {
            const World now = Now();
            return now.nSeenChange == now.nChange;
        }));
        const std::lock_guard lock(m_lock);
        return m_removed;
    }
    // Makes a change; what has been reported when the watch knows of it.
    std::string After(const char* pszReader, DWORD nState) {
        SetReader(pszReader, nState);
        return Removed();
    }
    // Waits until the watch has tried to connect.
    void LetItTry() const {
        EXPECT_TRUE(WaitFor(kDeadline, [this] { return Now().nConnects > m_nConnectsBefore; }));
    }
    // The watch's thread holds it as well, and lets it go when it ends.
    void ExpectEnd() {
        m_watch->End();
        EXPECT_TRUE(WaitFor(kDeadline, [&] { return m_watch.use_count() == 1; }));
    }

    int m_nConnectsBefore = 0;
    std::mutex m_lock;
    std::string m_removed;
    std::shared_ptr<CardWatch> m_watch;
};

TEST_F(CardWatchTest, ReportsCardsAndReadersThatLeave) {
    SetReader("A", kCard + kMove);
    SetReader("B", kEmpty);
    Start();
    EXPECT_EQ(Removed(), "");
    EXPECT_EQ(After("A", kEmpty + 2 * kMove), "A");
    EXPECT_EQ(After("B", kCard + kMove), "A");
    EXPECT_EQ(After("B", kCard + 3 * kMove), "AB");
    RemoveReader("B");
    EXPECT_EQ(Removed(), "ABB");
    RemoveReader("A");
    EXPECT_EQ(Removed(), "ABB");
    EXPECT_EQ(After("A", kCard), "ABB");
    EXPECT_EQ(After("A", kEmpty + kMove), "ABBA");
}

TEST_F(CardWatchTest, OutlivesTheService) {
    SetService(false);
    SetReader("A", kCard);
    Start();
    LetItTry();
    SetService(true);
    EXPECT_EQ(Removed(), "");
    SetService(false);
    EXPECT_TRUE(WaitFor(kDeadline, [] { return Now().contexts.empty(); }));
    SetReader("A", kEmpty);
    SetService(true);
    EXPECT_EQ(Removed(), "A");
}

TEST_F(CardWatchTest, EndsWhereverItIs) {
    for (const bool up : {true, false}) {
        SetService(up);
        Start();
        ExpectEnd();  // in the beginning
        Start();
        LetItTry();
        ExpectEnd();  // between two tries, or on its way to the wait
    }
    // In a wait that would last.
    Change([](World& world) { world.bUp = world.bPatient = true; });
    SetReader("A", kEmpty);
    Start();
    Removed();
    ExpectEnd();
}

TEST(PcscService, CannotConnectWithoutTheModuleOrItsFunctions) {
    for (const char* moduleName : {"no such module.dll", "kernel32.dll"}) {
        EXPECT_FALSE(PcscService(moduleName).Connect()) << moduleName;
    }
}

}  // namespace
}  // namespace mvp
