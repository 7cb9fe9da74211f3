#include "support/memory_scan.h"

#include <algorithm>
#include <ostream>
#include <random>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>
#include <malloc.h>

#include "platform/handle.h"

namespace mvp::test {
namespace {

constexpr size_t kMaxHits = 4096;
constexpr size_t kChunk = size_t{1} << 18;

constexpr size_t PieceSize(bool bWide) {
    return Secret::kPiece * (bWide ? 2 : 1);
}

// Memory of the scan's own, outside every heap, which the scan leaves out. Zeroed by the system
// when it is given back.
struct Scratch {
    unsigned char bytes[kChunk];
    MemoryHit hits[kMaxHits];
    size_t nHits;

    void Add(ULONG_PTR address, size_t nPiece, bool bWide) {
        const size_t first = nPiece * Secret::kPiece;
        if (MemoryHit* last = nHits > 0 ? &hits[nHits - 1] : nullptr;
            last != nullptr && last->bWide == bWide &&
            last->address + last->nCount * (bWide ? 2 : 1) == address &&
            last->nFirst + last->nCount == first) {
            last->nCount += Secret::kPiece;
        } else if (nHits < kMaxHits) {
            hits[nHits++] = {address, first, Secret::kPiece, bWide};
        }
    }
};

struct ScratchTraits {
    using Handle = Scratch*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { VirtualFree(handle, 0, MEM_RELEASE); }
};

}  // namespace

template <class Found>
void Secret::FindPieces(const unsigned char* pBytes, size_t nFresh, size_t nBytes,
                        Found found) const {
    for (size_t at = 0; at < nFresh; ++at) {
        const int piece = m_pieceByFirst[pBytes[at]];
        for (const bool wide : {false, true}) {
            bool matches = piece >= 0 && nBytes - at >= PieceSize(wide);
            for (size_t i = 0; matches && i < kPiece; ++i) {
                const unsigned char* p = pBytes + at + i * (wide ? 2 : 1);
                const char wanted = (*this)[static_cast<size_t>(piece) * kPiece + i];
                matches = *p == static_cast<unsigned char>(wanted) && (!wide || p[1] == 0);
            }
            if (matches) {
                found(at, static_cast<size_t>(piece), wide);
            }
        }
    }
}

namespace {

// Reads what of the range is still there, page by page where a page has vanished.
void ScanRange(const Secret& secret, ULONG_PTR nBegin, ULONG_PTR nEnd, Scratch& scratch) {
    constexpr size_t kPage = 4096;
    const size_t overlap = PieceSize(true) - 1;
    for (ULONG_PTR at = nBegin; at < nEnd;) {
        const size_t wanted = std::min<size_t>(nEnd - at, kChunk);
        SIZE_T read = 0;
        for (const size_t part : {wanted, std::min(wanted, kPage)}) {
            if (read < part) {
                ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<const void*>(at),
                                  scratch.bytes, part, &read);
            }
        }
        const bool last = at + read >= nEnd || read <= overlap;
        const size_t fresh = last ? read : read - overlap;
        secret.FindPieces(scratch.bytes, fresh, read,
                          [&](size_t nOffset, size_t nPiece, bool bWide) {
                              scratch.Add(at + nOffset, nPiece, bWide);
                          });
        at += std::max(fresh, read == 0 ? kPage : size_t{1});
    }
    SecureZeroMemory(scratch.bytes, sizeof scratch.bytes);
}

bool IsWritable(const MEMORY_BASIC_INFORMATION& info) {
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return info.State == MEM_COMMIT && (info.Protect & kWritable) != 0 &&
           (info.Protect & PAGE_GUARD) == 0;
}

void ScanAll(const Secret& secret, Scratch& scratch) {
    MEMORY_BASIC_INFORMATION info = {};
    for (ULONG_PTR at = 0;
         VirtualQuery(reinterpret_cast<const void*>(at), &info, sizeof info) != 0;) {
        at = reinterpret_cast<ULONG_PTR>(info.BaseAddress) + info.RegionSize;
        if (IsWritable(info) && info.AllocationBase != &scratch) {
            ScanRange(secret, at - info.RegionSize, at, scratch);
        }
    }
}

bool IsInUse(HANDLE hHeap, ULONG_PTR address) {
    bool found = false;
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(hHeap);
    while (!found && HeapWalk(hHeap, &entry)) {
        const auto begin = reinterpret_cast<ULONG_PTR>(entry.lpData);
        found = (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 && address >= begin &&
                address - begin < entry.cbData;
    }
    HeapUnlock(hHeap);
    return found;
}

}  // namespace

Secret::Secret()
    : Secret("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", kLength) {}

Secret Secret::UnlockCode() {
    return {"0123456789ABCDEF", 16};
}

Secret::Secret(std::string_view characters, size_t nLength) : m_nLength(nLength) {
    static unsigned lastNumber = 0;
    std::mt19937 random(++lastNumber);
    std::string encoded;
    for (const char ch : characters) {
        encoded.push_back(Coded(ch));
    }
    std::shuffle(encoded.begin(), encoded.end(), random);
    std::copy_n(encoded.begin(), nLength, m_encoded.begin());
    FindFirstOfPieces();
}

Secret Secret::Grouped() const {
    Secret grouped = *this;
    grouped.m_nLength = 0;
    for (size_t i = 0; i < m_nLength; ++i) {
        if (i > 0 && i % 4 == 0) {
            grouped.m_encoded.at(grouped.m_nLength++) = Coded('-');
        }
        grouped.m_encoded.at(grouped.m_nLength++) = m_encoded.at(i);
    }
    grouped.FindFirstOfPieces();
    return grouped;
}

void Secret::FindFirstOfPieces() {
    m_pieceByFirst.fill(-1);
    for (size_t i = 0; i + kPiece <= m_nLength; i += kPiece) {
        m_pieceByFirst.at(static_cast<unsigned char>((*this)[i])) = static_cast<int>(i / kPiece);
    }
}

void Secret::CopyTo(void* pTarget, bool bWide) const {
    auto* at = static_cast<volatile char*>(pTarget);
    for (size_t i = 0; i < m_nLength; ++i) {
        *at++ = (*this)[i];
        if (bWide) {
            *at++ = '\0';
        }
    }
}

std::ostream& operator<<(std::ostream& stream, const MemoryHit& hit) {
    return stream << "characters " << hit.nFirst + 1 << " to " << hit.nFirst + hit.nCount << ", "
                  << (hit.bWide ? "16" : "8") << "-bit, at 0x" << std::hex << hit.address
                  << std::dec << (hit.bInUse ? " in a heap" : " in freed or other memory");
}

std::vector<MemoryHit> ScanOwnMemory(const Secret& secret) {
    const UniqueHandle<ScratchTraits> scratch(static_cast<Scratch*>(
        VirtualAlloc(nullptr, sizeof(Scratch), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)));
    if (!scratch) {
        throw std::runtime_error("no memory to scan with");
    }
    ScanAll(secret, *scratch.get());
    std::vector<MemoryHit> hits(scratch.get()->hits, scratch.get()->hits + scratch.get()->nHits);
    HANDLE heaps[64] = {reinterpret_cast<HANDLE>(_get_heap_handle())};
    GetProcessHeaps(63, heaps + 1);
    for (MemoryHit& hit : hits) {
        hit.bInUse = std::ranges::any_of(
            heaps, [&](HANDLE hHeap) { return hHeap != nullptr && IsInUse(hHeap, hit.address); });
    }
    return hits;
}

SecretWatch::SecretWatch(std::vector<const Secret*> secrets)
    : m_secrets(std::move(secrets)),
      m_freedBlocks({nullptr, "mvpingui.dll", "dlgfw.dll", "comctl32.dll", "user32.dll"},
                    [this](const void* pBlock, size_t nBytes) {
                        for (const Secret* secret : m_secrets) {
                            secret->FindPieces(static_cast<const unsigned char*>(pBlock), nBytes,
                                               nBytes, [&](size_t, size_t, bool) { ++m_nFreed; });
                        }
                    }) {}

void SecretWatch::ExpectNothingLeft(const char* pszWhen) const {
    EXPECT_EQ(m_nFreed, 0) << pszWhen << ": pieces in blocks that were freed";
    for (size_t i = 0; i < m_secrets.size(); ++i) {
        for (const MemoryHit& hit : ScanOwnMemory(*m_secrets[i])) {
            ADD_FAILURE() << pszWhen << ", secret " << i + 1 << ": " << hit;
        }
    }
}

}  // namespace mvp::test
