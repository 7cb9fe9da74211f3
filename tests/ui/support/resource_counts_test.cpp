#include "support/resource_counts.h"

#include <cstdlib>
#include <memory>
#include <thread>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "platform/handle.h"

namespace mvp::test {
namespace {

struct WindowTraits {
    using Handle = HWND;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { DestroyWindow(handle); }
};
using Window = UniqueHandle<WindowTraits>;

HWND NewWindow(HWND hParent) {
    return CreateWindowExA(0, "STATIC", "", hParent == HWND_MESSAGE ? 0 : WS_POPUP, 0, 0, 9, 9,
                           hParent, nullptr, nullptr, nullptr);
}

// Makes one of each kind, counts it, and gives it back.
void CountOneOfEachKind() {
    ResourceCounts before = ResourceCounts::Now();
    const Window popup(NewWindow(nullptr));
    const Window quiet(NewWindow(HWND_MESSAGE));
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
    const auto release = [](void* p) { std::free(p); };
    const std::unique_ptr<void, decltype(release)> block(std::malloc(50000), release);
    EXPECT_GE(ResourceCounts::Now().heapBytes, before.heapBytes + 50000);
}

TEST(ResourceCounts, CountsOneOfEachKind) {
    // A thread's first windows bring objects of the system with them, and take them along when they
    // go; counting loads libraries; the first thread leaves objects of the runtime behind.
    const Window popup(NewWindow(nullptr));
    const Window quiet(NewWindow(HWND_MESSAGE));
    ResourceCounts::Now();
    CountOneOfEachKind();
    const ResourceCounts before = ResourceCounts::Now();
    CountOneOfEachKind();
    ExpectNoGrowth(before, ResourceCounts::Now());
}

TEST(ResourceCounts, GrowthFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(
        {
            ResourceCounts before;
            ResourceCounts after;
            after.gdiObjects = 1;
            after.heapBlocks = 10;
            ExpectNoGrowth(before, after);
        },
        "GDI objects grew from 0 to 1");
}

}  // namespace
}  // namespace mvp::test
