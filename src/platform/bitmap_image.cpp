#include "platform/bitmap_image.h"

#include <algorithm>

namespace mvp {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kFileHeader = 14;
constexpr std::uint32_t kCoreHeader = 12;  // the oldest: sides of 16 bits, colours of 3 bytes
constexpr std::uint32_t kInfoHeader = 40;
constexpr std::uint32_t kMaskHeader = 52;  // from here on the header holds the masks itself
constexpr std::uint32_t kOs2Header = 64;   // but in this one, which knows none
constexpr std::uint32_t kKnownHeaders[] = {kCoreHeader, kInfoHeader, kMaskHeader, 56,
                                           kOs2Header,  108,         124};
constexpr std::size_t kMaskBytes = 3 * sizeof(std::uint32_t);

// The caller has made sure that they are there.
std::uint32_t ReadLittle(Bytes bytes, std::size_t nAt, std::size_t nBytes) {
    std::uint32_t value = 0;
    for (std::size_t i = nBytes; i-- > 0;) {
        value = value << 8 | bytes[nAt + i];
    }
    return value;
}

// The header's own fields, and how many bytes stand between its beginning and the pixels.
struct Header {
    BitmapImage image;
    std::uint32_t nSize = 0;
    std::uint64_t nColours = 0;  // in the file, which may be more than a pixel can name
    std::size_t nColourBytes = 4;
    std::size_t nMaskBytes = 0;  // behind the header

