// The customer's pictures in the enter-PIN dialog.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "resources/resource_numbers.h"
#include "support/bitmap_header.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"
#include "support/registry_hive.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/other_system.h"
#include "ui/dialogs/pin_request.h"

namespace mvp::test {
namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\AuthenticationDialog)";

// A file of the test's own, removed at the end.
class TestFile {
public:
    TestFile(const std::string& strName, const std::string& strBytes)
        : m_path(std::filesystem::absolute(strName + std::to_string(GetCurrentProcessId()))) {
        std::ofstream(m_path, std::ios::binary) << strBytes;
    }
    TestFile(const TestFile&) = delete;
    TestFile& operator=(const TestFile&) = delete;
    ~TestFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    std::string Path() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};

constexpr DWORD kHeaders = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);

// A bitmap file of one colour. The header may claim another size than the pixels have, and that
// they begin elsewhere.
std::string BitmapFile(int nWidth, int nHeight, std::size_t nPixelBytes,
                       DWORD dwOffset = kHeaders) {
    BITMAPFILEHEADER file{};
    file.bfType = 0x4D42;
    file.bfOffBits = dwOffset;
    file.bfSize = static_cast<DWORD>(kHeaders + nPixelBytes);
    const BITMAPINFOHEADER info = TrueColorHeader(nWidth, nHeight);
    std::string bytes(sizeof file + sizeof info, '\0');
    std::memcpy(bytes.data(), &file, sizeof file);
    std::memcpy(bytes.data() + sizeof file, &info, sizeof info);
    return bytes + std::string(nPixelBytes, '\x40');
}

class Branding : public testing::Test {
protected:
    // Which of the four pictures the dialog shows: built-in banner and strip, then the customer's.
    std::vector<bool> Shown() {
        std::vector<bool> shown;
        PinRequest request;
        DialogDriver driver([&](Dialog& d) {
            for (const int id : {IDC_ENTER_PIN_BANNER, IDC_ENTER_PIN_PROGRESS,
                                 IDC_ENTER_PIN_BRAND_BANNER, IDC_ENTER_PIN_BRAND_PROGRESS})
                shown.push_back(d.IsVisible(id));
            const RECT brand = d.Rect(IDC_ENTER_PIN_BRAND_BANNER);
            const RECT standard = d.Rect(IDC_ENTER_PIN_BANNER);
            if (d.IsVisible(IDC_ENTER_PIN_BRAND_BANNER)) {
                EXPECT_EQ(brand.right - brand.left, standard.right - standard.left);
                EXPECT_EQ(brand.bottom - brand.top, standard.bottom - standard.top);
            }
            d.Escape();
        });
        request.Call();
        driver.Join();
        request.Free();
        return shown;
    }

    AttachedLibrary m_library;
    RegistryHive m_hive;
    LogRecorder m_log;
};

using Flags = std::vector<bool>;
const Flags kBuiltIn = {true, true, false, false};

TEST_F(Branding, BuiltInPicturesStayAndAnIgnoredSettingHasItsLine) {
    EXPECT_EQ(Shown(), kBuiltIn);
    m_hive.CreateKey(kKey);
    EXPECT_EQ(Shown(), kBuiltIn);
    m_hive.SetString(kKey, "BannerHiRes", "");
    EXPECT_EQ(Shown(), kBuiltIn);
    EXPECT_TRUE(m_log.Texts(1).back().starts_with("GetPINFromUser: returns")) << m_log.Dump();
    const TestFile text("notabitmap", "this is not a bitmap");
    const TestFile huge("hugebitmap", BitmapFile(0x7FFFFFFF, 0x7FFFFFFF, 100));
    const TestFile good("good", BitmapFile(20, 20, 1200));
    const TestFile claim("claimbitmap", BitmapFile(1000, 1000, 200 - kHeaders));
    const TestFile beyond("beyondbitmap", BitmapFile(20, 20, 1200, 0x7FFFFFF0));
    const TestFile early("earlybitmap", BitmapFile(20, 20, 1200, 16));
    constexpr const char* kNoBitmap = "the file is not a bitmap that can be shown";
    struct Case {
        std::string strValue;
        const char* pszReason;
    };
    const Case cases[] = {
        {"C:\\missing.bmp", "there is no such file"},
        {"C:\\", "there is no such file"},
        {std::string(255, 'p'), "there is no such file"},
        {text.Path(), kNoBitmap},
        {huge.Path(), kNoBitmap},
        {claim.Path(), kNoBitmap},
        {beyond.Path(), kNoBitmap},
        {early.Path(), kNoBitmap},
        {"NUL", kNoBitmap},
        {'"' + good.Path() + '"', "the path stands in quotation marks"},
        {"%SystemRoot%\\a.bmp",
         "variables in the path are not replaced, and there is no such file"},
        {std::string(300, 'l'), "the value is longer than 260 bytes"},
    };
    const auto expectIgnored = [&](const char* pszValueName, const char* pszReason) {
        m_log.Clear();
        EXPECT_EQ(Shown(), kBuiltIn) << pszReason;
        const std::string line =
            std::string("Setting ignored: ") + kKey + "\\" + pszValueName + ": " + pszReason;
        EXPECT_EQ(std::ranges::count(m_log.Texts(1), line), 1) << line << m_log.Dump();
    };
    for (const Case& c : cases) {
        m_hive.SetString(kKey, "BannerHiRes", c.strValue);
        expectIgnored("BannerHiRes", c.pszReason);
    }
    m_hive.SetUnterminated(kKey, "BannerHiRes", std::string(260, 'u'));
    expectIgnored("BannerHiRes", "there is no such file");
    m_hive.DeleteValue(kKey, "BannerHiRes");
    for (const DWORD dwNoText : {0x41424344U, 0U, 256U}) {
        m_hive.SetDword(kKey, "ProgressBarHiRes", dwNoText);
        expectIgnored("ProgressBarHiRes", "the value is not a text");
    }
}

TEST_F(Branding, PicturesOfTheScreensResolutionReplaceThem) {
    struct Case {
        int nBitsPerPixel;
        const char* pszResolution;
        const char* pszOther;
    };
    const Case cases[] = {{0, "HiRes", "LowRes"}, {8, "HiRes", "LowRes"}, {4, "LowRes", "HiRes"}};
    const TestFile picture("picture", BitmapFile(20, 20, 1200));
    for (const Case& c : cases) {
        const ScreenOfDepth depth(c.nBitsPerPixel);
        const std::string banner = std::string("Banner") + c.pszResolution;
        const std::string progress = std::string("ProgressBar") + c.pszResolution;
        m_hive.SetString(kKey, std::string("Banner") + c.pszOther, picture.Path());
        EXPECT_EQ(Shown(), kBuiltIn) << "the other resolution's picture is no fallback";
        m_hive.SetString(kKey, banner, picture.Path());
        EXPECT_EQ(Shown(), (Flags{false, true, true, false}));
        m_hive.SetString(kKey, progress, picture.Path());
        EXPECT_EQ(Shown(), (Flags{false, false, true, true}));
        m_hive.DeleteValue(kKey, banner);
        EXPECT_EQ(Shown(), (Flags{true, false, false, true}));
        m_hive.DeleteKey(kKey);
    }
}

TEST_F(Branding, LargePictureIsCutToThePlace) {
    const TestFile large("large", BitmapFile(3000, 2000, std::size_t{9000} * 2000));
    m_hive.SetString(kKey, "BannerHiRes", large.Path());
    EXPECT_EQ(Shown(), (Flags{false, true, true, false}));
}

}  // namespace
}  // namespace mvp::test
