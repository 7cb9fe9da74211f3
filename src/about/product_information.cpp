#include "about/product_information.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "services/log.h"

namespace mvp {
namespace {

constexpr DatabaseQuestion kProductQuestion{"Property", "Property", "InternalVersion"};
constexpr DatabaseQuestion kPatchQuestion{"MsiPatchMetadata", "Property", "InternalVersion"};
constexpr char kLocalPackage[] = "LocalPackage";

// MSIDBOPEN_READONLY and MSIDBOPEN_PATCHFILE, which the installer takes in the place of a text.
constexpr std::uintptr_t kOpenReadOnly = 0;
constexpr std::uintptr_t kOpenPatch = 32;

// No text of an installer database is longer; a size beyond it is a mistake.
constexpr std::uint32_t kLongestText = 0xFFFF;
// A text that grows between two calls is asked for again, but not for ever.
constexpr int kMostCalls = 4;
constexpr std::size_t kPatchCodeCapacity = 39;
constexpr std::size_t kStatementCapacity = 260;

void LogMissing(const char* pszFunction) {
    vklogLog(g_szLogTag, kLogError, "Unable to GetProcAddress for %s", pszFunction);
}

// Calls `read` with a buffer and its size until the text fits, at first with room for `nRoom`
// characters; 0 asks for the size alone. `read` returns the installer's error.
template <class Read>
std::optional<std::string> ReadText(std::uint32_t nRoom, const Read& read) {
    for (int call = 0; call < kMostCalls && nRoom <= kLongestText; ++call) {
        // One character more than is offered: a terminator, whatever comes.
        std::string text(nRoom + 1, '\0');
        std::uint32_t length = nRoom;
        const std::uint32_t error = read(text.data(), &length);
        if (error == kInstallerSuccess) {
            text.resize(text.find('\0'));
            return text;
        }
        if (error != kInstallerMoreData) {
            return std::nullopt;
        }
        nRoom = length + 1;
    }
    return std::nullopt;
}

template <class Function>
std::optional<std::string> ReadInfo(Function* pfnInfo, const char* pszFunction, const char* pszCode,
                                    const char* pszProperty) {
    if (pfnInfo == nullptr) {
        LogMissing(pszFunction);
        return std::nullopt;
    }
    return ReadText(0, [=](char* pszBuffer, std::uint32_t* pSize) {
        return pfnInfo(pszCode, pszProperty, pszBuffer, pSize);
    });
}

std::optional<std::string> ProductInfo(const Installer& installer, const char* pszProductCode,
                                       const char* pszProperty) {
    return ReadInfo(installer.MsiGetProductInfoA, "MsiGetProductInfoA", pszProductCode,
                    pszProperty);
}

// What the product was registered with; false when the installer does not tell.
bool ReadRegistration(const Installer& installer, const char* pszProductCode,
                      ProductInformation& product) {
    auto name = ProductInfo(installer, pszProductCode, "InstalledProductName");
    if (!name) {
        return false;
    }
    product.strName = std::move(*name);
    auto version = ProductInfo(installer, pszProductCode, "VersionString");
    if (!version) {
        return false;
    }
    product.strVersion = std::move(*version);
    return true;
}

std::optional<std::string> PackageVersion(const Installer& installer, const char* pszProductCode) {
    const auto package = ProductInfo(installer, pszProductCode, kLocalPackage);
    return package ? QueryDatabase(installer, kProductQuestion, *package) : std::nullopt;
}

// The code of the product's patch `nIndex`; none behind the last.
std::optional<std::string> PatchCode(const Installer& installer, const char* pszProductCode,
                                     std::uint32_t nIndex) {
    std::array<char, kPatchCodeCapacity + 1> code{};
    std::uint32_t error = kInstallerSuccess;
    // Nobody asks for the list of transforms, but the installer gives no code without it. Some
    // installers write before a buffer that has no room at all.
    const auto transforms = ReadText(256, [&](char* pszBuffer, std::uint32_t* pSize) {
        error = installer.MsiEnumPatchesA(pszProductCode, nIndex, code.data(), pszBuffer, pSize);
        return error;
    });
    if (transforms) {
        return code.data();
    }
    if (error != kInstallerNoMoreItems) {
        vklogLog(g_szLogTag, kLogError, "MsiEnumPatches returns the error %u", error);
    }
    return std::nullopt;
}

std::optional<std::string> PatchVersion(const Installer& installer, const std::string& strPatch) {
    const auto package =
        ReadInfo(installer.MsiGetPatchInfoA, "MsiGetPatchInfoA", strPatch.c_str(), kLocalPackage);
    if (!package) {
        vklogLog(g_szLogTag, kLogError, "Unable to found local package for found patch!");
        return std::nullopt;
    }
    auto version = QueryDatabase(installer, kPatchQuestion, *package);
    if (!version) {
        vklogLog(g_szLogTag, kLogError, "Unable to found value for local database package!");
    }
    return version;
}

// Of the last patch that has one.
std::optional<std::string> PatchesVersion(const Installer& installer, const char* pszProductCode) {
    if (installer.MsiEnumPatchesA == nullptr) {
        LogMissing("MsiEnumPatchesA");
        return std::nullopt;
    }
    std::optional<std::string> last;
    std::uint32_t index = 0;
    while (const auto patch = PatchCode(installer, pszProductCode, index)) {
        vklogLog(g_szLogTag, kLogError, "Working with patch %d", static_cast<int>(index));
        if (auto version = PatchVersion(installer, *patch)) {
            last = std::move(version);
        }
        ++index;
    }
    if (index == 0) {
        vklogLog(g_szLogTag, kLogError, "No patch found!");
    }
    return last;
}

// Whether the library has all that a query looks up in it. Two of the functions are not called: the
// answer's columns are known, and closing all handles would close the host's own as well.
bool HasQueryFunctions(const Installer& installer) {
    const std::pair<bool, const char*> functions[] = {
        {installer.MsiOpenDatabaseA != nullptr, "MsiOpenDatabaseA"},
        {installer.MsiDatabaseOpenViewA != nullptr, "MsiDatabaseOpenViewA"},
        {installer.MsiViewGetColumnInfo != nullptr, "MsiViewGetColumnInfo"},
        {installer.MsiViewExecute != nullptr, "MsiViewExecute"},
        {installer.MsiViewFetch != nullptr, "MsiViewFetch"},
        {installer.MsiRecordGetStringA != nullptr, "MsiRecordGetStringA"},
        {installer.MsiCloseHandle != nullptr, "MsiCloseHandle"},
        {installer.MsiCloseAllHandles != nullptr, "MsiCloseAllHandles"},
    };
    const auto* const missing = std::find_if(std::begin(functions), std::end(functions),
                                             [](const auto& entry) { return !entry.first; });
    if (missing == std::end(functions)) {
        return true;
    }
    LogMissing(missing->second);
    return false;
}

// The first field of the statement's first record.
std::optional<std::string> FirstField(const Installer& installer, std::uint32_t nDatabase,
                                      const char* pszStatement) {
    InstallerHandle view(installer);
    InstallerHandle record(installer);
    if (installer.MsiDatabaseOpenViewA(nDatabase, pszStatement, view.put()) != kInstallerSuccess ||
        installer.MsiViewExecute(view.get(), 0) != kInstallerSuccess ||
        installer.MsiViewFetch(view.get(), record.put()) != kInstallerSuccess) {
        return std::nullopt;
    }
    return ReadText(0, [&](char* pszBuffer, std::uint32_t* pSize) {
        return installer.MsiRecordGetStringA(record.get(), 1, pszBuffer, pSize);
    });
}

}  // namespace

std::optional<std::string> QueryDatabase(const Installer& installer,
                                         const DatabaseQuestion& question,
                                         const std::string& strPath) {
    if (!HasQueryFunctions(installer)) {
        return std::nullopt;
    }
    const std::uintptr_t mode = IsPatchPath(strPath) ? kOpenPatch : kOpenReadOnly;
    InstallerHandle database(installer);
    if (installer.MsiOpenDatabaseA(strPath.c_str(), reinterpret_cast<const char*>(mode),
                                   database.put()) != kInstallerSuccess) {
        vklogLog(g_szLogTag, kLogError, "Unable to open database!");
        return std::nullopt;
    }
    std::array<char, kStatementCapacity> statement{};
    const int length = std::snprintf(statement.data(), statement.size(),
                                     "SELECT `Value` FROM `%s` WHERE `%s` = '%s'",
                                     question.pszTable, question.pszColumn, question.pszWanted);
    if (length < 0 || static_cast<std::size_t>(length) >= statement.size()) {
        return std::nullopt;
    }
    auto value = FirstField(installer, database.get(), statement.data());
    if (value) {
        vklogLog(g_szLogTag, kLogDetail, "The value has been retreived from package.");
    }
    return value;
}

ProductInformation ReadProductInformation(const Installer& installer, const char* pszProductCode) {
    ProductInformation product;
    if (!ReadRegistration(installer, pszProductCode, product)) {
        vklogLog(g_szLogTag, kLogError, "Unable to retreive information from installed product!");
        return product;
    }
    if (auto version = PackageVersion(installer, pszProductCode)) {
        product.strVersion = std::move(*version);
    } else {
        vklogLog(g_szLogTag, kLogError,
                 "Unable to retreive information from installed product database!");
    }
    if (auto version = PatchesVersion(installer, pszProductCode)) {
        product.strVersion = std::move(*version);
    } else {
        vklogLog(g_szLogTag, kLogError,
                 "Unable to retreive information from installed patches databases!. No patch?");
    }
    return product;
}

}  // namespace mvp
