// Which bitmaps are let through to the system: a good one of each kind, and each with one lie.
#include "platform/bitmap_image.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Kind {
    std::uint32_t nHeader;
    std::int32_t nWidth;
    std::int32_t nHeight;
    std::uint16_t nBits;
    std::uint32_t nPacking;
    std::uint32_t nColours;     // of the header
    std::uint32_t nBeforeRows;  // masks and colours
    std::uint32_t nRows;        // bytes
};

// One good bitmap of every kind; the sizes are reckoned by hand.
constexpr Kind kKinds[] = {
    {12, 3, 2, 1, 0, 0, 6, 8},    {12, 3, 2, 8, 0, 0, 768, 8},    {12, 3, 2, 24, 0, 0, 0, 24},
    {40, 33, 2, 1, 0, 0, 8, 16},  {40, 9, 3, 4, 0, 0, 64, 24},    {40, 5, 2, 8, 0, 0, 1024, 16},
    {40, 5, 2, 8, 0, 3, 12, 16},  {40, 3, -2, 16, 0, 0, 0, 16},   {40, 3, 2, 16, 3, 0, 12, 16},
    {40, 3, 2, 24, 0, 7, 28, 24}, {40, 2, 2, 32, 3, 2, 20, 16},   {52, 2, 2, 32, 3, 0, 0, 16},
    {56, 2, 2, 16, 3, 0, 0, 8},   {64, 2, 2, 24, 0, 0, 0, 16},    {108, 2, -2, 32, 3, 0, 0, 16},
    {124, 2, 2, 32, 0, 0, 0, 16}, {40, 90, 90, 8, 1, 0, 1024, 2}, {40, 90, 90, 4, 2, 2, 8, 2},
};

void Put(Bytes& bytes, std::size_t nAt, std::uint32_t nValue, std::size_t nBytes = 4) {
    for (std::size_t i = 0; i < nBytes; ++i) {
        bytes[nAt + i] = static_cast<std::uint8_t>(nValue >> 8 * i);
    }
}

constexpr std::uint32_t kFileHeader = 14;

Bytes FileOf(const Kind& kind) {
    const std::uint32_t offset = kFileHeader + kind.nHeader + kind.nBeforeRows;
    Bytes bytes(offset + kind.nRows, 0x40);
    Put(bytes, 0, 0x4D42, 2);
    Put(bytes, 10, offset);
    Put(bytes, 14, kind.nHeader);
    const bool core = kind.nHeader == 12;
    const std::size_t side = core ? 2 : 4;
    Put(bytes, 18, static_cast<std::uint32_t>(kind.nWidth), side);
    Put(bytes, 18 + side, static_cast<std::uint32_t>(kind.nHeight), side);
    Put(bytes, 18 + 2 * side, 1, 2);
    Put(bytes, 20 + 2 * side, kind.nBits, 2);
    if (core) {
        return bytes;
    }
    Put(bytes, 30, kind.nPacking);
    Put(bytes, 46, kind.nColours);
    if (kind.nPacking == 3) {
        Put(bytes, 54, 0x7C00);
        Put(bytes, 58, 0x03E0);
        Put(bytes, 62, 0x001F);
    }
    return bytes;
}

TEST(BitmapImage, ReadsEveryKind) {
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(std::to_string(kind.nHeader) + " " + std::to_string(kind.nBits) + " " +
                     std::to_string(kind.nPacking));
        Bytes bytes = FileOf(kind);
        const auto image = ReadBitmapFile(bytes);
        ASSERT_TRUE(image.has_value());
        EXPECT_EQ(image->nWidth, kind.nWidth);
        EXPECT_EQ(image->nHeight, std::abs(kind.nHeight));
        EXPECT_EQ(image->bTopDown, kind.nHeight < 0);
        EXPECT_EQ(image->nBits, kind.nBits);
        EXPECT_EQ(image->pixels.data() + image->pixels.size(), bytes.data() + bytes.size());
        EXPECT_EQ(image->pixels.size(), kind.nRows);
        EXPECT_EQ(image->aMasks[1], kind.nPacking == 3 ? 0x03E0U : 0U);
        EXPECT_EQ(image->aColours[0], kind.nBits <= 8 ? 0x404040U : 0U);
        const bool runLengths = kind.nPacking == 1 || kind.nPacking == 2;
        // A byte less than the rows, room in front of them, a beginning one byte too early, behind
        // the end, and at the very end.
        const std::uint32_t offset = kFileHeader + kind.nHeader + kind.nBeforeRows;
        EXPECT_EQ(ReadBitmapFile(std::span(bytes).first(bytes.size() - 1)).has_value(), runLengths);
        for (const std::uint32_t wrong :
             {0U, 13U, offset - 1, offset + kind.nRows, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
            Put(bytes, 10, wrong);
            EXPECT_FALSE(ReadBitmapFile(bytes).has_value()) << wrong;
        }
        Put(bytes, 10, offset + 4);
        EXPECT_FALSE(ReadBitmapFile(bytes).has_value()) << "rows cut short";
        bytes.resize(bytes.size() + 4);
        EXPECT_TRUE(ReadBitmapFile(bytes).has_value()) << "room in front of the rows";
        EXPECT_TRUE(ReadBitmapResource(std::span(bytes).subspan(kFileHeader)).has_value());
        for (std::size_t n = 0; n < offset; ++n) {
            EXPECT_FALSE(ReadBitmapFile(std::span(bytes).first(n)).has_value()) << n;
        }
    }
}

