// Any bytes through the style sheet and the declarations in it.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_check.h"
#include "richtext/style/style_delta.h"
#include "richtext/style/style_sheet.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    using namespace mvp::richtext;
    CStyleSheet sheet;
    sheet.Load(std::string_view(reinterpret_cast<const char*>(pData), nSize));
    FUZZ_CHECK(sheet.Rules().size() <= nSize);
    std::string_view previous;
    for (const CStyleSheet::Rule& rule : sheet.Rules()) {
        FUZZ_CHECK(!rule.selector.empty() && previous <= rule.selector);
        previous = rule.selector;
        FUZZ_CHECK(!sheet.Find(rule.selector).empty());
        if (rule.selector.front() == '.') {
            FUZZ_CHECK(sheet.FindClass(rule.selector.substr(1)).size() ==
                       sheet.Find(rule.selector).size());
        }
        StyleDelta delta;
        ReadDeclarations(rule.block, DefaultSystemColours(), delta);
    }
    sheet.SetLinkRules(1, true, 2, false);
    FUZZ_CHECK(sheet.Find("a:hover").size() == 1);
    return 0;
}
