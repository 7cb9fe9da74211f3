// What the dialogs add to their templates in pixels, at each resolution.
#include "platform/resolution.h"

#include "mvpingui/unlock_card_dialog.h"
#include "support/resource_counts.h"
#include "ui/dialogs/enlarged_dialogs.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

class Resolution : public LibraryTest, public testing::WithParamInterface<int> {
protected:
    static int Pixels(int nPixels) { return PixelsAt(96 * GetParam() / 100, nPixels); }

    const EnlargedDialogs m_at{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Percent, Resolution, testing::Values(100, 150, 200));

TEST_P(Resolution, UnlockDialogMovesAndIndentsByItsPixels) {
    std::array<CRect, 2> boxes;  // with a challenge, and of a card that takes a fixed code
    std::array<CRect, 2> windows;
    const auto answer = +[](void* pResult, CString&) { return *static_cast<int*>(pResult); };
    for (int result : {1, 0}) {
        CUnlockCardDlg dialog(nullptr, &kAllRules, &result, nullptr, answer, "Reader A");
        const auto look = [&](Dialog& d) {
            const auto index = static_cast<std::size_t>(result);
            const auto place = [&](int nId) { return RectIn(d.Handle(), d.Control(nId)); };
            boxes.at(index) = place(IDC_UNLOCK_CARD_CODE_BOX);
            windows.at(index) = RectIn(nullptr, d.Handle());
            const CRect box = place(IDC_POLICIES_BOX);
            const CRect text = place(IDC_POLICIES_MIN_TEXT);
            RECT left{22, 0, 0, 0};
            MapDialogRect(d.Handle(), &left);
            EXPECT_EQ(text.left - box.left, left.left + Pixels(3));
            EXPECT_EQ(text.top - box.top, Pixels(10) + Pixels(6));
            EXPECT_EQ(text.top - place(IDC_POLICIES_MIN_ICON).top, Pixels(1));
            EXPECT_EQ(place(IDC_POLICIES_MAX_TEXT).top - text.bottom, Pixels(6));
            d.Run([&] {
                EXPECT_EQ(IconOf(d.Control(IDC_POLICIES_MIN_ICON)),
                          LoadResourceIcon(IDI_RULE_VIOLATED, Pixels(16)));
                EXPECT_EQ(SmallIconOf(d.Handle()), LoadResourceIcon(IDI_CARD_UNLOCK, Pixels(16)));
            });
            d.Escape();
        };
        EXPECT_EQ(Open(dialog, {look}), IDCANCEL);
    }
    EXPECT_EQ(boxes[0].top - boxes[1].top, Pixels(100));
    EXPECT_EQ(windows[0].Height() - windows[1].Height(), Pixels(100));
}

TEST_P(Resolution, PicturesAreMadeForTheirPlaces) {
    const auto look = [](Dialog& d) {
        d.Run([&] {
            for (const int control : {IDC_ENTER_PIN_BANNER, IDC_ENTER_PIN_PROGRESS}) {
                BITMAP shown{};
                GetObjectA(reinterpret_cast<HBITMAP>(d.Send(control, STM_GETIMAGE)), sizeof shown,
                           &shown);
                const CRect place = RectIn(d.Handle(), d.Control(control));
                EXPECT_EQ(CSize(shown.bmWidth, shown.bmHeight), place.Size());
            }
        });
        d.Escape();
    };
    ExpectRoundsKeepNothing(2, 3, [&](int) {
        EXPECT_EQ(PinRequest().Ask(look), kRefused);
        m_log.Clear();
    });
}

}  // namespace
}  // namespace mvp::test
