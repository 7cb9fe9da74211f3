// The last stage: draws laid-out boxes. It only reads them, and draws nothing that lies outside of
// the rectangle it is asked for.
//
//     Painter painter(hDC, dirty, measurer, pictures);
//     painter.MoveTo({nLeft, nTop});
//     painter.Paint(text.Document(), text.Boxes(), look);
#pragma once

#include <windows.h>

#include "richtext/layout/layout_boxes.h"
#include "richtext/paint/gdi_measurer.h"
#include "richtext/pictures/picture_store.h"

namespace mvp::richtext {

// What changes about a text without its layout.
struct PaintLook {
    std::uint32_t nHoverLink = kNone;  // drawn the way the mouse is over it
    std::uint32_t nFocusLink = kNone;  // framed by the focus rectangle
    std::uint32_t nClock = 0;          // milliseconds since the animated images began
};

class Painter {
public:
    // `dirty` is in logical coordinates of the context and bounds what is drawn; the context's
    // state is put back at the end of Paint. Measurer and pictures must be the ones the text was
    // measured with.
    Painter(HDC hDC, const RECT& dirty, GdiMeasurer& measurer, PictureStore& pictures);

    // Where the text's top left corner stands.
    void MoveTo(POINT origin) { m_origin = origin; }

    void Paint(const StyledDocument& document, const LayoutBoxes& boxes, const PaintLook& look);

private:
    struct Drawn {
        const StyledDocument& document;
        const LayoutBoxes& boxes;
        const PaintLook& look;
    };

    template <class Box>
    RECT RectOf(const Box& box) const;
    bool Touches(const RECT& area) const;
    void DrawBlock(const Drawn& drawn, const BlockBox& block);
    void DrawLine(const Drawn& drawn, const LineBox& line);
    void DrawFragment(const Drawn& drawn, const Fragment& fragment);
    void DrawTextOf(const Drawn& drawn, const Fragment& fragment, const ComputedStyle& style);
    void DrawRun(int nX, int nY, std::string_view text);
    void DrawSpread(const Font& font, int nX, int nY, std::string_view text, int nExtra);
    void DrawDecorations(const Font& font, const ComputedStyle& style, const RECT& area);
    void DrawInlineBox(const Drawn& drawn, const Fragment& fragment, const ComputedStyle& style);
    void DrawImage(const Drawn& drawn, const Fragment& fragment);
    void DrawRule(const RuleAttributes& rule, const RECT& area);
    void DrawFocus(const Drawn& drawn);
    void SelectFont(const Font& font);
    void SetColour(Colour colour);

    HDC m_hDC;
    RECT m_dirty;
    GdiMeasurer& m_measurer;
    PictureStore& m_pictures;
    POINT m_origin{};
    HFONT m_hFont = nullptr;  // selected
    Colour m_colour = kNoColour;
};

// The description of a document's image, as the pictures know it. Good as long as the document.
ImageDescription DescriptionOf(const StyledDocument& document, const ImageAttributes& image);

}  // namespace mvp::richtext
