#include "richtext/style/fixed_measurer.h"

#include <algorithm>
#include <limits>

namespace mvp::richtext {

FontHandle FixedMeasurer::OpenFont(const FontDescription& font, FontMetrics& metrics) {
    metrics.nAscent = font.nSize * 8 / 10;
    metrics.nDescent = font.nSize - metrics.nAscent;
    metrics.nXHeight = font.nSize / 2;
    return static_cast<FontHandle>(font.nSize);
}

std::int32_t FixedMeasurer::TextWidth(FontHandle font, std::string_view text) {
    const std::int64_t width = std::int64_t{font} * static_cast<std::int64_t>(text.size()) / 2;
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(width, std::numeric_limits<std::int32_t>::max()));
}

ImageSize FixedMeasurer::SizeOfImage(const ImageDescription& image) {
    const std::int32_t side = std::clamp(image.nIndex, 0, 1000);
    return {side, side};
}

bool FixedMeasurer::StringResource(std::string_view idres, std::string_view /*module*/,
                                   std::string& strText) {
    strText.clear();
    strText.append(1, '[').append(idres).append(1, ']');
    return true;
}

}  // namespace mvp::richtext
