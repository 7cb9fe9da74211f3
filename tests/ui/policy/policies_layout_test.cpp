// Where the lines of the rule panel stand, for every subset of the rules, in every language, with
// the margins of the library's dialogs.
#include <string>

#include <gtest/gtest.h>

#include "ui/dialogs/in_language.h"
#include "ui/policy/panel_test.h"

namespace mvp::test {
namespace {

constexpr unsigned kAllRules = kRuleSubsets - 1;

class PoliciesLayout : public testing::TestWithParam<std::string> {
protected:
    InLanguage m_language{GetParam()};
    AttachedLibrary m_library;
};

// The lefts of the controls as the template has them: the width of dialog units at hand.
int TemplateLeft(HWND hPanel, int nUnits) {
    RECT rect = {nUnits, 0, 0, 0};
    MapDialogRect(hPanel, &rect);
    return rect.left;
}

void ExpectPacked(const HostedPanel& panel, unsigned nSubset, const PanelMargins& margins) {
    const HWND hPanel = panel.Handle();
    const RECT box = RectIn(hPanel, panel.Control(IDC_POLICIES_BOX));
    LONG y = box.top + margins.nTop + margins.nSpacing;
    RECT above = {};
    for (std::size_t i = 0; i < kRuleLines.size(); ++i) {
        if (!IsInSubset(nSubset, i))
            continue;
        const RECT text = RectIn(hPanel, panel.Control(kRuleLines[i].nText));
        const RECT icon = RectIn(hPanel, panel.Control(kRuleLines[i].nIcon));
        EXPECT_EQ(text.top, y) << kRuleLines[i].pszName;
        EXPECT_EQ(icon.top, y - 1) << kRuleLines[i].pszName;
        EXPECT_EQ(text.left, TemplateLeft(hPanel, 22) + margins.nIndent);
        EXPECT_EQ(icon.left, TemplateLeft(hPanel, 7) + margins.nIndent);
        EXPECT_FALSE(Overlap(text, icon)) << kRuleLines[i].pszName;
        RECT line;
        UnionRect(&line, &text, &icon);
        EXPECT_FALSE(Overlap(line, above)) << kRuleLines[i].pszName;
        EXPECT_GE(line.left, box.left);
        EXPECT_LE(line.right, box.right);
        above = line;
        y = text.bottom + margins.nSpacing;
    }
    EXPECT_EQ(box.bottom, y) << "one spacing below the last line";
    RECT client;
    GetClientRect(hPanel, &client);
    EXPECT_EQ(client.bottom, box.bottom) << "the panel ends with its box";
}

TEST_P(PoliciesLayout, PacksEverySubset) {
    for (const PanelMargins& margins :
         {PanelMargins{15, 0, 6}, PanelMargins{10, 3, 6}, PanelMargins{10, 20, 10}}) {
        for (unsigned nSubset = 0; nSubset < kRuleSubsets; ++nSubset) {
            SCOPED_TRACE("subset " + std::to_string(nSubset) + ", indent " +
                         std::to_string(margins.nIndent));
            const PwdRuleArgs rules = RulesOfSubset(nSubset);
            HostedPanel panel(&rules, margins);
            ExpectPacked(panel, nSubset, margins);
            panel.Check("", "", "", "");
            const std::string lines = panel.Lines();
            for (std::size_t i = 0; i < lines.size(); ++i)
                EXPECT_EQ(lines[i] != '-', IsInSubset(nSubset, i)) << lines;
        }
    }
}

// Wide margins need more room than the template has.
TEST_P(PoliciesLayout, GrowsForWideSpacing) {
    const PwdRuleArgs rules = RulesOfSubset(kAllRules);
    const PanelMargins margins = {40, 0, 30};
    HostedPanel panel(&rules, margins);
    ExpectPacked(panel, kAllRules, margins);
}

INSTANTIATE_TEST_SUITE_P(Languages, PoliciesLayout, testing::Values("en", "fr"));

}  // namespace
}  // namespace mvp::test
