// Lengths on a real device: its dots per inch and its fonts decide what a unit comes to.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "../support/child_process.h"
#include "canvas.h"

namespace mvp::test {
namespace {

// The resolution that the case below has asked for, in the process that it starts.
constexpr char kExpectedDots[] = "MVP_EXPECTED_DOTS";
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

TEST(DeviceUnits, AreThoseOfTheScreen) {
    const WindowDc screen(nullptr);
    const int nDots = GetDeviceCaps(screen.get(), LOGPIXELSY);
    char szExpected[16] = "";
    if (GetEnvironmentVariableA(kExpectedDots, szExpected, sizeof szExpected) != 0) {
        ASSERT_EQ(nDots, std::atoi(szExpected));
    }
    const struct {
        const char* pszLength;
        int nPixels;
    } kCases[] = {
        {"7px", 7},
        {"3em", 3 * kFontHeight},
        {"5ex", 5 * HeightOfX()},
        {"2in", 2 * nDots},
        {"5cm", static_cast<int>(5 * nDots / 2.54)},
        {"50mm", static_cast<int>(50 * nDots / 25.4)},
        {"31pt", 31 * nDots / 72},
        {"7pc", 7 * nDots / 6},
    };
    for (const auto& [pszLength, nPixels] : kCases) {
        TestDrawer drawer(std::string("<font size=30px><hr width=") + pszLength + "></font>");
        drawer.Measure(2000);
        EXPECT_EQ(drawer.RichText().Boxes().aFragments.at(0).nWidth, nPixels) << pszLength;
    }
}

// Sets the resolution of processes that are started, and puts it back.
class Resolution {
public:
    explicit Resolution(DWORD dwDots) {
        DWORD dwBytes = sizeof m_dwBefore;
        m_bBefore = RegGetValueA(HKEY_CURRENT_USER, kKey, kValue, RRF_RT_REG_DWORD, nullptr,
                                 &m_dwBefore, &dwBytes) == ERROR_SUCCESS;
        Set(dwDots);
        SetEnvironmentVariableA(kExpectedDots, std::to_string(dwDots).c_str());
    }
    Resolution(const Resolution&) = delete;
    Resolution& operator=(const Resolution&) = delete;
    ~Resolution() {
        SetEnvironmentVariableA(kExpectedDots, nullptr);
        if (m_bBefore)
            Set(m_dwBefore);
        else
            RegDeleteKeyValueA(HKEY_CURRENT_USER, kKey, kValue);
    }

private:
    static constexpr char kKey[] = R"(Control Panel\Desktop)";
    static constexpr char kValue[] = "LogPixels";

    static void Set(DWORD dwDots) {
        RegSetKeyValueA(HKEY_CURRENT_USER, kKey, kValue, REG_DWORD, &dwDots, sizeof dwDots);
    }

    DWORD m_dwBefore = 0;
    bool m_bBefore = false;
};

TEST(DeviceUnits, FollowTheResolution) {
    const Resolution resolution(144);
    const ChildResult result = RunDisabledTest("DeviceUnits.AreThoseOfTheScreen");
    EXPECT_EQ(result.dwExitCode, 0u) << result.strOutput;
}

}  // namespace
}  // namespace mvp::test
