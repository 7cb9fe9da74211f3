// The customer's pictures in the enter-PIN dialog.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "support/bitmap_header.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\AuthenticationDialog)";

std::string BitmapFile(int nWidth, int nHeight) {
    const auto pixelBytes =
        std::size_t{3} * static_cast<DWORD>(nWidth) * static_cast<DWORD>(nHeight);
    constexpr DWORD kHeaders = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
    const BITMAPFILEHEADER file{0x4D42, static_cast<DWORD>(kHeaders + pixelBytes), 0, 0, kHeaders};
    const BITMAPINFOHEADER info = TrueColorHeader(nWidth, nHeight);
    return std::string(reinterpret_cast<const char*>(&file), sizeof file) +
           std::string(reinterpret_cast<const char*>(&info), sizeof info) +
           std::string(pixelBytes, '\x40');
}

// Which pictures the dialog shows: built-in banner and strip, then the customer's.
std::string Shown() {
    std::string shown;
    PinRequest().Ask([&](Dialog& d) {
        for (const int id : {IDC_ENTER_PIN_BANNER, IDC_ENTER_PIN_PROGRESS,
                             IDC_ENTER_PIN_BRAND_BANNER, IDC_ENTER_PIN_BRAND_PROGRESS}) {
            shown += d.IsVisible(id) ? "BSbs"[shown.size()] : '-';
        }
        if (d.IsVisible(IDC_ENTER_PIN_BRAND_BANNER)) {
            EXPECT_EQ(RectIn(nullptr, d.Control(IDC_ENTER_PIN_BRAND_BANNER)).Size(),
                      RectIn(nullptr, d.Control(IDC_ENTER_PIN_BANNER)).Size());
        }
        d.Escape();
    });
    return shown;
}

class Branding : public LibraryTest {
protected:
    ~Branding() override {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    std::string MakeFile(const std::string& strName, const std::string& strBytes) {
        std::filesystem::create_directory(m_folder);
        std::ofstream(m_folder / strName, std::ios::binary) << strBytes;
        return (m_folder / strName).string();
    }

private:
    std::filesystem::path m_folder =
        std::filesystem::absolute("branding" + std::to_string(GetCurrentProcessId()));
};

constexpr char kBuiltIn[] = "BS--";

TEST_F(Branding, BuiltInPicturesStayAndAnIgnoredSettingHasItsLine) {
    EXPECT_EQ(Shown(), kBuiltIn);
    m_hive.CreateKey(kKey);
    EXPECT_EQ(Shown(), kBuiltIn);
    m_hive.SetString(kKey, "BannerHiRes", "");
    EXPECT_EQ(Shown(), kBuiltIn);
    EXPECT_TRUE(m_log.Texts(1).back().starts_with("GetPINFromUser: returns")) << m_log.Dump();
    constexpr const char* kNoFile = "there is no such file";
    constexpr const char* kNoBitmap = "the file is not a bitmap that can be shown";
    const auto expectIgnored = [&](const char* pszValueName, const char* pszReason) {
        m_log.Clear();
        EXPECT_EQ(Shown(), kBuiltIn) << pszReason;
        const std::string line =
            std::string("Setting ignored: ") + kKey + "\\" + pszValueName + ": " + pszReason;
        EXPECT_EQ(std::ranges::count(m_log.Texts(1), line), 1) << line << m_log.Dump();
    };
    for (const auto& [value, reason] :
         {std::pair<std::string, const char*>{"C:\\", kNoFile},
          {std::string(255, 'p'), kNoFile},
          {MakeFile("text", "this is not a bitmap"), kNoBitmap},
          {"NUL", kNoBitmap},
          {std::string(300, 'l'), "the value is longer than 260 bytes"}}) {
        m_hive.SetString(kKey, "BannerHiRes", value);
        expectIgnored("BannerHiRes", reason);
    }
    m_hive.SetUnterminated(kKey, "BannerHiRes", std::string(260, 'u'));
    expectIgnored("BannerHiRes", kNoFile);
    m_hive.DeleteKey(kKey);
    for (const DWORD noText : {0x41424344U, 0U, 256U}) {
        m_hive.SetDword(kKey, "ProgressBarHiRes", noText);
        expectIgnored("ProgressBarHiRes", "the value is not a text");
    }
}

int g_nBitsPerPixel = 0;

int WINAPI TellBitsPerPixel(HDC, int nIndex) {
    return nIndex == BITSPIXEL ? g_nBitsPerPixel : 0;
}

TEST_F(Branding, PicturesOfTheScreensResolutionReplaceThem) {
    // Larger than its place, to which it is cut.
    const std::string large = MakeFile("large", BitmapFile(3000, 2000));
    const std::string little = MakeFile("small", BitmapFile(20, 20));
    const PatchedImports depth(nullptr, {{"GetDeviceCaps", Address(&TellBitsPerPixel)}});
    for (const int bitsPerPixel : {32, 8, 4}) {
        g_nBitsPerPixel = bitsPerPixel;
        const std::string resolution = bitsPerPixel == 4 ? "LowRes" : "HiRes";
        m_hive.SetString(kKey, bitsPerPixel == 4 ? "BannerHiRes" : "BannerLowRes", little);
        EXPECT_EQ(Shown(), kBuiltIn) << "the other resolution's picture is no fallback";
        m_hive.SetString(kKey, "Banner" + resolution, large);
        EXPECT_EQ(Shown(), "-Sb-");
        m_hive.SetString(kKey, "ProgressBar" + resolution, little);
        EXPECT_EQ(Shown(), "--bs");
        m_hive.SetString(kKey, "Banner" + resolution, "");
        EXPECT_EQ(Shown(), "B--s");
        m_hive.DeleteKey(kKey);
    }
}

}  // namespace
}  // namespace mvp::test
