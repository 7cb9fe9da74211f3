// What the dialogs add to their templates in pixels, at each resolution.
#include "platform/resolution.h"

#include "mvpingui/unlock_card_dialog.h"
#include "mvpingui/unlock_result_dialogs.h"
#include "platform/scaled_bitmap.h"
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

int TakeChallenge(void*, CString& strChallenge) {
    strChallenge = "0123456789ABCDEF";
    return 0;
}

int TakeNone(void*, CString&) {
    return 1;
}

TEST_P(Resolution, UnlockDialogMovesAndIndentsByItsPixels) {
    int tops[2] = {};
    int heights[2] = {};
    for (const bool isStatic : {false, true}) {
        CUnlockCardDlg dialog(nullptr, &kAllRules, nullptr, nullptr,
                              isStatic ? &TakeNone : &TakeChallenge, "Reader A");
        const auto look = [&](Dialog& d) {
            tops[isStatic ? 1 : 0] = RectIn(d.Handle(), d.Control(IDC_UNLOCK_CARD_CODE_BOX)).top;
            heights[isStatic ? 1 : 0] = RectIn(nullptr, d.Handle()).Height();
            const auto place = [&](int nId) { return RectIn(d.Handle(), d.Control(nId)); };
            const CRect box = place(IDC_POLICIES_BOX);
            const CRect text = place(IDC_POLICIES_MIN_TEXT);
            const CRect icon = place(IDC_POLICIES_MIN_ICON);
            const CRect next = place(IDC_POLICIES_MAX_TEXT);
            RECT left{22, 0, 0, 0};
            MapDialogRect(d.Handle(), &left);
            EXPECT_EQ(text.left - box.left, left.left + Pixels(3));
            EXPECT_EQ(text.top - box.top, Pixels(10) + Pixels(6));
            EXPECT_EQ(text.top - icon.top, Pixels(1));
            EXPECT_EQ(next.top - text.bottom, Pixels(6));
            EXPECT_LE(Pixels(16), std::min(icon.Width(), icon.Height()) + 1);
            d.Run([&] {
                EXPECT_EQ(IconOf(d.Control(IDC_POLICIES_MIN_ICON)),
                          LoadResourceIcon(IDI_RULE_VIOLATED, Pixels(16)));
                EXPECT_EQ(SmallIconOf(d.Handle()), LoadResourceIcon(IDI_CARD_UNLOCK, Pixels(16)));
            });
            d.Escape();
        };
        EXPECT_EQ(Open(dialog, {look}), IDCANCEL);
    }
    EXPECT_EQ(tops[0] - tops[1], Pixels(100));
    EXPECT_EQ(heights[0] - heights[1], Pixels(100));
}

TEST_P(Resolution, IconsOfResultsFitIt) {
    CUnlockSuccessDlg dialog(nullptr);
    const auto look = [](Dialog& d) {
        d.Run([&] {
            EXPECT_EQ(IconOf(d.Control(IDC_UNLOCK_RESULT_ICON)),
                      LoadResourceIcon(IDI_CARD_UNLOCK, Pixels(32)));
        });
        d.Enter();
    };
    EXPECT_EQ(Open(dialog, {look}), IDOK);
}

TEST_P(Resolution, PicturesAreMadeForTheirPlaces) {
    const auto look = [](Dialog& d) {
        d.Run([&] {
            for (const auto& [control, picture] :
                 {std::pair<int, UINT>{IDC_ENTER_PIN_BANNER, IDB_ENTER_PIN_BANNER},
                  {IDC_ENTER_PIN_PROGRESS, IDB_ENTER_PIN_PROGRESS}}) {
                const CSize place = RectIn(d.Handle(), d.Control(control)).Size();
                BITMAP shown{};
                GetObjectA(reinterpret_cast<HBITMAP>(
                               SendMessageA(d.Control(control), STM_GETIMAGE, IMAGE_BITMAP, 0)),
                           sizeof shown, &shown);
                EXPECT_EQ(CSize(shown.bmWidth, shown.bmHeight), place) << picture;
                const Bitmap large = LoadResourceBitmap(picture + BITMAP_AT_200_PERCENT);
                const PixelSize size = SizeOf(LoadResourceBitmap(picture));
                EXPECT_EQ(SizeOf(large).nWidth, 2 * size.nWidth);
                EXPECT_EQ(SizeOf(large).nHeight, 2 * size.nHeight);
            }
        });
        d.Escape();
    };
    EXPECT_EQ(PinRequest().Ask(look), kRefused);
}

}  // namespace
}  // namespace mvp::test
