// Looks for a secret in the memory of this process, to prove that it has been wiped:
//
//     const Secret pin;
//     const SecretWatch watch({&pin});
//     ...  // the secret comes and goes
//     watch.ExpectNothingLeft("after Cancel");
//
// A watch looks at what is freed, when it is, and at what is in the memory at the end: all that is
// committed and writable, for any piece of the secret as 8-bit and as 16-bit characters. A freed
// block whose ends the heap uses for its own records, or that another block overlaps, still counts.
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
#include <iosfwd>
#include <string_view>
#include <vector>

#include "support/freed_blocks.h"

namespace mvp::test {

// Letters and digits in no order, no two alike and none in the order of another secret of the
// program. They are kept encoded, so that neither the program nor the search is found.
class Secret {
public:
    static constexpr size_t kLength = 40;  // of one of the general kind
    // What is searched for: each of the pieces of this length that the secret is made of.
    static constexpr size_t kPiece = 8;

    Secret();
    // Sixteen hexadecimal digits.
    static Secret UnlockCode();
    // The same with a dash after every fourth character but the last: what is shown of it.
    Secret Grouped() const;

    size_t size() const { return m_nLength; }
    // One character. Whoever collects them has made a copy.
    char operator[](size_t i) const { return Coded(m_encoded.at(i)); }
    // Writes all of it, without a terminator, and leaves no other copy.
    void CopyTo(void* pTarget, bool bWide = false) const;
    // Calls `found` with the place and the number of each piece that begins in the first `nFresh`
    // of the bytes, and with whether it is of 16-bit characters.
    template <class Found>
    void FindPieces(const unsigned char* pBytes, size_t nFresh, size_t nBytes, Found found) const;

private:
    static char Coded(char ch) { return static_cast<char>(ch ^ '\x5A'); }
    // Shuffles `characters`.
    Secret(std::string_view characters, size_t nLength);
    void FindFirstOfPieces();

    size_t m_nLength;
    std::array<char, kLength> m_encoded{};
    std::array<int, 256> m_pieceByFirst{};  // what a character begins, or -1
};

struct MemoryHit {
    ULONG_PTR address = 0;
    size_t nFirst = 0;  // of the secret's characters
    size_t nCount = 0;
    bool bWide = false;
    bool bInUse = false;  // in a heap's block that is in use
};

std::ostream& operator<<(std::ostream& stream, const MemoryHit& hit);

// At most the first 4,096, by address; pieces that continue each other are one hit.
std::vector<MemoryHit> ScanOwnMemory(const Secret& secret);

// What becomes of secrets while it lives. One at a time.
class SecretWatch {
public:
    explicit SecretWatch(std::vector<const Secret*> secrets);

    // A failure of the test when the library, the framework, the system's controls or this program
    // have freed a block with a piece of a secret in it, and one for each place that has one now.
    void ExpectNothingLeft(const char* pszWhen) const;

private:
    std::vector<const Secret*> m_secrets;
    std::atomic<int> m_nFreed = 0;  // pieces of secrets in what was freed
    FreedBlocks m_freedBlocks;
};

}  // namespace mvp::test
