// What the about box learns of the installed product, from an installer that is made up.
#include "about/product_information.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <vklog/vklog.h>

#include "made_up_installer.h"

namespace {
std::vector<std::string> g_log;
}  // namespace

// In the suite's place: keeps "level text".
void vklogLog(const char* pszTag, int nLevel, const char* pszFormat, ...) {
    EXPECT_STREQ(pszTag, "MVPINGUI");
    std::array<char, 1024> text{};
    va_list arguments;
    va_start(arguments, pszFormat);
    std::vsnprintf(text.data(), text.size(), pszFormat, arguments);
    va_end(arguments);
    g_log.push_back(std::to_string(nLevel) + " " + text.data());
}

namespace mvp {
namespace {

using Log = std::vector<std::string>;
using test::MadeUpInstaller;

constexpr char kCode[] = "{5B21C0D4-7A93-4E6F-B812-3C9D0E4F6A17}";
constexpr char kPackage[] = R"(C:\windows\Installer\1a.msi)";

const std::string kFetched = "0 The value has been retreived from package.";
const std::string kNotOpened = "1 Unable to open database!";
const std::string kNoProduct = "1 Unable to retreive information from installed product!";
const std::string kNoDatabase = "1 Unable to retreive information from installed product database!";
const std::string kNoPatchPackage = "1 Unable to found local package for found patch!";
const std::string kNoPatchValue = "1 Unable to found value for local database package!";
const std::string kNoPatch = "1 No patch found!";
const std::string kNoVersionOfPatches =
    "1 Unable to retreive information from installed patches databases!. No patch?";

std::string Missing(const std::string& strFunction) {
    return "1 Unable to GetProcAddress for " + strFunction;
}
std::string WorkingWith(int nPatch) {
    return "1 Working with patch " + std::to_string(nPatch);
}

class ProductInformationTest : public testing::Test {
protected:
    ProductInformationTest() {
        g_log.clear();
        m_made.products[kCode] = {{"InstalledProductName", "Suite"},
                                  {"VersionString", "4.2"},
                                  {"LocalPackage", kPackage}};
        m_made.packages[kPackage] = {{"Property", "4.2.0.7"}};
    }

    void AddPatch(const std::string& strName, const char* pszVersion) {
        const std::string path = strName + ".msp";
        // A full-length code: one character more would not fit.
        m_made.patches.push_back(
            {"{" + strName + std::string(37 - strName.size(), '0') + "}", path, ":T1;:#T1"});
        m_made.packages[path] = {};
        if (pszVersion != nullptr) {
            m_made.packages[path]["MsiPatchMetadata"] = pszVersion;
        }
    }
    void Expect(const std::string& strName, const std::string& strVersion, const Log& log) {
        const ProductInformation product = ReadProductInformation(m_functions, kCode);
        EXPECT_EQ(product.strName, strName);
        EXPECT_EQ(product.strVersion, strVersion);
        EXPECT_EQ(g_log, log);
        g_log.clear();
    }

