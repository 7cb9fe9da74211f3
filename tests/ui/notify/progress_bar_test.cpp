#include "notify/progress_bar.h"

#include <windows.h>
#include <uxtheme.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <vssym32.h>

#include "platform/handle.h"
#include "platform/system_library.h"
#include "support/resource_counts.h"

namespace mvp {
namespace {

constexpr DWORD kVisible = WS_POPUP | WS_VISIBLE;

class ProgressBarTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(RegisterProgressBarClass(GetModuleHandleA(nullptr))); }
    void TearDown() override {
        DestroyWindow(m_hBar);
        UnregisterProgressBarClass(GetModuleHandleA(nullptr));
    }

    // In the place of the one before.
    void Create(DWORD style, int width = 204, int height = 15) {
        DestroyWindow(m_hBar);
        m_hBar = CreateWindowExA(0, kProgressBarClass, "", style, 20, 20, width, height, nullptr,
                                 nullptr, GetModuleHandleA(nullptr), nullptr);
        EXPECT_NE(m_hBar, nullptr);
        UpdateWindow(m_hBar);
    }

    // The test serves no queue, so the bar's own timer never comes between.
    void Tick(int times) {
        for (int i = 0; i < times; ++i) {
            SendMessageA(m_hBar, WM_TIMER, kProgressTimer, 0);
        }
    }
    LRESULT Send(UINT nMessage, WPARAM wParam = 0) {
        return SendMessageA(m_hBar, nMessage, wParam, 0);
    }
    // Asks by taking the timer away.
    bool HadTimer() { return KillTimer(m_hBar, kProgressTimer) != FALSE; }

    // The colours on the line halfway down.
    std::vector<COLORREF> MiddleLine() {
        RECT client{};
        GetClientRect(m_hBar, &client);
        const WindowDc dc(m_hBar);
        std::vector<COLORREF> line(static_cast<std::size_t>(client.right));
        for (std::size_t x = 0; x < line.size(); ++x) {
            line[x] = GetPixel(dc.get(), static_cast<int>(x), client.bottom / 2);
        }
        return line;
    }
    // "102-110 92-100": the runs of the highlight colour from the right.
    std::string HighlightedRuns() {
        const std::vector<COLORREF> line = MiddleLine();
        std::string runs;
        for (std::size_t end = 0, x = 0; x < line.size(); x = end + 1) {
            for (end = x; end < line.size() && line[end] == GetSysColor(COLOR_HIGHLIGHT);) {
                ++end;
            }
            runs.insert(0, end > x ? std::to_string(x) + '-' + std::to_string(end) + ' ' : "");
        }
        return runs;
    }

    HWND m_hBar = nullptr;
};

TEST_F(ProgressBarTest, RegistersTheClassAsHostsExpectIt) {
    WNDCLASSEXA info{};
    info.cbSize = sizeof info;
    ASSERT_TRUE(GetClassInfoExA(GetModuleHandleA(nullptr), "VkProgressBar", &info));
    EXPECT_EQ(info.style, 0x4003u);
    EXPECT_TRUE(!info.hIcon && !info.hCursor && !info.hbrBackground);
    EXPECT_FALSE(RegisterProgressBarClass(GetModuleHandleA(nullptr)));

    UnregisterProgressBarClass(GetModuleHandleA(nullptr));
    EXPECT_FALSE(GetClassInfoExA(GetModuleHandleA(nullptr), "VkProgressBar", &info));
    EXPECT_TRUE(RegisterProgressBarClass(GetModuleHandleA(nullptr)));
}

