// The customer's pictures in the enter-PIN dialog.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/bitmap_header.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/other_system.h"
#include "ui/dialogs/pin_requests.h"

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
    const BITMAPFILEHEADER file{0x4D42, static_cast<DWORD>(kHeaders + nPixelBytes), 0, 0, dwOffset};
    const BITMAPINFOHEADER info = TrueColorHeader(nWidth, nHeight);
    return std::string(reinterpret_cast<const char*>(&file), sizeof file) +
           std::string(reinterpret_cast<const char*>(&info), sizeof info) +
           std::string(nPixelBytes, '\x40');
}

// Which pictures the dialog shows: built-in banner and strip, then the customer's.
std::string Shown() {
    std::string strShown;
    PinRequest().Ask([&](Dialog& d) {
        for (const int nId : {IDC_ENTER_PIN_BANNER, IDC_ENTER_PIN_PROGRESS,
                              IDC_ENTER_PIN_BRAND_BANNER, IDC_ENTER_PIN_BRAND_PROGRESS})
            strShown += d.IsVisible(nId) ? "BSbs"[strShown.size()] : '-';
        if (d.IsVisible(IDC_ENTER_PIN_BRAND_BANNER)) {
            EXPECT_EQ(CRect(d.Rect(IDC_ENTER_PIN_BRAND_BANNER)).Size(),
                      CRect(d.Rect(IDC_ENTER_PIN_BANNER)).Size());
        }
        d.Escape();
    });
    return strShown;
}

using Branding = LibraryTest;
constexpr char kBuiltIn[] = "BS--";

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
    constexpr const char* kNoFile = "there is no such file";
    constexpr const char* kNoBitmap = "the file is not a bitmap that can be shown";
    const struct {
        std::string strValue;
        const char* pszReason;
    } cases[] = {
        {"C:\\missing.bmp", kNoFile},
        {"C:\\", kNoFile},
        {std::string(255, 'p'), kNoFile},
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
    for (const auto& c : cases) {
        m_hive.SetString(kKey, "BannerHiRes", c.strValue);
        expectIgnored("BannerHiRes", c.pszReason);
    }
    m_hive.SetUnterminated(kKey, "BannerHiRes", std::string(260, 'u'));
    expectIgnored("BannerHiRes", kNoFile);
    m_hive.DeleteValue(kKey, "BannerHiRes");
    for (const DWORD dwNoText : {0x41424344U, 0U, 256U}) {
        m_hive.SetDword(kKey, "ProgressBarHiRes", dwNoText);
        expectIgnored("ProgressBarHiRes", "the value is not a text");
    }
}

TEST_F(Branding, PicturesOfTheScreensResolutionReplaceThem) {
    // Larger than its place, to which it is cut.
    const TestFile large("large", BitmapFile(3000, 2000, std::size_t{9000} * 2000));
    const TestFile small("small", BitmapFile(20, 20, 1200));
    for (const int nBitsPerPixel : {0, 8, 4}) {
        const ScreenOfDepth depth(nBitsPerPixel);
        const std::string strResolution = nBitsPerPixel == 4 ? "LowRes" : "HiRes";
        m_hive.SetString(kKey, nBitsPerPixel == 4 ? "BannerHiRes" : "BannerLowRes", small.Path());
        EXPECT_EQ(Shown(), kBuiltIn) << "the other resolution's picture is no fallback";
        m_hive.SetString(kKey, "Banner" + strResolution, large.Path());
        EXPECT_EQ(Shown(), "-Sb-");
        m_hive.SetString(kKey, "ProgressBar" + strResolution, small.Path());
        EXPECT_EQ(Shown(), "--bs");
        m_hive.DeleteValue(kKey, "Banner" + strResolution);
        EXPECT_EQ(Shown(), "B--s");
        m_hive.DeleteKey(kKey);
    }
}

}  // namespace
}  // namespace mvp::test
