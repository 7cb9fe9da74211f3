#include "platform/bitmap_file.h"

#include <cstring>

#include "platform/barrier.h"

namespace mvp {
namespace {

// The headers as the system knows them, written anew: nothing of the file's own gets through.
struct SystemHeader {
    BITMAPINFOHEADER header{};
    std::array<std::uint32_t, 256> aColours{};  // or the masks
};

SystemHeader HeaderOf(const BitmapImage& image) {
    SystemHeader info;
    info.header.biSize = sizeof info.header;
    info.header.biWidth = image.nWidth;
    info.header.biHeight = image.bTopDown ? -image.nHeight : image.nHeight;
    info.header.biPlanes = 1;
    info.header.biBitCount = image.nBits;
    info.header.biCompression = static_cast<DWORD>(image.packing);
    info.header.biSizeImage = static_cast<DWORD>(image.pixels.size());
    info.header.biClrUsed = image.nColours;
    info.aColours = image.aColours;
    if (image.packing == BitmapImage::Packing::Masks) {
        std::memcpy(info.aColours.data(), image.aMasks.data(), sizeof image.aMasks);
    }
    return info;
}

}  // namespace

std::vector<std::uint8_t> ReadDiskFile(const char* pszFile, std::uint64_t nMost) {
    const FileHandle file(CreateFileA(pszFile, GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (!file || GetFileType(file.get()) != FILE_TYPE_DISK || !GetFileSizeEx(file.get(), &size) ||
        size.QuadPart <= 0 || static_cast<std::uint64_t>(size.QuadPart) > nMost) {
        return {};
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
        return {};
    }
    bytes.resize(read);
    return bytes;
}

Bitmap MakeBitmap(const BitmapImage& image) noexcept {
    const MemoryDc dc(CreateCompatibleDC(nullptr));
    BITMAPINFO target{};
    target.bmiHeader.biSize = sizeof target.bmiHeader;
    target.bmiHeader.biWidth = image.nWidth;
    target.bmiHeader.biHeight = image.nHeight;
    target.bmiHeader.biPlanes = 1;
    target.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    Bitmap bitmap(CreateDIBSection(dc.get(), &target, DIB_RGB_COLORS, &pixels, nullptr, 0));
    const SystemHeader source = HeaderOf(image);
    if (!bitmap ||
        SetDIBits(dc.get(), bitmap.get(), 0, static_cast<UINT>(image.nHeight), image.pixels.data(),
                  reinterpret_cast<const BITMAPINFO*>(&source), DIB_RGB_COLORS) == 0) {
        return {};
    }
    return bitmap;
}

Bitmap LoadBitmapFile(const char* pszFile) noexcept {
    return Guarded(
        Bitmap(),
        [&] {
            const std::vector<std::uint8_t> bytes = ReadDiskFile(pszFile, kMaxBitmapFile);
            const std::optional<BitmapImage> image = ReadBitmapFile(bytes);
            return image ? MakeBitmap(*image) : Bitmap();
        },
        [] {});
}

}  // namespace mvp