TEST_F(ProgressBarTest, KeepsIntervalAndBlocks) {
    Create(kVisible);
    EXPECT_EQ(Send(WM_USER), 18);
    EXPECT_EQ(Send(WM_USER + 2), 5);

    EXPECT_EQ(Send(WM_USER + 1, 250), 1);
    EXPECT_EQ(Send(WM_USER), 250);

    for (const WPARAM refused : {WPARAM{0}, WPARAM{21}, WPARAM{0x100000005}, ~WPARAM{0}}) {
        EXPECT_EQ(Send(WM_USER + 3, refused), 0) << refused;
        EXPECT_EQ(Send(WM_USER + 2), 5) << refused;
    }
    for (const WPARAM taken : {WPARAM{1}, WPARAM{20}}) {
        EXPECT_EQ(Send(WM_USER + 3, taken), 1);
        EXPECT_EQ(Send(WM_USER + 2), static_cast<LRESULT>(taken));
    }
}

TEST_F(ProgressBarTest, HasATimerWhileItIsEnabled) {
    Create(kVisible);
    EXPECT_TRUE(HadTimer());
    Send(WM_USER + 1, 100);
    EXPECT_TRUE(HadTimer());
    Send(WM_USER + 1, 100);
    EnableWindow(m_hBar, FALSE);
    EXPECT_FALSE(HadTimer());
    Send(WM_USER + 1, 50);
    EXPECT_FALSE(HadTimer());
    EnableWindow(m_hBar, TRUE);
    EXPECT_TRUE(HadTimer());

    Create(kVisible | WS_DISABLED);
    EXPECT_EQ(Send(WM_USER), 18);
    EXPECT_FALSE(HadTimer());
}

