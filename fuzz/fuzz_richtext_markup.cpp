// Any bytes through the markup reader.
#include "fuzz_target.h"
#include "richtext/markup/markup_reader.h"

void Fuzz(std::string_view data) {
    using namespace mvp::richtext;
    MarkupReader reader(data);
    std::size_t events = 0;
    std::size_t shown = 0;
    bool href = false;
    for (MarkupEvent event = reader.Next(); event.kind != MarkupEvent::Kind::End;
         event = reader.Next()) {
        ++events;
        shown += event.text.size();
        FUZZ_CHECK(!event.text.empty() == (event.kind == MarkupEvent::Kind::Text));
        href = href || (event.kind == MarkupEvent::Kind::Open &&
                        reader.Attributes().Has(AttributeId::Href));
    }
    // Every event takes at least a byte of the text, and none shows more than it took.
    FUZZ_CHECK(events <= data.size());
    FUZZ_CHECK(shown <= data.size());
    // What may open things is in the text for a plain filter to see.
    FUZZ_CHECK(!href || MatchesHrefFilter(data));
}
