#include "suite/vklog/vklog.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>

#include "common/patched_imports.h"
#include "real_module.h"
#include "support/registry_hive.h"

namespace mvp::test {
namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\Logging)";
using Strings = std::vector<std::string>;

constexpr unsigned kAllLevels = 1 | 2 | VKLOG_DETAIL_BIT | 8 | 16;

std::string g_strDebugger;  // what the module has sent to debuggers
void WINAPI TakeDebuggersLine(LPCSTR pszLine) {
    g_strDebugger += pszLine;
}

// The module, loaded afresh: it reads its settings once in its life.
struct Log {
    Log() { g_strDebugger.clear(); }

    RealModule module{"vklog"};
    decltype(vklogLog)* pLog = module.Get<decltype(vklogLog)>("vklogLog");
    decltype(vklogSetOutput)* pSetOutput = module.Get<decltype(vklogSetOutput)>("vklogSetOutput");
    PatchedImports debugger{"vklog.dll", {{"OutputDebugStringA", Address(&TakeDebuggersLine)}}};
};

class VkLog : public testing::Test {
protected:
    VkLog() {
        char file[MAX_PATH] = {};
        GetTempFileNameA(".", "log", 0, file);
        m_strFile = file;
        DeleteFileA(file);
    }
    ~VkLog() override { DeleteFileA(m_strFile.c_str()); }

    // The lines from their tag on; a line that is not whole fails the test.
    Strings Lines() const {
        static const std::regex form(
            R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[\d+:\d+\] ([^\r\n]*)\r)");
        std::ifstream file(m_strFile, std::ios::binary);
        Strings lines;
        std::smatch match;
        for (std::string line; std::getline(file, line);) {
            EXPECT_TRUE(!file.eof() && std::regex_match(line, match, form)) << line;
            lines.push_back(match[1]);
        }
        return lines;
    }

    std::string m_strFile;
};

TEST_F(VkLog, WritesTheLevelsThatAreOnAndFormatsNoOthers) {
    const Log log;
    for (const int on : {0, 1, 2, 8, 16}) {
        DeleteFileA(m_strFile.c_str());
        log.pSetOutput(m_strFile.c_str(), on == 0 ? unsigned{VKLOG_DETAIL_BIT} : unsigned(on));
        for (const int level : {0, 1, 2, 8, 16}) {
            int formatted = -1;  // formatting sets it
            log.pLog("TAG", level, "%d%n", level, &formatted);
            EXPECT_EQ(formatted >= 0, level == on) << level;
        }
        const Strings lines = Lines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_TRUE(lines[0].ends_with(": " + std::to_string(on))) << lines[0];
        log.pSetOutput(nullptr, kAllLevels);
    }
}

TEST_F(VkLog, ReadsTheRegistryOnceAndAtTheFirstCall) {
    RegistryHive hive;
    const Log log;
    SetEnvironmentVariableA("VKLOG_TEST_FILE", m_strFile.c_str());
    hive.SetRaw(kKey, "LogFile", REG_EXPAND_SZ, std::string("%VKLOG_TEST_FILE%") + '\0');
    hive.SetDword(kKey, "LogLevels", VKLOG_INFORMATION);
    log.pLog("TAG", VKLOG_ERROR, "off");
    hive.SetDword(kKey, "LogLevels", kAllLevels);
    log.pLog("TAG", VKLOG_ERROR, "still off");
    log.pLog("TAG", VKLOG_INFORMATION, "on");
    EXPECT_EQ(Lines(), Strings{"TAG information: on"});
}

TEST_F(VkLog, StaysOffWithoutUsableSettings) {
    const std::string file = m_strFile + '\0';
    const std::string all(4, '\x1f');
    const std::tuple<const char*, DWORD, std::string, DWORD, std::string, const char*> cases[] = {
        {"no file", REG_NONE, "", REG_DWORD, all, ""},
        {"empty file", REG_SZ, {'\0'}, REG_DWORD, all, ""},
        {"binary file", REG_BINARY, file, REG_DWORD, all, "LogFile: its type is another one"},
        {"file too long", REG_SZ, std::string(600, 'x'), REG_DWORD, all, "LogFile: it is too long"},
        {"no levels", REG_SZ, file, REG_NONE, "", ""},
        {"levels as text", REG_SZ, file, REG_SZ, "31", "LogLevels: its type is another one"},
        {"levels too short", REG_SZ, file, REG_DWORD, "\x1f", "LogLevels: it cannot be read"},
    };
    for (const auto& [name, fileType, fileBytes, levelsType, levels, wrong] : cases) {
        SCOPED_TRACE(name);
        RegistryHive hive;
        // Under another name it is as good as none.
        hive.SetRaw(kKey, fileType != REG_NONE ? "LogFile" : "no file", fileType, fileBytes);
        hive.SetRaw(kKey, levelsType != REG_NONE ? "LogLevels" : "none", levelsType, levels);
        const Log log;
        log.pLog("TAG", VKLOG_ERROR, "x");
        log.pLog("TAG", VKLOG_ERROR, "x");
        const std::string told =
            std::string("Setting ignored: ") + kKey + "\\" + wrong + "; nothing is logged";
        EXPECT_EQ(g_strDebugger, *wrong == '\0' ? "" : "vklog: " + told + "\n");
        // Wrong levels are also told where their lines are missed.
        const bool inFile = told.find("LogLevels") != std::string::npos;
        EXPECT_EQ(Lines(), inFile ? Strings{"VKLOG error: " + told} : Strings{});
        DeleteFileA(m_strFile.c_str());
    }
}

