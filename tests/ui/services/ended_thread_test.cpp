// A user-interface thread ends, and its stack with it, while a dialog of the library is up. What
// stays behind hears of the next removal, and must touch nothing that is gone. The library is
// loaded and freed as a host does it.
#include <windows.h>

#include <array>
#include <functional>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "common/thread_windows.h"
#include "mvpingui/mvpingui.h"
#include "platform/handle.h"
#include "platform/system_library.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"

namespace mvp::test {
namespace {

// Ends the thread as soon as its dialog shows.
void CALLBACK EndThread(HWND, UINT, UINT_PTR, DWORD) {
    for (HWND window : VisibleWindows(GetCurrentThreadId())) {
        if (IsDialog(window)) {
            ExitThread(0);
        }
    }
}

using Ask = std::function<uint32_t()>;

DWORD WINAPI AskAndEnd(void* pAsk) {
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &EndThread);
    (*static_cast<Ask*>(pAsk))();
    return 1;  // the dialog ended, not the thread
}

void EndUnderDialog(Ask ask) {
    const KernelHandle thread(CreateThread(nullptr, 0, &AskAndEnd, &ask, 0, nullptr));
    ASSERT_EQ(WaitForSingleObject(thread.get(), 20'000), WAIT_OBJECT_0);
    DWORD code = 1;
    GetExitCodeThread(thread.get(), &code);
    ASSERT_EQ(code, 0U);
}

void RemoveCard() {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A"), VKEVTSUB_OK);
    EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
}

TEST(EndedThread, LeavesNothingThatTouchesItsStack) {
    LogRecorder log;
    ModuleHandle library(LoadLibraryA("mvpingui.dll"));
    EndUnderDialog([&] {
        char* pin = nullptr;
        uint32_t size = 0;
        return FindFunction<decltype(&GetPINFromUser)>(library.get(), "GetPINFromUser")(
            nullptr, "Reader A", 0, 4, 8, &pin, &size);
    });
    RemoveCard();
    const auto askForNewPin = [&] {
        std::array<char, 64> pins[2] = {};
        uint32_t sizes[2] = {};
        const PwdRuleArgs rules{0, 0, 0, 0, MVP_NO_PIN_LENGTH_RULE, MVP_NO_PIN_LENGTH_RULE, 0};
        return FindFunction<decltype(&GetChangePINInfoFromUser)>(
            library.get(), "GetChangePINInfoFromUser")(&rules, 0, pins[0].data(), &sizes[0],
                                                       pins[1].data(), &sizes[1], "Reader A",
                                                       nullptr, false);
    };
    EndUnderDialog(askForNewPin);
    log.Clear();
    RemoveCard();
    EXPECT_EQ(std::ssize(log.Texts(16)), 2) << "both still hear of it: " << log.Dump();
    {
        // The panel that was left behind is nobody's answer.
        DialogDriver driver([](Dialog& d) { d.Escape(); });
        EXPECT_EQ(askForNewPin(), MVPINGUI_REFUSED);
    }
    library.reset();
    RemoveCard();
}

}  // namespace
}  // namespace mvp::test
