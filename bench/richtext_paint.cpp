// What drawing a rich text costs, laid out already: a view of 360 x 640 pixels full of text.
//
// Baseline "DrawTextA": the system's own call with the same words as plain text, in the same font
// and width. Both draw into the same bitmap in memory.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "bench.h"
#include "platform/handle.h"
#include "richtext/control/html_drawer.h"

namespace {

constexpr RECT kView = {0, 0, 360, 640};

LOGFONTA FontDescription() {
    LOGFONTA font{};
    font.lfHeight = -13;
    font.lfCharSet = DEFAULT_CHARSET;
    std::strcpy(font.lfFaceName, "Tahoma");
    return font;
}

std::string Repeated(const std::string& strText, int nTimes) {
    std::string all;
    for (int i = 0; i < nTimes; ++i) {
        all += strText;
    }
    return all;
}

// In a font that DrawText can be given as well; the view is full, and a little more.
const std::string g_strPlain = Repeated(
    "The card in the reader belongs to another user. Please remove it, insert your own card, and "
    "type your PIN when you are asked for it. ",
    22);
const std::string g_strMixed = Repeated(
    "The <b>card</b> in the <i>reader</i> belongs to <font color=red>another user</font>. Please "
    "<u>remove</u> it, insert your <a msg=m>own card</a>, and type your <b>PIN</b> when you are "
    "asked for it. ",
    22);

class Screen {
public:
    Screen()
        : m_dc(CreateCompatibleDC(nullptr)),
          m_bitmap(CreateCompatibleBitmap(mvp::WindowDc(nullptr).get(), kView.right, kView.bottom)),
          m_selection(m_dc.get(), m_bitmap.get()) {}
    HDC Dc() const { return m_dc.get(); }

private:
    mvp::MemoryDc m_dc;
    mvp::Bitmap m_bitmap;
    mvp::DcSelection m_selection;
};

void Clear(HDC hDC, const RECT& area) {
    FillRect(hDC, &area, GetSysColorBrush(COLOR_WINDOW));
}

}  // namespace

int main() {
    const Screen screen;
    const LOGFONTA description = FontDescription();
    const mvp::Font font(CreateFontIndirectA(&description));
    const mvp::DcSelection selection(screen.Dc(), font.get());
    SetBkMode(screen.Dc(), TRANSPARENT);

    const auto drawText = [&] {
        RECT area = kView;
        Clear(screen.Dc(), area);
        DrawTextA(screen.Dc(), g_strPlain.c_str(), -1, &area, DT_WORDBREAK | DT_NOPREFIX);
        GdiFlush();
    };
    CHtmlDrawer plain;
    plain.SetFont(description);
    plain.SetText(g_strPlain);
    CHtmlDrawer mixed;
    mixed.SetFont(description);
    mixed.SetText(g_strMixed);
    const auto draw = [&](CHtmlDrawer& drawer, const RECT& dirty) {
        Clear(screen.Dc(), dirty);
        drawer.Draw(screen.Dc(), kView, dirty);
        GdiFlush();
    };
    std::printf("text height in the view: %ld and %ld pixels\n", plain.Measure(kView.right).cy,
                mixed.Measure(kView.right).cy);

    using mvp::bench::Compare;
    using mvp::bench::Print;
    Print("paint 360 x 640, plain text", "DrawTextA",
          Compare(
              20, [&] { draw(plain, kView); }, drawText));
    Print("paint 360 x 640, mixed styles", "DrawTextA of the words",
          Compare(
              20, [&] { draw(mixed, kView); }, drawText));
    int link = 0;
    Print("repaint a link under the mouse", "paint the whole view",
          Compare(
              20,
              [&] {
                  mixed.SetHoverLink(link = (link + 1) % 8);
                  for (const RECT& area : mixed.LinkRects(link)) {
                      draw(mixed, area);
                  }
              },
              [&] { draw(mixed, kView); }));
    Print("lay out and paint a new text", "DrawTextA of the words",
          Compare(
              20,
              [&] {
                  mixed.SetText(g_strMixed);
                  draw(mixed, kView);
              },
              drawText));
}
