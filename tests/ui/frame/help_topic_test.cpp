#include "services/help_topic.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/log_recorder.h"
#include "support/registry_hive.h"

namespace mvp::test {
namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\GlobalConfig)";

const std::string kIgnored = std::string("Setting ignored: ") + kKey + "\\VeskaraHelpPath: ";
const std::string kThere = R"(C:\windows\win.ini)";

struct ViewerCall {
    HWND hCaller;
    std::string strFile;
    UINT uCommand;
    DWORD_PTR dwData;
};
std::vector<ViewerCall> g_calls;

HWND WINAPI RecordingViewer(HWND hCaller, LPCSTR pszFile, UINT uCommand, DWORD_PTR dwData) {
    g_calls.push_back({hCaller, pszFile, uCommand, dwData});
    return nullptr;
}

class HelpTopic : public testing::Test {
protected:
    HelpTopic() {
        g_calls.clear();
        SetHelpViewer(RecordingViewer);
    }
    ~HelpTopic() override { SetHelpViewer(nullptr); }

    RegistryHive m_hive;
    LogRecorder m_log;
};

TEST_F(HelpTopic, ShowsTheConfiguredFileAtTheTopic) {
    m_hive.SetString(kKey, "VeskaraHelpPath", kThere);
    DoDisplayTopic(1015);
    ASSERT_EQ(g_calls.size(), 1U);
    EXPECT_EQ(g_calls[0].hCaller, GetActiveWindow());
    EXPECT_EQ(g_calls[0].strFile, kThere);
    EXPECT_EQ(g_calls[0].uCommand, 15U);
    EXPECT_EQ(g_calls[0].dwData, 1015U);
    EXPECT_TRUE(m_log.Contains(8, "DoDisplayTopic"));
    EXPECT_TRUE(m_log.Contains(2, "Displaying topic 1015"));
    EXPECT_TRUE(m_log.Contains(16, "DoDisplayTopic"));
    EXPECT_TRUE(m_log.Texts(1).empty()) << m_log.Dump();
}

TEST_F(HelpTopic, TellsOfAFileThatIsNotThere) {
    struct Case {
        std::string strPath;
        std::string strMissing;  // empty: nothing is told
    };
    const Case cases[] = {
        {kThere + "::/pin.htm>main", ""},
        {kThere + ">main", ""},
        {"C:\\veskara\\no.chm", "C:\\veskara\\no.chm"},
        {"C:\\veskara\\no.chm::/pin.htm", "C:\\veskara\\no.chm"},
        {'"' + kThere + '"', '"' + kThere + '"'},
        {R"(%SystemRoot%\win.ini)", R"(%SystemRoot%\win.ini)"},
    };
    for (const Case& c : cases) {
        m_log.Clear();
        m_hive.SetString(kKey, "VeskaraHelpPath", c.strPath);
        DoDisplayTopic(1);
        std::vector<std::string> expected;
        if (!c.strMissing.empty())
            expected.push_back(kIgnored + "no such file: " + c.strMissing);
        EXPECT_EQ(m_log.Texts(1), expected);
        EXPECT_EQ(g_calls.back().strFile, c.strPath);
    }
}

TEST_F(HelpTopic, TakesAnyTypeAndNeverReadsBeyondTheBuffer) {
    m_hive.SetRaw(kKey, "VeskaraHelpPath", REG_EXPAND_SZ, std::string("a.chm\0", 6));
    DoDisplayTopic(1);
    m_hive.SetUnterminated(kKey, "VeskaraHelpPath", std::string(260, 'p'));
    DoDisplayTopic(2);
    ASSERT_EQ(g_calls.size(), 2U);
    EXPECT_EQ(g_calls[0].strFile, "a.chm");
    EXPECT_EQ(g_calls[1].strFile, std::string(260, 'p'));
}

TEST_F(HelpTopic, WithoutAFileShowsNothing) {
    DoDisplayTopic(3);
    EXPECT_TRUE(
        m_log.Contains(1, "RegOpenKeyEx \"SOFTWARE\\Quillon\\Veskara\\GlobalConfig\" failed"))
        << m_log.Dump();
    m_hive.CreateKey(kKey);
    DoDisplayTopic(3);
    m_hive.SetString(kKey, "VeskaraHelpPath", std::string(260, 'p'));
    DoDisplayTopic(3);
    const std::string failed = "RegQueryValueEx \"VeskaraHelpPath\" failed";
    const std::vector<std::string> errors = m_log.Texts(1);
    EXPECT_EQ(std::vector(errors.begin() + 1, errors.end()),
              (std::vector<std::string>{failed, failed, kIgnored + "longer than 260 bytes"}));
    EXPECT_TRUE(g_calls.empty());
}

}  // namespace
}  // namespace mvp::test
