#include "support/memory_scan.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <random>
#include <set>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "platform/handle.h"

namespace mvp::test {
namespace {

constexpr size_t kMaxHits = 4096;
constexpr size_t kChunk = size_t{1} << 20;
constexpr size_t kPage = 4096;

// Memory of the scan's own, outside every heap, which the scan leaves out.
struct Scratch {
    unsigned char bytes[kChunk];
    MemoryHit hits[kMaxHits];
    size_t nHits;

    // The two parts of a stretch over the border of two chunks are one hit.
    void Add(const MemoryHit& hit) {
        MemoryHit* last = nHits > 0 ? &hits[nHits - 1] : nullptr;
        if (last != nullptr && last->bWide == hit.bWide &&
            hit.address - last->address == (hit.nFirst - last->nFirst) * hit.Step()) {
            last->nCount = std::max(last->nCount, hit.nFirst + hit.nCount - last->nFirst);
        } else if (nHits < kMaxHits) {
            hits[nHits++] = hit;
        }
    }
};

struct ScratchTraits {
    using Handle = Scratch*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept {
        std::memset(handle->bytes, 0, sizeof handle->bytes);
        VirtualFree(handle, 0, MEM_RELEASE);
    }
};

// Reads what of the range is still there, page by page where a page has vanished. A chunk begins
// with the end of the one before, so that no run falls between them.
void ScanRange(const Secret& secret, HANDLE hProcess, ULONG_PTR nBegin, ULONG_PTR nEnd,
               Scratch& scratch) {
    constexpr size_t kOverlap = 2 * Secret::kRun;
    for (ULONG_PTR at = nBegin; at < nEnd;) {
        const size_t wanted = std::min<size_t>(nEnd - at, kChunk);
        SIZE_T read = 0;
        for (const size_t part : {wanted, std::min(wanted, kPage)}) {
            if (read == 0) {
                ReadProcessMemory(hProcess, reinterpret_cast<const void*>(at), scratch.bytes, part,
                                  &read);
            }
        }
        secret.FindRuns(scratch.bytes, read,
                        [&](size_t nOffset, size_t nFirst, size_t nCount, bool bWide) {
                            scratch.Add({at + nOffset, nFirst, nCount, bWide});
                        });
        const bool last = at + read >= nEnd || read <= kOverlap;
        at += read == 0 ? kPage : (last ? read : read - kOverlap);
    }
}

}  // namespace

template <class Found>
void Secret::FindRuns(const unsigned char* pBytes, size_t nBytes, Found found) const {
    const auto isPair = [&](std::uint32_t dwPair) { return m_pairs[dwPair & 0xFFFF]; };
    const auto isPairAt = [&](size_t at, size_t step) {
        return at + 2 * step <= nBytes &&
               isPair(pBytes[at] | std::uint32_t{pBytes[at + step]} << 8) &&
               (step == 1 || (pBytes[at + 1] == 0 && pBytes[at + 3] == 0));
    };
    // Four bytes at a time: two characters in a row of each run lie at an even place in 8-bit text,
    // and fill all four in 16-bit text, as far as it begins at an even place.
    for (size_t at = 0, next = 0; at + 4 <= nBytes; at = next) {
        next = at + 4;
        std::uint32_t four = 0;
        std::memcpy(&four, pBytes + at, sizeof four);
        size_t begin = at;
        size_t step = 1;
        if (four == 0) {
            continue;
        }
        if (isPair(four >> 16)) {
            begin += 2;
        } else if ((four & 0xFF00FF00) == 0 && isPair(four | four >> 8)) {
            step = 2;
        } else if ((four & 0x00FF00FF) == 0 && isPair(four >> 8 | four >> 16)) {
            ++begin;
            step = 2;
        } else if (!isPair(four)) {
            continue;
        }
        size_t end = begin + step;
        while (begin >= step && isPairAt(begin - step, step)) {
            begin -= step;
        }
        while (isPairAt(end, step)) {
            end += step;
        }
        const size_t count = (end - begin) / step + 1;
        if (count >= kRun) {
            size_t first = 0;
            while ((*this)[first] != static_cast<char>(pBytes[begin])) {
                ++first;
            }
            found(begin, first, count, step == 2);
            next = (end + step + 3) / 4 * 4;
        }
    }
}

namespace {

// All but what was mapped from a file and cannot be written.
bool IsToBeRead(const MEMORY_BASIC_INFORMATION& info) {
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return info.State == MEM_COMMIT && (info.Protect & (PAGE_GUARD | PAGE_NOACCESS)) == 0 &&
           (info.Type == MEM_PRIVATE || (info.Protect & kWritable) != 0);
}

void ScanAll(const Secret& secret, HANDLE hProcess, Scratch& scratch) {
    MEMORY_BASIC_INFORMATION info = {};
    for (ULONG_PTR at = 0;
         VirtualQueryEx(hProcess, reinterpret_cast<const void*>(at), &info, sizeof info) != 0;) {
        at = reinterpret_cast<ULONG_PTR>(info.BaseAddress) + info.RegionSize;
        // In another process something else stands there.
        const bool scratched =
            info.AllocationBase == &scratch && GetProcessId(hProcess) == GetCurrentProcessId();
        if (IsToBeRead(info) && !scratched) {
            ScanRange(secret, hProcess, at - info.RegionSize, at, scratch);
        }
    }
}

unsigned ProcessSeed() {
    static const char* const wanted = std::getenv("MVP_SCAN_SEED");
    static const unsigned seed = wanted != nullptr
                                     ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10))
                                     : std::random_device()();
    return seed;
}

