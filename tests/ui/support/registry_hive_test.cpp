#include "support/registry_hive.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace mvp::test {
namespace {

constexpr char kPath[] = "Software\\MvpTestOnly\\Below";

// The value's bytes behind the number of its type.
std::optional<std::string> Read(const char* pszName) {
    RegistryKey key;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, kPath, 0, KEY_READ, key.put());
    DWORD dwType = 0;
    char buffer[1024];
    DWORD dwSize = sizeof buffer;
    if (RegQueryValueExA(key.get(), pszName, nullptr, &dwType, reinterpret_cast<BYTE*>(buffer),
                         &dwSize) != ERROR_SUCCESS)
        return std::nullopt;
    return std::to_string(dwType) + std::string(buffer, dwSize);
}

TEST(RegistryHive, GivesTheReaderWhatWasSetAndNothingAfterwards) {
    {
        RegistryHive hive;
        hive.SetString(kPath, "Text", "abc");
        hive.SetUnterminated(kPath, "Open", "abc");
        hive.SetRaw(kPath, "Long", REG_SZ, std::string(600, 'x'));
        hive.SetRaw(kPath, "Short", REG_DWORD, "\1\2");
        hive.SetDword(kPath, "Number", 0x12345678);

        EXPECT_EQ(Read("Text"), std::string("1abc\0", 5));
        EXPECT_EQ(Read("Open"), "1abc");
        EXPECT_EQ(Read("Long"), '1' + std::string(600, 'x'));
        EXPECT_EQ(Read("Short"), "4\1\2");
        EXPECT_EQ(Read("Number"), "4\x78\x56\x34\x12");

        hive.DeleteValue(kPath, "Text");
        EXPECT_EQ(Read("Text"), std::nullopt);
        hive.DeleteKey("Software\\MvpTestOnly");
        EXPECT_EQ(Read("Number"), std::nullopt);
        hive.SetDword(kPath, "Number", 1);
    }
    EXPECT_EQ(Read("Number"), std::nullopt);
    RegistryHive hive;
    EXPECT_EQ(Read("Number"), std::nullopt);
}

}  // namespace
}  // namespace mvp::test