    MadeUpInstaller m_made;
    Installer m_functions = MadeUpInstaller::Functions();
};

TEST_F(ProductInformationTest, IsTheRegistrationUntilAPackageOrAPatchSaysMore) {
    Expect("Suite", "4.2.0.7", {kFetched, kNoPatch, kNoVersionOfPatches});
    EXPECT_EQ(m_made.statements,
              Log{"SELECT `Value` FROM `Property` WHERE `Property` = 'InternalVersion'"});
    m_made.packages[kPackage].clear();
    Expect("Suite", "4.2", {kNoDatabase, kNoPatch, kNoVersionOfPatches});
    m_made.packages.clear();
    Expect("Suite", "4.2", {kNotOpened, kNoDatabase, kNoPatch, kNoVersionOfPatches});
    m_made.products[kCode].erase("LocalPackage");
    Expect("Suite", "4.2", {kNoDatabase, kNoPatch, kNoVersionOfPatches});
    m_made.products[kCode].erase("VersionString");
    Expect("Suite", "", {kNoProduct});
    m_made.products[kCode].erase("InstalledProductName");
    Expect("", "", {kNoProduct});
    m_made.products.clear();
    Expect("", "", {kNoProduct});
}

TEST_F(ProductInformationTest, TakesTheVersionOfTheLastPatchThatHasOne) {
    struct Case {
        std::vector<std::pair<std::string, const char*>> patches;
        std::string strVersion;
        Log log;
    };
    const Case cases[] = {
        {{{"A", "a"}, {"B", "b"}}, "b", {WorkingWith(0), kFetched, WorkingWith(1), kFetched}},
        {{{"B", "b"}, {"A", "a"}}, "a", {WorkingWith(0), kFetched, WorkingWith(1), kFetched}},
        {{{"A", "a"}, {"B", nullptr}},
         "a",
         {WorkingWith(0), kFetched, WorkingWith(1), kNoPatchValue}},
        {{{"A", nullptr}, {"B", "b"}},
         "b",
         {WorkingWith(0), kNoPatchValue, WorkingWith(1), kFetched}},
        {{{"A", "a"}, {"B", ""}}, "", {WorkingWith(0), kFetched, WorkingWith(1), kFetched}},
        {{{"A", nullptr}}, "4.2.0.7", {WorkingWith(0), kNoPatchValue, kNoVersionOfPatches}},
    };
    for (const auto& [patches, version, log] : cases) {
        m_made.patches.clear();
        m_made.opened.clear();
        for (const auto& [name, patchVersion] : patches) {
            AddPatch(name, patchVersion);
        }
        Log all{kFetched};
        all.insert(all.end(), log.begin(), log.end());
        Expect("Suite", version, all);
        for (const auto& [path, mode] : m_made.opened) {
            EXPECT_EQ(mode, path == kPackage ? 0U : 32U) << path;
        }
    }
}

TEST_F(ProductInformationTest, GoesOnBehindAPatchThatCannotBeAsked) {
    AddPatch("A", "a");
    AddPatch("B", "b");
    AddPatch("C", "c");
    m_made.patches[1].package.reset();
    m_made.packages.erase("C.msp");
    Expect("Suite", "a",
           {kFetched, WorkingWith(0), kFetched, WorkingWith(1), kNoPatchPackage, WorkingWith(2),
            kNotOpened, kNoPatchValue});
    // A long list of transforms makes no difference, and an error ends the list as its end does.
    m_made.patches.resize(1);
    m_made.patches[0].strTransforms = std::string(1000, 'T');
    m_made.nEnumError = 1610;
    Expect("Suite", "a",
           {kFetched, WorkingWith(0), kFetched, "1 MsiEnumPatches returns the error 1610"});
}

TEST_F(ProductInformationTest, TellsOfAMissingFunctionAndUsesTheOthers) {
    AddPatch("A", "a");
    const auto expectWithout = [this](auto function, const char* pszVersion, const Log& log) {
        m_functions = MadeUpInstaller::Functions();
        m_functions.*function = nullptr;
        Expect(*pszVersion != '\0' ? "Suite" : "", pszVersion, log);
    };
    expectWithout(&Installer::MsiGetProductInfoA, "", {Missing("MsiGetProductInfoA"), kNoProduct});
    expectWithout(&Installer::MsiEnumPatchesA, "4.2.0.7",
                  {kFetched, Missing("MsiEnumPatchesA"), kNoVersionOfPatches});
    expectWithout(&Installer::MsiGetPatchInfoA, "4.2.0.7",
                  {kFetched, WorkingWith(0), Missing("MsiGetPatchInfoA"), kNoPatchPackage,
                   kNoVersionOfPatches});
    m_made.opened.clear();
    const auto expectNoQueryWithout = [&](auto function, const char* pszName) {
        expectWithout(function, "4.2",
                      {Missing(pszName), kNoDatabase, WorkingWith(0), Missing(pszName),
                       kNoPatchValue, kNoVersionOfPatches});
    };
    expectNoQueryWithout(&Installer::MsiOpenDatabaseA, "MsiOpenDatabaseA");
    expectNoQueryWithout(&Installer::MsiDatabaseOpenViewA, "MsiDatabaseOpenViewA");
    expectNoQueryWithout(&Installer::MsiViewGetColumnInfo, "MsiViewGetColumnInfo");
    expectNoQueryWithout(&Installer::MsiViewExecute, "MsiViewExecute");
    expectNoQueryWithout(&Installer::MsiViewFetch, "MsiViewFetch");
    expectNoQueryWithout(&Installer::MsiRecordGetStringA, "MsiRecordGetStringA");
    expectNoQueryWithout(&Installer::MsiCloseHandle, "MsiCloseHandle");
    expectNoQueryWithout(&Installer::MsiCloseAllHandles, "MsiCloseAllHandles");
    EXPECT_TRUE(m_made.opened.empty());
}

TEST_F(ProductInformationTest, ClosesWhatItOpenedWhicheverStepFails) {
    for (const char* step :
         {"MsiDatabaseOpenViewA", "MsiViewExecute", "MsiViewFetch", "MsiRecordGetStringA"}) {
        m_made.failing = {step};
        Expect("Suite", "4.2", {kNoDatabase, kNoPatch, kNoVersionOfPatches});
        EXPECT_TRUE(m_made.open.empty()) << step;
    }
    m_made.failing = {"MsiOpenDatabaseA"};
    Expect("Suite", "4.2", {kNotOpened, kNoDatabase, kNoPatch, kNoVersionOfPatches});
}

TEST_F(ProductInformationTest, TakesTextsOfAnyLengthUpToTheLongest) {
    for (const std::size_t length : {0U, 1U, 255U, 256U, 260U, 1000U, 0xFFFEU}) {
        const std::string text(length, 'x');
        m_made.products[kCode]["InstalledProductName"] = text;
        m_made.packages[kPackage]["Property"] = text;
        Expect(text, text, {kFetched, kNoPatch, kNoVersionOfPatches});
    }
    m_made.packages[kPackage]["Property"] = std::string(0xFFFF, 'x');
    Expect(std::string(0xFFFE, 'x'), "4.2", {kNoDatabase, kNoPatch, kNoVersionOfPatches});
    m_made.products[kCode]["InstalledProductName"] = "Suite";
    m_made.products[kCode].erase("VersionString");
    m_made.nGrowth = 3;
    Expect("Suite+++", "", {kNoProduct});
    m_made.nGrowth = 9;
    Expect("", "", {kNoProduct});
}

TEST_F(ProductInformationTest, OpensAsAPatchWhatEndsInSmallLetters) {
    const std::pair<const char*, bool> paths[] = {
        {R"(C:\windows\Installer\1a.msp)", true},
        {"a.msp.msp", true},
        {".msp", true},
        {R"(C:\windows\Installer\1a.MSP)", false},
        {"a.msp.msi", false},
        {"msp", false},
        {"", false},
    };
    for (const auto& [path, isPatch] : paths) {
        m_made.opened.clear();
        EXPECT_FALSE(QueryDatabase(m_functions, {"Property", "Property", "InternalVersion"}, path));
        ASSERT_EQ(m_made.opened.size(), 1U);
        EXPECT_EQ(m_made.opened[0].second, isPatch ? 32U : 0U) << path;
    }
}

// "SELECT `Value` FROM `` WHERE `` = ''" has 36 characters.
TEST_F(ProductInformationTest, AsksNoStatementThatItsBufferCuts) {
    const auto ask = [this](std::size_t length) {
        m_made.statements.clear();
        const std::string wanted(length, 'w');
        EXPECT_FALSE(QueryDatabase(m_functions, {"T", "C", wanted.c_str()}, kPackage));
        return m_made.statements;
    };
    const std::size_t longest = 259 - 36 - 2;
    EXPECT_EQ(ask(longest),
              Log{"SELECT `Value` FROM `T` WHERE `C` = '" + std::string(longest, 'w') + "'"});
    EXPECT_EQ(ask(longest + 1), Log{});
}

}  // namespace
}  // namespace mvp
