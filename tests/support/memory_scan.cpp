#include "support/memory_scan.h"

#include <algorithm>
#include <cstring>
#include <ostream>
#include <stdexcept>

#include "platform/handle.h"
#include "support/memory_map.h"

namespace mvp::test {
namespace {

constexpr char kCode = '\x5A';
constexpr size_t kMaxHits = 4096;
constexpr size_t kChunk = size_t{1} << 18;

struct RawHit {
    ULONG_PTR address;
    bool bWide;
};

// Memory of the scan's own, outside every heap, which the scan leaves out. Zeroed by the system
// when it is given back.
struct Scratch {
    unsigned char bytes[kChunk];
    RawHit hits[kMaxHits];
    size_t nHits;
};

struct ScratchTraits {
    using Handle = Scratch*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { VirtualFree(handle, 0, MEM_RELEASE); }
};

void FindIn(const Needle& needle, Scratch& scratch, ULONG_PTR nBase, size_t nFresh, size_t nRead) {
    const unsigned char* const pEnd = scratch.bytes + nRead;
    const unsigned char* pAt = scratch.bytes;
    while (pAt < scratch.bytes + nFresh) {
        const auto nLeft = static_cast<size_t>(scratch.bytes + nFresh - pAt);
        pAt = static_cast<const unsigned char*>(std::memchr(pAt, needle.FirstByte(), nLeft));
        if (pAt == nullptr)
            return;
        for (const bool bWide : {false, true})
            if (static_cast<size_t>(pEnd - pAt) >= needle.Size(bWide) &&
                needle.Matches(pAt, bWide) && scratch.nHits < kMaxHits)
                scratch.hits[scratch.nHits++] = {
                    nBase + static_cast<ULONG_PTR>(pAt - scratch.bytes), bWide};
        ++pAt;
    }
}

// Reads what of the range is still there, page by page where a page has vanished.
void ScanRange(HANDLE hProcess, const Needle& needle, ULONG_PTR nBegin, ULONG_PTR nEnd,
               Scratch& scratch) {
    constexpr size_t kPage = 4096;
    const size_t nOverlap = needle.Size(true) - 1;
    for (ULONG_PTR nAt = nBegin; nAt < nEnd;) {
        const size_t nWanted = std::min<size_t>(nEnd - nAt, kChunk);
        SIZE_T nRead = 0;
        ReadProcessMemory(hProcess, reinterpret_cast<const void*>(nAt), scratch.bytes, nWanted,
                          &nRead);
        if (nRead < nWanted)
            ReadProcessMemory(hProcess, reinterpret_cast<const void*>(nAt), scratch.bytes,
                              std::min(nWanted, kPage), &nRead);
        const bool bLast = nAt + nRead >= nEnd || nRead <= nOverlap;
        const size_t nFresh = bLast ? nRead : nRead - nOverlap;
        FindIn(needle, scratch, nAt, nFresh, nRead);
        nAt += std::max(nFresh, nRead == 0 ? kPage : size_t{1});
    }
    SecureZeroMemory(scratch.bytes, sizeof scratch.bytes);
}

bool IsWritable(const MEMORY_BASIC_INFORMATION& info) {
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return info.State == MEM_COMMIT && (info.Protect & kWritable) != 0 &&
           (info.Protect & PAGE_GUARD) == 0;
}

void ScanAll(HANDLE hProcess, const Needle& needle, Scratch& scratch) {
    MEMORY_BASIC_INFORMATION info = {};
    for (ULONG_PTR nAt = 0;
         VirtualQueryEx(hProcess, reinterpret_cast<const void*>(nAt), &info, sizeof info) != 0;) {
        nAt = reinterpret_cast<ULONG_PTR>(info.BaseAddress) + info.RegionSize;
        if (IsWritable(info) && info.AllocationBase != &scratch)
            ScanRange(hProcess, needle, nAt - info.RegionSize, nAt, scratch);
    }
}

std::vector<MemoryHit> Scan(HANDLE hProcess, const Needle& needle) {
    const UniqueHandle<ScratchTraits> scratch(static_cast<Scratch*>(
        VirtualAlloc(nullptr, sizeof(Scratch), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)));
    if (!scratch)
        throw std::runtime_error("no memory to scan with");
    ScanAll(hProcess, needle, *scratch.get());
    const MemoryMap map(hProcess);
    std::vector<MemoryHit> hits;
    for (size_t i = 0; i < scratch.get()->nHits; ++i) {
        const RawHit& raw = scratch.get()->hits[i];
        MemoryHit hit = map.Attribute(raw.address);
        hit.bWide = raw.bWide;
        hits.push_back(hit);
    }
    return hits;
}

}  // namespace

Needle::Needle(std::string_view text) {
    if (text.size() < 4)
        throw std::invalid_argument("the text to look for is too short");
    for (const char ch : text)
        m_encoded.push_back(static_cast<char>(ch ^ kCode));
}

unsigned char Needle::FirstByte() const {
    return static_cast<unsigned char>(m_encoded.front() ^ kCode);
}

bool Needle::Matches(const unsigned char* pBytes, bool bWide) const {
    for (const char ch : m_encoded) {
        if (static_cast<unsigned char>(*pBytes++ ^ kCode) != static_cast<unsigned char>(ch))
            return false;
        if (bWide && *pBytes++ != 0)
            return false;
    }
    return true;
}

std::ostream& operator<<(std::ostream& stream, const MemoryHit& hit) {
    stream << (hit.bWide ? "16-bit" : "8-bit") << " text at 0x" << std::hex << hit.address
           << std::dec << " in ";
    switch (hit.place) {
        case MemoryHit::Place::kModule:
            return stream << "the data of " << hit.strOwner;
        case MemoryHit::Place::kHeap:
            return stream << (hit.bFreed ? "a freed block of the " : "the ") << hit.strOwner;
        case MemoryHit::Place::kStack:
            return stream << "the stack of " << hit.strOwner;
        case MemoryHit::Place::kOther:
            break;
    }
    return stream << "other memory";
}

std::vector<MemoryHit> ScanOwnMemory(const Needle& needle) {
    return Scan(GetCurrentProcess(), needle);
}

std::vector<MemoryHit> ScanProcess(HANDLE hProcess, const Needle& needle) {
    return Scan(hProcess, needle);
}

}  // namespace mvp::test
