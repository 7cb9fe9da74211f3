#include <gtest/gtest.h>

#include "plain_dialog.h"
#include "support/caps_lock.h"
#include "support/dialog_driver.h"
#include "support/work_area.h"

namespace mvp::test {
namespace {

TEST(CapsLock, IsSeenByTheDialogAndByTypingAndPutBack) {
    const bool bBefore = CapsLock::IsOn();
    for (const bool bOn : {true, false}) {
        const CapsLock capsLock(bOn);
        EXPECT_EQ(CapsLock::IsOn(), bOn);
        PlainDialog plain;
        DialogDriver driver([&](Dialog& dialog) {
            dialog.RealType(kEdit, "abCD");
            EXPECT_EQ(dialog.Text(kEdit), bOn ? "ABcd" : "abCD");
            bool bSeen = !bOn;
            dialog.Run([&] { bSeen = (GetKeyState(VK_CAPITAL) & 1) != 0; });
            EXPECT_EQ(bSeen, bOn);
            // A user turns it the other way while the dialog is open, and back.
            for (const bool bNow : {!bOn, bOn}) {
                dialog.RealKey(VK_CAPITAL);
                dialog.Run([&] { bSeen = (GetKeyState(VK_CAPITAL) & 1) != 0; });
                EXPECT_EQ(bSeen, bNow);
            }
            dialog.Cancel();
        });
        plain.DoModal();
    }
    EXPECT_EQ(CapsLock::IsOn(), bBefore);
}

TEST(WorkArea, IsAsAskedForAndPutBack) {
    const RECT before = WorkArea::Now();
    const RECT wanted = {before.left, before.top + 40, before.right, before.bottom};
    {
        const WorkArea area(wanted);
        const RECT now = WorkArea::Now();
        EXPECT_TRUE(EqualRect(&now, &wanted));
    }
    const RECT after = WorkArea::Now();
    EXPECT_TRUE(EqualRect(&after, &before));
}

}  // namespace
}  // namespace mvp::test
