// A request whose PIN buffer cannot be had.
#include <atomic>
#include <cstddef>
#include <string_view>

#include <gtest/gtest.h>

#include "support/memory_scan.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace {

// Behind the secret: for an unusual length, so that nothing else asks for as many bytes.
constexpr std::string_view kFiller = "0000000000000000000";
constexpr std::size_t kLength = mvp::test::Secret::kLength + kFiller.size();
std::atomic<bool> g_bRefuse = false;  // thread-local storage would itself be allocated

}  // namespace

// The linker routes every malloc of this program and of the library's code in it through here
// (--wrap=malloc).
extern "C" {
void* __real_malloc(std::size_t size);   // NOLINT(bugprone-reserved-identifier): the linker's names
void* __wrap_malloc(std::size_t size) {  // NOLINT(bugprone-reserved-identifier)
    return g_bRefuse && size == kLength ? nullptr : __real_malloc(size);
}
}

namespace mvp::test {
namespace {

using EnterPinWithoutMemory = LibraryTest;

TEST_F(EnterPinWithoutMemory, IsRefusedAndHoldsTheGuard) {
    const Secret pin;
    const SecretWatch watch({&pin});
    PinRequest request{.dwMax = 100};
    const auto enter = [&pin](Dialog& d) {
        d.Type(IDC_ENTER_PIN_EDIT, pin);
        d.Type(IDC_ENTER_PIN_EDIT, kFiller);
        d.Click(IDOK);
    };
    g_bRefuse = true;
    EXPECT_EQ(request.Call(enter), MVPINGUI_REFUSED);
    g_bRefuse = false;
    EXPECT_TRUE(m_log.Contains(2, "GetPINFromUser: Enter PIN action validated")) << m_log.Dump();
    EXPECT_TRUE(m_log.Contains(1, "GetPINFromUser: PIN buffer allocation failed"));
    EXPECT_TRUE(m_log.Contains(1, "GetPINFromUser: returns: -1"));
    EXPECT_EQ(Module().nPinDialogInProgress, 1);
    EXPECT_EQ(request.Outcome(MVPINGUI_REFUSED), kRefused);
    EXPECT_EQ(Module().nPinDialogInProgress, 0);
    watch.ExpectNothingLeft("no memory");
}

}  // namespace
}  // namespace mvp::test
