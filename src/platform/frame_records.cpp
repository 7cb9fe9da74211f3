// How a 32-bit binary finds the records by which an exception leaves a function. The compiler's own
// support code, which every binary has a copy of, knows the functions of its own binary alone: what
// dlgfw.dll throws would never get through mvpingui.dll to whoever catches it, and end the process.
// This stands in for its search, and finds the records of whatever binary a function lies in, by
// that binary's headers. A 64-bit system does the same by itself.
#include <windows.h>

#include <cstdint>
#include <cstring>

#include <unwind.h>

namespace {

// How an address is written down: its size and what it is counted from.
constexpr unsigned kSizeOfForm = 0x0F;
constexpr unsigned kBaseOfForm = 0x70;
constexpr unsigned kFromItsPlace = 0x10;
constexpr bool HasFourBytes(unsigned form) noexcept {
    const unsigned size = form & kSizeOfForm;  // as a pointer, unsigned, signed
    return size == 0x00 || size == 0x03 || size == 0x0B;
}
constexpr unsigned kNoForm = 0xFF;

struct Bytes {
    const std::uint8_t* pBegin;
    const std::uint8_t* pEnd;
};

// The records of the binary that the address lies in; none where it lies in no binary.
Bytes RecordsAround(const void* pAddress) noexcept {
    MEMORY_BASIC_INFORMATION info{};
    if (VirtualQuery(pAddress, &info, sizeof info) == 0 || info.Type != MEM_IMAGE) {
        return {};
    }
    const auto* base = static_cast<const std::uint8_t*>(info.AllocationBase);
    const auto* start = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + start->e_lfanew);
    const auto* section = reinterpret_cast<const IMAGE_SECTION_HEADER*>(
        reinterpret_cast<const std::uint8_t*>(&headers->OptionalHeader) +
        headers->FileHeader.SizeOfOptionalHeader);
    for (WORD i = 0; i < headers->FileHeader.NumberOfSections; ++i, ++section) {
        if (std::memcmp(section->Name, ".eh_fram", sizeof section->Name) == 0) {
            const std::uint8_t* begin = base + section->VirtualAddress;
            return {begin, begin + section->Misc.VirtualSize};
        }
    }
    return {};
}

std::uint32_t Word(const std::uint8_t* p) noexcept {
    std::uint32_t word = 0;
    std::memcpy(&word, p, sizeof word);
    return word;
}

const std::uint8_t* BehindNumber(const std::uint8_t* p) noexcept {
    while ((*p & 0x80) != 0) {
        ++p;
    }
    return p + 1;
}

// How the records that refer to this one write addresses: what stands in it is told by letters.
unsigned AddressForm(const std::uint8_t* pCommon) noexcept {
    const char* letters = reinterpret_cast<const char*>(pCommon + 9);  // length, kind, version
    const auto* p = pCommon + 9 + std::strlen(letters) + 1;
    if (*letters != 'z') {
        return *letters == '\0' ? 0 : kNoForm;
    }
    for (int i = 0; i < 4; ++i) {  // the units of code and data, the register, the letters' part
        p = BehindNumber(p);
    }
    while (*++letters == 'P' || *letters == 'L' || *letters == 'S') {
        if (*letters == 'P' && !HasFourBytes(*p)) {
            return kNoForm;
        }
        p += *letters == 'P' ? 5 : *letters == 'L' ? 1 : 0;
    }
    return *letters == 'R' ? *p : *letters == '\0' ? 0 : kNoForm;
}

// The support code readies itself when its binary throws for the first time, and ends the process
// when another's exception comes by before. To look at the stack readies it, too.
[[gnu::constructor]] void ReadySupport() {
    _Unwind_Backtrace([](_Unwind_Context*, void*) { return _URC_END_OF_STACK; }, nullptr);
}

}  // namespace

extern "C" {

// As the compiler's support code has them.
struct dwarf_eh_bases {  // NOLINT(readability-identifier-naming): the runtime's name
    void* pText;
    void* pData;
    void* pFunction;
};

const void* _Unwind_Find_FDE(void* pAddress, dwarf_eh_bases* pBases) {
    const auto address = reinterpret_cast<std::uintptr_t>(pAddress);
    const Bytes records = RecordsAround(pAddress);
    constexpr std::uint32_t kLeast = 12;  // what refers to a common record, and two addresses
    const std::uint8_t* at = records.pBegin;
    for (std::uint32_t length = 0; records.pEnd - at >= 4; at += 4 + length) {
        length = Word(at);
        if (length > static_cast<std::uint32_t>(records.pEnd - at) - 4) {
            break;
        }
        const std::uint32_t toCommon = length < kLeast ? 0 : Word(at + 4);
        const std::uint8_t* place = at + 8;
        if (toCommon == 0 || toCommon > static_cast<std::uint32_t>(at + 4 - records.pBegin)) {
            continue;
        }
        const unsigned form = AddressForm(at + 4 - toCommon);
        const unsigned base = form & kBaseOfForm;
        if (form == kNoForm || !HasFourBytes(form) || (base != 0 && base != kFromItsPlace)) {
            continue;
        }
        const std::uintptr_t begin =
            Word(place) + (base == 0 ? 0 : reinterpret_cast<std::uintptr_t>(place));
        if (address - begin < Word(place + 4)) {
            *pBases = {nullptr, nullptr, reinterpret_cast<void*>(begin)};
            return at;
        }
    }
    return nullptr;
}

}  // extern "C"
