// A request whose PIN buffer cannot be had. The linker routes every malloc of this program and of
// the library's code in it through here (--wrap=malloc).
#include <atomic>
#include <cstddef>
#include <string_view>

#include <gtest/gtest.h>

#include "frame/module.h"
#include "resources/resource_numbers.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"
#include "support/memory_scan.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/pin_request.h"

namespace {

// Behind the secret: for an unusual length, so that nothing else asks for as many bytes.
constexpr std::string_view kFiller = "0000000000000000000";
constexpr std::size_t kLength = mvp::test::Secret::kLength + kFiller.size();
std::atomic<bool> g_bRefuse = false;  // thread-local storage would itself be allocated

}  // namespace

extern "C" {
void* __real_malloc(std::size_t size);   // NOLINT(bugprone-reserved-identifier): the linker's names
void* __wrap_malloc(std::size_t size) {  // NOLINT(bugprone-reserved-identifier)
    return g_bRefuse && size == kLength ? nullptr : __real_malloc(size);
}
}

namespace mvp::test {
namespace {

TEST(EnterPinWithoutMemory, IsRefusedAndHoldsTheGuard) {
    const AttachedLibrary library;
    const Secret pin;
    const SecretWatch watch({&pin});
    LogRecorder log;
    PinRequest request{.dwMax = 100};
    DialogDriver driver([&](Dialog& d) {
        d.Type(IDC_ENTER_PIN_EDIT, pin);
        d.Type(IDC_ENTER_PIN_EDIT, kFiller);
        d.Click(IDOK);
    });
    g_bRefuse = true;
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    g_bRefuse = false;
    driver.Join();
    EXPECT_TRUE(request.IsUntouched());
    EXPECT_TRUE(log.Contains(2, "GetPINFromUser: Enter PIN action validated")) << log.Dump();
    EXPECT_TRUE(log.Contains(1, "GetPINFromUser: PIN buffer allocation failed"));
    EXPECT_TRUE(log.Contains(1, "GetPINFromUser: returns: -1"));
    EXPECT_EQ(Module().nPinDialogInProgress, 1);
    FreeGetPinBuffer(nullptr, 0);
    EXPECT_EQ(Module().nPinDialogInProgress, 0);
    watch.ExpectNothingLeft("no memory");
}

}  // namespace
}  // namespace mvp::test
