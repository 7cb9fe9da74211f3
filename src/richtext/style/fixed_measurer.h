// A measurer without a device: every character is half its font's size wide. Layouts made with it
// are the same on every machine, which is what tests and benchmarks need.
#pragma once

#include "richtext/style/text_measurer.h"

namespace mvp::richtext {

class FixedMeasurer : public TextMeasurer {
public:
    explicit FixedMeasurer(std::int32_t nDpi = 96) : m_nDpi(nDpi) {}

    // The size is all that counts, so it is the handle too.
    FontHandle OpenFont(const FontDescription& font, FontMetrics& metrics) override;
    std::int32_t TextWidth(FontHandle font, std::string_view text) override;
    // The image's index attribute is its width and height, so that a test can choose.
    ImageSize SizeOfImage(const ImageDescription& image) override;
    // The text "[idres]".
    bool StringResource(std::string_view idres, std::string_view module,
                        std::string& strText) override;
    std::int32_t DotsPerInch() override { return m_nDpi; }

private:
    std::int32_t m_nDpi;
};

}  // namespace mvp::richtext
