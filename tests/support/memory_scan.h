// Looks for a secret in the memory of a process, to prove that it has been wiped:
//
//     const Secret pin = Secret::Pin();
//     const SecretWatch watch({&pin});
//     ...  // the secret comes and goes
//     watch.ExpectNothingLeft("after Cancel");
//
// Searched for is every run of four of its characters, as 8-bit and as 16-bit text, from any byte
// on, in all memory that is committed, but for files that are mapped to be read; and, by a
// watch, in each block that is freed, when it is.
//
// The scan reads by way of the system's own reading of process memory, so that pages may vanish
// meanwhile, and takes no heap memory while it looks, which might be the very block.
//
// A program that scans is declared with SCANS (mvp_ui_test): heaps that fill what is freed would
// hide everything.
#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <bitset>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "support/freed_blocks.h"

namespace mvp::test {

// Characters in no order, no two alike. Any four in a row are of several kinds (digits and letters
// of English, letters beyond them), as no text, number or address is by chance, and none of the
// runs was in the memory when the secret was made: whatever is found later has come from it.
//
// They are kept encoded, so that neither the program nor the search is found. Another run of the
// program draws others, unless MVP_SCAN_SEED says where to begin, which a failure tells.
class Secret {
public:
    static constexpr size_t kLength = 40;  // the longest
    static constexpr size_t kRun = 4;

    Secret();
    // As long as people's are, 4 to 12 characters, and at times the longest.
    static Secret Pin();
    // Sixteen hexadecimal digits, in both cases.
    static Secret UnlockCode();
    // The PIN of that number, be it in the memory or not.
    static Secret OfSeed(unsigned nSeed);

    unsigned Seed() const { return m_nSeed; }
    size_t size() const { return m_nLength; }
    // One character. Whoever collects them has made a copy.
    char operator[](size_t i) const { return Coded(m_encoded.at(i)); }
    // Writes all of it, without a terminator, and leaves no other copy.
    void CopyTo(void* pTarget, bool bWide = false) const;
    // Calls `found` with the place, the first character, the number of characters and whether they
    // are of 16 bits, for each stretch of a run or more in the bytes.
    template <class Found>
    void FindRuns(const unsigned char* pBytes, size_t nBytes, Found found) const;

    // What it was made from, nothing of itself.
    friend std::ostream& operator<<(std::ostream& stream, const Secret& secret);

private:
    static char Coded(char ch) { return static_cast<char>(ch ^ '\x5A'); }
    // Of characters of each kind in turn.
    Secret(std::vector<std::string> kinds, size_t nLength, unsigned nSeed);
    // Makes one until none of its runs is in the memory.
    static Secret Unheard(const std::function<Secret(unsigned nSeed)>& make);

    unsigned m_nSeed;
    size_t m_nLength;
    std::array<char, kLength> m_encoded{};
    std::bitset<0x10000> m_pairs;  // of characters that follow each other, by their numbers
};

struct MemoryHit {
    ULONG_PTR address = 0;
    size_t nFirst = 0;  // of the secret's characters
    size_t nCount = 0;
    bool bWide = false;

    size_t Step() const { return bWide ? 2 : 1; }
    bool operator==(const MemoryHit&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const MemoryHit& hit);

// At most the first 4,096, by address.
std::vector<MemoryHit> ScanMemory(const Secret& secret, HANDLE hProcess = GetCurrentProcess());

// A failure of the test unless the secret stands as 16-bit text on `nPages` pages, each an
// allocation of its own, which is neither a heap's nor a stack's, and nowhere else. The text there
// may have other characters between its own.
void ExpectOnPagesOfTheirOwn(const Secret& secret, size_t nPages, const char* pszWhen);

// What becomes of secrets while it lives. One at a time.
class SecretWatch {
public:
    explicit SecretWatch(std::vector<const Secret*> secrets);

    // A failure of the test when the library, the framework, the system's controls or this program
    // have freed a block with a run of a secret in it, and one for each place that has one now.
    void ExpectNothingLeft(const char* pszWhen) const;

private:
    std::vector<const Secret*> m_secrets;
    std::atomic<int> m_nFreed = 0;  // stretches of secrets in what was freed
    FreedBlocks m_freedBlocks;
};

}  // namespace mvp::test
