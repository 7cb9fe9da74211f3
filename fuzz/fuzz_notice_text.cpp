// Any bytes as the message of a notice in the registry: what is shown opens nothing.
#include "fuzz_target.h"
#include "notify/notice_text.h"
#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"
#include "suite/mvcext/pattern_compiler.h"

namespace {

using namespace mvp::richtext;

bool MatchesHref(const char* pszText) {
    static const auto pattern = mvp::CompilePattern(mvp::kHrefPattern, false);
    return pattern->Matches(pszText);
}

// Stands for the one that would look for files and modules.
class WatchfulMeasurer : public FixedMeasurer {
public:
    ImageSize SizeOfImage(const ImageDescription& image) override {
        FUZZ_CHECK(image.file.empty() && image.module.empty() && image.handle.empty());
        return FixedMeasurer::SizeOfImage(image);
    }
    bool StringResource(std::string_view idres, std::string_view module,
                        std::string& strText) override {
        FUZZ_CHECK(module.empty());
        return FixedMeasurer::StringResource(idres, module, strText);
    }
};

}  // namespace

void Fuzz(std::string_view data) {
    const std::optional<std::string> shown = mvp::NoticeText(data, MatchesHref);
    if (!shown.has_value()) {
        return;
    }
    FUZZ_CHECK(shown->size() <= mvp::kNoticeMessageMax);
    FUZZ_CHECK(!MatchesHrefFilter(*shown));
    WatchfulMeasurer measurer;
    RichText text(measurer);
    FUZZ_CHECK(text.SetText(*shown));
    FUZZ_CHECK(text.Layout(200));
    for (const Link& link : text.Document().aLinks) {
        FUZZ_CHECK(!link.bHref && link.href.nLength == 0);
    }
    for (const Decoration& decoration : text.Document().aDecorations) {
        FUZZ_CHECK(decoration.background.nLength == 0);
    }
}
