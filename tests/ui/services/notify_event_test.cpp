#include "services/notify_event.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>

#include "common/patched_imports.h"
#include "platform/handle.h"
#include "platform/system_library.h"
#include "support/log_recorder.h"
#include "support/resource_counts.h"
#include "support/waiting.h"
#include "ui/support/child_process.h"

namespace mvp::test {
namespace {

constexpr char kTray[] = "VkTrayHandlerClass";
constexpr char kConsole[] = "VKUserConsoleCL";
constexpr char kClassVariable[] = "MVP_NOTICE_CLASS";
constexpr std::chrono::seconds kDeadline{30};
const HWND kSender = reinterpret_cast<HWND>(UINT_PTR{4711});

// A window that takes notices.
class NoticeWindow : public CWnd {
public:
    explicit NoticeWindow(const char* pszClass) {
        WNDCLASSA info{};
        info.lpfnWndProc = &::DefWindowProcA;
        info.lpszClassName = pszClass;
        RegisterClassA(&info);  // kept; a repetition is refused
        CreateEx(0, pszClass, "", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr);
        EXPECT_NE(m_hWnd, nullptr);
    }
    ~NoticeWindow() override { DestroyWindow(); }
    // The last one, as "code sender size reader".
    static inline std::string s_strNotice;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message != WM_COPYDATA) {
            return CWnd::WindowProc(message, wParam, lParam);
        }
        const auto& record = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        s_strNotice = std::to_string(record.dwData) + " " + std::to_string(wParam) + " " +
                      std::to_string(record.cbData) + " " + static_cast<const char*>(record.lpData);
        return TRUE;
    }
};

void ExpectNotice() {
    EXPECT_TRUE(WaitFor(kDeadline, [] {
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);  // takes what was sent
        return !NoticeWindow::s_strNotice.empty();
    }));
}

// Takes no message before its event is set, then one notice.
TEST(NotifyEventTest, DISABLED_TakesOneNotice) {
    char name[100] = "";
    GetEnvironmentVariableA(kClassVariable, name, sizeof name);
    const KernelHandle go(OpenEventA(SYNCHRONIZE, FALSE, (std::string("Go") + name).c_str()));
    const NoticeWindow window(name);
    WaitForSingleObject(go.get(), INFINITE);
    ExpectNotice();
    std::printf("[%s]\n", NoticeWindow::s_strNotice.c_str());
}