TEST_F(ProgressBarTest, MovesWithEveryTickAndStartsAgain) {
    Create(kVisible | kProgressClassicLook);
    EXPECT_EQ(HighlightedRuns(), "2-10 ");
    SendMessageA(m_hBar, WM_TIMER, kProgressTimer + 1, 0);
    Tick(4);
    EXPECT_EQ(HighlightedRuns(), "2-10 ");
    Tick(1);
    EXPECT_EQ(HighlightedRuns(), "12-20 2-10 ");
    Tick(36);
    EXPECT_EQ(HighlightedRuns(), "102-110 92-100 82-90 72-80 62-70 ");
    Send(WM_USER + 3, 2);
    RedrawWindow(m_hBar, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(HighlightedRuns(), "102-110 92-100 ");
    Send(WM_USER + 3, 5);
    Tick(60);
    EXPECT_EQ(HighlightedRuns(), "") << "after 101 ticks the last chunk is beyond the right edge";
    Tick(1);
    EXPECT_EQ(HighlightedRuns(), "2-10 ");
    Tick(4);
    EXPECT_EQ(HighlightedRuns(), "12-20 2-10 ");

    // Disabled, it goes back to the start.
    Tick(41);
    EnableWindow(m_hBar, FALSE);
    EXPECT_EQ(HighlightedRuns(), "2-10 ");
    EnableWindow(m_hBar, TRUE);
    Tick(5);
    EXPECT_EQ(HighlightedRuns(), "12-20 2-10 ");
}

TEST_F(ProgressBarTest, DrawsTheClassicBarSunkenOnTheButtonFaceAndAnyPartOfIt) {
    Create(kVisible | kProgressClassicLook);
    const WindowDc dc(m_hBar);
    EXPECT_EQ(GetPixel(dc.get(), 0, 0), GetSysColor(COLOR_BTNSHADOW));
    EXPECT_EQ(GetPixel(dc.get(), 203, 14), GetSysColor(COLOR_BTNHIGHLIGHT));
    EXPECT_EQ(GetPixel(dc.get(), 100, 7), GetSysColor(COLOR_BTNFACE));
    // The first chunk fills the height inside the edge: lines 2 to 12 of 15.
    for (const int y : {1, 2, 12, 13}) {
        EXPECT_EQ(GetPixel(dc.get(), 5, y) == GetSysColor(COLOR_HIGHLIGHT), y == 2 || y == 12) << y;
    }
    Tick(41);
    const RECT part = {90, 3, 120, 12};
    FillRect(dc.get(), &part, GetSysColorBrush(COLOR_WINDOWTEXT));
    RedrawWindow(m_hBar, &part, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(HighlightedRuns(), "102-110 92-100 82-90 72-80 62-70 ");
}

TEST_F(ProgressBarTest, TakesOutOfPlaceMessages) {
    Create(kVisible | kProgressClassicLook);
    Send(WM_USER + 3, 7);
    Send(WM_CREATE);
    EXPECT_EQ(Send(WM_USER + 2), 7);
    Send(WM_NCDESTROY);
    Tick(3);
    Send(WM_PAINT);
    Send(WM_ENABLE, FALSE);
    EXPECT_EQ(Send(WM_USER + 2), 0);
}

// What the system says of the bar's theme: where chunks go and how wide they are. Nothing when it
// has no theme library.
std::optional<std::pair<RECT, SIZE>> AskTheme(HWND hBar) {
    const auto library = LoadSystemLibrary("UxTheme.dll");
    if (!library) {
        return std::nullopt;
    }
    const auto find = [&](auto* pDeclared, const char* pszName) {
        return FindFunction<decltype(pDeclared)>(library.get(), pszName);
    };
    const WindowDc dc(hBar);
    RECT bar{};
    RECT content{};
    SIZE chunk{};
    GetClientRect(hBar, &bar);
    const HTHEME theme = find(&OpenThemeData, "OpenThemeData")(hBar, L"Progress");
    EXPECT_NE(theme, nullptr) << "this test wants a theme to be switched on";
    find(&GetThemeBackgroundContentRect, "GetThemeBackgroundContentRect")(theme, dc.get(), PP_BAR,
                                                                          0, &bar, &content);
    find(&GetThemePartSize, "GetThemePartSize")(theme, dc.get(), PP_CHUNK, 0, nullptr, TS_TRUE,
                                                &chunk);
    find(&CloseThemeData, "CloseThemeData")(theme);
    return std::pair(content, chunk);
}

// Run a second time by ctest with the theme library taken away.
TEST_F(ProgressBarTest, FollowsTheThemeWhereThereIsOne) {
    Create(kVisible | kProgressClassicLook);
    const std::vector<COLORREF> classic = MiddleLine();
    Create(kVisible);
    const auto facts = AskTheme(m_hBar);
    const std::vector<COLORREF> atStart = MiddleLine();
    EXPECT_EQ(atStart != classic, facts.has_value());
    if (!facts) {
        return;
    }

    // When the head has gone one step, what is new is one chunk beside the first, nothing else.
    const auto& [content, chunk] = *facts;
    const int places = (content.right - content.left) / chunk.cx;
    ASSERT_GT(places, 1);
    Tick(1 + (100 + places - 1) / places);
    const std::vector<COLORREF> oneStep = MiddleLine();
    const int left = content.left + chunk.cx + 2;
    for (int x = 0; x < static_cast<int>(oneStep.size()); ++x) {
        const auto i = static_cast<std::size_t>(x);
        EXPECT_EQ(oneStep[i] != atStart[i], x >= left && x < left + chunk.cx) << x;
    }
}

TEST_F(ProgressBarTest, TakesAnySizeAndKeepsNothing) {
    const auto live = [this](int) {
        for (const DWORD look : {DWORD{0}, kProgressClassicLook}) {
            for (const int width : {0, 1, 3, 4, 5, 204, 20'000}) {
                for (const int height : {0, 1, 4, 5, 6, 15, 300}) {
                    Create(kVisible | look, width, height);
                    Tick(3);
                }
            }
        }
    };
    test::ExpectRoundsKeepNothing(1, 1, live, {.objects = 5});
    // Nor between two paintings of one window.
    Create(kVisible);
    test::ExpectRoundsKeepNothing(1, 1, [this](int) { Tick(50); });
}

}  // namespace
}  // namespace mvp
