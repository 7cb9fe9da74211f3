// What layout asks of the device it lays out for. The painter implements it over a device context;
// tests and benchmarks use FixedMeasurer. All sizes are pixels.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace mvp::richtext {

struct FontDescription {
    std::string_view face;   // empty: the host's own face
    std::int32_t nSize = 0;  // height of the characters without internal leading
    std::int32_t nWeight = 400;
    bool bItalic = false;
};

// The measurer's own name for a font it made.
using FontHandle = std::uint32_t;

struct FontMetrics {
    std::int32_t nAscent = 0;   // of the line, above the baseline
    std::int32_t nDescent = 0;  // of the line, below the baseline
    std::int32_t nXHeight = 0;
};

// What an image tag shows.
enum class ImageKind : std::uint8_t { Bitmap, Icon, ImageList };

// An image tag as written. Everything in it comes from the markup and is not to be trusted: a
// module or a file it names, or a handle, may be anything.
struct ImageDescription {
    ImageKind kind = ImageKind::Bitmap;
    std::string_view idres;
    std::string_view module;  // iddll, or else srcdll
    std::string_view handle;
    std::string_view file;
    std::int32_t nIndex = 0;
};

struct ImageSize {
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
};

class TextMeasurer {
public:
    TextMeasurer() = default;
    TextMeasurer(const TextMeasurer&) = delete;
    TextMeasurer& operator=(const TextMeasurer&) = delete;
    virtual ~TextMeasurer() = default;

    // Called once per distinct font of a document. The description's face is good for the call.
    virtual FontHandle OpenFont(const FontDescription& font, FontMetrics& metrics) = 0;

    // The advance of some bytes in a font. Layout measures word by word and adds up.
    virtual std::int32_t TextWidth(FontHandle font, std::string_view text) = 0;

    // The image's own size; 0 x 0 when there is no such image.
    virtual ImageSize SizeOfImage(const ImageDescription& image) = 0;

    // The text of a string tag: resource idres of a module. False when there is none.
    virtual bool StringResource(std::string_view idres, std::string_view module,
                                std::string& strText) = 0;

    virtual std::int32_t DotsPerInch() = 0;
};

}  // namespace mvp::richtext
