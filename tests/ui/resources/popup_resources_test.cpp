// The popup's pictures and texts stand over each other at fixed pixels, so each must leave the
// others their place: what is written on the skin can be read, the bullets blend into it, the icon
// clears the text and hides behind the progress bar, and every text fits where it is written.

#include <windows.h>

#include <algorithm>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "resource_module.h"
#include "resources/resource_numbers.h"

namespace {

// In pixels of the popup's client area.
constexpr int kWrittenHeight = 200;  // of the skin; below it is the bottom band
constexpr POINT kBulletPlaces[] = {{20, 135}, {20, 155}};
constexpr int kBulletSize = 18;
constexpr int kIconLeft = 12;
constexpr int kIconTop = 15;
constexpr RECT kProgressBar = {15, 20, 325, 35};
constexpr int kMessageLeft = 40;      // of its window, which may have a ground of its own
constexpr SIZE kMessage = {275, 98};  // as far as the title
constexpr SIZE kLine = {280, 15};

class PopupResources : public EachLanguage {
protected:
    // The widths of the images of an icon: a group has a head of 6 bytes, and 14 for each image,
    // which begin with its width.
    std::set<int> IconSizes(int number) const {
        const HRSRC group = FindResourceA(m_module.get(), MAKEINTRESOURCEA(number), RT_GROUP_ICON);
        const auto* bytes =
            static_cast<const BYTE*>(LockResource(LoadResource(m_module.get(), group)));
        std::set<int> sizes;
        for (DWORD at = 6; at < SizeofResource(m_module.get(), group); at += 14) {
            sizes.insert(bytes[at]);
        }
        return sizes;
    }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Resources, PopupResources, ::testing::ValuesIn(Languages()),
                         [](const auto& test) { return WithoutHyphen(test.param); });

TEST_P(PopupResources, CanBeReadOnTheSkin) {
    const Pixels skin = m_module.BitmapPixels(IDB_POPUP_SKIN);
    ASSERT_EQ(skin.size.bmWidth, 340);
    ASSERT_EQ(skin.size.bmHeight, 230);
    // On such a grey or lighter, the pure blue of the links has a contrast of 5, and black more.
    int dark = 0;
    for (int i = 0; i < kWrittenHeight * skin.size.bmWidth; ++i) {
        const DWORD word = skin.words[static_cast<std::size_t>(i)];
        dark += std::min({GetRValue(word), GetGValue(word), GetBValue(word)}) < 0xC8;
    }
    EXPECT_EQ(dark, 0) << "pixels where a text is hard to read";
}

TEST_P(PopupResources, LaysBulletsWithoutAnEdgeOnTheSkin) {
    const Pixels skin = m_module.BitmapPixels(IDB_POPUP_SKIN);
    for (const int number : {IDB_POPUP_LINK_BULLET, IDB_POPUP_HELP_BULLET}) {
        const Pixels bullet = m_module.BitmapPixels(number);
        ASSERT_EQ(bullet.size.bmWidth, kBulletSize);
        ASSERT_EQ(bullet.size.bmHeight, kBulletSize);
        int different = 0;
        for (int i = 0; i < kBulletSize; ++i) {
            constexpr int kLast = kBulletSize - 1;
            for (const POINT& at : {POINT{i, 0}, {i, kLast}, {0, i}, {kLast, i}}) {
                for (const POINT& place : kBulletPlaces) {
                    different += bullet.At(at.x, at.y) != skin.At(place.x + at.x, place.y + at.y);
                }
            }
        }
        EXPECT_EQ(different, 0) << "pixels at the edge of bullet " << number;
    }
}

TEST_P(PopupResources, DrawsIconsForEveryResolutionClearOfTheText) {
    for (const int number : {IDI_POPUP_OTP, IDI_POPUP_CARD_ALERT, IDI_POPUP_NO_READER}) {
        EXPECT_EQ(IconSizes(number), (std::set<int>{16, 20, 24, 32, 40, 48, 64, 96})) << number;
        // The message's window has a ground of its own when it shows the password; otherwise its
        // text begins 5 pixels later, of which some stay free. The progress bar stands over the
        // password's icon, and nothing of it may look out.
        const RECT room = number == IDI_POPUP_OTP ? RECT{kProgressBar.left, kProgressBar.top,
                                                         kMessageLeft, kProgressBar.bottom}
                                                  : RECT{0, 0, kMessageLeft + 3, kWrittenHeight};
        const Pixels icon = m_module.IconPixels(number, 32);
        int outside = 0;
        for (int i = 0; i < icon.size.bmWidth * icon.size.bmHeight; ++i) {
            const POINT point = {kIconLeft + i % icon.size.bmWidth,
                                 kIconTop + i / icon.size.bmWidth};
            const bool isDrawn = icon.words[static_cast<std::size_t>(i)] >> 24 != 0;
            outside += isDrawn && !PtInRect(&room, point);
        }
        EXPECT_EQ(outside, 0) << "pixels of icon " << number;
    }
}

TEST_P(PopupResources, SaysEverythingInItsRoom) {
    const std::tuple<int, std::size_t, int, SIZE> texts[] = {
        // Where, its longest, its weight and its room.
        {IDS_POPUP_NO_READER, 255, FW_NORMAL, kMessage},
        {IDS_POPUP_CARD_ALERT, 255, FW_NORMAL, kMessage},
        {IDS_POPUP_TITLE, 63, FW_BOLD, kLine},
        {IDS_POPUP_CLOSE_LINK, 255, FW_NORMAL, kLine},
        {IDS_POPUP_HELP_LINK, 255, FW_NORMAL, kLine},
    };
    const mvp::MemoryDc dc(CreateCompatibleDC(nullptr));
    for (const auto& [number, longest, weight, room] : texts) {
        const std::string text = m_module.Text(number);
        EXPECT_FALSE(text.empty()) << number;
        EXPECT_LE(text.size(), longest) << text;
        EXPECT_EQ(text.find_first_of("<>&"), std::string::npos) << "markup in " << text;
        const mvp::Font font(
            CreateFontA(-11, 0, 0, 0, weight, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, "Tahoma"));
        const mvp::DcSelection selection(dc.get(), font.get());
        RECT taken{0, 0, room.cx, 0};
        DrawTextA(dc.get(), text.c_str(), -1, &taken, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
        EXPECT_TRUE(taken.right <= room.cx && taken.bottom <= room.cy)
            << text << " takes " << taken.right << " x " << taken.bottom;
    }
}
