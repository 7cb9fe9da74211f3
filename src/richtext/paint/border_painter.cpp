#include "richtext/paint/border_painter.h"

#include <algorithm>

namespace mvp::richtext {
namespace {

// One edge of a border: its rectangle and which way it runs.
struct EdgeArea {
    RECT area;
    bool bAcross;
    Colour colour;
    int nWidth;
};

// Dots are squares of the edge's width, dashes three times as long; the gaps are as long as the
// marks. Begins at the first mark that reaches into what is to be painted.
void DrawMarks(HDC hDC, const EdgeArea& edge, int nMark, const RECT& dirty) {
    const int start = edge.bAcross ? edge.area.left : edge.area.top;
    const int end = edge.bAcross ? edge.area.right : edge.area.bottom;
    const int first = std::max(start, static_cast<int>(edge.bAcross ? dirty.left : dirty.top));
    const int last = std::min(end, static_cast<int>(edge.bAcross ? dirty.right : dirty.bottom));
    for (int n = start + (first - start) / (2 * nMark) * 2 * nMark; n < last; n += 2 * nMark) {
        RECT mark = edge.area;
        const int markEnd = std::min(n + nMark, end);
        if (edge.bAcross) {
            mark.left = n;
            mark.right = markEnd;
        } else {
            mark.top = n;
            mark.bottom = markEnd;
        }
        FillArea(hDC, mark, dirty, edge.colour);
    }
}

void DrawEdge(HDC hDC, const EdgeArea& edge, BorderStyle style, const RECT& dirty) {
    if (style == BorderStyle::Dotted) {
        DrawMarks(hDC, edge, edge.nWidth, dirty);
    } else if (style == BorderStyle::Dashed) {
        DrawMarks(hDC, edge, 3 * edge.nWidth, dirty);
    } else {
        FillArea(hDC, edge.area, dirty, edge.colour);
    }
}

// The four edges, each reaching into the corners; top and bottom are drawn last and cover them.
void DrawEdges(HDC hDC, const Border& border, const Edges& width, const RECT& box,
               const RECT& dirty) {
    const EdgeArea edges[] = {
        {{box.left, box.top, box.left + width[kLeft], box.bottom},
         false,
         border.topLeft,
         width[kLeft]},
        {{box.right - width[kRight], box.top, box.right, box.bottom},
         false,
         border.bottomRight,
         width[kRight]},
        {{box.left, box.bottom - width[kBottom], box.right, box.bottom},
         true,
         border.bottomRight,
         width[kBottom]},
        {{box.left, box.top, box.right, box.top + width[kTop]}, true, border.topLeft, width[kTop]},
    };
    for (const EdgeArea& edge : edges) {
        RECT visible{};
        if (edge.nWidth > 0 && IntersectRect(&visible, &edge.area, &dirty)) {
            DrawEdge(hDC, edge, border.style, dirty);
        }
    }
}

RECT Shrunk(const RECT& box, const Edges& by) {
    return {box.left + by[kLeft], box.top + by[kTop], box.right - by[kRight],
            box.bottom - by[kBottom]};
}

// One frame of a pixel inside the other, so that light and dark meet aslant.
void DrawBevel(HDC hDC, const Border& border, const RECT& box, const RECT& dirty) {
    const int widest = *std::max_element(border.width.begin(), border.width.end());
    RECT frame = box;
    for (int n = 0; n < widest; ++n) {
        Edges one = {};
        for (std::size_t edge = 0; edge < one.size(); ++edge) {
            one[edge] = border.width[edge] > n ? 1 : 0;
        }
        DrawEdges(hDC, border, one, frame, dirty);
        frame = Shrunk(frame, one);
    }
}

// Two lines with a gap between them, a third of the width each.
void DrawDouble(HDC hDC, const Border& border, const RECT& box, const RECT& dirty) {
    Edges line = {};
    Edges inset = {};
    for (std::size_t edge = 0; edge < line.size(); ++edge) {
        line[edge] = (border.width[edge] + 1) / 3;
        inset[edge] = border.width[edge] - line[edge];
        if (border.width[edge] < 3) {
            line[edge] = border.width[edge];
            inset[edge] = 0;
        }
    }
    DrawEdges(hDC, border, line, box, dirty);
    DrawEdges(hDC, border, line, Shrunk(box, inset), dirty);
}

}  // namespace

void FillArea(HDC hDC, const RECT& area, const RECT& dirty, Colour colour) {
    RECT visible{};
    if (colour == kNoColour || !IntersectRect(&visible, &area, &dirty)) {
        return;
    }
    // Filling by way of an empty text needs no brush.
    SetBkColor(hDC, colour & 0xFFFFFF);
    ExtTextOutA(hDC, 0, 0, ETO_OPAQUE, &visible, "", 0, nullptr);
}

void DrawBorder(HDC hDC, const Border& border, const RECT& box, const RECT& dirty) {
    if (border.style == BorderStyle::None) {
        return;
    }
    if (border.style == BorderStyle::Double) {
        DrawDouble(hDC, border, box, dirty);
    } else if (border.style == BorderStyle::Solid && border.topLeft != border.bottomRight) {
        DrawBevel(hDC, border, box, dirty);
    } else {
        DrawEdges(hDC, border, border.width, box, dirty);
    }
}

}  // namespace mvp::richtext
