// Any bytes through the markup reader.
#include "fuzz_target.h"
#include "richtext/markup/markup_reader.h"

void Fuzz(std::string_view data) {
    using namespace mvp::richtext;
    CMarkupReader reader(data);
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
    FUZZ_CHECK(nEvents <= data.size());
    FUZZ_CHECK(nShown <= data.size());
    // What may open things is in the text for a plain filter to see.
    FUZZ_CHECK(!bHref || MatchesHrefFilter(data));
}
