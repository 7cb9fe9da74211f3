// Any bytes through the markup reader.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_check.h"
#include "richtext/markup_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    using namespace mvp::richtext;
    const std::string_view text(reinterpret_cast<const char*>(pData), nSize);
    CMarkupReader reader(text);
    std::size_t nEvents = 0;
    std::size_t nShown = 0;
    bool bHref = false;
    for (MarkupEvent event = reader.Next(); event.kind != MarkupEvent::Kind::End;
         event = reader.Next()) {
        ++nEvents;
        nShown += event.text.size();
        FUZZ_CHECK(!event.text.empty() == (event.kind == MarkupEvent::Kind::Text));
        bHref = bHref || (event.kind == MarkupEvent::Kind::Open &&
                          reader.Attributes().Has(AttributeId::Href));
    }
    // Every event takes at least a byte of the text, and none shows more than it took.
    FUZZ_CHECK(nEvents <= nSize);
    FUZZ_CHECK(nShown <= nSize);
    // What may open things is in the text for a plain filter to see.
    FUZZ_CHECK(!bHref || MatchesHrefFilter(text));
    return 0;
}
