// Any bytes through all stages: a byte that gives the width, a style sheet up to a byte 1 (none:
// the built-in one), the markup.
#include "fuzz_target.h"
#include "richtext/dump.h"
#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"

namespace {

using namespace mvp::richtext;

void Check(const RichText& text, std::string_view markup) {
    const StyledDocument& document = text.Document();
    const LayoutBoxes& boxes = text.Boxes();
    FUZZ_CHECK(document.strText.size() <= markup.size() + (std::size_t{64} << 10));
    FUZZ_CHECK(boxes.aBlocks.size() == document.aTables.size() + document.aCells.size());
    std::size_t fragments = 0;
    for (const LineBox& line : boxes.aLines) {
        FUZZ_CHECK(line.nFirstFragment == fragments);
        fragments += line.nFragments;
        FUZZ_CHECK(line.nHeight >= 0 && line.nWidth >= 0);
        FUZZ_CHECK(line.nBlock == kNone || boxes.aBlocks[line.nBlock].bCell);
    }
    FUZZ_CHECK(fragments == boxes.aFragments.size());
    for (const Fragment& fragment : boxes.aFragments) {
        FUZZ_CHECK(fragment.nWidth >= 0 && fragment.nHeight >= 0);
        FUZZ_CHECK(fragment.nStyle < document.styles.Size());
        FUZZ_CHECK(fragment.nLink == kNone || fragment.nLink < document.aLinks.size());
        FUZZ_CHECK(fragment.kind != FragmentKind::Text ||
                   std::size_t{fragment.nOffset} + fragment.nLength <= document.strText.size());
    }
    for (std::size_t i = 0; i < boxes.aBlocks.size(); ++i) {
        const BlockBox& block = boxes.aBlocks[i];
        FUZZ_CHECK(block.nWidth >= 0 && block.nHeight >= 0);
        FUZZ_CHECK(block.nParent == kNone || block.nParent < i);
        FUZZ_CHECK(block.nDecoration <= document.aDecorations.size());
    }
    for (const Link& link : document.aLinks) {
        FUZZ_CHECK(!link.bHref || MatchesHrefFilter(markup));
    }
}

}  // namespace

void Fuzz(std::string_view data) {
    if (data.empty()) {
        return;
    }
    const std::int32_t width = static_cast<unsigned char>(data[0]) * 3;
    std::string_view rest = data.substr(1);
    const std::size_t end = rest.find('\x01');
    FixedMeasurer measurer;
    RichText text(measurer);
    if (end != std::string_view::npos) {
        FUZZ_CHECK(text.SetStyleSheet(rest.substr(0, end)));
        rest.remove_prefix(end + 1);
    }
    FUZZ_CHECK(text.SetText(rest));
    FUZZ_CHECK(text.Layout(width));
    Check(text, rest);
    const std::string first = DumpLayout(text.Document(), text.Boxes());
    FUZZ_CHECK(text.Layout(width / 4));
    Check(text, rest);
    HitTest(text.Boxes(), width / 8, text.Boxes().nHeight / 2);
    LinkBoxes(text.Boxes(), 0);
    // A layout depends on the width alone, not on the one before.
    FUZZ_CHECK(text.Layout(width));
    FUZZ_CHECK(DumpLayout(text.Document(), text.Boxes()) == first);
}
