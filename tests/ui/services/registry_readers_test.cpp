#include "services/registry_readers.h"

#include <algorithm>
#include <array>
#include <string>

#include <gtest/gtest.h>

#include "support/failing_heap.h"
#include "support/log_recorder.h"
#include "support/registry_hive.h"

namespace mvp::test {
namespace {

using Texts = std::vector<std::string>;

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\Test)";
constexpr char kInstallKey[] = R"(Software\Quillon\Veskara)";
// No key has a name this long.
const std::string kUnreadable(300, 'k');
constexpr DWORD kDefault = 0xABCD1234;

class RegistryReaders : public testing::Test {
protected:
    RegistryReaders() {
        m_hive.SetDword(kKey, "Number", 42);
        m_hive.SetString(kKey, "Text", "hello");
        m_hive.SetString(kKey, "Empty", "");
        m_hive.SetRaw(kKey, "Binary", REG_BINARY, std::string(4, '\1'));
        m_hive.SetRaw(kKey, "LongNumber", REG_DWORD, std::string(8, '\7'));
        for (const std::size_t size : {258U, 259U, 260U, 599U}) {
            m_hive.SetString(kKey, "Text" + std::to_string(size), std::string(size, 'x'));
        }
        for (const std::size_t size : {259U, 260U, 261U}) {
            m_hive.SetUnterminated(kKey, "Open" + std::to_string(size), std::string(size, 'y'));
        }
    }

    // The lines of level 1 since the last call, in one text; the test's keys are cut out of them.
    std::string Errors() {
        std::string all;
        for (std::string text : m_log.Texts(1)) {
            for (const std::string& key : {std::string(kKey), kUnreadable}) {
                if (const std::size_t at = text.find(key); at != std::string::npos) {
                    text.erase(at, key.size() + 1);
                }
            }
            all += (all.empty() ? "" : "|") + text;
        }
        m_log.Clear();
        return all;
    }

