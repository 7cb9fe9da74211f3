#include "support/memory_scan.h"

#include <atomic>
#include <memory>
#include <thread>

#include <gtest/gtest.h>
#include <malloc.h>

#include "child_process.h"
#include "platform/handle.h"

namespace mvp::test {
namespace {

void Wipe(void* pTarget) {
    SecureZeroMemory(pTarget, 2 * Secret::kLength);
}

char g_module[2 * Secret::kLength];

// The one hit, or a failure.
MemoryHit OnlyHit(const Secret& secret) {
    const std::vector<MemoryHit> hits = ScanOwnMemory(secret);
    EXPECT_EQ(hits.size(), 1u) << testing::PrintToString(hits);
    EXPECT_TRUE(hits.empty() || hits.front().nCount == Secret::kLength) << hits.front();
    return hits.empty() ? MemoryHit{} : hits.front();
}

struct HeapFree {
    void operator()(void* p) const { ::HeapFree(GetProcessHeap(), 0, p); }
};
struct RuntimeFree {
    void operator()(void* p) const { std::free(p); }
};
struct PageFree {
    void operator()(void* p) const { VirtualFree(p, 0, MEM_RELEASE); }
};

TEST(MemoryScan, FindsNothingWhereNothingIs) {
    const Secret secret;
    SecretWatch({&secret}).ExpectNothingLeft("never used");
}

TEST(MemoryScan, FindsAPlantedTextAndTellsWhoseMemoryItIs) {
    const Secret secret;
    const std::unique_ptr<void, RuntimeFree> small(std::malloc(100));
    const std::unique_ptr<void, RuntimeFree> large(std::malloc(3 << 20));
    const std::unique_ptr<void, HeapFree> process(HeapAlloc(GetProcessHeap(), 0, 100));
    const std::unique_ptr<void, PageFree> pages(
        VirtualAlloc(nullptr, 1 << 20, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    char stack[2 * Secret::kLength];
    const struct {
        void* pPlace;
        const char* pszOwner;
    } places[] = {
        {small.get(), "in the C heap"},
        {static_cast<char*>(large.get()) + (2 << 20) + 3, "in the C heap"},
        {process.get(), "in the process heap"},
        {g_module, "in the data of memory_scan_test.exe"},
        {stack, "in the stack of thread "},
        // Over the border of two of the scan's pieces.
        {static_cast<char*>(pages.get()) + (1 << 18) - 5, "in other memory"},
        {static_cast<char*>(pages.get()) + (1 << 20) - 2 * Secret::kLength, "in other memory"},
    };
    for (const auto& place : places)
        for (const bool bWide : {false, true}) {
            secret.CopyTo(place.pPlace, bWide);
            const MemoryHit hit = OnlyHit(secret);
            EXPECT_EQ(hit.address, reinterpret_cast<ULONG_PTR>(place.pPlace));
            EXPECT_EQ(hit.bWide, bWide);
            EXPECT_NE(testing::PrintToString(hit).find(place.pszOwner), std::string::npos) << hit;
            Wipe(place.pPlace);
        }
}

TEST(MemoryScan, TellsAnotherThreadsStack) {
    const Secret secret;
    const KernelHandle planted(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    const KernelHandle done(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    DWORD dwThreadId = 0;
    std::thread thread([&] {
        char stack[2 * Secret::kLength];
        secret.CopyTo(stack);
        dwThreadId = GetCurrentThreadId();
        SetEvent(planted.get());
        WaitForSingleObject(done.get(), 30000);
        Wipe(stack);
    });
    WaitForSingleObject(planted.get(), 30000);
    EXPECT_EQ(OnlyHit(secret).strOwner, "thread " + std::to_string(dwThreadId));
    SetEvent(done.get());
    thread.join();
}

TEST(MemoryScan, SurvivesPagesThatVanish) {
    const Secret secret;
    std::atomic<bool> bStop = false;
    std::thread thread([&] {
        while (!bStop) {
            const std::unique_ptr<void, PageFree> pages(
                VirtualAlloc(nullptr, 1 << 20, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
            DWORD dwBefore = 0;
            VirtualProtect(pages.get(), 1 << 16, PAGE_NOACCESS, &dwBefore);
        }
    });
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(ScanOwnMemory(secret).empty());
    bStop = true;
    thread.join();
}

constexpr char kReady[] = "MvpMemoryScanReady";
constexpr char kDone[] = "MvpMemoryScanDone";

// Run by the next test, in a process of its own.
TEST(MemoryScan, DISABLED_HoldsAText) {
    Secret(0).CopyTo(g_module);
    const KernelHandle ready(OpenEventA(EVENT_MODIFY_STATE, FALSE, kReady));
    const KernelHandle done(OpenEventA(SYNCHRONIZE, FALSE, kDone));
    SetEvent(ready.get());
    WaitForSingleObject(done.get(), 30000);
}

TEST(MemoryScan, LooksIntoAnotherProcess) {
    const KernelHandle ready(CreateEventA(nullptr, TRUE, FALSE, kReady));
    const KernelHandle done(CreateEventA(nullptr, TRUE, FALSE, kDone));
    DisabledTest child("MemoryScan.DISABLED_HoldsAText");
    ASSERT_EQ(WaitForSingleObject(ready.get(), 30000), WAIT_OBJECT_0);
    const std::vector<MemoryHit> hits = ScanProcess(child.Process(), Secret(0));
    SetEvent(done.get());
    EXPECT_EQ(child.Wait().dwExitCode, 0u);
    ASSERT_EQ(hits.size(), 1u);
    EXPECT_EQ(hits.front().strOwner, "memory_scan_test.exe");
}

}  // namespace
}  // namespace mvp::test
