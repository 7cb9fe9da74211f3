#include "support/resource_counts.h"

#include <windows.h>
#include <tlhelp32.h>

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

#include "platform/handle.h"

namespace mvp::test {
namespace {

// Wine's GetGuiResources and GetProcessHandleCount answer 0; where they do, the objects are counted
// one by one.

// The low word of a window manager's or GDI handle is its place in a table and names the object by
// itself; the high word is a generation number.
template <class Predicate>
unsigned CountHandles(ULONG_PTR nStep, Predicate&& isOne) {
    unsigned nCount = 0;
    for (ULONG_PTR nPlace = nStep; nPlace <= 0xFFFF; nPlace += nStep)
        nCount += isOne(nPlace) ? 1u : 0u;
    return nCount;
}

bool IsIcon(HICON hIcon) {
    ICONINFO info = {};
    if (!GetIconInfo(hIcon, &info))
        return false;
    const Bitmap mask(info.hbmMask);
    const Bitmap colour(info.hbmColor);
    return true;
}

unsigned CountMenusAndIcons() {
    return CountHandles(2, [](ULONG_PTR n) {
        return IsMenu(reinterpret_cast<HMENU>(n)) || IsIcon(reinterpret_cast<HICON>(n));
    });
}

unsigned CountGdiObjects() {
    if (const DWORD dwCount = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS))
        return dwCount;
    return CountHandles(
        1, [](ULONG_PTR n) { return GetObjectType(reinterpret_cast<HGDIOBJ>(n)) != 0; });
}

struct WindowCount {
    DWORD dwProcessId = GetCurrentProcessId();
    unsigned nCount = 0;
};

BOOL CALLBACK CountIfOwn(HWND hWnd, LPARAM lParam) {
    auto& count = *reinterpret_cast<WindowCount*>(lParam);
    DWORD dwProcessId = 0;
    GetWindowThreadProcessId(hWnd, &dwProcessId);
    count.nCount += dwProcessId == count.dwProcessId ? 1u : 0u;
    return TRUE;
}

unsigned CountWindows() {
    WindowCount count;
    // Children of the desktop at every depth, and the windows that only take messages.
    EnumChildWindows(GetDesktopWindow(), CountIfOwn, reinterpret_cast<LPARAM>(&count));
    for (HWND hWnd = nullptr;
         (hWnd = FindWindowExA(HWND_MESSAGE, hWnd, nullptr, nullptr)) != nullptr;)
        CountIfOwn(hWnd, reinterpret_cast<LPARAM>(&count));
    return count.nCount;
}

// The system's table of all processes' handles, by the interface of ntdll.
struct HandleTable {
    struct Entry {
        void* object;
        ULONG_PTR processId;
        ULONG_PTR handle;
        ULONG access;
        USHORT backTrace;
        USHORT type;
        ULONG attributes;
        ULONG reserved;
    };
    ULONG_PTR count;
    ULONG_PTR reserved;
    Entry entries[1];
};

unsigned CountHandlesByTable() {
    using Query = LONG(WINAPI*)(ULONG, void*, ULONG, ULONG*);
    constexpr ULONG kExtendedHandles = 64;
    constexpr LONG kTooSmall = static_cast<LONG>(0xC0000004u);
    const auto query = reinterpret_cast<Query>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<BYTE> buffer(1 << 16);
    LONG nStatus = kTooSmall;
    while ((nStatus = query(kExtendedHandles, buffer.data(), static_cast<ULONG>(buffer.size()),
                            nullptr)) == kTooSmall)
        buffer.resize(buffer.size() * 2);
    if (nStatus != 0)
        return 0;
    const auto* pTable = reinterpret_cast<const HandleTable*>(buffer.data());
    unsigned nCount = 0;
    for (ULONG_PTR i = 0; i < pTable->count; ++i)
        nCount += pTable->entries[i].processId == GetCurrentProcessId() ? 1u : 0u;
    return nCount;
}

unsigned CountKernelHandles() {
    DWORD dwCount = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &dwCount) && dwCount != 0)
        return dwCount;
    return CountHandlesByTable();
}

