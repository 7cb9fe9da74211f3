// The about box over the system's own installer, with a real product and real patches.
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <msi.h>
#include <msiquery.h>

#include "about/installer_library.h"
#include "about/product_information.h"
#include "demoproduct/demo_product.h"
#include "mvpingui/mvpingui.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

using Lines = std::vector<std::string>;

constexpr char kCode[] = "{5B21C0D4-7A93-4E6F-B812-3C9D0E4F6A17}";
constexpr char kName[] = "Veskara Smart Card Suite";
constexpr char kPackageVersion[] = "4.2.0.1180";

std::string LocalPackage() {
    std::array<char, MAX_PATH> path{};
    DWORD size = MAX_PATH;
    EXPECT_EQ(MsiGetProductInfoA(kCode, "LocalPackage", path.data(), &size), 0U);
    return path.data();
}

// Not a LibraryTest: the product is in the machine's own registry.
class InstalledProduct : public testing::Test {
protected:
    static void Install() {
        InstallDemoProduct(std::filesystem::absolute(R"(..\bin\demo_product.msi)").string());
    }
    void SetUp() override { Install(); }
    void TearDown() override {
        EXPECT_EQ(MsiCloseAllHandles(), 0U) << "handles of the installer are left open";
        RemoveDemoProduct();
    }

    // What the box shows, "name|version line"; the log holds what it told meanwhile.
    std::string Shown() {
        std::string shown;
        m_log.Clear();
        const DialogDriver driver([&](Dialog& d) {
            shown = d.Text(IDC_ABOUT_NAME) + "|" + d.Text(IDC_ABOUT_VERSION);
            d.Enter();
        });
        EXPECT_EQ(ShowAbout(0, nullptr, "Caption"), static_cast<uint32_t>(IDOK));
        return shown;
    }
    static std::string Expected(const std::string& strVersion) {
        return std::string(kName) + "|" + Filled(IDS_ABOUT_VERSION_FORMAT, strVersion.c_str());
    }

    AttachedLibrary m_library;
    LogRecorder m_log;
};

TEST_F(InstalledProduct, IsShownWithTheVersionOfItsPackageThenOfItsLastPatch) {
    EXPECT_EQ(Shown(), Expected(kPackageVersion));
    EXPECT_TRUE(m_log.Contains(1, "Using default product code!"));
    EXPECT_TRUE(m_log.Contains(1, "No patch found!"));
    PatchDemoProduct(1, "4.2.1.1200");
    EXPECT_EQ(Shown(), Expected("4.2.1.1200"));
    PatchDemoProduct(2, "4.2.2.1300");
    EXPECT_EQ(Shown(), Expected("4.2.2.1300"));
    EXPECT_EQ(m_log.Texts(0), Lines(3, "The value has been retreived from package."));
    EXPECT_TRUE(m_log.Contains(1, "Working with patch 1"));
    EXPECT_FALSE(m_log.ContainsPart("Unable"));

    Install();
    PatchDemoProduct(2, "4.2.2.1300");
    PatchDemoProduct(1, std::string(1000, '1').c_str());
    PatchDemoProduct(3, nullptr);
    EXPECT_EQ(Shown(), Expected(std::string(1000, '1')).substr(0, sizeof kName + 255));
    EXPECT_TRUE(m_log.Contains(1, "Unable to found value for local database package!"));

    RemoveDemoProduct();
    EXPECT_EQ(Shown(), "|" + Filled(IDS_ABOUT_VERSION_FORMAT, ""));
    EXPECT_TRUE(m_log.Contains(1, "Unable to retreive information from installed product!"));
}

TEST_F(InstalledProduct, IsReadOnlyAsFarAsItsPackageGoes) {
    const InstallerLibrary library;
    ASSERT_TRUE(library);
    const Installer& installer = library.Functions();
    const std::string package = LocalPackage();
    const std::optional<std::string> none;
    EXPECT_EQ(QueryDatabase(installer, {"Property", "Property", "InternalVersion"}, package),
              kPackageVersion);
    EXPECT_EQ(QueryDatabase(installer, {"Property", "Property", "ProductVersion"}, package),
              "4.2.0");
    EXPECT_EQ(QueryDatabase(installer, {"Property", "Property", "Nothing"}, package), none);
    EXPECT_EQ(QueryDatabase(installer, {"NoTable", "Property", "InternalVersion"}, package), none);
    EXPECT_EQ(QueryDatabase(installer, {"Property", "NoColumn", "InternalVersion"}, package), none);
    EXPECT_FALSE(m_log.Contains(1, "Unable to open database!"));

    std::ofstream(package, std::ios::trunc) << "no package";
    do {  // damaged, then gone
        EXPECT_EQ(Shown(), Expected("4.2.0"));
        EXPECT_TRUE(m_log.Contains(1, "Unable to open database!"));
    } while (std::filesystem::remove(package));
}

}  // namespace
}  // namespace mvp::test
