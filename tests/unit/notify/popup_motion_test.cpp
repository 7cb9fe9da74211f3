#include "mvpingui/popup_motion.h"

#include <limits>
#include <map>
#include <random>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();
constexpr PopupScreen kAtTop{0, 40, 1920, 1080, 1920, 1080};
constexpr PopupScreen kAtLeft{40, 0, 1920, 1080, 1920, 1080};
constexpr PopupScreen kAtRight{0, 0, 1880, 1080, 1920, 1080};
constexpr PopupScreen kAtBottom{0, 0, 1920, 1040, 1920, 1080};
constexpr PopupScreen kAt200Percent{0, 0, 1920, 1040, 1920, 1080, 192};
constexpr PopupScreen kScreens[] = {kAtTop, kAtLeft, kAtRight, kAtBottom};
constexpr PopupSize kSkin{101, 61};

// State, the timer that runs, its milliseconds, left, top, alpha.
using Seen = std::tuple<int, int, std::uint32_t, int, int, int>;

// The window, the cursor and the clock: it carries out every order and keeps the timers.
struct Desk {
    explicit Desk(const PopupScreen& first, PopupSize size = kSkin) : screen(first), skin(size) {
        motion.SetSlides(500, 700);
        motion.SetStay(3000);
    }
    Seen Apply(const PopupOrders& orders) {
        std::erase_if(timers,
                      [&](const auto& t) { return (orders.nKillTimers >> t.first & 1) != 0; });
        if (orders.setTimer.id != PopupState::IDT_IDLE) {
            timers[static_cast<int>(orders.setTimer.id)] = orders.setTimer.nMilliseconds;
        }
        nAlpha = orders.alpha.value_or(nAlpha);
        if (orders.bHide) {
            Hide();
        }
        at = orders.bMove ? motion.Bounds(skin, 3, 4) : at;
        nMoves += orders.bMove ? 1 : 0;
        nRedraws += orders.bRedraw ? 1 : 0;
        bShown |= orders.bShow;
        if (orders.bArrived && !bBusy) {
            Apply(motion.StartStay());
        }
        EXPECT_EQ(motion.IsVisible(), bShown);
        const bool isBusy = bBusy && motion.State() == PopupState::IDT_WAITING;
        EXPECT_EQ(timers.size(), bShown && !isBusy ? 1U : 0U);
        const auto [timer, time] =
            timers.empty() ? std::pair<const int, unsigned>{} : *timers.begin();
        return {static_cast<int>(motion.State()), timer, time, at.nLeft, at.nTop, nAlpha};
    }
    Seen Show() { return Apply(motion.Show(screen, skin, bAnimated)); }
    Seen Hide() {
        bShown = false;
        at = {};
        return Apply(motion.Hidden());
    }
    Seen Change(const PopupScreen& changed) {
        screen = changed;
        return Apply(motion.ScreenChanged(screen, skin));
    }
    // The timer that runs, 0 for none, comes to its end so many times.
    Seen Ticks(int nCount) {
        Seen seen = Apply({});
        for (int i = 0; i < nCount; ++i) {
            seen = Apply(motion.Tick(static_cast<unsigned>(std::get<1>(seen)), bInside, skin));
        }
        return seen;
    }

    PopupScreen screen;
    PopupSize skin;
    PopupMotion motion;
    std::map<int, std::uint32_t> timers;
    PopupBounds at;
    bool bAnimated = true, bInside = false, bShown = false;
    bool bBusy = false;  // a progress bar ends the wait
    int nAlpha = 0, nMoves = 0, nRedraws = 0;
};

TEST(PopupMotion, FindsTheTaskbar) {
    EXPECT_EQ(FindTaskbar({0, 0, 1920, 1080, 1920, 1080}), TaskbarSide::TASKBAR_BOTTOM);
    EXPECT_EQ(FindTaskbar({0, 40, 1880, 1080, 1920, 1080}), TaskbarSide::TASKBAR_RIGHT);
    EXPECT_EQ(FindTaskbar({40, 40, 1920, 1080, 1920, 1080}), TaskbarSide::TASKBAR_LEFT);
    EXPECT_EQ(FindTaskbar({-40, 40, 1920, 1080, 1920, 1080}), TaskbarSide::TASKBAR_TOP);
    EXPECT_EQ(FindTaskbar({kLeast, kLeast, kMost, kMost, 1, 1}), TaskbarSide::TASKBAR_BOTTOM);
}

