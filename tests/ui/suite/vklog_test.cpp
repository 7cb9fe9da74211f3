#include "suite/vklog/vklog.h"

#include <windows.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "real_module.h"
#include "support/registry_hive.h"
#include "support/waiting.h"

namespace {

constexpr char kKey[] = R"(SOFTWARE\Quillon\Veskara\Logging)";
using Strings = std::vector<std::string>;

constexpr unsigned kAllLevels = 1 | 2 | VKLOG_DETAIL_BIT | 8 | 16;

// The module, loaded afresh: it reads its settings once in its life.
struct Log {
    CRealModule module{"vklog"};
    decltype(vklogLog)* pLog = module.Get<decltype(vklogLog)>("vklogLog");
    decltype(vklogSetOutput)* pSetOutput = module.Get<decltype(vklogSetOutput)>("vklogSetOutput");
};

// What the module sends to debuggers while this lives.
class CDebuggerRecorder {
public:
    CDebuggerRecorder() : m_handler(AddVectoredExceptionHandler(1, &Take)) { s_text.clear(); }
    CDebuggerRecorder(const CDebuggerRecorder&) = delete;
    CDebuggerRecorder& operator=(const CDebuggerRecorder&) = delete;
    ~CDebuggerRecorder() { RemoveVectoredExceptionHandler(m_handler); }

    static std::string Text() { return s_text; }

private:
    static LONG WINAPI Take(EXCEPTION_POINTERS* pPointers) {
        constexpr DWORD kText = 0x40010006;
        const EXCEPTION_RECORD& record = *pPointers->ExceptionRecord;
        if (record.ExceptionCode == kText)
            s_text += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
        return EXCEPTION_CONTINUE_SEARCH;
    }

    static inline std::string s_text;
    void* m_handler;
};

class VkLog : public testing::Test {
protected:
    VkLog() {
        char folder[MAX_PATH] = {};
        char file[MAX_PATH] = {};
        GetTempPathA(sizeof(folder), folder);
        GetTempFileNameA(folder, "log", 0, file);
        m_strFile = file;
        DeleteFileA(file);
    }
    ~VkLog() override { DeleteFileA(m_strFile.c_str()); }

