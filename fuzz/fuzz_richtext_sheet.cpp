// Any bytes through the style sheet and the declarations in it.
#include "fuzz_target.h"
#include "richtext/style/style_delta.h"
#include "richtext/style/style_sheet.h"

void Fuzz(std::string_view data) {
    using namespace mvp::richtext;
    StyleSheet sheet;
    sheet.Load(data);
    FUZZ_CHECK(sheet.Rules().size() <= data.size());
    std::string_view previous;
    for (const StyleSheet::Rule& rule : sheet.Rules()) {
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
}
