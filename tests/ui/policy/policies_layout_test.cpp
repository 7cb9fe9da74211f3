// Where the lines of the rule panel stand, for every subset of the rules, in every language, with
// the margins of the library's dialogs; and with wide ones, which need more room than the template
// has.
#include <string>

#include <gtest/gtest.h>

#include "ui/policy/rule_panel.h"

namespace mvp::test {
namespace {

// The lefts of the controls as the template has them: the width of dialog units at hand.
int TemplateLeft(HWND hPanel, int nUnits) {
    RECT rect = {nUnits, 0, 0, 0};
    MapDialogRect(hPanel, &rect);
    return rect.left;
}

void ExpectPacked(const HostedPanel& panel, unsigned nSubset, const PanelMargins& margins) {
    const CRect box = panel.RectOf(IDC_POLICIES_BOX);
    LONG y = box.top + margins.nTop + margins.nSpacing;
    CRect above(0, 0, 0, 0);
    for (std::size_t i = 0; i < kRuleLines.size(); ++i) {
        if (!IsInSubset(nSubset, i)) {
            continue;
        }
        const CRect text = panel.RectOf(kRuleLines[i].nText);
        const CRect icon = panel.RectOf(kRuleLines[i].nIcon);
        EXPECT_EQ(text.TopLeft(), CPoint(TemplateLeft(panel.Handle(), 22) + margins.nIndent, y));
        EXPECT_EQ(icon.TopLeft(), CPoint(TemplateLeft(panel.Handle(), 7) + margins.nIndent, y - 1));
        EXPECT_FALSE(Overlap(text, icon)) << i;
        CRect line;
        UnionRect(&line, &text, &icon);
        EXPECT_FALSE(Overlap(line, above)) << i;
        EXPECT_GE(line.left, box.left);
        EXPECT_LE(line.right, box.right);
        above = line;
        y = text.bottom + margins.nSpacing;
    }
    EXPECT_EQ(box.bottom, y) << "one spacing below the last line";
    CRect client;
    GetClientRect(panel.Handle(), &client);
    EXPECT_EQ(client.bottom, box.bottom) << "the panel ends with its box";
}

TEST(PoliciesLayout, PacksEverySubset) {
    for (const char* language : {"en", "fr"}) {
        const AttachedLibrary library(language);
        for (const PanelMargins& margins : {PanelMargins{15, 0, 6}, PanelMargins{10, 3, 6},
                                            PanelMargins{10, 20, 10}, PanelMargins{40, 0, 30}}) {
            for (unsigned subset = 0; subset < kRuleSubsets; ++subset) {
                SCOPED_TRACE(language + std::to_string(subset) + ", indent " +
                             std::to_string(margins.nIndent));
                const PwdRuleArgs rules = RulesOfSubset(subset);
                HostedPanel panel(&rules, margins);
                ExpectPacked(panel, subset, margins);
                panel.Check("", "", "", "");
                const std::string lines = panel.Lines();
                for (std::size_t i = 0; i < lines.size(); ++i) {
                    EXPECT_EQ(lines[i] != '-', IsInSubset(subset, i)) << lines;
                }
            }
        }
    }
}

}  // namespace
}  // namespace mvp::test