ULONGLONG g_nNow = 1000;
ULONGLONG WINAPI MadeClock() {
    return g_nNow;
}

TEST_F(VkLog, AFileThatCannotBeOpenedIsToldAndTriedAgain) {
    const Log log;
    const PatchedImports clock("vklog.dll", {{"GetTickCount64", Address(&MadeClock)}});
    const std::string folder = m_strFile + ".d";
    const std::string file = folder + "\\log.txt";
    log.pSetOutput(file.c_str(), kAllLevels);
    SetLastError(1234);
    log.pLog("TAG", VKLOG_ERROR, "lost");
    EXPECT_EQ(GetLastError(), 1234U);
    g_nNow += 5000;
    log.pLog("TAG", VKLOG_ERROR, "lost");
    const std::string text = g_strDebugger;
    EXPECT_TRUE(text.ends_with("\\log.txt cannot be written (error 3), lines are lost\n"));
    EXPECT_EQ(text.find("vklog: "), text.rfind("vklog: ")) << "told once: " << text;

    // It could be opened now, but is not tried again so soon, nor is anything formatted for it.
    CreateDirectoryA(folder.c_str(), nullptr);
    g_nNow += 4999;
    int formatted = -1;
    log.pLog("TAG", VKLOG_ERROR, "%n", &formatted);
    EXPECT_EQ(formatted, -1);
    ++g_nNow;
    log.pLog("TAG", VKLOG_ERROR, "found");
    log.pSetOutput(nullptr, 0);
    MoveFileA(file.c_str(), m_strFile.c_str());
    EXPECT_EQ(Lines(),
              (Strings{"VKLOG error: 3 lines could not be written before", "TAG error: found"}));
    RemoveDirectoryA(folder.c_str());
}

DWORD g_nWaitResult = 0;
int g_nReleases = 0;
DWORD WINAPI AnswerWait(HANDLE, DWORD) {
    return g_nWaitResult;
}
BOOL WINAPI CountRelease(HANDLE) {
    return ++g_nReleases;
}

TEST_F(VkLog, GivesTheFilesMutexBackWhenItGotItAndWritesInAnyCase) {
    const Log log;
    log.pSetOutput(m_strFile.c_str(), kAllLevels);
    const PatchedImports patched("vklog.dll", {{"WaitForSingleObject", Address(&AnswerWait)},
                                               {"ReleaseMutex", Address(&CountRelease)}});
    for (const DWORD result : {WAIT_OBJECT_0, WAIT_ABANDONED, DWORD{WAIT_TIMEOUT}}) {
        g_nWaitResult = result;
        g_nReleases = 0;
        log.pLog("TAG", VKLOG_ERROR, "x");
        EXPECT_EQ(g_nReleases, result == WAIT_TIMEOUT ? 0 : 1) << result;
    }
    EXPECT_EQ(Lines(), Strings(3, "TAG error: x"));
}

TEST_F(VkLog, ToleratesNullsAndCutsLongTexts) {
    const Log log;
    log.pSetOutput(m_strFile.c_str(), kAllLevels);
    const char* volatile none = nullptr;
    log.pLog(none, VKLOG_ERROR, "%s", "x");
    log.pLog("TAG", VKLOG_ERROR, none);
    log.pLog("TAG", VKLOG_ERROR, "two\nlines");
    log.pLog("TAG", VKLOG_ERROR, "%s", std::string(100000, 'y').c_str());
    Strings lines = Lines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_TRUE(lines[3].ends_with("y" VKLOG_CUT_MARK));
    lines.pop_back();
    EXPECT_EQ(lines, (Strings{"(null) error: x", "TAG error: (null)", "TAG error: two\\nlines"}));
}

// Through two copies of the module, which know of each other as little as two processes do.
TEST_F(VkLog, CopiesAndThreadsDoNotMixTheirLines) {
    constexpr int kLinesEach = 1000;
    CopyFileA(R"(..\bin\vklog.dll)", "vklog_copy.dll", FALSE);
    {
        const std::array<RealModule, 2> modules = {RealModule("vklog"),
                                                   RealModule(R"(..\testbin\vklog_copy)")};
        std::vector<std::thread> writers;
        for (const RealModule& module : modules) {
            module.Get<decltype(vklogSetOutput)>("vklogSetOutput")(m_strFile.c_str(), kAllLevels);
        }
        for (std::size_t writer = 0; writer < 6; ++writer) {
            auto* const log = modules[writer % 2].Get<decltype(vklogLog)>("vklogLog");
            writers.emplace_back([=] {
                for (int i = 0; i < kLinesEach; ++i) {
                    log("TAG", VKLOG_ERROR, "%zu %d %0300d", writer, i, 0);
                }
            });
        }
        std::ranges::for_each(writers, &std::thread::join);
    }
    DeleteFileA("vklog_copy.dll");
    // Every writer's lines are there, whole and in order.
    std::array<int, 6> next{};
    for (const std::string& line : Lines()) {
        std::size_t writer = 0;
        int number = -1;
        std::istringstream(line.substr(line.find(':') + 1)) >> writer >> number;
        EXPECT_EQ(number, next.at(writer)++) << writer;
    }
    EXPECT_THAT(next, testing::Each(kLinesEach));
}

}  // namespace
}  // namespace mvp::test
