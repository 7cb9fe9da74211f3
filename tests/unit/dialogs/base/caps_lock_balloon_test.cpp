#include "dialogs/base/caps_lock_balloon.h"

#include <gtest/gtest.h>

namespace mvp {
namespace {

TEST(CapsLockBalloon, OneSystemLacksTheWarning) {
    const struct {
        unsigned long nPlatform, nMajor, nMinor;
        bool bLacks;
    } cases[] = {{2, 5, 0, true},   {1, 5, 0, false}, {2, 4, 0, false}, {2, 5, 1, false},
                 {2, 10, 0, false}, {2, 6, 1, false}, {0, 0, 0, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(LacksCapsLockWarning(c.nPlatform, c.nMajor, c.nMinor), c.bLacks) << c.nMajor;
    }
}

TEST(CapsLockBalloon, StaysOnTheScreen) {
    constexpr int kScreenWidth = 1000;
    const struct {
        const char* pszWhat;
        BalloonAnchor edit;
        BalloonSize balloon;
        BalloonPlace expected;
        int nDpi = 96;
    } cases[] = {
        {"room above", {300, 400, 420}, {200, 100}, {300, 304}},
        {"the last place above", {300, 151, 171}, {200, 100}, {300, 55}},
        {"no room above", {300, 150, 170}, {200, 100}, {300, 162}},
        {"edit at the very top", {300, 0, 20}, {200, 100}, {300, 12}},
        {"edit left of the screen", {-40, 400, 420}, {200, 100}, {0, 304}},
        {"ends at the right edge", {800, 400, 420}, {200, 100}, {800, 304}},
        {"beyond the right edge", {801, 400, 420}, {200, 100}, {800, 304}},
        {"wider than the screen", {10, 400, 420}, {1200, 100}, {0, 304}},
        {"room above at 200 %", {300, 202, 242}, {200, 100}, {300, 110}, 192},
        {"no room above at 200 %", {300, 201, 241}, {200, 100}, {300, 225}, 192},
    };
    for (const auto& c : cases) {
        const BalloonPlace place = PlaceBalloon(c.edit, c.balloon, kScreenWidth, c.nDpi);
        EXPECT_EQ(place.nLeft, c.expected.nLeft) << c.pszWhat;
        EXPECT_EQ(place.nTop, c.expected.nTop) << c.pszWhat;
    }
}

TEST(CapsLockBalloon, OnlyTypingHidesIt) {
    EXPECT_EQ(BalloonActionForKey(0x14), BalloonAction::Check);  // Caps Lock
    for (const unsigned key : {0x08u, 0x09u, 0x10u}) {           // Backspace, Tab, Shift
        EXPECT_EQ(BalloonActionForKey(key), BalloonAction::Leave) << key;
    }
    for (const unsigned key : {unsigned{'A'}, unsigned{'7'}, 0x0Du, 0x1Bu, 0x25u, 0x2Eu, 0x11u}) {
        EXPECT_EQ(BalloonActionForKey(key), BalloonAction::Hide) << key;
    }
}

}  // namespace
}  // namespace mvp
