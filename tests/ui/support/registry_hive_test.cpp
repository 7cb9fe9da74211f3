#include "support/registry_hive.h"

#include <string>

#include <gtest/gtest.h>

namespace mvp::test {
namespace {

constexpr char kPath[] = "Software\\MvpTestOnly\\Below";

// Empty when there is no such value.
std::string Read(const char* pszName) {
    RegistryKey key;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, kPath, 0, KEY_READ, key.put());
    char bytes[1024];
    DWORD size = sizeof bytes;
    const LSTATUS status = RegQueryValueExA(key.get(), pszName, nullptr, nullptr,
                                            reinterpret_cast<BYTE*>(bytes), &size);
    return {bytes, status == ERROR_SUCCESS ? size : 0};
}

TEST(RegistryHive, GivesTheReaderWhatWasSetAndNothingAfterwards) {
    {
        RegistryHive hive;
        hive.SetString(kPath, "Text", "abc");
        hive.SetUnterminated(kPath, "Open", std::string(600, 'x'));
        EXPECT_EQ(Read("Text"), std::string("abc") + '\0');
        EXPECT_EQ(Read("Open"), std::string(600, 'x'));
        hive.DeleteKey("Software\\MvpTestOnly");
        EXPECT_EQ(Read("Open"), "");
        hive.SetDword(kPath, "Number", 0x12345678);
        EXPECT_EQ(Read("Number"), "\x78\x56\x34\x12");
    }
    RegistryKey machine;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software", 0, KEY_READ, machine.put()), 0);
    const RegistryHive empty;
    EXPECT_EQ(Read("Number"), "");
}

}  // namespace
}  // namespace mvp::test
