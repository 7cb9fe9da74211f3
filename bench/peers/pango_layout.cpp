// Pango with FreeType, with fonts of the machine, which it shapes. It has no tables.
#include <memory>

#include <pango/pangoft2.h>

#include "compare_peer.h"
#include "peer_documents.h"

namespace {

struct Release {
    void operator()(void* p) const { g_object_unref(p); }
    void operator()(PangoFontDescription* p) const { pango_font_description_free(p); }
};
template <class T>
using Owned = std::unique_ptr<T, Release>;

}  // namespace

int main() {
    const Owned<PangoFontMap> fonts(pango_ft2_font_map_new());
    const Owned<PangoContext> context(pango_font_map_create_context(fonts.get()));
    const Owned<PangoFontDescription> font(pango_font_description_from_string("Verdana"));
    pango_font_description_set_absolute_size(font.get(), mvp::bench::kPeerFontSize * PANGO_SCALE);
    const auto layOut = [&](const std::string& strMarkup) {
        const Owned<PangoLayout> layout(pango_layout_new(context.get()));
        pango_layout_set_font_description(layout.get(), font.get());
        pango_layout_set_width(layout.get(), mvp::bench::kPeerWidth * PANGO_SCALE);
        pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD);
        pango_layout_set_markup(layout.get(), strMarkup.data(), int(strMarkup.size()));
        int height = 0;
        pango_layout_get_pixel_size(layout.get(), nullptr, &height);
        return height;
    };
    mvp::bench::ComparePeer(
        {std::string("Pango ") + pango_version_string(), mvp::bench::ToPangoMarkup, layOut, false});
    return 0;
}
