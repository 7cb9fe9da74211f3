#include "richtext/picture_source.h"

#include <array>
#include <charconv>
#include <cstring>
#include <string>

#include "richtext/picture.h"
#include "richtext/text_bytes.h"

namespace mvp::richtext {
namespace {

constexpr std::uint64_t kMaxIconFile = 4 << 20;

// A file on this machine's disk, opened to look at before the system reads it.
struct OpenedFile {
    FileHandle file;
    std::uint64_t nSize = 0;
};

OpenedFile OpenPictureFile(const std::string& strFile) {
    if (!IsLocalPath(strFile)) {
        return {};
    }
    OpenedFile opened;
    opened.file.reset(CreateFileA(strFile.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (!opened.file || GetFileType(opened.file.get()) != FILE_TYPE_DISK ||
        !GetFileSizeEx(opened.file.get(), &size) || size.QuadPart <= 0) {
        return {};
    }
    opened.nSize = static_cast<std::uint64_t>(size.QuadPart);
    return opened;
}

// With a margin for what compilers of resources leave away at the end of the last row.
std::uint64_t BytesOf(const BITMAPINFOHEADER& header, std::uint64_t nHeight) {
    const std::uint64_t nRow =
        (static_cast<std::uint64_t>(header.biWidth) * header.biBitCount + 31) / 32 * 4;
    std::uint64_t nColours = header.biBitCount <= 8 ? std::uint64_t{1} << header.biBitCount : 0;
    if (header.biClrUsed != 0) {
        nColours = header.biClrUsed;
    }
    return header.biSize + nColours * 4 + nRow * nHeight;
}

bool IsKnownFormat(const BITMAPINFOHEADER& header) {
    const WORD nBits = header.biBitCount;
    const bool bDepth =
        nBits == 1 || nBits == 4 || nBits == 8 || nBits == 16 || nBits == 24 || nBits == 32;
    return bDepth && header.biSize >= sizeof header && header.biSize <= 1024 &&
           header.biClrUsed <= 256 && header.biPlanes == 1 &&
           (header.biCompression == BI_RGB || header.biCompression == BI_BITFIELDS);
}

}  // namespace

std::optional<SIZE> ReadBitmapHeader(std::span<const std::uint8_t> bytes, std::uint64_t nBytes) {
    BITMAPINFOHEADER header{};
    if (bytes.size() < sizeof header || nBytes < sizeof header) {
        return std::nullopt;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    const std::int64_t nHeight =
        header.biHeight < 0 ? -std::int64_t{header.biHeight} : std::int64_t{header.biHeight};
    if (!IsKnownFormat(header) || !IsPictureSize(header.biWidth, nHeight) ||
        BytesOf(header, static_cast<std::uint64_t>(nHeight)) > nBytes) {
        return std::nullopt;
    }
    return SIZE{header.biWidth, static_cast<LONG>(nHeight)};
}

Bitmap LoadBitmapFile(std::string_view file) {
    const std::string strFile(file);
    const OpenedFile opened = OpenPictureFile(strFile);
    std::array<std::uint8_t, sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER)> start{};
    DWORD nRead = 0;
    if (!opened.file ||
        !ReadFile(opened.file.get(), start.data(), static_cast<DWORD>(start.size()), &nRead,
                  nullptr) ||
        nRead != start.size() ||
        !ReadBitmapHeader(std::span(start).subspan(sizeof(BITMAPFILEHEADER)),
                          opened.nSize - sizeof(BITMAPFILEHEADER))) {
        return {};
    }
    return Bitmap(static_cast<HBITMAP>(LoadImageA(nullptr, strFile.c_str(), IMAGE_BITMAP, 0, 0,
                                                  LR_LOADFROMFILE | LR_CREATEDIBSECTION)));
}

Bitmap LoadBitmapResource(const CResourceFinder& resources, std::string_view module,
                          std::string_view idres) {
    const CResourceName name(idres);
    const CResourceFinder::Module found = resources.Find(module, name, RT_BITMAP);
    const HRSRC hResource =
        found.hModule != nullptr ? FindResourceA(found.hModule, name.Get(), RT_BITMAP) : nullptr;
    const HGLOBAL hLoaded = hResource != nullptr ? LoadResource(found.hModule, hResource) : nullptr;
    const void* pBytes = hLoaded != nullptr ? LockResource(hLoaded) : nullptr;
    if (pBytes == nullptr) {
        return {};
    }
    const std::span bytes(static_cast<const std::uint8_t*>(pBytes),
                          SizeofResource(found.hModule, hResource));
    if (!ReadBitmapHeader(bytes, bytes.size())) {
        return {};
    }
    return Bitmap(static_cast<HBITMAP>(
        LoadImageA(found.hModule, name.Get(), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
}

Icon LoadIconFile(std::string_view file, SIZE size) {
    const std::string strFile(file);
    if (const OpenedFile opened = OpenPictureFile(strFile);
        !opened.file || opened.nSize > kMaxIconFile) {
        return {};
    }
    return Icon(static_cast<HICON>(LoadImageA(nullptr, strFile.c_str(), IMAGE_ICON, size.cx,
                                              size.cy, LR_LOADFROMFILE | LR_DEFAULTSIZE)));
}

Icon LoadIconResource(const CResourceFinder& resources, std::string_view module,
                      std::string_view idres, SIZE size) {
    const CResourceName name(idres);
    const CResourceFinder::Module found = resources.Find(module, name, RT_GROUP_ICON);
    if (found.hModule == nullptr) {
        return {};
    }
    return Icon(static_cast<HICON>(
        LoadImageA(found.hModule, name.Get(), IMAGE_ICON, size.cx, size.cy, LR_DEFAULTSIZE)));
}

HANDLE ReadHandle(std::string_view value) {
    value = Trim(value);
    const bool bHexadecimal = value.size() > 2 && value[0] == '0' && AsciiLower(value[1]) == 'x';
    if (bHexadecimal) {
        value.remove_prefix(2);
    }
    std::uintptr_t nValue = 0;
    const auto [pEnd, error] =
        std::from_chars(value.data(), value.data() + value.size(), nValue, bHexadecimal ? 16 : 10);
    if (error != std::errc() || pEnd != value.data() + value.size()) {
        return nullptr;
    }
    return reinterpret_cast<HANDLE>(nValue);
}

}  // namespace mvp::richtext