TEST(BitmapImage, RefusesWhatDoesNotHold) {
    constexpr Kind kColours8 = {40, 5, 2, 8, 0, 0, 1024, 16};
    constexpr Kind kTrueColour = {40, 3, 2, 24, 0, 0, 0, 24};
    constexpr Kind kMasks16 = {40, 3, 2, 16, 3, 0, 12, 16};
    constexpr Kind kRunLengths = {40, 90, 90, 8, 1, 0, 1024, 2};
    const struct {
        const char* pszWhat;
        Kind kind;
        std::size_t nAt;
        std::uint32_t nValue;
    } kLies[] = {
        {"no bitmap", kTrueColour, 0, 0x414D},
        {"a header nobody knows", kTrueColour, 14, 41},
        {"a header longer than the file", kTrueColour, 14, 124},
        {"no width", kTrueColour, 18, 0},
        {"a width below none", kTrueColour, 18, 0xFFFFFFFF},
        {"no height", kTrueColour, 22, 0},
        {"more rows than there are", kTrueColour, 22, 3},
        {"as many from the top", kTrueColour, 22, static_cast<std::uint32_t>(-3)},
        {"the lowest height", kTrueColour, 22, 0x80000000},
        {"rows that overflow", kTrueColour, 18, 0x55555555},
        {"more run lengths than a picture may have", kRunLengths, 22, 0x7FFFFFFF},
        {"a million rows of run lengths", kRunLengths, 22, 1000000},
        {"run lengths from the top", kRunLengths, 22, static_cast<std::uint32_t>(-90)},
        {"two planes", kTrueColour, 26, 2 | 24U << 16},
        {"an odd depth", kTrueColour, 26, 1 | 23U << 16},
        {"more colours than there are", kColours8, 46, 257},
        {"colours that overflow", kColours8, 46, 0xFFFFFFFF},
        {"colours that overflow, in true colour", kTrueColour, 46, 0x40000000},
        {"run lengths of another depth", kTrueColour, 30, 1},
        {"masks of another depth", kTrueColour, 30, 3},
        {"a packing nobody knows", kTrueColour, 30, 4},
        {"no mask", kMasks16, 54, 0},
        {"a mask with a hole", kMasks16, 54, 0x7400},
        {"masks over each other", kMasks16, 54, 0x7FE0},
        {"a mask beyond the depth", kMasks16, 54, 0x10000},
    };
    for (const auto& lie : kLies) {
        Bytes bytes = FileOf(lie.kind);
        ASSERT_TRUE(ReadBitmapFile(bytes).has_value()) << lie.pszWhat;
        Put(bytes, lie.nAt, lie.nValue, lie.nAt == 0 ? 2 : 4);
        EXPECT_FALSE(ReadBitmapFile(bytes).has_value()) << lie.pszWhat;
    }
    // Run lengths promise nothing by their number of bytes: the number of pixels bounds them.
    Kind wide = {40, 32767, 512, 8, 1, 1, 4, 2};
    EXPECT_TRUE(ReadBitmapFile(FileOf(wide)).has_value());
    wide.nHeight = 513;
    EXPECT_FALSE(ReadBitmapFile(FileOf(wide)).has_value());
}

}  // namespace
}  // namespace mvp