    std::uint64_t Length() const { return nSize + nMaskBytes + nColours * nColourBytes; }
};

bool ReadSides(std::int64_t nWidth, std::int64_t nHeight, BitmapImage& image) {
    image.bTopDown = nHeight < 0;
    nHeight = image.bTopDown ? -nHeight : nHeight;
    if (nWidth < 1 || nHeight < 1 || nWidth > kMaxBitmapSide || nHeight > kMaxBitmapSide ||
        nWidth * nHeight > kMaxBitmapPixels) {
        return false;
    }
    image.nWidth = static_cast<std::int32_t>(nWidth);
    image.nHeight = static_cast<std::int32_t>(nHeight);
    return true;
}

bool IsKnownFormat(const Header& header) {
    const std::uint16_t bits = header.image.nBits;
    switch (header.image.packing) {
        case BitmapImage::Packing::None:
            return bits == 1 || bits == 4 || bits == 8 || bits == 24 ||
                   (header.nSize != kCoreHeader && (bits == 16 || bits == 32));
        case BitmapImage::Packing::Rle8:
            return bits == 8 && !header.image.bTopDown;
        case BitmapImage::Packing::Rle4:
            return bits == 4 && !header.image.bTopDown;
        case BitmapImage::Packing::Masks:
            return (bits == 16 || bits == 32) && header.nSize != kOs2Header;
    }
    return false;
}

// Whether its bits stand side by side.
bool IsOneRun(std::uint32_t nMask) {
    const std::uint32_t lowest = nMask & (~nMask + 1);
    return nMask != 0 && (nMask & (nMask + lowest)) == 0;
}

bool ReadMasks(Bytes bytes, BitmapImage& image) {
    std::uint32_t taken = image.nBits == 16 ? 0xFFFF0000 : 0;
    for (std::size_t i = 0; i < image.aMasks.size(); ++i) {
        const std::uint32_t mask = ReadLittle(bytes, kInfoHeader + 4 * i, 4);
        if (!IsOneRun(mask) || (mask & taken) != 0) {
            return false;
        }
        taken |= mask;
        image.aMasks[i] = mask;
    }
    return true;
}

std::optional<Header> ReadCoreHeader(Bytes bytes) {
    Header header;
    header.nSize = kCoreHeader;
    header.nColourBytes = 3;
    header.image.nBits = static_cast<std::uint16_t>(ReadLittle(bytes, 10, 2));
    if (!ReadSides(ReadLittle(bytes, 4, 2), ReadLittle(bytes, 6, 2), header.image) ||
        ReadLittle(bytes, 8, 2) != 1 || !IsKnownFormat(header)) {
        return std::nullopt;
    }
    header.nColours = header.image.nBits <= 8 ? 1U << header.image.nBits : 0;
    return header;
}

std::optional<Header> ReadInfoHeader(Bytes bytes, std::uint32_t nSize) {
    Header header;
    header.nSize = nSize;
    header.image.nBits = static_cast<std::uint16_t>(ReadLittle(bytes, 14, 2));
    header.image.packing = static_cast<BitmapImage::Packing>(ReadLittle(bytes, 16, 4));
    const auto height = static_cast<std::int32_t>(ReadLittle(bytes, 8, 4));
    if (!ReadSides(static_cast<std::int32_t>(ReadLittle(bytes, 4, 4)), height, header.image) ||
        ReadLittle(bytes, 12, 2) != 1 || !IsKnownFormat(header)) {
        return std::nullopt;
    }
    if (header.image.packing == BitmapImage::Packing::Masks) {
        header.nMaskBytes = nSize < kMaskHeader ? kMaskBytes : 0;
        if (bytes.size() < kInfoHeader + kMaskBytes || !ReadMasks(bytes, header.image)) {
            return std::nullopt;
        }
    }
    header.nColours = ReadLittle(bytes, 32, 4);
    if (header.nColours == 0 && header.image.nBits <= 8) {
        header.nColours = 1U << header.image.nBits;
    }
    return header;
}

std::optional<Header> ReadHeader(Bytes bytes) {
    if (bytes.size() < kCoreHeader) {
        return std::nullopt;
    }
    const std::uint32_t size = ReadLittle(bytes, 0, 4);
    if (std::find(std::begin(kKnownHeaders), std::end(kKnownHeaders), size) ==
            std::end(kKnownHeaders) ||
        size > bytes.size()) {
        return std::nullopt;
    }
    return size == kCoreHeader ? ReadCoreHeader(bytes) : ReadInfoHeader(bytes, size);
}

// Those that a pixel can name.
void ReadColours(Bytes bytes, Header& header) {
    BitmapImage& image = header.image;
    if (image.nBits > 8) {
        return;
    }
    image.nColours =
        static_cast<std::uint32_t>(std::min(header.nColours, std::uint64_t{1} << image.nBits));
    const std::size_t first = header.nSize + header.nMaskBytes;
    for (std::uint32_t i = 0; i < image.nColours; ++i) {
        image.aColours[i] = ReadLittle(bytes, first + i * header.nColourBytes, 3);
    }
}

std::uint64_t BytesOfRows(const BitmapImage& image) {
    const std::uint64_t row = (static_cast<std::uint64_t>(image.nWidth) * image.nBits + 31) / 32;
    return row * 4 * static_cast<std::uint64_t>(image.nHeight);
}

// nPixels: where they begin, counted from the header.
std::optional<BitmapImage> ReadFrom(Bytes bytes, Header& header, std::uint64_t nPixels) {
    if (nPixels < header.Length() || nPixels >= bytes.size()) {
        return std::nullopt;
    }
    ReadColours(bytes, header);
    BitmapImage& image = header.image;
    image.pixels = bytes.subspan(static_cast<std::size_t>(nPixels));
    const bool runLengths =
        image.packing == BitmapImage::Packing::Rle8 || image.packing == BitmapImage::Packing::Rle4;
    if (!runLengths) {
        const std::uint64_t rows = BytesOfRows(image);
        if (rows > image.pixels.size()) {
            return std::nullopt;
        }
        image.pixels = image.pixels.first(static_cast<std::size_t>(rows));
    }
    return image;
}

}  // namespace

std::optional<BitmapImage> ReadBitmapFile(Bytes bytes) {
    if (bytes.size() < kFileHeader || bytes[0] != 'B' || bytes[1] != 'M') {
        return std::nullopt;
    }
    const std::uint32_t pixels = ReadLittle(bytes, 10, 4);
    const Bytes rest = bytes.subspan(kFileHeader);
    std::optional<Header> header = ReadHeader(rest);
    return header && pixels >= kFileHeader ? ReadFrom(rest, *header, pixels - kFileHeader)
                                           : std::nullopt;
}

std::optional<BitmapImage> ReadBitmapResource(Bytes bytes) {
    std::optional<Header> header = ReadHeader(bytes);
    return header ? ReadFrom(bytes, *header, header->Length()) : std::nullopt;
}

}  // namespace mvp
