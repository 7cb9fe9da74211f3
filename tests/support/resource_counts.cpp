#include "support/resource_counts.h"

#include <windows.h>
#include <tlhelp32.h>

#include <gtest/gtest.h>
#include <malloc.h>

#include "platform/handle.h"

namespace mvp::test {
namespace {

// Wine's GetGuiResources and GetProcessHandleCount answer 0, so objects are counted one by one. The
// low word of a window manager's or GDI handle is its place in a table and names the object by
// itself; the high word is a generation number.
constexpr ULONG_PTR kLastPlace = 0xFFFF;

template <class Predicate>
unsigned CountHandles(ULONG_PTR nStep, ULONG_PTR nLast, Predicate isOne) {
    unsigned count = 0;
    for (ULONG_PTR place = nStep; place <= nLast; place += nStep) {
        count += isOne(reinterpret_cast<void*>(place)) ? 1u : 0u;
    }
    return count;
}

bool IsMenuOrIcon(void* handle) {
    ICONINFO info = {};
    const bool icon = GetIconInfo(static_cast<HICON>(handle), &info) != FALSE;
    const Bitmap mask(info.hbmMask);
    const Bitmap colour(info.hbmColor);
    return icon || IsMenu(static_cast<HMENU>(handle));
}

BOOL CALLBACK CountIfOwn(HWND hWnd, LPARAM lParam) {
    DWORD processId = 0;
    GetWindowThreadProcessId(hWnd, &processId);
    *reinterpret_cast<unsigned*>(lParam) += processId == GetCurrentProcessId() ? 1u : 0u;
    return TRUE;
}

unsigned CountWindows() {
    unsigned count = 0;
    const auto counter = reinterpret_cast<LPARAM>(&count);
    // Children of the desktop at every depth, and the windows that only take messages.
    EnumChildWindows(GetDesktopWindow(), CountIfOwn, counter);
    for (HWND window = nullptr;
         (window = FindWindowExA(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;) {
        CountIfOwn(window, counter);
    }
    return count;
}

bool IsKernelHandle(void* handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != FALSE;
}

unsigned CountThreads() {
    const FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    unsigned count = 0;
    for (BOOL more = Thread32First(snapshot.get(), &entry); more;
         more = Thread32Next(snapshot.get(), &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1u : 0u;
    }
    return count;
}

void CountHeap(ResourceCounts& counts) {
    auto* const heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    // A heap that checks freed blocks holds the last ones back; small ones of one size take their
    // place, so that two counts compare.
    constexpr int kHeldBack = 1024;
    for (int i = 0; i < 2 * kHeldBack; ++i) {
        HeapFree(heap, 0, HeapAlloc(heap, 0, 16));
    }
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) {
            ++counts.heapBlocks;
            counts.heapBytes += entry.cbData;
        }
    }
    HeapUnlock(heap);
}

size_t CountPrivateBytes() {
    size_t bytes = 0;
    MEMORY_BASIC_INFORMATION info = {};
    for (const char* address = nullptr; VirtualQuery(address, &info, sizeof info) != 0;
         address = static_cast<const char*>(info.BaseAddress) + info.RegionSize) {
        if (info.State == MEM_COMMIT && info.Type == MEM_PRIVATE) {
            bytes += info.RegionSize;
        }
    }
    return bytes;
}

}  // namespace

ResourceCounts ResourceCounts::Now() {
    ResourceCounts counts;
    // The heap first: counting the rest uses it.
    CountHeap(counts);
    counts.privateBytes = CountPrivateBytes();
    counts.windows = CountWindows();
    counts.otherUserObjects = CountHandles(2, kLastPlace, IsMenuOrIcon);
    counts.gdiObjects = CountHandles(1, kLastPlace, [](void* p) { return GetObjectType(p) != 0; });
    counts.threads = CountThreads();
    // The lowest free one is given first; this many are more than any test has.
    counts.kernelHandles = CountHandles(4, 4 * 4096, IsKernelHandle);
    return counts;
}

void ExpectNoGrowth(const ResourceCounts& before, const ResourceCounts& after,
                    const GrowthAllowance& allowance) {
    const auto expect = [&](const char* pszWhat, auto count, auto nAllowed) {
        EXPECT_LE(after.*count, before.*count + nAllowed)
            << pszWhat << " grew from " << before.*count << " to " << after.*count;
    };
    using Counts = ResourceCounts;
    expect("windows", &Counts::windows, allowance.objects);
    expect("other user objects", &Counts::otherUserObjects, allowance.objects);
    expect("GDI objects", &Counts::gdiObjects, allowance.objects);
    expect("kernel handles", &Counts::kernelHandles, allowance.kernelHandles);
    expect("threads", &Counts::threads, allowance.threads);
    expect("heap blocks", &Counts::heapBlocks, allowance.heapBlocks);
    expect("heap bytes", &Counts::heapBytes, allowance.heapBytes);
    expect("private bytes", &Counts::privateBytes, allowance.privateBytes);
}

void ExpectRoundsKeepNothing(int nFirst, int nRounds, const std::function<void(int)>& round,
                             const GrowthAllowance& allowance) {
    for (int i = 0; i < nFirst; ++i) {
        round(i);
    }
    const auto before = ResourceCounts::Now();
    for (int i = 0; i < nRounds; ++i) {
        round(i);
    }
    ExpectNoGrowth(before, ResourceCounts::Now(), allowance);
}

}  // namespace mvp::test
