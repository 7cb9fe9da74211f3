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

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\Test)";
// No key has a name this long.
const std::string kUnreadable(300, 'k');
constexpr DWORD kDefault = 0xABCD1234;

// The lines of level 1, in one text; the key of the test is cut out of them.
std::string Errors(const LogRecorder& log) {
    std::string all;
    for (std::string text : log.Texts(1)) {
        for (const std::string& strKey : {std::string(kKey), kUnreadable}) {
            if (const std::size_t nAt = text.find(strKey); nAt != std::string::npos)
                text.erase(nAt, strKey.size() + 1);
        }
        all += (all.empty() ? "" : "|") + text;
    }
    return all;
}

class RegistryReaders : public testing::Test {
protected:
    RegistryReaders() {
        m_hive.SetDword(kKey, "Number", 42);
        m_hive.SetString(kKey, "Text", "hello");
        m_hive.SetString(kKey, "Empty", "");
        m_hive.SetRaw(kKey, "Binary", REG_BINARY, std::string(4, '\1'));
        m_hive.SetRaw(kKey, "LongNumber", REG_DWORD, std::string(8, '\7'));
        for (const std::size_t size : {258U, 259U, 260U, 599U})
            m_hive.SetString(kKey, "Text" + std::to_string(size), std::string(size, 'x'));
        for (const std::size_t size : {259U, 260U, 261U})
            m_hive.SetUnterminated(kKey, "Open" + std::to_string(size), std::string(size, 'y'));
    }

    RegistryHive m_hive;
    LogRecorder m_log;
};

TEST_F(RegistryReaders, NumbersAreReadOrDefaulted) {
    struct Case {
        const char* pszKey;
        const char* pszValue;
        int nResult;
        DWORD dwExpected;
        const char* pszErrors;
    };
    const Case cases[] = {
        {kKey, "Number", 0, 42, ""},
        {R"(software\quillon\VESKARA\test)", "nUMBER", 0, 42, ""},
        {kKey, "Text", -1, kDefault,
         "dwType(1) <> REG_DWORD|Setting ignored: Text: the type is not REG_DWORD"},
        {kKey, "Binary", -1, kDefault,
         "dwType(3) <> REG_DWORD|Setting ignored: Binary: the type is not REG_DWORD"},
        {kKey, "Missing", -1, kDefault, "RegQueryValueEx returns the error 2"},
        {kKey, "LongNumber", -1, kDefault,
         "RegQueryValueEx (2) returns the error 234|Setting ignored: LongNumber: longer than 4 "
         "bytes"},
        {"SOFTWARE\\Nobody", "Number", -1, kDefault, "RegOpenKeyEx returns the error 2"},
        {kUnreadable.c_str(), "Number", -1, kDefault,
         "RegOpenKeyEx returns the error 234|Setting ignored: Number: cannot be read"},
        {"", "Number", -1, kDefault, "Could not read registry path name"},
        {kKey, "", -1, kDefault, "Could not read registry key name"},
        {nullptr, nullptr, -1, kDefault, "Could not read registry path name"},
    };
    for (const Case& c : cases) {
        m_log.Clear();
        // What lies behind the value must not be touched, whatever the registry holds.
        std::array<DWORD, 2> out = {7, 0x5A5A5A5A};
        EXPECT_EQ(readDWORDFromRegistry_sz(c.pszKey, c.pszValue, out.data(), kDefault), c.nResult)
            << m_log.Dump();
        EXPECT_EQ(out[0], c.dwExpected) << m_log.Dump();
        EXPECT_EQ(out[1], 0x5A5A5A5AU) << m_log.Dump();
        EXPECT_EQ(Errors(m_log), c.pszErrors);
    }
}

TEST_F(RegistryReaders, NumberReaderTellsEntryAndResult) {
    DWORD value = 0;
    readDWORDFromRegistry_sz(kKey, "Number", &value, 0);
    EXPECT_EQ(m_log.Texts(8), std::vector<std::string>{"readDWORDFromRegistry_sz (Key=Number)"});
    EXPECT_EQ(m_log.Texts(16), std::vector<std::string>{"readDWORDFromRegistry_sz (0)"});
    m_log.Clear();
    EXPECT_EQ(readDWORDFromRegistry_sz(kKey, "Number", nullptr, 0), -1);
    EXPECT_EQ(Errors(m_log), "pdwValue == NULL");
    EXPECT_EQ(m_log.Texts(16), std::vector<std::string>{"readDWORDFromRegistry_sz (-1)"});
}

