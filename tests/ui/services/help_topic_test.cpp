#include "services/help_topic.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/log_recorder.h"
#include "support/registry_hive.h"

namespace mvp::test {
namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\GlobalConfig)";
constexpr char kValue[] = "VeskaraHelpPath";

const std::string kIgnored =
    R"(Setting ignored: SOFTWARE\Quillon\Veskara\GlobalConfig\VeskaraHelpPath: )";
const std::string kNoSuchFile = kIgnored + "no such file: ";
const std::string kThere = R"(C:\windows\win.ini)";

using Texts = std::vector<std::string>;

class HelpTopic : public testing::Test {
protected:
    HelpTopic() {
        s_calls.clear();
        SetHelpViewer([](HWND hCaller, LPCSTR pszFile, UINT uCommand, DWORD_PTR dwData) -> HWND {
            EXPECT_EQ(hCaller, GetActiveWindow());
            EXPECT_EQ(uCommand, 15U);
            s_calls.push_back(std::to_string(dwData) + " " + pszFile);
            return nullptr;
        });
    }
    ~HelpTopic() override { SetHelpViewer(nullptr); }

    static inline Texts s_calls;  // of the viewer
    RegistryHive m_hive;
    LogRecorder m_log;
};

TEST_F(HelpTopic, ShowsTheConfiguredFileAtTheTopicAndTellsWhenItIsNotThere) {
    const std::pair<std::string, std::string> cases[] = {
        // The value, and the file that is told to be missing.
        {kThere, ""},
        {kThere + "::/pin.htm>main", ""},
        {kThere + ">main", ""},
        {"C:\\veskara\\no.chm", "C:\\veskara\\no.chm"},
        {"C:\\veskara\\no.chm::/pin.htm", "C:\\veskara\\no.chm"},
        {'"' + kThere + '"', '"' + kThere + '"'},
        {R"(%SystemRoot%\win.ini)", R"(%SystemRoot%\win.ini)"},
        {std::string(260, 'p'), std::string(260, 'p')},
    };
    for (const auto& [path, missing] : cases) {
        m_log.Clear();
        s_calls.clear();
        // Of any type, and without a terminator when it fills all the room that there is for it.
        m_hive.SetRaw(kKey, kValue, path == kThere ? REG_EXPAND_SZ : REG_SZ,
                      path.size() == 260 ? path : path + '\0');
        DoDisplayTopic(1015);
        EXPECT_EQ(s_calls, Texts{"1015 " + path});
        EXPECT_EQ(m_log.Texts(1), missing.empty() ? Texts{} : Texts{kNoSuchFile + missing});
        EXPECT_TRUE(m_log.Contains(8, "DoDisplayTopic"));
        EXPECT_TRUE(m_log.Contains(2, "Displaying topic 1015"));
        EXPECT_TRUE(m_log.Contains(16, "DoDisplayTopic"));
    }
}

TEST_F(HelpTopic, WithoutAFileShowsNothing) {
    DoDisplayTopic(3);
    m_hive.CreateKey(kKey);
    DoDisplayTopic(3);
    m_hive.SetString(kKey, kValue, std::string(260, 'p'));
    DoDisplayTopic(3);
    const std::string failed = "RegQueryValueEx \"VeskaraHelpPath\" failed";
    EXPECT_EQ(m_log.Texts(1),
              (Texts{"RegOpenKeyEx \"SOFTWARE\\Quillon\\Veskara\\GlobalConfig\" failed", failed,
                     failed, kIgnored + "longer than 260 bytes"}));
    EXPECT_TRUE(s_calls.empty());
}

}  // namespace
}  // namespace mvp::test
