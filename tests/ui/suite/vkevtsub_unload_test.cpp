// vkevtsub while it is being unloaded, and while its process ends. This program is not linked
// against it; a client library is.
#include <windows.h>

#include <chrono>

#include <gtest/gtest.h>

#include "platform/system_library.h"
#include "support/waiting.h"
#include "ui/support/child_process.h"

namespace mvp::test {
namespace {

constexpr char kClient[] = "vkevtsub_client.dll";

TEST(VkEvtSubUnload, LeavesNothingBehindThatRunsInIt) {
    const auto isLoaded = [] { return GetModuleHandleA("vkevtsub.dll") != nullptr; };
    for (int i = 0; i < 10; ++i) {
        {
            const ModuleHandle client(LoadLibraryA(kClient));
            ASSERT_TRUE(FindFunction<bool (*)()>(client.get(), "ClientUseOnce")());
            ASSERT_TRUE(isLoaded());
        }
        // Freed by the client; its own threads free it too, as they end.
        ASSERT_TRUE(WaitFor(std::chrono::seconds(20), [&] { return !isLoaded(); })) << i;
    }
}

// The process that the next test starts: it ends in the middle of a call, with the subscriber's
// destructor run as the client library is detached.
TEST(VkEvtSubUnload, DISABLED_EndsInACall) {
    FindFunction<void (*)()>(LoadLibraryA(kClient), "ClientHang")();
    ExitProcess(42);
}

TEST(VkEvtSubUnload, AProcessMayEndInACall) {
    DisabledTest child("VkEvtSubUnload.DISABLED_EndsInACall");
    if (WaitForSingleObject(child.Process(), 30000) != WAIT_OBJECT_0) {
        TerminateProcess(child.Process(), 1);
    }
    EXPECT_EQ(child.Wait().dwExitCode, DWORD{42}) << "1: the process hangs";
}

}  // namespace
}  // namespace mvp::test
