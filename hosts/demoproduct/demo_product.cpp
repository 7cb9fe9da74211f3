#include "demoproduct/demo_product.h"

#include <windows.h>

#include <array>
#include <cstring>
#include <stdexcept>

#include <msi.h>
#include <msiquery.h>
#include <wtypes.h>

#include "platform/handle.h"

namespace mvp {
namespace {

constexpr char kProductCode[] = "{5B21C0D4-7A93-4E6F-B812-3C9D0E4F6A17}";
// Of demo_product.wxs: what tells the demonstration from the suite itself.
constexpr char kPublisher[] = "Veskara demonstration";
// Without the digit that is a patch's number.
constexpr char kPatchCodeStart[] = "{6D0E93B7-58F1-4C2A-9B44-E17C50A2D80";

// Of the summary that makes a database a patch.
constexpr UINT kTargets = 7;     // the product codes it is for
constexpr UINT kTransforms = 8;  // the names of its transforms
constexpr UINT kPatchCode = 9;
constexpr UINT kWordCount = 15;

struct MsiHandleTraits {
    using Handle = MSIHANDLE;
    static Handle None() noexcept { return 0; }
    static void Close(Handle handle) noexcept { MsiCloseHandle(handle); }
};
using MsiHandle = UniqueHandle<MsiHandleTraits>;

void Check(UINT nError, const char* pszWhat) {
    if (nError != ERROR_SUCCESS) {
        throw std::runtime_error(std::string(pszWhat) + " failed with error " +
                                 std::to_string(nError));
    }
}

void Execute(const MsiHandle& database, const std::string& strStatement) {
    MsiHandle view;
    Check(MsiDatabaseOpenViewA(database.get(), strStatement.c_str(), view.put()),
          "MsiDatabaseOpenView");
    Check(MsiViewExecute(view.get(), 0), "MsiViewExecute");
}

void WriteMetadata(const MsiHandle& database, const std::string& strVersion) {
    Execute(database,
            "CREATE TABLE `MsiPatchMetadata` (`Company` CHAR(72), `Property` CHAR(72) NOT NULL, "
            "`Value` LONGCHAR NOT NULL LOCALIZABLE PRIMARY KEY `Company`, `Property`)");
    Execute(database,
            "INSERT INTO `MsiPatchMetadata` (`Property`, `Value`) VALUES ('InternalVersion', '" +
                strVersion + "')");
}

void WriteSummary(const MsiHandle& database, const std::string& strPatchCode) {
    MsiHandle summary;
    Check(MsiGetSummaryInformationA(database.get(), nullptr, 4, summary.put()),
          "MsiGetSummaryInformation");
    const auto set = [&](UINT property, UINT type, INT number, const char* pszText) {
        Check(MsiSummaryInfoSetPropertyA(summary.get(), property, type, number, nullptr, pszText),
              "MsiSummaryInfoSetProperty");
    };
    set(kTargets, VT_LPSTR, 0, kProductCode);
    set(kTransforms, VT_LPSTR, 0, ":T1;:#T1");
    set(kPatchCode, VT_LPSTR, 0, strPatchCode.c_str());
    set(kWordCount, VT_I4, 1, nullptr);
    Check(MsiSummaryInfoPersist(summary.get()), "MsiSummaryInfoPersist");
}

// A patch's file, deleted with the object: the installer keeps a copy.
class PatchFile {
public:
    PatchFile(int nNumber, const char* pszVersion) {
        std::array<char, MAX_PATH> folder{};
        GetTempPathA(MAX_PATH, folder.data());
        m_strPath = std::string(folder.data()) + "demo_product_" + std::to_string(nNumber) + ".msp";
        MsiHandle database;
        Check(MsiOpenDatabaseA(m_strPath.c_str(), MSIDBOPEN_CREATE + MSIDBOPEN_PATCHFILE,
                               database.put()),
              "MsiOpenDatabase");
        if (pszVersion != nullptr) {
            WriteMetadata(database, pszVersion);
        }
        WriteSummary(database, kPatchCodeStart + std::to_string(nNumber) + "}");
        Check(MsiDatabaseCommit(database.get()), "MsiDatabaseCommit");
    }
    PatchFile(const PatchFile&) = delete;
    PatchFile& operator=(const PatchFile&) = delete;
    ~PatchFile() { DeleteFileA(m_strPath.c_str()); }

    const char* Path() const { return m_strPath.c_str(); }

private:
    std::string m_strPath;
};

}  // namespace

void InstallDemoProduct(const std::string& strPackage) {
    RemoveDemoProduct();
    Check(MsiInstallProductA(strPackage.c_str(), ""), "MsiInstallProduct");
}

void PatchDemoProduct(int nNumber, const char* pszVersion) {
    const PatchFile patch(nNumber, pszVersion);
    MsiSetInternalUI(INSTALLUILEVEL_NONE, nullptr);
    Check(MsiApplyPatchA(patch.Path(), nullptr, INSTALLTYPE_DEFAULT, ""), "MsiApplyPatch");
}

void RemoveDemoProduct() {
    MsiSetInternalUI(INSTALLUILEVEL_NONE, nullptr);
    std::array<char, 256> publisher{};
    auto size = static_cast<DWORD>(publisher.size());
    const UINT error = MsiGetProductInfoA(kProductCode, "Publisher", publisher.data(), &size);
    if (error == ERROR_UNKNOWN_PRODUCT) {
        return;
    }
    if (error != ERROR_SUCCESS || std::strcmp(publisher.data(), kPublisher) != 0) {
        throw std::runtime_error("the suite itself is installed on this machine");
    }
    Check(MsiConfigureProductA(kProductCode, INSTALLLEVEL_DEFAULT, INSTALLSTATE_ABSENT),
          "MsiConfigureProduct");
}

}  // namespace mvp
