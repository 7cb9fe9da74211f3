// A request whose PIN buffer, or whose watch for the card's removal, cannot be had. The linker
// routes every malloc of this program and of the library's code in it through here (--wrap=malloc),
// and every copy of a CString.
#include <atomic>
#include <cstddef>
#include <new>
#include <string_view>

#include <dlgfw/string.h>
#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

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
constexpr std::string_view kReader = "a reader whose name is not copied";

CString* CopyString(CString* pThis, const CString& strSource);

}  // namespace

extern "C" {
void* __real_malloc(std::size_t size);   // NOLINT(bugprone-reserved-identifier): the linker's names
void* __wrap_malloc(std::size_t size) {  // NOLINT(bugprone-reserved-identifier)
    return g_bRefuse && size == kLength ? nullptr : __real_malloc(size);
}
// NOLINTBEGIN(bugprone-reserved-identifier)
extern decltype(&CopyString) __real___imp__ZN7CStringC1ERKS_;
decltype(&CopyString) __wrap___imp__ZN7CStringC1ERKS_ = &CopyString;
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

// The constructor, as the machine calls it.
CString* CopyString(CString* pThis, const CString& strSource) {
    if (kReader == static_cast<LPCSTR>(strSource))
        throw std::bad_alloc();
    return __real___imp__ZN7CStringC1ERKS_(pThis, strSource);
}

}  // namespace

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

TEST(EnterPinWithoutMemory, DoesNotReactToRemovalWithoutAWatcher) {
    const AttachedLibrary library;
    LogRecorder log;
    PinRequest request{.pszReader = kReader.data()};
    DialogDriver driver([](Dialog& d) {
        EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, kReader.data()), VKEVTSUB_OK);
        EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
        d.Type(IDC_ENTER_PIN_EDIT, "1234");
        d.Click(IDOK);
    });
    EXPECT_EQ(request.Call(), MVPINGUI_OK);
    driver.Join();
    EXPECT_EQ(request.Pin(), "1234");
    request.Free();
    EXPECT_TRUE(log.Contains(1, "VKDelegateSubscriberCardRemoved Constructor: exception"))
        << log.Dump();
    EXPECT_TRUE(log.Contains(16, "VKDetectCardRemovedDlg::OnInitDialog"));
}

}  // namespace
}  // namespace mvp::test
