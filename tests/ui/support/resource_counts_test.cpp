#include "support/resource_counts.h"

#include <windows.h>

#include <cstdlib>
#include <thread>
#include <vector>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "platform/handle.h"

namespace mvp::test {
namespace {

HWND NewWindow(HWND hParent) {
    return CreateWindowExA(0, "STATIC", "", 0, 0, 0, 9, 9, hParent, nullptr, nullptr, nullptr);
}

// Makes one of each kind, counts it, and gives it back.
void CountOneOfEachKind() {
    ResourceCounts before = ResourceCounts::Now();
    const HWND windows[] = {NewWindow(nullptr), NewWindow(HWND_MESSAGE)};
    EXPECT_EQ(ResourceCounts::Now().windows, before.windows + 2);
    const BYTE bits[32] = {};
    const Icon icon(CreateIcon(nullptr, 16, 16, 1, 1, bits, bits));
    EXPECT_EQ(ResourceCounts::Now().otherUserObjects, before.otherUserObjects + 1);
    before = ResourceCounts::Now();
    const Pen pen(CreatePen(PS_SOLID, 3, RGB(1, 2, 3)));
    EXPECT_EQ(ResourceCounts::Now().gdiObjects, before.gdiObjects + 1);
    before = ResourceCounts::Now();
    const KernelHandle event(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(ResourceCounts::Now().kernelHandles, before.kernelHandles + 1);
    std::thread thread([&] { WaitForSingleObject(event.get(), 10000); });
    EXPECT_EQ(ResourceCounts::Now().threads, before.threads + 1);
    SetEvent(event.get());
    thread.join();
    void* volatile block = std::malloc(50000);  // volatile: the compiler would do without it
    EXPECT_GE(ResourceCounts::Now().heapBytes, before.heapBytes + 50000);
    std::free(block);
    for (const HWND window : windows) {
        DestroyWindow(window);
    }
}

TEST(ResourceCounts, CountsOneOfEachKind) {
    // A thread's first windows bring objects of the system with them, and take them along when they
    // go; counting loads libraries; the first thread leaves objects of the runtime behind.
    const HWND windows[] = {NewWindow(nullptr), NewWindow(HWND_MESSAGE)};
    ResourceCounts::Now();
    ExpectRoundsKeepNothing(1, 1, [](int) { CountOneOfEachKind(); });
    for (const HWND window : windows) {
        DestroyWindow(window);
    }
}

TEST(ResourceCounts, GrowthOfEachKindFailsTheTest) {
    const auto expectFailure = [](auto... kinds) {
        for (const auto kind : {kinds...}) {
            ResourceCounts after;
            after.*kind = 2 << 20;
            EXPECT_NONFATAL_FAILURE(ExpectNoGrowth({}, after), "grew from 0 to 2097152");
        }
    };
    using Counts = ResourceCounts;
    expectFailure(&Counts::windows, &Counts::otherUserObjects, &Counts::gdiObjects,
                  &Counts::kernelHandles, &Counts::threads);
    expectFailure(&Counts::heapBlocks, &Counts::heapBytes, &Counts::privateBytes);

    std::vector<KernelHandle> events;
    const auto keep = [&](int) { events.emplace_back(CreateEventA(nullptr, TRUE, TRUE, nullptr)); };
    EXPECT_NONFATAL_FAILURE(ExpectRoundsKeepNothing(1, 5, keep), "kernel handles grew");
}

}  // namespace
}  // namespace mvp::test
