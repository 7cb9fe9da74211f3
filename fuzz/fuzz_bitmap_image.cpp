// Any bytes as a bitmap: what is let through holds what it promises.
#include <algorithm>
#include <vector>

#include "fuzz_target.h"
#include "platform/bitmap_image.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

void Check(const std::optional<mvp::BitmapImage>& image, Bytes bytes) {
    if (!image.has_value()) {
        return;
    }
    using Packing = mvp::BitmapImage::Packing;
    FUZZ_CHECK(image->nWidth > 0 && image->nWidth <= mvp::kMaxBitmapSide);
    FUZZ_CHECK(image->nHeight > 0 && image->nHeight <= mvp::kMaxBitmapSide);
    const std::int64_t pixels = std::int64_t{image->nWidth} * image->nHeight;
    FUZZ_CHECK(pixels <= mvp::kMaxBitmapPixels);
    FUZZ_CHECK(image->nColours <= image->aColours.size());
    FUZZ_CHECK(!image->pixels.empty() && image->pixels.data() >= bytes.data());
    FUZZ_CHECK(image->pixels.data() + image->pixels.size() <= bytes.data() + bytes.size());
    if (image->packing == Packing::None || image->packing == Packing::Masks) {
        FUZZ_CHECK(static_cast<std::int64_t>(image->pixels.size()) * 8 >= pixels * image->nBits);
    }
}

}  // namespace

void Fuzz(std::string_view data) {
    std::vector<std::uint8_t> file(data.begin(), data.end());
    Check(mvp::ReadBitmapResource(file), file);
    if (file.size() >= 2) {
        // The two letters of a file need no guessing.
        file[0] = 'B';
        file[1] = 'M';
        Check(mvp::ReadBitmapFile(file), file);
    }
}
