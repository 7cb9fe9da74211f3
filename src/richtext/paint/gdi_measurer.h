// Measures text with the system's own text drawing, for the screen: what layout adds up is what the
// painter will draw. Owns the fonts, which it keeps from text to text, so that setting a similar
// text again makes none anew.
//
//     GdiMeasurer measurer(pictures);
//     RichText text(measurer);
//     ...
//     SelectObject(hDC, measurer.FontOf(handle));
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/handle.h"
#include "richtext/paint/glyph_advances.h"
#include "richtext/pictures/picture_store.h"
#include "richtext/style/text_measurer.h"

namespace mvp::richtext {

// The system measures and draws at most this many bytes at a time.
constexpr std::size_t kMaxTextCall = 8192;

class GdiMeasurer final : public TextMeasurer {
public:
    // The pictures must outlive the object.
    explicit GdiMeasurer(PictureStore& pictures);
    ~GdiMeasurer() override;

    // What a font without a face of its own, or with one the system does not have, is made like:
    // face, character set and quality are taken.
    void SetBaseFont(const LOGFONTA& font);

    // Gives the fonts back when there are many of them. No document measured before may be painted
    // afterwards.
    void DropFontsBeyond(std::size_t nFonts);

    // The measurer's own; null for a handle it did not give out.
    HFONT FontOf(FontHandle font) const;

    FontHandle OpenFont(const FontDescription& font, FontMetrics& metrics) override;
    std::int32_t TextWidth(FontHandle font, std::string_view text) override;
    ImageSize SizeOfImage(const ImageDescription& image) override;
    bool StringResource(std::string_view idres, std::string_view module,
                        std::string& strText) override;
    std::int32_t DotsPerInch() override;

private:
    struct OpenedFont {
        mvp::Font font;
        FontMetrics metrics;
        std::optional<GlyphAdvances> advances;
    };

    std::int64_t Width(FontHandle font, std::string_view text);
    void Select(FontHandle font);
    void Drop();
    FontMetrics Measure() const;

    PictureStore& m_pictures;
    MemoryDc m_dc;
    HGDIOBJ m_hOriginal = nullptr;  // the context's own font
    LOGFONTA m_base{};
    std::vector<OpenedFont> m_aFonts;
    std::unordered_map<std::string, FontHandle> m_byDescription;
    FontHandle m_selected;
};

}  // namespace mvp::richtext
