// vkevtsub while it is being unloaded, and while its process ends. This program is not linked
// against it; a client library is.
#include <windows.h>

#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "platform/handle.h"
#include "support/waiting.h"
#include "vkevtsub_client.h"

namespace {

class CClientModule {
public:
    CClientModule() : m_module(LoadLibraryA("vkevtsub_client.dll")) { EXPECT_TRUE(m_module); }

    template <class Function>
    Function* Get(const char* pszName) const {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(m_module.get(), pszName)));
    }

private:
    mvp::ModuleHandle m_module;
};

bool IsLoaded() {
    return GetModuleHandleA("vkevtsub.dll") != nullptr;
}

TEST(VkEvtSubUnload, LeavesNothingBehindThatRunsInIt) {
    for (int i = 0; i < 100; ++i) {
        {
            const CClientModule client;
            ASSERT_TRUE(client.Get<decltype(ClientUseOnce)>("ClientUseOnce")());
            ASSERT_TRUE(IsLoaded());
        }
        // Freed by the client; its own threads free it too, as they end.
        ASSERT_TRUE(mvp::test::WaitFor(std::chrono::seconds(20), [] { return !IsLoaded(); }))
            << "cycle " << i;
    }
}

// The process that the next test starts: it ends in the middle of a call, with the subscriber's
// destructor run as the client library is detached.
TEST(VkEvtSubProcess, DISABLED_EndsInACall) {
    const CClientModule client;
    client.Get<decltype(ClientHang)>("ClientHang")();
    ExitProcess(42);
}

TEST(VkEvtSubUnload, AProcessMayEndInACall) {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, sizeof(program));
    std::string strCommand = std::string("\"") + program +
                             "\" --gtest_also_run_disabled_tests --gtest_brief=1 "
                             "--gtest_filter=VkEvtSubProcess.DISABLED_EndsInACall";
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION information = {};
    ASSERT_TRUE(CreateProcessA(nullptr, strCommand.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &information));
    const mvp::KernelHandle thread(information.hThread);
    const mvp::KernelHandle process(information.hProcess);
    const DWORD nResult = WaitForSingleObject(process.get(), 30000);
    if (nResult != WAIT_OBJECT_0)
        TerminateProcess(process.get(), 1);
    ASSERT_EQ(nResult, WAIT_OBJECT_0) << "the process hangs";
    DWORD nExitCode = 0;
    GetExitCodeProcess(process.get(), &nExitCode);
    EXPECT_EQ(nExitCode, DWORD{42});
}

}  // namespace
