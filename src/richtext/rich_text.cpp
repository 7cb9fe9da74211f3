#include "richtext/rich_text.h"

#include "platform/barrier.h"

namespace mvp::richtext {
namespace {

// Only the allocator throws here, and every member returns whether it could do its work.
constexpr auto kTellCaller = [] {};

}  // namespace

CRichText::CRichText(CTextMeasurer& measurer) : m_measurer(measurer) {
    m_settings.pMeasurer = &measurer;
    m_sheet.Load(std::nullopt);
}

bool CRichText::SetText(std::string_view text) noexcept {
    m_bDocumentValid = false;
    return Guarded([&] { m_strText.assign(text.substr(0, kMaxTextLength)); }, kTellCaller);
}

bool CRichText::SetStyleSheet(std::optional<std::string_view> sheet) noexcept {
    m_bDocumentValid = false;
    return Guarded([&] { m_sheet.Load(sheet); }, kTellCaller);
}

bool CRichText::SetLinkRules(Colour link, bool bLinkUnderline, Colour hover,
                             bool bHoverUnderline) noexcept {
    m_bDocumentValid = false;
    return Guarded([&] { m_sheet.SetLinkRules(link, bLinkUnderline, hover, bHoverUnderline); },
                   kTellCaller);
}

bool CRichText::SetSettings(const BuildSettings& settings) noexcept {
    m_bDocumentValid = false;
    return Guarded(
        [&] {
            std::string strFace(settings.font.face);
            m_settings = settings;
            m_strFace = std::move(strFace);
            m_settings.font.face = m_strFace;
            m_settings.pMeasurer = &m_measurer;
        },
        kTellCaller);
}

bool CRichText::Layout(std::int32_t nWidth) noexcept {
    if (m_bDocumentValid && m_nWidth == nWidth) {
        return true;
    }
    const bool bDone = Guarded(
        [&] {
            if (!m_bDocumentValid) {
                m_boxes = {};
                m_document = {};
                m_document = BuildDocument(m_strText, m_sheet, m_settings);
            }
            m_boxes = LayoutDocument(m_document, m_measurer, nWidth);
        },
        kTellCaller);
    if (!bDone) {
        m_boxes = {};
        m_document = {};
    }
    m_bDocumentValid = bDone;
    m_nWidth = nWidth;
    return bDone;
}

}  // namespace mvp::richtext