    RegistryHive m_hive;
    LogRecorder m_log;
};

TEST_F(RegistryReaders, NumbersAreReadOrDefaulted) {
    const struct {
        const char* pszKey;
        const char* pszValue;
        const char* pszErrors;  // none: it is read
    } cases[] = {
        {kKey, "Number", ""},
        {R"(software\quillon\VESKARA\test)", "nUMBER", ""},
        {kKey, "Text", "dwType(1) <> REG_DWORD|Setting ignored: Text: the type is not REG_DWORD"},
        {kKey, "Binary",
         "dwType(3) <> REG_DWORD|Setting ignored: Binary: the type is not REG_DWORD"},
        {kKey, "Missing", "RegQueryValueEx returns the error 2"},
        {kKey, "LongNumber",
         "RegQueryValueEx (2) returns the error 234|Setting ignored: LongNumber: longer than 4 "
         "bytes"},
        {"SOFTWARE\\Nobody", "Number", "RegOpenKeyEx returns the error 2"},
        {kUnreadable.c_str(), "Number",
         "RegOpenKeyEx returns the error 234|Setting ignored: Number: cannot be read"},
        {"", "Number", "Could not read registry path name"},
        {kKey, "", "Could not read registry key name"},
        {nullptr, nullptr, "Could not read registry path name"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pszErrors);
        const bool read = *c.pszErrors == '\0';
        const std::string result = read ? "0" : "-1";
        const std::string value = c.pszValue != nullptr ? c.pszValue : "";
        // What lies behind the value must not be touched, whatever the registry holds.
        std::array<DWORD, 2> out = {7, 0x5A5A5A5A};
        EXPECT_EQ(readDWORDFromRegistry_sz(c.pszKey, c.pszValue, out.data(), kDefault),
                  read ? 0 : -1);
        EXPECT_EQ(out[0], read ? 42 : kDefault);
        EXPECT_EQ(out[1], 0x5A5A5A5AU);
        EXPECT_EQ(m_log.Texts(8), Texts{"readDWORDFromRegistry_sz (Key=" + value + ")"});
        EXPECT_EQ(m_log.Texts(16), Texts{"readDWORDFromRegistry_sz (" + result + ")"});
        EXPECT_EQ(Errors(), c.pszErrors);
    }
    EXPECT_EQ(readDWORDFromRegistry_sz(kKey, "Number", nullptr, 0), -1);
    EXPECT_EQ(m_log.Texts(16), Texts{"readDWORDFromRegistry_sz (-1)"});
    EXPECT_EQ(Errors(), "pdwValue == NULL");
}

TEST_F(RegistryReaders, TextsAreReadOrLeft) {
    const std::string kTooLong = "RegQueryValueEx (2) returns the error 234|Setting ignored: ";
    const std::string kWhy = ": longer than 260 bytes with its terminator";
    const struct {
        const char* pszKey;
        const char* pszValue;
        std::string strExpected;  // "before": it is not read
        std::string strErrors;
    } cases[] = {
        {kKey, "Text", "hello", ""},
        {kKey, "Empty", "", ""},
        {kKey, "Text258", std::string(258, 'x'), ""},
        {kKey, "Text259", std::string(259, 'x'), ""},
        {kKey, "Open259", std::string(259, 'y'), ""},
        {kKey, "Text260", "before", kTooLong + "Text260" + kWhy},
        {kKey, "Text599", "before", kTooLong + "Text599" + kWhy},
        {kKey, "Open260", "before", kTooLong + "Open260" + kWhy},
        {kKey, "Open261", "before", kTooLong + "Open261" + kWhy},
        {kKey, "Number", "before",
         "dwType(4) <> REG_SZ|Setting ignored: Number: the type is not REG_SZ"},
        {kKey, "Missing", "before", "RegQueryValueEx returns the error 2"},
        {"SOFTWARE\\Nobody", "Text", "before", "RegOpenKeyEx returns the error 2"},
        {"", "Text", "before", "Could not read registry path name"},
        {kKey, "", "before", "Could not read registry key name"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pszValue);
        const std::string result = c.strErrors.empty() ? "0" : "-1";
        CString out("before");
        EXPECT_EQ(std::to_string(readStringFromRegistry_sz(c.pszKey, c.pszValue, &out)), result);
        EXPECT_EQ(std::string(out), c.strExpected);
        EXPECT_EQ(m_log.Texts(8), Texts{"readStringFromRegistry_sz"});
        EXPECT_EQ(m_log.Texts(16), Texts{"readStringFromRegistry_sz ! " + result});
        EXPECT_EQ(Errors(), c.strErrors);
    }
    EXPECT_EQ(readStringFromRegistry_sz(kKey, "Text", nullptr), 0);
}

TEST_F(RegistryReaders, AnswerWithoutMemory) {
    DWORD number = 0;
    CString text("before");
    {
        FailingHeap heap("dlgfw.dll");
        heap.FailAt(0);
        EXPECT_EQ(readDWORDFromRegistry_sz(kKey, "Missing", &number, kDefault), -1);
        heap.FailAt(0);
        EXPECT_EQ(readStringFromRegistry_sz(kKey, "Text259", &text), -1);
    }
    EXPECT_EQ(number, kDefault);
    EXPECT_EQ(std::string(text), "before");
    EXPECT_EQ(m_log.Texts(8),
              (Texts{"readDWORDFromRegistry_sz (Key=Missing)", "readStringFromRegistry_sz"}));
    EXPECT_EQ(m_log.Texts(16),
              (Texts{"readDWORDFromRegistry_sz (-1)", "readStringFromRegistry_sz ! -1"}));
    EXPECT_EQ(Errors(), "RegQueryValueEx returns the error 2|readStringFromRegistry_sz: exception");
}

TEST_F(RegistryReaders, InstallPathFillsItsBufferAndNoMore) {
    const std::string ignored =
        R"(|Setting ignored: Software\Quillon\Veskara\VeskaraInstallPath: )";
    const struct {
        DWORD dwType;
        std::string strBytes;
        DWORD nSize;  // that is told
        std::string strErrors;
    } cases[] = {
        {REG_SZ, std::string("C:\\veskara\\\0", 12), 12, ""},
        {REG_SZ, std::string(511, 'p') + '\0', 512, ""},
        {REG_SZ, std::string(599, 'p') + '\0', 0, "size (600) > 512 " + ignored + "too long"},
        {REG_DWORD, std::string(4, '\1'), 0,
         "dwType(4) <> REG_SZ" + ignored + "the type is not REG_SZ"},
    };
    std::array<char, 1024> buffer{};
    const auto expect = [&](DWORD nSize) {
        buffer.fill('#');
        DWORD capacity = 512;
        EXPECT_EQ(ReadInstallPath(buffer.data(), &capacity), 0);
        EXPECT_EQ(capacity, nSize);
        // What lies behind it must not be touched.
        EXPECT_EQ(std::count(buffer.data() + capacity, buffer.end(), '#'), 1024 - capacity);
    };
    for (const auto& c : cases) {
        m_hive.SetRaw(kInstallKey, "VeskaraInstallPath", c.dwType, c.strBytes);
        expect(c.nSize);
        EXPECT_EQ(std::string(buffer.data(), c.nSize), c.strBytes.substr(0, c.nSize));
        EXPECT_EQ(m_log.Texts(0), (Texts{"ReadInstallPath begins", "ReadInstallPath ends"}));
        EXPECT_EQ(Errors(), c.strErrors);
    }
    m_hive.DeleteKey(kInstallKey);
    expect(0);
    m_hive.CreateKey(kInstallKey);
    expect(0);
    EXPECT_EQ(m_log.Texts(2),
              (Texts{"Warning : RegOpenKeyEx returns 2", "Warning : RegQueryValueEx returns 2"}));
}

}  // namespace
}  // namespace mvp::test