TEST(PopupMotion, SlidesAndFadesStepByStep) {
    const struct {
        PopupScreen screen;
        PopupSize skin;
        int nX, nY, nStepX, nStepY, nSteps;
        std::uint32_t nShow, nHide;  // intervals
        int nPlaceX, nPlaceY;        // without animation
    } cases[] = {
        {kAtTop, kSkin, 1819, -21, 0, 2, 31, 16, 23, 1819, 40},
        {kAtLeft, kSkin, -61, 1019, 2, 0, 51, 10, 14, 40, 1019},
        {kAtRight, kSkin, 1880, 1019, -2, 0, 51, 10, 14, 1779, 1019},
        {kAtBottom, kSkin, 1812, 1034, 0, -2, 31, 16, 23, 1812, 973},
        {kAt200Percent, {202, 122}, 1704, 1028, 0, -4, 31, 16, 23, 1704, 906},
        {kAtRight, {0, 0}, 1880, 1080, 0, 0, 0, 500, 700, 1880, 1080},
        {kAtBottom, {0, 0}, 1913, 1034, 0, 0, 0, 500, 700, 1913, 1034},
        {kAtTop, {1, 1}, 1919, 39, 0, 2, 1, 500, 700, 1919, 40},
        {kAtLeft, {3, 3}, 37, 1077, 2, 0, 2, 500, 700, 40, 1077},
        {kAtBottom, {5000, 5000}, -3087, 1034, 0, -2, 2500, 0, 0, -3087, -3966},
    };
    for (const auto& c : cases) {
        Desk desk(c.screen, c.skin);
        const auto at = [&](int nState, int nTimer, std::uint32_t nTime, int nStep, int nAlpha) {
            return Seen(nState, nTimer, nTime, c.nX + nStep * c.nStepX, c.nY + nStep * c.nStepY,
                        nAlpha);
        };
        EXPECT_EQ(desk.Show(), Seen(0, 1, c.nShow, 0, 0, 0));
        for (int i = 1; i <= c.nSteps; ++i) {
            EXPECT_EQ(desk.Ticks(1), at(1, 1, c.nShow, i, 229));
        }
        EXPECT_EQ(desk.Ticks(1), at(2, 2, 3000, c.nSteps, 229));
        EXPECT_EQ(desk.at.nWidth, c.skin.nWidth + 8);
        EXPECT_EQ(desk.at.nHeight, c.skin.nHeight + 6);
        EXPECT_EQ(desk.Ticks(1), at(2, 3, c.nHide, c.nSteps, 229));
        const bool isFading = desk.motion.Side() == TaskbarSide::TASKBAR_BOTTOM;
        for (int i = 1; i <= (isFading ? 90 : c.nSteps); ++i) {
            EXPECT_EQ(desk.Ticks(1), isFading ? at(3, 3, c.nHide, c.nSteps, (90 - i) * 51 / 20)
                                              : at(3, 3, c.nHide, c.nSteps - i, 229));
        }
        EXPECT_EQ(desk.Ticks(1), at(0, 0, 0, isFading ? c.nSteps : 0, isFading ? 0 : 229));

        desk.bAnimated = false;
        desk.nMoves = 0;
        EXPECT_EQ(desk.Show(), Seen(2, 2, 3000, c.nPlaceX, c.nPlaceY, 229));
        EXPECT_EQ(desk.Ticks(1), Seen(0, 0, 0, 0, 0, 229));
        EXPECT_EQ(desk.nMoves, 1);
    }
}

