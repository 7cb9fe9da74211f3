#include "richtext/rich_text.h"

#include "platform/barrier.h"

namespace mvp::richtext {
namespace {

// Only the allocator throws here, and every member returns whether it could do its work.
constexpr auto kTellCaller = [] {};

}  // namespace

RichText::RichText(TextMeasurer& measurer) : m_measurer(measurer) {
    m_settings.pMeasurer = &measurer;
    m_sheet.Load(std::nullopt);
}

bool RichText::SetText(std::string_view text) noexcept {
    m_bDocumentValid = false;
    return Guarded([&] { m_strText.assign(text.substr(0, kMaxTextLength)); }, kTellCaller);
}

bool RichText::SetStyleSheet(std::optional<std::string_view> sheet) noexcept {
    m_bDocumentValid = false;
    return Guarded([&] { m_sheet.Load(sheet); }, kTellCaller);
}

bool RichText::SetLinkRules(Colour link, bool bLinkUnderline, Colour hover,
                            bool bHoverUnderline) noexcept {
    m_bDocumentValid = false;
    return Guarded([&] { m_sheet.SetLinkRules(link, bLinkUnderline, hover, bHoverUnderline); },
                   kTellCaller);
}

bool RichText::SetSettings(const BuildSettings& settings) noexcept {
    m_bDocumentValid = false;
    return Guarded(
        [&] {
            std::string face(settings.font.face);
            m_settings = settings;
            m_strFace = std::move(face);
            m_settings.font.face = m_strFace;
            m_settings.pMeasurer = &m_measurer;
        },
        kTellCaller);
}

bool RichText::Layout(std::int32_t nWidth) noexcept {
    if (m_bDocumentValid && m_nWidth == nWidth) {
        return true;
    }
    const bool done = Guarded(
        [&] {
            if (!m_bDocumentValid) {
                m_boxes = {};
                m_document = {};
                m_document = BuildDocument(m_strText, m_sheet, m_settings);
            }
            m_boxes = LayoutDocument(m_document, m_measurer, nWidth);
        },
        kTellCaller);
    if (!done) {
        m_boxes = {};
        m_document = {};
    }
    m_bDocumentValid = done;
    m_nWidth = nWidth;
    return done;
}

}  // namespace mvp::richtext