unsigned CountThreads() {
    const FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    unsigned nCount = 0;
    for (BOOL bMore = Thread32First(snapshot.get(), &entry); bMore;
         bMore = Thread32Next(snapshot.get(), &entry))
        nCount += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1u : 0u;
    return nCount;
}

// A heap that checks freed blocks holds the last ones back; small ones of one size take their
// place, so that two counts compare.
void FlushFreedBlocks(HANDLE hHeap) {
    constexpr int kHeldBack = 1024;
    for (int i = 0; i < 2 * kHeldBack; ++i)
        HeapFree(hHeap, 0, HeapAlloc(hHeap, 0, 16));
}

void CountHeap(ResourceCounts& counts) {
    auto* const hHeap = reinterpret_cast<HANDLE>(_get_heap_handle());
    FlushFreedBlocks(hHeap);
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(hHeap);
    while (HeapWalk(hHeap, &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0)
            continue;
        ++counts.heapBlocks;
        counts.heapBytes += entry.cbData;
    }
    HeapUnlock(hHeap);
}

size_t CountPrivateBytes() {
    size_t nBytes = 0;
    MEMORY_BASIC_INFORMATION info = {};
    for (const char* pAddress = nullptr; VirtualQuery(pAddress, &info, sizeof info) != 0;
         pAddress = static_cast<const char*>(info.BaseAddress) + info.RegionSize)
        if (info.State == MEM_COMMIT && info.Type == MEM_PRIVATE)
            nBytes += info.RegionSize;
    return nBytes;
}

template <class Number>
void ExpectWithin(const char* pszWhat, Number before, Number after, Number allowance) {
    EXPECT_LE(after, before + allowance) << pszWhat << " grew from " << before << " to " << after;
}

}  // namespace

ResourceCounts ResourceCounts::Now() {
    ResourceCounts counts;
    // The heap first: counting the rest uses it.
    CountHeap(counts);
    counts.privateBytes = CountPrivateBytes();
    counts.windows = CountWindows();
    const DWORD dwUserObjects = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    counts.otherUserObjects =
        dwUserObjects != 0 ? dwUserObjects - counts.windows : CountMenusAndIcons();
    counts.gdiObjects = CountGdiObjects();
    counts.threads = CountThreads();
    counts.kernelHandles = CountKernelHandles();
    return counts;
}

std::ostream& operator<<(std::ostream& stream, const ResourceCounts& counts) {
    return stream << counts.windows << " windows, " << counts.otherUserObjects
                  << " other user objects, " << counts.gdiObjects << " GDI objects, "
                  << counts.kernelHandles << " kernel handles, " << counts.threads << " threads, "
                  << counts.heapBlocks << " heap blocks of " << counts.heapBytes << " bytes, "
                  << counts.privateBytes << " private bytes";
}

void ExpectNoGrowth(const ResourceCounts& before, const ResourceCounts& after,
                    const GrowthAllowance& allowance) {
    ExpectWithin("windows", before.windows, after.windows, allowance.objects);
    ExpectWithin("other user objects", before.otherUserObjects, after.otherUserObjects,
                 allowance.objects);
    ExpectWithin("GDI objects", before.gdiObjects, after.gdiObjects, allowance.objects);
    ExpectWithin("kernel handles", before.kernelHandles, after.kernelHandles,
                 allowance.kernelHandles);
    ExpectWithin("threads", before.threads, after.threads, allowance.threads);
    ExpectWithin("heap blocks", before.heapBlocks, after.heapBlocks, allowance.heapBlocks);
    ExpectWithin("heap bytes", before.heapBytes, after.heapBytes, allowance.heapBytes);
    ExpectWithin("private bytes", before.privateBytes, after.privateBytes, allowance.privateBytes);
}

void ExpectRoundsKeepNothing(int nFirst, int nRounds, const std::function<void(int)>& round,
                             const GrowthAllowance& allowance) {
    for (int i = 0; i < nFirst; ++i)
        round(i);
    const auto before = ResourceCounts::Now();
    for (int i = 0; i < nRounds; ++i)
        round(i);
    ExpectNoGrowth(before, ResourceCounts::Now(), allowance);
}

}  // namespace mvp::test
