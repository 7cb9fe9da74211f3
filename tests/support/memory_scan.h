// Looks for a text in the memory of a process, to prove that a secret has been wiped:
//
//     const Needle pin("73519");
//     ...  // the secret comes and goes
//     for (const MemoryHit& hit : ScanOwnMemory(pin))
//         ADD_FAILURE() << hit;
//
// All committed, writable memory that the system lists for the process is read; the text is found
// as 8-bit and as 16-bit characters. The test itself must not keep the text where it could be
// found: a literal is safe, being in read-only memory, but a std::string of it is not.
//
// The scan reads by way of the system's own reading of process memory, so that pages may vanish
// meanwhile, and takes no heap memory while it looks: a freed block that holds the text is not
// taken for something else before it was seen.
#pragma once

#include <windows.h>

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace mvp::test {

// The text to look for, kept encoded, so that the scan does not find the search itself.
class Needle {
public:
    // `text` has at least four characters: shorter ones are found by accident.
    explicit Needle(std::string_view text);

    // Whether the bytes at `pBytes` are the text. At least Size(bWide) bytes can be read there.
    bool Matches(const unsigned char* pBytes, bool bWide) const;
    size_t Size(bool bWide) const { return m_encoded.size() * (bWide ? 2 : 1); }
    unsigned char FirstByte() const;

private:
    std::string m_encoded;
};

struct MemoryHit {
    enum class Place {
        kModule,  // the data of an executable or a library
        kHeap,    // a block of a heap, in use or freed
        kStack,
        kOther,
    };

    ULONG_PTR address = 0;
    bool bWide = false;
    Place place = Place::kOther;
    // The module's file name; "C heap", "process heap" or "heap 0x..."; "thread ...". Empty for
    // kOther.
    std::string strOwner;
    bool bFreed = false;  // for kHeap
};

std::ostream& operator<<(std::ostream& stream, const MemoryHit& hit);

// At most the first 4,096 hits, by address.
std::vector<MemoryHit> ScanOwnMemory(const Needle& needle);

// Another process, opened with PROCESS_QUERY_INFORMATION and PROCESS_VM_READ. Its heaps are not
// told from other memory: what lies in them is kOther.
std::vector<MemoryHit> ScanProcess(HANDLE hProcess, const Needle& needle);

}  // namespace mvp::test