TEST_F(RegistryReaders, TextsAreReadOrLeft) {
    struct Case {
        const char* pszKey;
        const char* pszValue;
        int nResult;
        std::string strExpected;
        std::string strErrors;
    };
    const std::string kTooLong = "RegQueryValueEx (2) returns the error 234|Setting ignored: ";
    const std::string kWhy = ": longer than 260 bytes with its terminator";
    const std::string untouched = "before";
    const Case cases[] = {
        {kKey, "Text", 0, "hello", ""},
        {kKey, "Empty", 0, "", ""},
        {kKey, "Text258", 0, std::string(258, 'x'), ""},
        {kKey, "Text259", 0, std::string(259, 'x'), ""},
        {kKey, "Open259", 0, std::string(259, 'y'), ""},
        {kKey, "Text260", -1, untouched, kTooLong + "Text260" + kWhy},
        {kKey, "Text599", -1, untouched, kTooLong + "Text599" + kWhy},
        {kKey, "Open260", -1, untouched, kTooLong + "Open260" + kWhy},
        {kKey, "Open261", -1, untouched, kTooLong + "Open261" + kWhy},
        {kKey, "Number", -1, untouched,
         "dwType(4) <> REG_SZ|Setting ignored: Number: the type is not REG_SZ"},
        {kKey, "Missing", -1, untouched, "RegQueryValueEx returns the error 2"},
        {"SOFTWARE\\Nobody", "Text", -1, untouched, "RegOpenKeyEx returns the error 2"},
        {"", "Text", -1, untouched, "Could not read registry path name"},
        {kKey, "", -1, untouched, "Could not read registry key name"},
    };
    for (const Case& c : cases) {
        m_log.Clear();
        CString out(untouched.c_str());
        EXPECT_EQ(readStringFromRegistry_sz(c.pszKey, c.pszValue, &out), c.nResult) << m_log.Dump();
        EXPECT_EQ(std::string(out), c.strExpected) << m_log.Dump();
        EXPECT_EQ(Errors(m_log), c.strErrors);
        EXPECT_EQ(m_log.Texts(8), std::vector<std::string>{"readStringFromRegistry_sz"});
        EXPECT_EQ(m_log.Texts(16),
                  std::vector<std::string>{c.nResult == 0 ? "readStringFromRegistry_sz ! 0"
                                                          : "readStringFromRegistry_sz ! -1"});
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
    EXPECT_EQ(Errors(m_log),
              "RegQueryValueEx returns the error 2|readStringFromRegistry_sz: exception");
    EXPECT_EQ(m_log.Texts(8), (std::vector<std::string>{"readDWORDFromRegistry_sz (Key=Missing)",
                                                        "readStringFromRegistry_sz"}));
    EXPECT_EQ(m_log.Texts(16), (std::vector<std::string>{"readDWORDFromRegistry_sz (-1)",
                                                         "readStringFromRegistry_sz ! -1"}));
}

class InstallPath : public testing::Test {
protected:
    // Reads into a buffer of `capacity` bytes that has sentinels behind it.
    void Read(DWORD capacity) {
        m_buffer.fill('#');
        m_capacity = capacity;
        EXPECT_EQ(ReadInstallPath(m_buffer.data(), &m_capacity), 0);
        EXPECT_TRUE(std::all_of(m_buffer.begin() + static_cast<std::ptrdiff_t>(capacity),
                                m_buffer.end(), [](char c) { return c == '#'; }));
    }
    bool IsUntouched() const {
        return std::all_of(m_buffer.begin(), m_buffer.end(), [](char c) { return c == '#'; });
    }

    static constexpr char kKey[] = "Software\\Quillon\\Veskara";
    static constexpr char kValue[] = "VeskaraInstallPath";
    RegistryHive m_hive;
    LogRecorder m_log;
    std::array<char, 1024> m_buffer{};
    DWORD m_capacity = 0;
};

TEST_F(InstallPath, IsReadWithItsSize) {
    m_hive.SetString(kKey, kValue, "C:\\veskara\\");
    Read(512);
    EXPECT_STREQ(m_buffer.data(), "C:\\veskara\\");
    EXPECT_EQ(m_capacity, 12U);
    EXPECT_EQ(m_log.Texts(0),
              (std::vector<std::string>{"ReadInstallPath begins", "ReadInstallPath ends"}));
}

TEST_F(InstallPath, FillsABufferOfItsSize) {
    m_hive.SetString(kKey, kValue, std::string(511, 'p'));
    Read(512);
    EXPECT_EQ(m_capacity, 512U);
    EXPECT_EQ(std::string(m_buffer.data(), 511), std::string(511, 'p'));
}

TEST_F(InstallPath, FailuresTouchNothingAndSayWhy) {
    Read(512);
    EXPECT_EQ(m_capacity, 0U);
    EXPECT_TRUE(m_log.Contains(2, "Warning : RegOpenKeyEx returns 2")) << m_log.Dump();

    m_hive.CreateKey(kKey);
    Read(512);
    EXPECT_EQ(m_capacity, 0U);
    EXPECT_TRUE(m_log.Contains(2, "Warning : RegQueryValueEx returns 2")) << m_log.Dump();

    m_hive.SetDword(kKey, kValue, 1);
    Read(512);
    EXPECT_EQ(m_capacity, 0U);
    EXPECT_EQ(Errors(m_log),
              "dwType(4) <> REG_SZ|Setting ignored: Software\\Quillon\\Veskara"
              "\\VeskaraInstallPath: the type is not REG_SZ");
    m_log.Clear();

    m_hive.SetString(kKey, kValue, std::string(599, 'p'));
    Read(512);
    EXPECT_EQ(m_capacity, 0U);
    EXPECT_EQ(Errors(m_log),
              "size (600) > 512 |Setting ignored: Software\\Quillon\\Veskara"
              "\\VeskaraInstallPath: too long");
    EXPECT_TRUE(IsUntouched());
}

}  // namespace
}  // namespace mvp::test
