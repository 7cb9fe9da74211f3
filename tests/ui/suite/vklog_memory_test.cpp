// What a detail line that carries a PIN leaves behind in the logger.
#include <windows.h>

#include <thread>

#include "platform/handle.h"
#include "real_module.h"
#include "suite/vklog/vklog.h"
#include "support/memory_scan.h"

namespace mvp::test {
namespace {

constexpr DWORD kDeadlineMs = 20000;

TEST(VkLogMemory, KeepsNothingOfALine) {
    char file[MAX_PATH] = {};
    GetTempFileNameA(".", "log", 0, file);
    const Secret pin;
    const SecretWatch watch({&pin});
    const KernelHandle logged(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    const KernelHandle done(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    // On a thread that then waits: the stack below stays as the logger left it.
    std::thread thread([&] {
        const RealModule module("vklog");
        module.Get<decltype(vklogSetOutput)>("vklogSetOutput")(file, VKLOG_DETAIL_BIT);
        char text[Secret::kLength + 1] = {};
        pin.CopyTo(text);
        module.Get<decltype(vklogLog)>("vklogLog")("MVPINGUI", 0, "csValue: %s", text);
        SecureZeroMemory(text, sizeof text);
        SetEvent(logged.get());
        WaitForSingleObject(done.get(), kDeadlineMs);
    });
    EXPECT_EQ(WaitForSingleObject(logged.get(), kDeadlineMs), WAIT_OBJECT_0);
    watch.ExpectNothingLeft("logged");
    SetEvent(done.get());
    thread.join();
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    EXPECT_TRUE(GetFileAttributesExA(file, GetFileExInfoStandard, &data));
    EXPECT_GT(data.nFileSizeLow, DWORD{Secret::kLength}) << "nothing was logged";
    DeleteFileA(file);
}

}  // namespace
}  // namespace mvp::test
