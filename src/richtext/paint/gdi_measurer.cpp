#include "richtext/paint/gdi_measurer.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace mvp::richtext {
namespace {

constexpr FontHandle kNoFont = std::numeric_limits<FontHandle>::max();

// The height of the letter x, or half of what the capitals have where the font does not tell.
std::int32_t HeightOfX(HDC hDC, const TEXTMETRICA& metric) {
    constexpr MAT2 kIdentity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    GLYPHMETRICS glyph{};
    if (GetGlyphOutlineA(hDC, 'x', GGO_METRICS, &glyph, 0, nullptr, &kIdentity) != GDI_ERROR &&
        glyph.gmptGlyphOrigin.y > 0) {
        return glyph.gmptGlyphOrigin.y;
    }
    return (metric.tmAscent - metric.tmInternalLeading) / 2;
}

}  // namespace

GdiMeasurer::GdiMeasurer(PictureStore& pictures)
    : m_pictures(pictures), m_dc(CreateCompatibleDC(nullptr)), m_selected(kNoFont) {
    m_hOriginal = GetCurrentObject(m_dc.get(), OBJ_FONT);
    m_base.lfCharSet = DEFAULT_CHARSET;
}

GdiMeasurer::~GdiMeasurer() {
    Drop();
}

// A font that is selected cannot be deleted.
void GdiMeasurer::Drop() {
    SelectObject(m_dc.get(), m_hOriginal);
    m_selected = kNoFont;
    m_byDescription.clear();
    m_aFonts.clear();
}

void GdiMeasurer::SetBaseFont(const LOGFONTA& font) {
    Drop();
    m_base = font;
    m_base.lfFaceName[LF_FACESIZE - 1] = '\0';
}

void GdiMeasurer::DropFontsBeyond(std::size_t nFonts) {
    if (m_aFonts.size() > nFonts) {
        Drop();
    }
}

HFONT GdiMeasurer::FontOf(FontHandle font) const {
    return font < m_aFonts.size() ? m_aFonts[font].font.get() : nullptr;
}

FontHandle GdiMeasurer::OpenFont(const FontDescription& font, FontMetrics& metrics) {
    std::string key(font.face);
    for (const std::int32_t n : {font.nSize, font.nWeight, font.bItalic ? 1 : 0}) {
        key.append(1, '\0').append(std::to_string(n));
    }
    if (const auto known = m_byDescription.find(key); known != m_byDescription.end()) {
        metrics = m_aFonts[known->second].metrics;
        return known->second;
    }

    LOGFONTA logFont{};
    logFont.lfHeight = -std::max(font.nSize, 1);
    logFont.lfWeight = std::clamp(font.nWeight, 1, 1000);
    logFont.lfItalic = font.bItalic ? TRUE : FALSE;
    logFont.lfCharSet = m_base.lfCharSet;
    logFont.lfQuality = m_base.lfQuality;
    const std::string_view face = font.face.empty() ? m_base.lfFaceName : font.face;
    std::memcpy(logFont.lfFaceName, face.data(),
                std::min(face.size(), std::size_t{LF_FACESIZE - 1}));

    const auto handle = static_cast<FontHandle>(m_aFonts.size());
    m_aFonts.push_back({mvp::Font(CreateFontIndirectA(&logFont)), {}, {}});
    Select(handle);
    metrics = m_aFonts[handle].metrics = Measure();
    m_aFonts[handle].advances = ReadGlyphAdvances(m_dc.get());
    m_byDescription.emplace(std::move(key), handle);
    return handle;
}

FontMetrics GdiMeasurer::Measure() const {
    TEXTMETRICA metric{};
    if (!GetTextMetricsA(m_dc.get(), &metric)) {
        return {};
    }
    return {metric.tmAscent, metric.tmDescent, HeightOfX(m_dc.get(), metric)};
}

void GdiMeasurer::Select(FontHandle font) {
    if (m_selected == font) {
        return;
    }
    const HFONT fontHandle = FontOf(font);
    SelectObject(m_dc.get(), fontHandle != nullptr ? fontHandle : m_hOriginal);
    m_selected = font;
}

std::int64_t GdiMeasurer::Width(FontHandle font, std::string_view text) {
    if (font < m_aFonts.size() && m_aFonts[font].advances) {
        return WidthOf(*m_aFonts[font].advances, text);
    }
    Select(font);
    std::int64_t width = 0;
    while (!text.empty()) {
        const std::string_view part = text.substr(0, kMaxTextCall);
        SIZE size{};
        GetTextExtentPoint32A(m_dc.get(), part.data(), static_cast<int>(part.size()), &size);
        width += size.cx;
        text.remove_prefix(part.size());
    }
    return width;
}

std::int32_t GdiMeasurer::TextWidth(FontHandle font, std::string_view text) {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(Width(font, text), std::numeric_limits<std::int32_t>::max()));
}

ImageSize GdiMeasurer::SizeOfImage(const ImageDescription& image) {
    return m_pictures.SizeOf(image);
}

bool GdiMeasurer::StringResource(std::string_view idres, std::string_view module,
                                 std::string& strText) {
    return m_pictures.Resources().LoadText(idres, module, strText);
}

std::int32_t GdiMeasurer::DotsPerInch() {
    return GetDeviceCaps(m_dc.get(), LOGPIXELSY);
}

}  // namespace mvp::richtext
