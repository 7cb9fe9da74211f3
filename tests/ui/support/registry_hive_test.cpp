#include "support/registry_hive.h"

#include <array>
#include <string>

#include <gtest/gtest.h>

namespace mvp::test {
namespace {

constexpr char kPath[] = "Software\\MvpTestOnly\\Below";

struct Value {
    LSTATUS nStatus;
    DWORD dwType = 0;
    std::string strBytes;
};

Value Read(const char* pszName) {
    RegistryKey key;
    Value value;
    value.nStatus = RegOpenKeyExA(HKEY_LOCAL_MACHINE, kPath, 0, KEY_READ, key.put());
    if (value.nStatus != ERROR_SUCCESS)
        return value;
    std::array<BYTE, 1024> buffer = {};
    auto dwSize = static_cast<DWORD>(buffer.size());
    value.nStatus =
        RegQueryValueExA(key.get(), pszName, nullptr, &value.dwType, buffer.data(), &dwSize);
    if (value.nStatus == ERROR_SUCCESS)
        value.strBytes.assign(buffer.begin(), buffer.begin() + dwSize);
    return value;
}

TEST(RegistryHive, GivesTheReaderWhatWasSetAndNothingAfterwards) {
    ASSERT_EQ(Read("Text").nStatus, ERROR_FILE_NOT_FOUND);
    {
        RegistryHive hive;
        hive.SetString(kPath, "Text", "abc");
        hive.SetUnterminated(kPath, "Open", "abc");
        hive.SetRaw(kPath, "Long", REG_SZ, std::string(600, 'x'));
        hive.SetRaw(kPath, "Short", REG_DWORD, std::string("\1\2", 2));
        hive.SetDword(kPath, "Number", 0x12345678);

        EXPECT_EQ(Read("Text").strBytes, std::string("abc\0", 4));
        EXPECT_EQ(Read("Open").strBytes, "abc");
        EXPECT_EQ(Read("Long").strBytes.size(), 600u);
        EXPECT_EQ(Read("Short").strBytes.size(), 2u);
        EXPECT_EQ(Read("Short").dwType, DWORD{REG_DWORD});
        EXPECT_EQ(Read("Number").strBytes, "\x78\x56\x34\x12");

        hive.DeleteValue(kPath, "Text");
        EXPECT_EQ(Read("Text").nStatus, ERROR_FILE_NOT_FOUND);
        hive.DeleteKey("Software\\MvpTestOnly");
        EXPECT_EQ(Read("Number").nStatus, ERROR_FILE_NOT_FOUND);
        hive.SetDword(kPath, "Number", 1);
    }
    EXPECT_EQ(Read("Number").nStatus, ERROR_FILE_NOT_FOUND);
    RegistryHive hive;
    EXPECT_EQ(Read("Number").nStatus, ERROR_FILE_NOT_FOUND);
}

}  // namespace
}  // namespace mvp::test
