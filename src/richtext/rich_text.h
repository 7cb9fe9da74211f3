// A rich text from its markup to its boxes: what a control holds one of.
//
//     RichText text(measurer);
//     text.SetStyleSheet(std::nullopt);             // the built-in one, which is the default too
//     text.SetText("Card <b>removed</b>");
//     if (text.Layout(300)) { paint(text.Document(), text.Boxes()); }
//
// Layout does only what is needed: the markup is read again when the text, the style sheet or the
// settings changed, the boxes when the width did. No call throws; where memory does not suffice the
// text is empty and Layout returns false. Not for use by several threads at a time.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "richtext/document/document_builder.h"
#include "richtext/layout/layout.h"
#include "richtext/layout/layout_queries.h"

namespace mvp::richtext {

class RichText {
public:
    // The measurer must outlive the object.
    explicit RichText(TextMeasurer& measurer);

    bool SetText(std::string_view text) noexcept;
    std::string_view Text() const { return m_strText; }

    bool SetStyleSheet(std::optional<std::string_view> sheet) noexcept;
    bool SetLinkRules(Colour link, bool bLinkUnderline, Colour hover,
                      bool bHoverUnderline) noexcept;

    // Font, colour and tables the text starts from. The measurer stays.
    bool SetSettings(const BuildSettings& settings) noexcept;

    // Brings document and boxes up to date. Width in pixels.
    bool Layout(std::int32_t nWidth) noexcept;
    // The device changed: fonts and images are measured anew at the next Layout.
    void Invalidate() noexcept { m_bDocumentValid = false; }

    const StyledDocument& Document() const { return m_document; }
    const LayoutBoxes& Boxes() const { return m_boxes; }
    const StyleSheet& Sheet() const { return m_sheet; }

private:
    TextMeasurer& m_measurer;
    std::string m_strText;
    std::string m_strFace;  // what the settings' font points at
    StyleSheet m_sheet;
    BuildSettings m_settings;
    StyledDocument m_document;
    LayoutBoxes m_boxes;
    bool m_bDocumentValid = false;
    std::int32_t m_nWidth = -1;
};

}  // namespace mvp::richtext
