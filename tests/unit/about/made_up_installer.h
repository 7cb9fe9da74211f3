// An installer whose products, patches and databases a test makes up, and what it was asked.
//
// It holds whoever asks to the installer's contract: a handle is of its kind and open, a buffer is
// filled as far as it says it reaches, the statement is the one that the databases understand.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "about/installer.h"

namespace mvp::test {

struct MadeUpInstaller {
    using Properties = std::map<std::string, std::string>;
    struct Patch {
        std::string strCode;
        std::optional<std::string> package;  // its path, if the installer knows it
        std::string strTransforms;
    };

    std::map<std::string, Properties> products;        // by product code
    std::vector<Patch> patches;                        // of every product
    std::map<std::string, Properties> packages;        // path -> table -> value
    std::set<std::string> failing;                     // functions that answer with an error
    std::uint32_t nEnumError = kInstallerNoMoreItems;  // behind the last patch
    int nGrowth = 0;  // how many further calls find a text longer by one than the last did

    std::map<std::uint32_t, char> open;  // handles: 'd'atabase, 'v'iew, 'r'ecord
    std::vector<std::pair<std::string, std::uintptr_t>> opened;  // databases with their modes
    std::vector<std::string> statements;

    MadeUpInstaller() { s_pThis = this; }
    MadeUpInstaller(const MadeUpInstaller&) = delete;
    MadeUpInstaller& operator=(const MadeUpInstaller&) = delete;
    ~MadeUpInstaller() {
        EXPECT_TRUE(open.empty()) << open.size() << " handles are left open";
        s_pThis = nullptr;
    }

    static Installer Functions() {
        Installer installer;
        installer.MsiGetProductInfoA = &GetProductInfo;
        installer.MsiGetPatchInfoA = &GetPatchInfo;
        installer.MsiEnumPatchesA = &EnumPatches;
        installer.MsiOpenDatabaseA = &OpenDatabase;
        installer.MsiDatabaseOpenViewA = &OpenView;
        installer.MsiViewGetColumnInfo = [](std::uint32_t, int, std::uint32_t*) { return 1U; };
        installer.MsiViewExecute = &Execute;
        installer.MsiViewFetch = &Fetch;
        installer.MsiRecordGetStringA = &GetString;
        installer.MsiCloseHandle = &CloseHandle;
        installer.MsiCloseAllHandles = [] {
            ADD_FAILURE() << "the host's handles are closed";
            return 0U;
        };
        return installer;
    }

private:
    static constexpr std::uint32_t kFailed = 1627;

    static bool Fails(const char* pszFunction) { return s_pThis->failing.contains(pszFunction); }

    static std::uint32_t Give(std::string text, char* pszBuffer, std::uint32_t* pSize) {
        s_pThis->m_nGrown += s_pThis->nGrowth-- > 0 ? 1U : 0U;
        text.append(s_pThis->m_nGrown, '+');
        const std::uint32_t room = std::exchange(*pSize, static_cast<std::uint32_t>(text.size()));
        if (room > 0) {
            std::memset(pszBuffer, '#', room);
            pszBuffer[text.copy(pszBuffer, room - 1)] = '\0';
        }
        return room > text.size() ? kInstallerSuccess : kInstallerMoreData;
    }

    static std::uint32_t Open(char kind, std::uint32_t* pHandle) {
        // The installer's handles start anywhere, and fill all 32 bits.
        static std::uint32_t last = 0xFFFF'F000U;
        s_pThis->open[*pHandle = ++last] = kind;
        return kInstallerSuccess;
    }
    static void Expect(char kind, std::uint32_t nHandle) {
        const auto it = s_pThis->open.find(nHandle);
        EXPECT_TRUE(it != s_pThis->open.end() && it->second == kind) << kind << " " << nHandle;
    }

    static std::uint32_t GetProductInfo(const char* pszProduct, const char* pszProperty,
                                        char* pszBuffer, std::uint32_t* pSize) {
        const auto product = s_pThis->products.find(pszProduct);
        if (product == s_pThis->products.end()) {
            return 1605;
        }
        const auto value = product->second.find(pszProperty);
        return value == product->second.end() ? 1608 : Give(value->second, pszBuffer, pSize);
    }
    static std::uint32_t GetPatchInfo(const char* pszPatch, const char* pszProperty,
                                      char* pszBuffer, std::uint32_t* pSize) {
        EXPECT_STREQ(pszProperty, "LocalPackage");
        for (const Patch& patch : s_pThis->patches) {
            if (patch.strCode == pszPatch && patch.package) {
                return Give(*patch.package, pszBuffer, pSize);
            }
        }
        return 1647;
    }
    static std::uint32_t EnumPatches(const char* pszProduct, std::uint32_t nIndex, char* pszCode,
                                     char* pszTransforms, std::uint32_t* pSize) {
        EXPECT_TRUE(s_pThis->products.contains(pszProduct));
        EXPECT_GT(*pSize, 0U) << "there are installers that write before such a buffer";
        if (nIndex >= s_pThis->patches.size()) {
            return s_pThis->nEnumError;
        }
        const Patch& patch = s_pThis->patches[nIndex];
        std::memcpy(pszCode, patch.strCode.c_str(), patch.strCode.size() + 1);
        return Give(patch.strTransforms, pszTransforms, pSize);
    }

    static std::uint32_t OpenDatabase(const char* pszPath, const char* pszMode,
                                      std::uint32_t* pDatabase) {
        s_pThis->opened.emplace_back(pszPath, reinterpret_cast<std::uintptr_t>(pszMode));
        const auto package = s_pThis->packages.find(pszPath);
        if (Fails("MsiOpenDatabaseA") || package == s_pThis->packages.end()) {
            return 110;
        }
        s_tables = package->second;
        return Open('d', pDatabase);
    }
    static std::uint32_t OpenView(std::uint32_t nDatabase, const char* pszStatement,
                                  std::uint32_t* pView) {
        Expect('d', nDatabase);
        s_pThis->statements.emplace_back(pszStatement);
        for (const auto& [table, value] : s_tables) {
            if (!Fails("MsiDatabaseOpenViewA") &&
                pszStatement ==
                    "SELECT `Value` FROM `" + table + "` WHERE `Property` = 'InternalVersion'") {
                s_strValue = value;
                return Open('v', pView);
            }
        }
        return 1615;
    }
    static std::uint32_t Execute(std::uint32_t nView, std::uint32_t nParameters) {
        Expect('v', nView);
        EXPECT_EQ(nParameters, 0U);
        return Fails("MsiViewExecute") ? kFailed : kInstallerSuccess;
    }
    static std::uint32_t Fetch(std::uint32_t nView, std::uint32_t* pRecord) {
        Expect('v', nView);
        return Fails("MsiViewFetch") ? kInstallerNoMoreItems : Open('r', pRecord);
    }
    static std::uint32_t GetString(std::uint32_t nRecord, std::uint32_t nField, char* pszBuffer,
                                   std::uint32_t* pSize) {
        Expect('r', nRecord);
        EXPECT_EQ(nField, 1U);
        return Fails("MsiRecordGetStringA") ? kFailed : Give(s_strValue, pszBuffer, pSize);
    }
    static std::uint32_t CloseHandle(std::uint32_t nHandle) {
        EXPECT_EQ(s_pThis->open.erase(nHandle), 1U) << nHandle;
        return kInstallerSuccess;
    }

    std::size_t m_nGrown = 0;

    static inline MadeUpInstaller* s_pThis = nullptr;
    static inline Properties s_tables;     // of the database opened last
    static inline std::string s_strValue;  // of the view opened last
};

}  // namespace mvp::test
