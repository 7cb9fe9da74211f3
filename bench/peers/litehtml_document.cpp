// litehtml, measuring as our own benchmark does: every character is half its font's size wide.
#include <cstring>
#include <memory>
#include <vector>

#include <litehtml/litehtml.h>

#include "compare_peer.h"
#include "peer_documents.h"
#include "richtext/style/style_sheet.h"

namespace {

// What the tags are; the library leaves this to its host.
constexpr const char* kTagRules =
    "html, body, h1, h3 {display:block} br {display:inline-block}"
    "table {display:table; border-spacing:2px} tr {display:table-row}"
    "td {display:table-cell; vertical-align:middle; padding:1px}"
    "tbody {display:table-row-group}"
    "b {font-weight:bold} i {font-style:italic} u {text-decoration:underline}";

class FixedContainer final : public litehtml::document_container {
public:
    virtual ~FixedContainer() = default;

    litehtml::uint_ptr create_font(const char* /*pszFace*/, int nSize, int /*nWeight*/,
                                   litehtml::font_style /*italic*/, unsigned /*nDecoration*/,
                                   litehtml::font_metrics* pMetrics) override {
        m_aSize.push_back(nSize);
        pMetrics->height = nSize;
        pMetrics->ascent = nSize * 8 / 10;
        pMetrics->descent = nSize - pMetrics->ascent;
        pMetrics->x_height = nSize / 2;
        pMetrics->draw_spaces = false;
        return m_aSize.size();
    }
    void delete_font(litehtml::uint_ptr /*font*/) override {}
    int text_width(const char* pszText, litehtml::uint_ptr font) override {
        return m_aSize[font - 1] * static_cast<int>(std::strlen(pszText)) / 2;
    }
    int pt_to_px(int nPoints) const override { return nPoints * 96 / 72; }
    int get_default_font_size() const override { return mvp::bench::kPeerFontSize; }
    const char* get_default_font_name() const override { return "Verdana"; }
    void get_client_rect(litehtml::position& client) const override {
        client = {0, 0, mvp::bench::kPeerWidth, mvp::bench::kPeerWidth};
    }
    void get_media_features(litehtml::media_features& media) const override {
        media.type = litehtml::media_type_screen;
        media.width = mvp::bench::kPeerWidth;
    }

    // Nothing is drawn, loaded or clicked here.
    void draw_text(litehtml::uint_ptr, const char*, litehtml::uint_ptr, litehtml::web_color,
                   const litehtml::position&) override {}
    void draw_list_marker(litehtml::uint_ptr, const litehtml::list_marker&) override {}
    void load_image(const char*, const char*, bool) override {}
    void get_image_size(const char*, const char*, litehtml::size&) override {}
    void draw_background(litehtml::uint_ptr, const litehtml::background_paint&) override {}
    void draw_borders(litehtml::uint_ptr, const litehtml::borders&, const litehtml::position&,
                      bool) override {}
    void set_caption(const char*) override {}
    void set_base_url(const char*) override {}
    void link(const std::shared_ptr<litehtml::document>&, const litehtml::element::ptr&) override {}
    void on_anchor_click(const char*, const litehtml::element::ptr&) override {}
    void set_cursor(const char*) override {}
    void transform_text(std::string&, litehtml::text_transform) override {}
    void import_css(std::string&, const std::string&, std::string&) override {}
    void set_clip(const litehtml::position&, const litehtml::border_radiuses&, bool,
                  bool) override {}
    void del_clip() override {}
    std::shared_ptr<litehtml::element> create_element(
        const char*, const litehtml::string_map&,
        const std::shared_ptr<litehtml::document>&) override {
        return nullptr;
    }
    void get_language(std::string&, std::string&) const override {}

private:
    std::vector<int> m_aSize;
};

std::int32_t LayOut(litehtml::context& context, const std::string& strHtml) {
    const std::string sheet(mvp::richtext::BuiltInStyleSheet());
    FixedContainer container;
    litehtml::css rules;
    rules.parse_stylesheet(sheet.c_str(), nullptr, nullptr, nullptr);
    rules.sort_selectors();
    const litehtml::document::ptr document =
        litehtml::document::createFromUTF8(strHtml.c_str(), &container, &context, &rules);
    document->render(mvp::bench::kPeerWidth);
    return document->height();
}

}  // namespace

int main() {
    litehtml::context context;
    context.load_master_stylesheet(kTagRules);
    // The library does not tell its version.
    mvp::bench::ComparePeer({"litehtml", mvp::bench::ToHtml,
                             [&](const std::string& strHtml) { return LayOut(context, strHtml); }});
    return 0;
}