    bool FileExists() const {
        return GetFileAttributesA(m_strFile.c_str()) != INVALID_FILE_ATTRIBUTES;
    }
    std::string Content() const {
        std::ifstream file(m_strFile, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // The lines from their tag on; a line that is not whole fails the test.
    std::vector<std::string> Lines() const {
        static const std::regex form(
            R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[\d+:\d+\] ([^\r\n]*))");
        std::vector<std::string> lines;
        const std::string content = Content();
        for (std::size_t nStart = 0; nStart < content.size();) {
            const std::size_t nEnd = content.find("\r\n", nStart);
            std::smatch match;
            const std::string line = content.substr(nStart, nEnd - nStart);
            if (nEnd == std::string::npos || !std::regex_match(line, match, form)) {
                ADD_FAILURE() << "not a whole line: " << line;
                break;
            }
            lines.push_back(match[1]);
            nStart = nEnd + 2;
        }
        return lines;
    }

    std::string m_strFile;
};

TEST_F(VkLog, WritesTheLevelsThatAreOnAndFormatsNoOthers) {
    const Log log;
    for (const int nOn : {0, 1, 2, 8, 16}) {
        DeleteFileA(m_strFile.c_str());
        log.pSetOutput(m_strFile.c_str(), nOn == 0 ? unsigned{VKLOG_DETAIL_BIT} : unsigned(nOn));
        for (const int nLevel : {0, 1, 2, 8, 16}) {
            int nFormatted = -1;  // formatting sets it
            log.pLog("TAG", nLevel, "%d%n", nLevel, &nFormatted);
            EXPECT_EQ(nFormatted >= 0, nLevel == nOn) << nLevel;
        }
        const Strings lines = Lines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_TRUE(lines[0].ends_with(": " + std::to_string(nOn))) << lines[0];
        log.pSetOutput(nullptr, kAllLevels);
    }
}

TEST_F(VkLog, ReadsTheRegistryOnceAndAtTheFirstCall) {
    mvp::test::RegistryHive hive;
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
    const struct {
        const char* pszName;
        DWORD nFileType;
        std::string file;
        DWORD nLevelsType;
        std::string levels;
        const char* pszTold;
    } cases[] = {
        {"no file", REG_NONE, "", REG_DWORD, std::string(4, '\x1f'), ""},
        {"empty file", REG_SZ, std::string(1, '\0'), REG_DWORD, std::string(4, '\x1f'), ""},
        {"file of another type", REG_BINARY, file, REG_DWORD, std::string(4, '\x1f'),
         "LogFile: its type is another one"},
        {"file too long", REG_SZ, m_strFile + std::string(600, 'x'), REG_DWORD,
         std::string(4, '\x1f'), "LogFile: it is too long"},
        {"no levels", REG_SZ, file, REG_NONE, "", ""},
        {"levels of another type", REG_SZ, file, REG_SZ, "31",
         "LogLevels: its type is another one"},
        {"levels too short", REG_SZ, file, REG_DWORD, "\x1f", "LogLevels: it cannot be read"},
    };
    for (const auto& each : cases) {
        mvp::test::RegistryHive hive;
        if (each.nFileType != REG_NONE)
            hive.SetRaw(kKey, "LogFile", each.nFileType, each.file);
        if (each.nLevelsType != REG_NONE)
            hive.SetRaw(kKey, "LogLevels", each.nLevelsType, each.levels);
        const CDebuggerRecorder debugger;
        const Log log;
        log.pLog("TAG", VKLOG_ERROR, "x");
        log.pLog("TAG", VKLOG_ERROR, "x");
        std::string strTold;
        if (*each.pszTold != '\0')
            strTold = "Setting ignored: " + std::string(kKey) + "\\" + each.pszTold +
                      "; nothing is logged";
        EXPECT_EQ(debugger.Text(), strTold.empty() ? "" : "vklog: " + strTold + "\n")
            << each.pszName;
        // Wrong levels are also told where their lines are missed.
        EXPECT_EQ(Lines(), strTold.find("LogLevels") != std::string::npos
                               ? Strings{"VKLOG error: " + strTold}
                               : Strings{})
            << each.pszName;
        DeleteFileA(m_strFile.c_str());
    }
}

TEST_F(VkLog, AFileThatCannotBeOpenedIsToldAndTriedAgain) {
    const CDebuggerRecorder debugger;
    const Log log;
    const std::string strFolder = m_strFile + ".d";
    const std::string strFile = strFolder + "\\log.txt";
    log.pSetOutput(strFile.c_str(), kAllLevels);
    SetLastError(1234);
    log.pLog("TAG", VKLOG_ERROR, "lost");
    EXPECT_EQ(GetLastError(), 1234U);
    EXPECT_EQ(debugger.Text(),
              "vklog: " + strFile + " cannot be written (error 3), lines are lost\n");

    // It could be opened now, but is not tried again so soon, nor is anything formatted for it.
    CreateDirectoryA(strFolder.c_str(), nullptr);
    int nFormatted = -1;
    log.pLog("TAG", VKLOG_ERROR, "%n", &nFormatted);
    EXPECT_EQ(nFormatted, -1);

    // It is, some seconds later, and tells what it lacks.
    int nLost = 2;
    EXPECT_TRUE(mvp::WaitFor(std::chrono::seconds(60), [&] {
        log.pLog("TAG", VKLOG_ERROR, "found");
        const bool bFound = GetFileAttributesA(strFile.c_str()) != INVALID_FILE_ATTRIBUTES;
        nLost += bFound ? 0 : 1;
        return bFound;
    }));
    log.pSetOutput(nullptr, 0);
    EXPECT_EQ(debugger.Text().find("lost"), debugger.Text().rfind("lost")) << "told once";
    MoveFileA(strFile.c_str(), m_strFile.c_str());
    EXPECT_EQ(Lines(), (Strings{"VKLOG error: " + std::to_string(nLost) +
                                    " lines could not be written before",
                                "TAG error: found"}));
    RemoveDirectoryA(strFolder.c_str());
}

TEST_F(VkLog, ToleratesNullsAndCutsLongTexts) {
    const Log log;
    log.pSetOutput(m_strFile.c_str(), kAllLevels);
    const char* volatile pszNone = nullptr;
    log.pLog(pszNone, VKLOG_ERROR, "%s", "x");
    log.pLog("TAG", VKLOG_ERROR, pszNone);
    log.pLog("TAG", VKLOG_ERROR, "two\nlines");
    log.pLog("TAG", VKLOG_ERROR, "%s", std::string(100000, 'y').c_str());
    const Strings lines = Lines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0], "(null) error: x");
    EXPECT_EQ(lines[1], "TAG error: (null)");
    EXPECT_EQ(lines[2], "TAG error: two\\nlines");
    EXPECT_TRUE(lines[3].ends_with("y" VKLOG_CUT_MARK));
}

// How often `region` holds the text whose bytes are each one less than those of `pszShifted`.
int CountIn(const MEMORY_BASIC_INFORMATION& region, const char* pszShifted) {
    const volatile char* const pBegin = static_cast<const char*>(region.BaseAddress);
    const std::size_t nLength = std::strlen(pszShifted);
    int nHits = 0;
    for (std::size_t nAt = 0; nAt + nLength <= region.RegionSize; ++nAt) {
        std::size_t nSame = 0;
        while (nSame < nLength && pBegin[nAt + nSame] == pszShifted[nSame] - 1)
            ++nSame;
        if (nSame == nLength)
            ++nHits;
    }
    return nHits;
}

// The same for this thread's whole stack, the part below the caller's frame above all.
int CountOnStack(const char* pszShifted) {
    MEMORY_BASIC_INFORMATION region = {};
    VirtualQuery(&region, &region, sizeof(region));
    const void* const pStack = region.AllocationBase;
    const char* pAt = static_cast<const char*>(pStack);
    int nHits = 0;
    while (VirtualQuery(pAt, &region, sizeof(region)) != 0 && region.AllocationBase == pStack) {
        if (region.State == MEM_COMMIT && region.Protect == PAGE_READWRITE)
            nHits += CountIn(region, pszShifted);
        pAt = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
    }
    return nHits;
}

TEST_F(VkLog, LeavesNoTextOnTheStack) {
    const Log log;
    log.pSetOutput(m_strFile.c_str(), kAllLevels);
    constexpr char kShifted[] = "TfdsfuQjo5822";  // "SecretPin4711"
    char* const pszSecret = static_cast<char*>(std::calloc(1, sizeof(kShifted)));
    for (std::size_t i = 0; kShifted[i] != '\0'; ++i)
        pszSecret[i] = static_cast<char>(kShifted[i] - 1);
    log.pLog("TAG", VKLOG_DETAIL, "PIN: %s", pszSecret);
    EXPECT_EQ(CountOnStack(kShifted), 0);
    EXPECT_EQ(Lines(), Strings{std::string("TAG detail: PIN: ") + pszSecret});
    std::free(pszSecret);
}

void WriteNumbered(const Log& log, const std::string& strWriter, int nLines) {
    for (int i = 0; i < nLines; ++i)
        log.pLog("TAG", VKLOG_ERROR, "%s %d %s", strWriter.c_str(), i,
                 std::string(300, '.').c_str());
}

// Every writer's lines are there, whole and in order.
void ExpectAllLines(const Strings& lines, std::size_t nWriters, int nLinesEach) {
    std::map<std::string, int> next;
    for (const std::string& line : lines) {
        std::istringstream words(line);
        std::string tag, level, writer;
        int nNumber = -1;
        words >> tag >> level >> writer >> nNumber;
        EXPECT_EQ(nNumber, next[writer]++) << writer;
    }
    EXPECT_EQ(next.size(), nWriters);
    for (const auto& [writer, nCount] : next)
        EXPECT_EQ(nCount, nLinesEach) << writer;
}

TEST_F(VkLog, ThreadsDoNotMixTheirLines) {
    const Log log;
    log.pSetOutput(m_strFile.c_str(), kAllLevels);
    std::vector<std::thread> threads;
    for (const char* pszName : {"a", "b", "c", "d"})
        threads.emplace_back([&log, pszName] { WriteNumbered(log, pszName, 500); });
    for (std::thread& thread : threads)
        thread.join();
    ExpectAllLines(Lines(), 4, 500);
}

constexpr char kReady[] = "VeskaraLogTestReady";
constexpr char kGo[] = "VeskaraLogTestGo";
constexpr int kLinesOfAProcess = 3000;

// What the processes of the next test run.
TEST(VkLogProcess, DISABLED_Writes) {
    const Log log;
    log.pSetOutput(std::getenv("VKLOG_TEST_FILE"), kAllLevels);
    const mvp::KernelHandle ready(OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, kReady));
    const mvp::KernelHandle go(OpenEventA(SYNCHRONIZE, FALSE, kGo));
    ReleaseSemaphore(ready.get(), 1, nullptr);
    ASSERT_EQ(WaitForSingleObject(go.get(), 60000), WAIT_OBJECT_0);
    WriteNumbered(log, std::to_string(GetCurrentProcessId()), kLinesOfAProcess);
}

