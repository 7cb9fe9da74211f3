// The change-PIN dialog for every subset of the rules, in every language: nothing overlaps, and
// panel, buttons and frame end where the rules end.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "resources/resource_numbers.h"
#include "support/dialog_driver.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/change_pin_request.h"
#include "ui/dialogs/in_language.h"
#include "ui/policy/rule_lines.h"

namespace mvp::test {
namespace {

class ChangePinLayout : public testing::TestWithParam<std::string> {
protected:
    InLanguage m_language{GetParam()};
    AttachedLibrary m_library;
};

// The parts of the dialog in its client coordinates.
struct Parts {
    explicit Parts(Dialog& d)
        : rules(RectIn(d.Handle(), GetParent(d.Control(IDC_POLICIES_BOX)))),
          box(RectIn(d.Handle(), d.Control(IDC_POLICIES_BOX))),
          panel(RectIn(d.Handle(), GetParent(d.Control(IDC_CHANGE_PIN_PANEL_NEW_EDIT)))),
          place(RectIn(d.Handle(), d.Control(IDC_CHANGE_PIN_MAIN_PANEL_PLACE))),
          ok(d.Rect(IDOK)),
          cancel(d.Rect(IDCANCEL)) {
        GetClientRect(d.Handle(), &client);
    }
    RECT rules, box, panel, place, ok, cancel, client{};
};

void ExpectNothingOverlaps(Dialog& d) {
    std::vector<HWND> shown;
    for (const int nId : {IDC_CHANGE_PIN_PANEL_INSTRUCTION, IDC_CHANGE_PIN_PANEL_CURRENT_LABEL,
                          IDC_CHANGE_PIN_PANEL_CURRENT_EDIT, IDC_CHANGE_PIN_PANEL_NEW_LABEL,
                          IDC_CHANGE_PIN_PANEL_NEW_EDIT, IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL,
                          IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, IDC_POLICIES_BOX, IDOK, IDCANCEL})
        if (d.IsVisible(nId))
            shown.push_back(d.Control(nId));
    RECT client;
    GetClientRect(d.Handle(), &client);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const RECT rect = RectIn(d.Handle(), shown[i]);
        RECT inside;
        IntersectRect(&inside, &rect, &client);
        EXPECT_TRUE(EqualRect(&inside, &rect)) << GetDlgCtrlID(shown[i]);
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_FALSE(Overlap(rect, RectIn(d.Handle(), shown[j])))
                << GetDlgCtrlID(shown[i]) << " and " << GetDlgCtrlID(shown[j]);
    }
}

TEST_P(ChangePinLayout, EndsWhereTheRulesEnd) {
    int nSmallestHeight = 0;
    for (unsigned nSubset = 0; nSubset < kRuleSubsets; ++nSubset) {
        SCOPED_TRACE(nSubset);
        ChangePinRequest request{.rules = RulesOfSubset(nSubset),
                                 .bAskCurrentPin = nSubset % 3 != 0};
        DialogDriver driver([&](Dialog& d) {
            const Parts parts(d);
            EXPECT_EQ(parts.rules.bottom, parts.box.bottom);
            EXPECT_EQ(parts.panel.bottom, parts.rules.bottom);
            EXPECT_EQ(parts.panel.left, parts.place.left);
            EXPECT_EQ(parts.panel.top, parts.place.top);
            // As far below the panel, and above the frame, as the template has them: 7 units.
            RECT gap = {0, 0, 0, 7};
            d.Run([&] { MapDialogRect(d.Handle(), &gap); });
            EXPECT_NEAR(parts.ok.top - parts.panel.bottom, gap.bottom, 1);
            EXPECT_EQ(parts.ok.top, parts.cancel.top);
            EXPECT_LT(parts.ok.right, parts.cancel.left);
            EXPECT_NEAR(parts.client.bottom - parts.ok.bottom, gap.bottom, 1);
            EXPECT_NEAR(parts.client.right - parts.cancel.right, parts.place.left, 1);
            ExpectNothingOverlaps(d);
            if (nSubset == 0)
                nSmallestHeight = parts.client.bottom;
            else
                EXPECT_GT(parts.client.bottom, nSmallestHeight) << "more rules, more lines";
            d.Escape();
        });
        request.Call();
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, ChangePinLayout, testing::Values("en", "fr"));

}  // namespace
}  // namespace mvp::test
