#include "support/memory_map.h"

#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include <malloc.h>

#include "platform/handle.h"
#include "platform/system_library.h"

namespace mvp::test {
namespace {

// A thread's environment block, by the interface of ntdll; null when it cannot be asked for.
const NT_TIB* ThreadBlock(HANDLE hThread) {
    struct BasicInformation {
        LONG nExitStatus;
        const NT_TIB* pTeb;
        HANDLE process, thread;
        ULONG_PTR nAffinity;
        LONG nPriority, nBasePriority;
    } info = {};
    using Query = LONG(WINAPI*)(HANDLE, ULONG, void*, ULONG, ULONG*);
    static const auto s_query =
        FindFunction<Query>(GetModuleHandleA("ntdll.dll"), "NtQueryInformationThread");
    return s_query(hThread, 0, &info, sizeof info, nullptr) == 0 ? info.pTeb : nullptr;
}

const void* AllocationOf(HANDLE hProcess, const void* pAddress) {
    MEMORY_BASIC_INFORMATION info = {};
    return VirtualQueryEx(hProcess, pAddress, &info, sizeof info) != 0 ? info.AllocationBase
                                                                       : nullptr;
}

std::string HeapName(HANDLE hHeap) {
    if (hHeap == reinterpret_cast<HANDLE>(_get_heap_handle()))
        return "C heap";
    if (hHeap == GetProcessHeap())
        return "process heap";
    char text[32];
    std::snprintf(text, sizeof text, "heap %p", hHeap);
    return text;
}

bool Holds(const PROCESS_HEAP_ENTRY& entry, ULONG_PTR address) {
    if ((entry.wFlags & (PROCESS_HEAP_REGION | PROCESS_HEAP_UNCOMMITTED_RANGE)) != 0)
        return false;
    const auto nBegin = reinterpret_cast<ULONG_PTR>(entry.lpData);
    return address >= nBegin && address - nBegin < entry.cbData;
}

}  // namespace

MemoryMap::MemoryMap(HANDLE hProcess)
    : m_hProcess(hProcess), m_bOwn(GetProcessId(hProcess) == GetCurrentProcessId()) {
    ListStacks();
}

void MemoryMap::ListStacks() {
    const FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL bMore = Thread32First(snapshot.get(), &entry); bMore;
         bMore = Thread32Next(snapshot.get(), &entry)) {
        if (entry.th32OwnerProcessID != GetProcessId(m_hProcess))
            continue;
        const KernelHandle thread(OpenThread(THREAD_QUERY_INFORMATION, FALSE, entry.th32ThreadID));
        const NT_TIB* pBlock = ThreadBlock(thread.get());
        NT_TIB block = {};
        if (pBlock != nullptr &&
            ReadProcessMemory(m_hProcess, pBlock, &block, sizeof block, nullptr))
            m_stacks.push_back({AllocationOf(m_hProcess, block.StackLimit), entry.th32ThreadID});
    }
}

bool MemoryMap::FindInHeaps(MemoryHit& hit) const {
    std::array<HANDLE, 64> heaps = {};
    const DWORD dwHeaps = std::min(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()),
                                   static_cast<DWORD>(heaps.size()));
    for (DWORD i = 0; i < dwHeaps; ++i) {
        bool bFound = false;
        PROCESS_HEAP_ENTRY entry = {};
        HeapLock(heaps[i]);
        while (!bFound && HeapWalk(heaps[i], &entry))
            bFound = Holds(entry, hit.address);
        HeapUnlock(heaps[i]);
        if (!bFound)
            continue;
        hit.place = MemoryHit::Place::kHeap;
        hit.strOwner = HeapName(heaps[i]);
        hit.bFreed = (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0;
        return true;
    }
    return false;
}

MemoryHit MemoryMap::Attribute(ULONG_PTR address) const {
    MemoryHit hit;
    hit.address = address;
    MEMORY_BASIC_INFORMATION info = {};
    VirtualQueryEx(m_hProcess, reinterpret_cast<const void*>(address), &info, sizeof info);
    if (info.Type == MEM_IMAGE) {
        std::array<char, MAX_PATH> name = {};
        GetModuleBaseNameA(m_hProcess, static_cast<HMODULE>(info.AllocationBase), name.data(),
                           static_cast<DWORD>(name.size()));
        hit.place = MemoryHit::Place::kModule;
        hit.strOwner = name.data();
        return hit;
    }
    for (const Stack& stack : m_stacks)
        if (stack.pAllocation != nullptr && stack.pAllocation == info.AllocationBase) {
            hit.place = MemoryHit::Place::kStack;
            hit.strOwner = "thread " + std::to_string(stack.dwThreadId);
            return hit;
        }
    if (m_bOwn)
        FindInHeaps(hit);
    return hit;
}

}  // namespace mvp::test