// A receiver in another process.
class Receiver {
public:
    explicit Receiver(const char* pszClass, bool bGo = true)
        : m_go(CreateEventA(nullptr, TRUE, bGo, (std::string("Go") + pszClass).c_str())) {
        SetEnvironmentVariableA(kClassVariable, pszClass);
        m_child = std::make_unique<DisabledTest>("NotifyEventTest.DISABLED_TakesOneNotice");
        EXPECT_TRUE(WaitFor(kDeadline, [=] { return FindWindowA(pszClass, nullptr) != nullptr; }));
    }
    ~Receiver() {
        TerminateProcess(m_child->Process(), 1);
        WaitForSingleObject(m_child->Process(), 10'000);
    }
    void Go() const { SetEvent(m_go.get()); }
    std::string Notice() {
        const std::string output = m_child->Wait().strOutput;
        const std::size_t start = output.rfind("\n[7") + 2;
        return output.substr(start, output.find(']', start) - start);
    }

private:
    KernelHandle m_go;
    std::unique_ptr<DisabledTest> m_child;
};

TEST(NotifyEventTest, WithoutReceiversOnlyLogs) {
    LogRecorder log;
    NotifyEvent(kEventUnlockCodeShown, "Reader A", kSender);
    ASSERT_EQ(log.Lines().size(), 2U) << log.Dump();
    EXPECT_TRUE(log.Contains(8, "NotifyEvent"));
    EXPECT_TRUE(log.Contains(16, "NotifyEvent"));
}

TEST(NotifyEventTest, ReachesBothReceiversWithEverything) {
    Receiver tray(kTray);
    Receiver console(kConsole);
    LogRecorder log;
    NotifyEvent(kEventCardUnlocked, "Reader \xE9", kSender);
    EXPECT_EQ(tray.Notice(), "78946 4711 9 Reader \xE9");
    EXPECT_EQ(console.Notice(), "78946 4711 9 Reader \xE9");
    const std::string posting =
        "NotifyEvent: Posting registered window message: 78946, on reader Reader \xE9 to the ";
    EXPECT_TRUE(log.Contains(0, posting + "Smart Card Agent")) << log.Dump();
    EXPECT_TRUE(log.Contains(0, posting + "User Console")) << log.Dump();
}

TEST(NotifyEventTest, DISABLED_Sends) {
    NotifyEvent(kEventUnlockCodeShown, "Reader B", reinterpret_cast<HWND>(UINT_PTR{1234}));
}

TEST(NotifyEventTest, NoticeOutlivesItsSender) {
    Receiver tray(kTray, false);
    EXPECT_EQ(RunDisabledTest("NotifyEventTest.DISABLED_Sends").dwExitCode, 0U);
    tray.Go();
    EXPECT_EQ(tray.Notice(), "78945 1234 9 Reader B");
}

// What the next test sees of the library's waits.
const DWORD g_nCaller = GetCurrentThreadId();
const KernelHandle g_returned(CreateEventA(nullptr, TRUE, FALSE, nullptr));  // the call has
std::atomic<int> g_nTimeouts = 0;                                            // of the caller
std::atomic<int> g_nEarlyReturns = 0;  // of the call, before its notice was sent
std::atomic<UINT> g_nPatience = 0;     // of a delivery, as it was asked for

LRESULT WINAPI Send(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam, UINT nFlags,
                    UINT nTimeout, PDWORD_PTR pResult) {
    static const auto send = FindFunction<decltype(&SendMessageTimeoutA)>(
        GetModuleHandleA("user32.dll"), "SendMessageTimeoutA");
    if (message == WM_COPYDATA) {
        g_nPatience = std::exchange(nTimeout, 60'000);
        // A call that does not wait for the sending returns now.
        g_nEarlyReturns += WaitForSingleObject(g_returned.get(), 200) == WAIT_OBJECT_0;
    }
    const LRESULT sent = send(hWnd, message, wParam, lParam, nFlags, nTimeout, pResult);
    g_nTimeouts += sent == 0 && GetCurrentThreadId() == g_nCaller;
    return sent;
}

DWORD WINAPI Wait(HANDLE hObject, DWORD nTimeout) {
    static const auto wait = FindFunction<decltype(&WaitForSingleObject)>(
        GetModuleHandleA("kernel32.dll"), "WaitForSingleObject");
    const DWORD result = wait(hObject, nTimeout);
    g_nTimeouts += result == WAIT_TIMEOUT && GetCurrentThreadId() == g_nCaller;
    return result;
}

TEST(NotifyEventTest, HangingReceiverDelaysNobody) {
    auto tray = std::make_unique<Receiver>(kTray, false);
    Receiver console(kConsole);
    const auto before = ResourceCounts::Now();
    {
        const PatchedImports seen(nullptr, {{"SendMessageTimeoutA", Address(&Send)},
                                            {"WaitForSingleObject", Address(&Wait)}});
        NotifyEvent(kEventUnlockCodeShown, "Reader C", kSender);
        SetEvent(g_returned.get());
        EXPECT_EQ(g_nTimeouts, 0);
        EXPECT_EQ(g_nEarlyReturns, 0);
        EXPECT_EQ(g_nPatience, 5'000U);
    }
    EXPECT_EQ(console.Notice(), "78945 4711 9 Reader C");
    tray.reset();
    // The delivery to the one that hung leaves nothing.
    EXPECT_TRUE(
        WaitFor(kDeadline, [&] { return ResourceCounts::Now().threads <= before.threads; }));
    ExpectNoGrowth(before, ResourceCounts::Now());
}

// The receiver cannot take the notice before the call has returned, and one that was given up
// never: the call may not wait for it.
TEST(NotifyEventTest, ReachesAWindowOfTheCallersOwnThread) {
    const NoticeWindow window(kTray);
    const std::pair<const char*, std::string> cases[] = {{"Reader D", "78945 4711 9 Reader D"},
                                                         {nullptr, "78945 4711 1 "}};
    for (const auto& [reader, notice] : cases) {
        NoticeWindow::s_strNotice.clear();
        NotifyEvent(kEventUnlockCodeShown, reader, kSender);
        EXPECT_EQ(NoticeWindow::s_strNotice, "");
        ExpectNotice();
        EXPECT_EQ(NoticeWindow::s_strNotice, notice);
    }
}

}  // namespace
}  // namespace mvp::test