TEST(PopupMotion, StaysUnderTheCursor) {
    Desk desk(kAtBottom);
    desk.bInside = true;
    desk.Show();
    EXPECT_EQ(desk.Ticks(32), Seen(2, 2, 3000, 1812, 972, 229));
    EXPECT_EQ(desk.Ticks(2), Seen(2, 2, 10, 1812, 972, 229));
    desk.bInside = false;
    EXPECT_EQ(desk.Ticks(3), Seen(3, 3, 23, 1812, 972, 224));
    desk.bInside = true;
    EXPECT_EQ(desk.Ticks(1), Seen(3, 2, 10, 1812, 972, 229));
    EXPECT_EQ(desk.Ticks(1), Seen(2, 2, 10, 1812, 972, 229));
    desk.bInside = false;
    EXPECT_EQ(desk.Ticks(91), Seen(3, 3, 23, 1812, 972, 0));
    desk.bInside = true;  // too late
    EXPECT_EQ(desk.Ticks(1), Seen(0, 0, 0, 1812, 972, 0));

    Desk sliding(kAtLeft);
    sliding.Show();
    sliding.Ticks(53);
    sliding.bInside = true;
    EXPECT_EQ(sliding.Ticks(3), Seen(3, 3, 14, 35, 1019, 229));
}

TEST(PopupMotion, ShowsAndHidesInEveryState) {
    const struct {
        PopupScreen screen;
        int nTicks;
        Seen shown;
    } cases[] = {
        {kAtBottom, 0, {0, 1, 16, 0, 0, 0}},            // no step yet
        {kAtBottom, 5, {1, 1, 16, 1812, 1024, 229}},    // on its way
        {kAtBottom, 32, {2, 2, 3000, 1812, 972, 229}},  // there
        {kAtBottom, 33, {2, 2, 3000, 1812, 972, 229}},  // its stay is over
        {kAtBottom, 80, {3, 2, 3000, 1812, 979, 229}},  // half gone
        {kAtTop, 40, {3, 2, 3000, 1819, 40, 229}},     {kAtLeft, 70, {3, 2, 3000, 40, 1019, 229}},
        {kAtRight, 70, {3, 2, 3000, 1779, 1019, 229}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.nTicks);
        Desk desk(c.screen);
        desk.Show();
        desk.Ticks(c.nTicks);
        desk.timers = {{1, 1}, {2, 2}, {3, 3}};
        EXPECT_EQ(desk.Hide(), Seen(0, 0, 0, 0, 0, desk.nAlpha));
        desk.Show();
        desk.Ticks(c.nTicks);
        EXPECT_EQ(desk.Show(), c.shown);
        EXPECT_EQ(desk.nRedraws, c.nTicks > 0 ? 1 : 0);
        for (int timer = 0; timer < 5; ++timer) {  // of one that does not run, from the queue
            if (!desk.timers.contains(timer)) {
                desk.Apply(desk.motion.Tick(static_cast<unsigned>(timer), false, desk.skin));
            }
        }
        EXPECT_EQ(desk.Apply({}), c.shown);
        EXPECT_EQ(std::get<0>(desk.Ticks(1)), c.nTicks < 32 ? 1 : 2);
    }
}

TEST(PopupMotion, WaitsForItsPassword) {
    Desk desk(kAtTop);
    desk.bBusy = true;
    desk.Show();
    EXPECT_EQ(desk.Apply(desk.motion.StartStay()), Seen(0, 1, 16, 0, 0, 0));
    desk.bAnimated = false;
    EXPECT_EQ(desk.Show(), Seen(2, 0, 0, 1819, 40, 229));
    desk.bAnimated = true;
    desk.Hide();
    desk.Show();
    EXPECT_EQ(desk.Ticks(40), Seen(2, 0, 0, 1819, 41, 229));
    EXPECT_EQ(desk.Change(kAtLeft), Seen(2, 0, 0, 40, 1019, 229));
    desk.bBusy = false;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(desk.Apply(desk.motion.StartStay()), Seen(2, 2, 3000, 40, 1019, 229));
        desk.Ticks(1);
    }
    desk.motion.Created();
    EXPECT_FALSE(desk.motion.IsVisible());
}