TEST_F(VkLog, ProcessesDoNotMixTheirLines) {
    const mvp::KernelHandle ready(CreateSemaphoreA(nullptr, 0, 10, kReady));
    const mvp::KernelHandle go(CreateEventA(nullptr, TRUE, FALSE, kGo));
    SetEnvironmentVariableA("VKLOG_TEST_FILE", m_strFile.c_str());
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, sizeof(program));
    std::string strCommand = std::string("\"") + program +
                             "\" --gtest_also_run_disabled_tests --gtest_brief=1 "
                             "--gtest_filter=VkLogProcess.DISABLED_Writes";
    std::vector<mvp::KernelHandle> processes;
    for (int i = 0; i < 3; ++i) {
        STARTUPINFOA startup = {};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process = {};
        ASSERT_TRUE(CreateProcessA(nullptr, strCommand.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                   nullptr, &startup, &process));
        CloseHandle(process.hThread);
        processes.emplace_back(process.hProcess);
    }
    for (std::size_t i = 0; i < processes.size(); ++i)
        ASSERT_EQ(WaitForSingleObject(ready.get(), 60000), WAIT_OBJECT_0);
    SetEvent(go.get());
    for (const mvp::KernelHandle& process : processes)
        ASSERT_EQ(WaitForSingleObject(process.get(), 60000), WAIT_OBJECT_0);
    ExpectAllLines(Lines(), 3, kLinesOfAProcess);
}

}  // namespace
