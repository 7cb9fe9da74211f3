// The change-PIN dialog for every subset of the rules, in every language: panel, buttons and frame
// end where the rules end. What stands above the rules is where the templates have it.
#include <gtest/gtest.h>

#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"
#include "ui/policy/rule_panel.h"

namespace mvp::test {
namespace {

TEST(ChangePinLayout, EndsWhereTheRulesEnd) {
    for (const char* language : {"en", "fr"}) {
        const AttachedLibrary library(language);
        for (unsigned subset = 0; subset < kRuleSubsets; ++subset) {
            SCOPED_TRACE(language + std::to_string(subset));
            const PwdRuleArgs rules = RulesOfSubset(subset);
            ChangePinRequest request{.pRules = &rules, .bAskCurrentPin = subset % 3 != 0};
            request.Ask([&](Dialog& d) {
                const auto rectOf = [&d](HWND hWnd) { return RectIn(d.Handle(), hWnd); };
                const CRect panel = rectOf(GetParent(d.Control(kNew)));
                const CRect place = rectOf(d.Control(IDC_CHANGE_PIN_MAIN_PANEL_PLACE));
                const CRect ok = rectOf(d.Control(IDOK));
                const CRect cancel = rectOf(d.Control(IDCANCEL));
                CRect client;
                GetClientRect(d.Handle(), &client);
                const CRect lines = rectOf(GetParent(d.Control(IDC_POLICIES_BOX)));
                EXPECT_EQ(lines.TopLeft(),
                          rectOf(d.Control(IDC_CHANGE_PIN_PANEL_POLICIES_PLACE)).TopLeft());
                EXPECT_EQ(panel.bottom, lines.bottom);
                EXPECT_EQ(panel.TopLeft(), place.TopLeft());
                // As far below the panel, and above the frame, as the template has them: 7 units.
                RECT gap = {0, 0, 0, 7};
                d.Run([&] { MapDialogRect(d.Handle(), &gap); });
                EXPECT_NEAR(ok.top - panel.bottom, gap.bottom, 1);
                EXPECT_EQ(ok.top, cancel.top);
                EXPECT_LT(ok.right, cancel.left);
                EXPECT_NEAR(client.bottom - ok.bottom, gap.bottom, 1);
                EXPECT_NEAR(client.right - cancel.right, place.left, 1);
                d.Escape();
            });
        }
    }
}

}  // namespace
}  // namespace mvp::test
