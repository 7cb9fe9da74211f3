#include "services/notify_event.h"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "platform/handle.h"
#include "support/log_recorder.h"
#include "support/resource_counts.h"
#include "support/waiting.h"

namespace mvp::test {
namespace {

constexpr char kTray[] = "VkTrayHandlerClass";
constexpr char kConsole[] = "VKUserConsoleCL";
constexpr std::chrono::seconds kDeadline{30};

std::string Contents(const std::string& strFile) {
    std::ifstream file(strFile, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// Starts a program of this folder; ends it with the object.
class Program {
public:
    explicit Program(const std::string& strArguments) {
        std::string line = strArguments;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION info{};
        if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                            &startup, &info))
            ADD_FAILURE() << "cannot start " << strArguments << ": " << GetLastError();
        m_process.reset(info.hProcess);
        KernelHandle(info.hThread).reset();
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        TerminateProcess(m_process.get(), 1);
        WaitForSingleObject(m_process.get(), 10'000);
    }
    bool HasEnded(DWORD nTimeout) const {
        return WaitForSingleObject(m_process.get(), nTimeout) == WAIT_OBJECT_0;
    }

private:
    KernelHandle m_process;
};

// A receiver in another process.
class Receiver {
public:
    Receiver(const char* pszClass, const char* pszMode)
        : m_strFile("notice_" + std::string(pszClass) + std::to_string(GetCurrentProcessId())),
          m_program("notice_receiver.exe " + std::string(pszClass) + " " + pszMode + " " +
                    m_strFile) {
        EXPECT_TRUE(
            WaitFor(kDeadline, [this] { return std::filesystem::exists(m_strFile + ".ready"); }));
    }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;
    ~Receiver() {
        std::error_code ignored;
        for (const char* pszSuffix : {"", ".ready", ".go"})
            std::filesystem::remove(m_strFile + pszSuffix, ignored);
    }
    void Go() const { std::ofstream(m_strFile + ".go") << "go"; }
    std::string Notice() const {
        std::string text;
        // A file that has just appeared may not be readable yet.
        EXPECT_TRUE(WaitFor(kDeadline, [&] {
            text = Contents(m_strFile);
            return !text.empty();
        }));
        return text;
    }

private:
    std::string m_strFile;
    Program m_program;
};

std::chrono::milliseconds Duration(const auto& body) {
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start);
}

HWND Sender() {
    return reinterpret_cast<HWND>(UINT_PTR{4711});
}

TEST(NotifyEventTest, WithoutReceiversOnlyLogs) {
    LogRecorder log;
    NotifyEvent(kEventUnlockCodeShown, "Reader A", Sender());
    ASSERT_EQ(log.Lines().size(), 2U) << log.Dump();
    EXPECT_TRUE(log.Contains(8, "NotifyEvent"));
    EXPECT_TRUE(log.Contains(16, "NotifyEvent"));
}

TEST(NotifyEventTest, ReachesBothReceiversWithEverything) {
    const Receiver tray(kTray, "answer");
    const Receiver console(kConsole, "answer");
    LogRecorder log;
    NotifyEvent(kEventCardUnlocked, "Reader \xE9", Sender());
    EXPECT_EQ(tray.Notice(), "78946 4711 9 Reader \xE9");
    EXPECT_EQ(console.Notice(), "78946 4711 9 Reader \xE9");
    EXPECT_TRUE(log.Contains(0,
                             "NotifyEvent: Posting registered window message: 78946, on reader "
                             "Reader \xE9 to the Smart Card Agent"))
        << log.Dump();
    EXPECT_TRUE(log.Contains(0,
                             "NotifyEvent: Posting registered window message: 78946, on reader "
                             "Reader \xE9 to the User Console"))
        << log.Dump();
}

TEST(NotifyEventTest, SenderMayEndAtOnce) {
    const Receiver tray(kTray, "answer");
    const Program sender("notice_sender.exe");
    EXPECT_EQ(tray.Notice(), "78945 1234 9 Reader B");
    EXPECT_TRUE(sender.HasEnded(10'000));
}

TEST(NotifyEventTest, NoticeOutlivesItsSender) {
    const Receiver tray(kTray, "late");
    const Program sender("notice_sender.exe");
    ASSERT_TRUE(sender.HasEnded(10'000));
    tray.Go();
    EXPECT_EQ(tray.Notice(), "78945 1234 9 Reader B");
}

TEST(NotifyEventTest, HangingReceiverDelaysNobody) {
    const Receiver tray(kTray, "hang");
    const Receiver console(kConsole, "answer");
    const auto before = ResourceCounts::Now();
    const auto took = Duration([] { NotifyEvent(kEventUnlockCodeShown, "Reader C", Sender()); });
    EXPECT_LT(took, std::chrono::seconds(2));
    EXPECT_EQ(console.Notice(), "78945 4711 9 Reader C");
    // The delivery to the one that hangs is given up, and leaves nothing.
    EXPECT_TRUE(
        WaitFor(kDeadline, [&] { return ResourceCounts::Now().threads <= before.threads; }));
    ExpectNoGrowth(before, ResourceCounts::Now());
}

std::string g_strTaken;

LRESULT CALLBACK TakeNotice(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_COPYDATA)
        return DefWindowProcA(hWnd, message, wParam, lParam);
    g_strTaken = static_cast<const char*>(reinterpret_cast<const COPYDATASTRUCT*>(lParam)->lpData);
    return TRUE;
}

// The receiver cannot take the notice before the call has returned, so the call may not wait for
// it.
TEST(NotifyEventTest, ReachesAWindowOfTheCallersOwnThread) {
    WNDCLASSA info{};
    info.lpfnWndProc = TakeNotice;
    info.hInstance = GetModuleHandleA(nullptr);
    info.lpszClassName = kTray;
    ASSERT_NE(RegisterClassA(&info), 0);
    const HWND own = CreateWindowA(kTray, "", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr,
                                   info.hInstance, nullptr);
    const auto took = Duration([] { NotifyEvent(kEventUnlockCodeShown, "Reader D", Sender()); });
    EXPECT_LT(took, std::chrono::seconds(4));  // it gives up after five
    EXPECT_EQ(g_strTaken, "");
    EXPECT_TRUE(WaitFor(kDeadline, [] {
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);  // takes what was sent
        return !g_strTaken.empty();
    }));
    EXPECT_EQ(g_strTaken, "Reader D");
    DestroyWindow(own);
    UnregisterClassA(kTray, info.hInstance);
}

TEST(NotifyEventTest, NullReaderIsAnEmptyOne) {
    const Receiver tray(kTray, "answer");
    NotifyEvent(kEventUnlockCodeShown, nullptr, nullptr);
    EXPECT_EQ(tray.Notice(), "78945 0 1 ");
}

}  // namespace
}  // namespace mvp::test
