// Lengths on a real device: its dots per inch and its fonts decide what a unit comes to.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "canvas.h"

namespace mvp::test {
namespace {

// The resolution that the case below has asked for, in the process that it starts.
constexpr char kExpectedDots[] = "MVP_EXPECTED_DOTS";
constexpr char kDesktopKey[] = R"(Control Panel\Desktop)";
constexpr int kFontHeight = 30;

int HeightOfX() {
    const Canvas canvas(60, 60);
    const Font font(CreateFontA(-kFontHeight, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                                DEFAULT_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0, "Tahoma"));
    const DcSelection selection(canvas.Dc(), font.get());
    SetBkMode(canvas.Dc(), TRANSPARENT);
    ExtTextOutA(canvas.Dc(), 5, 5, 0, nullptr, "x", 1, nullptr);
    const RECT ink = canvas.Ink();
    return ink.bottom - ink.top;
}

int WidthOf(const std::string& strLength) {
    CHtmlDrawer drawer;
    UseTestFont(drawer);
    drawer.SetText("<font size=30px><hr width=" + strLength + "></font>");
    drawer.Measure(2000);
    return drawer.RichText().Boxes().aFragments.at(0).nWidth;
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
    for (const auto& testCase : kCases)
        EXPECT_EQ(WidthOf(testCase.pszLength), testCase.nPixels) << testCase.pszLength;
}

// Sets the resolution of processes that are started, and puts it back.
class Resolution {
public:
    explicit Resolution(DWORD dwDots) {
        RegOpenKeyExA(HKEY_CURRENT_USER, kDesktopKey, 0, KEY_READ | KEY_WRITE, m_key.put());
        DWORD dwBytes = sizeof m_dwBefore;
        m_bBefore =
            RegQueryValueExA(m_key.get(), "LogPixels", nullptr, nullptr,
                             reinterpret_cast<BYTE*>(&m_dwBefore), &dwBytes) == ERROR_SUCCESS;
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
            RegDeleteValueA(m_key.get(), "LogPixels");
    }

private:
    void Set(DWORD dwDots) {
        RegSetValueExA(m_key.get(), "LogPixels", 0, REG_DWORD,
                       reinterpret_cast<const BYTE*>(&dwDots), sizeof dwDots);
    }

    RegistryKey m_key;
    DWORD m_dwBefore = 0;
    bool m_bBefore = false;
};

TEST(DeviceUnits, FollowTheResolution) {
    const Resolution resolution(144);
    char szProgram[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, szProgram, MAX_PATH);
    std::string strCommand =
        "\"" + std::string(szProgram) + "\" --gtest_filter=DeviceUnits.AreThoseOfTheScreen";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(CreateProcessA(nullptr, strCommand.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &process));
    const KernelHandle program(process.hProcess);
    const KernelHandle thread(process.hThread);
    constexpr DWORD kLongest = 60000;
    if (WaitForSingleObject(program.get(), kLongest) != WAIT_OBJECT_0)
        TerminateProcess(program.get(), 1);
    DWORD dwCode = 1;
    GetExitCodeProcess(program.get(), &dwCode);
    EXPECT_EQ(dwCode, 0u) << "its own output says why";
}

}  // namespace
}  // namespace mvp::test
