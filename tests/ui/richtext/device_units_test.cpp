// Lengths on a real device: its dots per inch and its fonts decide what a unit comes to.
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "../support/child_process.h"
#include "canvas.h"

namespace mvp::test {
namespace {

constexpr int kFontHeight = 30;

int HeightOfX() {
    const Canvas canvas(60, 60);
    const Font font(CreateFontA(-kFontHeight, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                                DEFAULT_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0, "Tahoma"));
    const DcSelection selection(canvas.Dc(), font.get());
    SetBkMode(canvas.Dc(), TRANSPARENT);
    ExtTextOutA(canvas.Dc(), 5, 5, 0, nullptr, "x", 1, nullptr);
    return static_cast<int>(canvas.Ink().bottom - canvas.Ink().top);
}

// For a screen of so many dots per inch.
void ExpectUnits(int nDots) {
    const std::pair<const char*, int> kCases[] = {
        {"7px", 7},
        {"3em", 3 * kFontHeight},
        {"5ex", 5 * HeightOfX()},
        {"2in", 2 * nDots},
        {"5cm", static_cast<int>(5 * nDots / 2.54)},
        {"50mm", static_cast<int>(50 * nDots / 25.4)},
        {"31pt", 31 * nDots / 72},
        {"7pc", 7 * nDots / 6},
    };
    for (const auto& [length, pixels] : kCases) {
        TestDrawer drawer(std::string("<font size=30px><hr width=") + length + "></font>");
        drawer.Measure(2000);
        EXPECT_EQ(drawer.RichText().Boxes().aFragments.at(0).nWidth, pixels) << length;
    }
}

TEST(DeviceUnits, AreThoseOfTheScreen) {
    ExpectUnits(GetDeviceCaps(WindowDc(nullptr).get(), LOGPIXELSY));
}

TEST(DeviceUnits, DISABLED_AreThoseOf144Dots) {
    ASSERT_EQ(GetDeviceCaps(WindowDc(nullptr).get(), LOGPIXELSY), 144);
    ExpectUnits(144);
}

// Sets the resolution of processes that are started, and puts it back.
class Resolution {
public:
    explicit Resolution(DWORD dwDots) {
        DWORD bytes = sizeof m_dwBefore;
        RegGetValueA(HKEY_CURRENT_USER, kKey, kValue, RRF_RT_REG_DWORD, nullptr, &m_dwBefore,
                     &bytes);
        Set(dwDots);
    }
    Resolution(const Resolution&) = delete;
    Resolution& operator=(const Resolution&) = delete;
    ~Resolution() {
        if (m_dwBefore != 0) {
            Set(m_dwBefore);
        } else {
            RegDeleteKeyValueA(HKEY_CURRENT_USER, kKey, kValue);
        }
    }

private:
    static constexpr char kKey[] = R"(Control Panel\Desktop)";
    static constexpr char kValue[] = "LogPixels";

    static void Set(DWORD dwDots) {
        RegSetKeyValueA(HKEY_CURRENT_USER, kKey, kValue, REG_DWORD, &dwDots, sizeof dwDots);
    }

    DWORD m_dwBefore = 0;  // 0: there is none
};

TEST(DeviceUnits, FollowTheResolution) {
    const Resolution resolution(144);
    const ChildResult result = RunDisabledTest("DeviceUnits.DISABLED_AreThoseOf144Dots");
    EXPECT_EQ(result.dwExitCode, 0u) << result.strOutput;
}

}  // namespace
}  // namespace mvp::test