// The longest times the popup's own tests hold.
TEST(PopupMotion, TakesAnySize) {
    for (const int worst : {kLeast, kMost}) {
        for (const PopupScreen& screen :
             {PopupScreen{worst, worst, worst, worst, kMost, kMost}, kAtTop, kAtLeft, kAtBottom}) {
            Desk desk(screen, {worst, worst});
            desk.Show();
            desk.Ticks(3);
            desk.Change(kAtRight);
            desk.Hide();
            desk.bAnimated = false;
            desk.Show();
            desk.Change({kLeast, kMost, kMost, kLeast, worst, worst});
        }
    }
}

TEST(PopupMotion, FollowsTheWorkArea) {
    const struct {
        PopupScreen screen;
        int nX, nY, nTicks;  // where the popup is then, and ticks from there
    } cases[] = {
        {kAtRight, 1880, 1019, 40},  // between Show and the first step
        {kAtLeft, 19, 1019, 12},     // 80 pixels on its way
        {kAtLeft, 41, 1019, 0},      // nothing changed: the last step's odd pixel stays
        {{40, 0, 1920, 1000, 1920, 1080}, 40, 939, 0},  // the same side, higher
        {kAtBottom, 1812, 973, 12},                     // fades
        {kAtRight, 1779, 1019, 11},                     // slides out
        {kAtTop, 1819, 40, 0},                          // where all the way is 61
        {kAtLeft, 0, 1019, 1},                          // goes on from there
        {kAtBottom, 1812, 973, 1},                      // fades
    };
    Desk desk(kAtLeft);
    desk.Show();
    for (const auto& c : cases) {
        desk.Change(c.screen);
        EXPECT_EQ(std::pair(desk.at.nLeft, desk.at.nTop), std::pair(c.nX, c.nY));
        desk.Ticks(c.nTicks);
    }
    desk.screen = kAtRight;  // Show comes before the message of the change
    EXPECT_EQ(desk.Show(), Seen(3, 2, 3000, 1779, 1019, 229));
    EXPECT_EQ(desk.Ticks(52), Seen(3, 3, 14, 1881, 1019, 229));  // by 101 pixels, in steps of 2
    EXPECT_EQ(desk.Ticks(1), Seen(0, 0, 0, 1881, 1019, 229));
}

TEST(PopupMotion, EndsInTheRightPlaceWhateverHappens) {
    const std::set<std::tuple<PopupScreen const*, int, int>> places = {
        {&kScreens[0], 1819, 40},  {&kScreens[0], 1819, 41},   {&kScreens[1], 40, 1019},
        {&kScreens[1], 41, 1019},  {&kScreens[2], 1779, 1019}, {&kScreens[2], 1778, 1019},
        {&kScreens[3], 1812, 973}, {&kScreens[3], 1812, 972},  {&kScreens[3], 1812, 979}};
    for (unsigned seed = 0; seed < 1000; ++seed) {
        std::mt19937 random(seed);
        const PopupScreen* screen = &kScreens[seed % 4];
        Desk desk(*screen);
        for (int i = 0; i < 400; ++i) {
            // A hundred orders, then what is left to happen.
            const auto drawn = i < 100 ? random() : i == 100 ? 1U : 7U;
            desk.bInside = (drawn >> 8) % 4 == 3;
            if (drawn % 8 == 0) {
                screen = &kScreens[(drawn >> 16) % 4];
                desk.Change(*screen);
            } else if (drawn % 8 == 1) {
                desk.bAnimated = (drawn >> 16) % 8 != 7;
                desk.Show();
            } else {
                desk.Ticks(static_cast<int>(1 + (drawn >> 16) % 20));
            }
            EXPECT_TRUE(desk.motion.State() != PopupState::IDT_WAITING ||
                        places.contains({screen, desk.at.nLeft, desk.at.nTop}))
                << seed << ": " << desk.at.nLeft << ',' << desk.at.nTop;
        }
        EXPECT_FALSE(desk.bShown) << seed;
    }
}

}  // namespace
}  // namespace mvp