unsigned NextSeed() {
    static std::mt19937 seeds(ProcessSeed());
    return static_cast<unsigned>(seeds());
}

// The allocation that the address lies in when that is a single page, else 0.
ULONG_PTR PageOfItsOwn(ULONG_PTR address) {
    MEMORY_BASIC_INFORMATION page = {};
    MEMORY_BASIC_INFORMATION behind = {};
    VirtualQuery(reinterpret_cast<const void*>(address), &page, sizeof page);
    const auto base = reinterpret_cast<ULONG_PTR>(page.AllocationBase);
    VirtualQuery(reinterpret_cast<const void*>(base + kPage), &behind, sizeof behind);
    return address - base < kPage && behind.AllocationBase != page.AllocationBase ? base : 0;
}

const std::string kDigits = "0123456789";
const std::string kEnglish = kDigits + "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

// Letters whose number is the same as 8-bit and as 16-bit character.
const std::string kOthers = [] {
    std::string letters;
    for (int ch = 0xC0; ch <= 0xFF; ++ch) {
        letters += static_cast<char>(ch);
    }
    return letters;
}();

}  // namespace

Secret::Secret(std::vector<std::string> kinds, size_t nLength, unsigned nSeed)
    : m_nSeed(nSeed), m_nLength(nLength) {
    std::mt19937 random(nSeed);
    for (std::string& kind : kinds) {
        std::ranges::transform(kind, kind.begin(), Coded);
        std::shuffle(kind.begin(), kind.end(), random);
    }
    for (size_t i = 0; i < nLength; ++i) {
        m_encoded.at(i) = kinds[i % kinds.size()].at(i / kinds.size());
    }
    for (size_t i = 1; i < nLength; ++i) {
        m_pairs.set(std::uint32_t{static_cast<unsigned char>((*this)[i - 1])} |
                    std::uint32_t{static_cast<unsigned char>((*this)[i])} << 8);
    }
}

Secret Secret::Unheard(const std::function<Secret(unsigned nSeed)>& make) {
    for (;;) {
        Secret secret = make(NextSeed());
        if (ScanMemory(secret).empty()) {
            return secret;
        }
    }
}

Secret::Secret()
    : Secret(Unheard([](unsigned nSeed) {
          return Secret({kEnglish, kOthers}, kLength, nSeed);
      })) {}

Secret Secret::Pin() {
    return Unheard(&OfSeed);
}

Secret Secret::UnlockCode() {
    return Unheard([](unsigned nSeed) { return Secret({kDigits, "ABCDEF", "abcdef"}, 16, nSeed); });
}

Secret Secret::OfSeed(unsigned nSeed) {
    const unsigned length = 4 + nSeed % 10;
    return {{kEnglish, kOthers}, length <= 12 ? length : kLength, nSeed};
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
    MEMORY_BASIC_INFORMATION info = {};
    VirtualQuery(reinterpret_cast<const void*>(hit.address), &info, sizeof info);
    return stream << "characters " << hit.nFirst + 1 << " to " << hit.nFirst + hit.nCount << ", "
                  << (hit.bWide ? "16" : "8") << "-bit, at 0x" << std::hex << hit.address << " of "
                  << info.RegionSize << " bytes at 0x"
                  << reinterpret_cast<ULONG_PTR>(info.BaseAddress) << std::dec;
}

std::vector<MemoryHit> ScanMemory(const Secret& secret, HANDLE hProcess) {
    const UniqueHandle<ScratchTraits> scratch(static_cast<Scratch*>(
        VirtualAlloc(nullptr, sizeof(Scratch), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)));
    if (!scratch) {
        throw std::runtime_error("no memory to scan with");
    }
    ScanAll(secret, hProcess, *scratch.get());
    return {scratch.get()->hits, scratch.get()->hits + scratch.get()->nHits};
}

void ExpectOnPagesOfTheirOwn(const Secret& secret, size_t nPages, const char* pszWhen) {
    const std::vector<MemoryHit> hits = ScanMemory(secret);
    std::set<ULONG_PTR> pages;
    size_t count = 0;
    for (const MemoryHit& hit : hits) {
        count += hit.nCount;
        pages.insert(hit.bWide ? PageOfItsOwn(hit.address) : 0);
    }
    EXPECT_TRUE(pages.size() == nPages && !pages.contains(0) && count == nPages * secret.size())
        << pszWhen << ", " << secret << ": " << testing::PrintToString(hits);
}

SecretWatch::SecretWatch(std::vector<const Secret*> secrets)
    : m_secrets(std::move(secrets)),
      m_freedBlocks({nullptr, "mvpingui.dll", "dlgfw.dll", "comctl32.dll", "user32.dll"},
                    [this](const void* pBlock, size_t nBytes) {
                        for (const Secret* secret : m_secrets) {
                            secret->FindRuns(static_cast<const unsigned char*>(pBlock), nBytes,
                                             [&](size_t, size_t, size_t, bool) { ++m_nFreed; });
                        }
                    }) {}

void SecretWatch::ExpectNothingLeft(const char* pszWhen) const {
    EXPECT_EQ(m_nFreed, 0) << pszWhen << ": parts in blocks that were freed, " << *m_secrets[0];
    for (const Secret* secret : m_secrets) {
        for (const MemoryHit& hit : ScanMemory(*secret)) {
            ADD_FAILURE() << pszWhen << ", " << *secret << ": " << hit;
        }
    }
}

std::ostream& operator<<(std::ostream& stream, const Secret& secret) {
    return stream << "secret " << secret.m_nSeed << " of " << secret.size()
                  << " characters, MVP_SCAN_SEED=" << ProcessSeed();
}

}  // namespace mvp::test
