// A user-interface thread ends, and its stack with it, while a dialog of the library is up. What
// stays behind hears of the next removal, and must touch nothing that is gone. The library is
// loaded and freed as a host does it.
#include <windows.h>

#include <array>
#include <cstring>
#include <functional>
#include <thread>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/mvpingui.h"
#include "platform/handle.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"

namespace mvp::test {
namespace {

class Library {
public:
    Library() : m_module(LoadLibraryA("mvpingui.dll")) {}

    template <class Function>
    Function* Get(const char* pszName) const {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(m_module.get(), pszName)));
    }
    void Free() { m_module.reset(); }

    uint32_t AskForPin() const {
        char* pPin = nullptr;
        uint32_t cbPin = 0;
        return Get<decltype(GetPINFromUser)>("GetPINFromUser")(nullptr, "Reader A", 0, 4, 8, &pPin,
                                                               &cbPin);
    }
    uint32_t AskForNewPin() const {
        std::array<char, 64> newPin{};
        std::array<char, 64> oldPin{};
        uint32_t cbNew = 0;
        uint32_t cbOld = 0;
        const PwdRuleArgs rules{0, 0, 0, 0, MVP_NO_PIN_LENGTH_RULE, MVP_NO_PIN_LENGTH_RULE, 0};
        return Get<decltype(GetChangePINInfoFromUser)>("GetChangePINInfoFromUser")(
            &rules, 0, newPin.data(), &cbNew, oldPin.data(), &cbOld, "Reader A", nullptr, false);
    }

private:
    ModuleHandle m_module;
};

// Ends the thread as soon as its dialog shows.
void CALLBACK EndThread(HWND, UINT, UINT_PTR, DWORD) {
    BOOL bShown = FALSE;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND hWnd, LPARAM lShown) -> BOOL {
            std::array<char, 16> className{};
            GetClassNameA(hWnd, className.data(), static_cast<int>(className.size()));
            if (IsWindowVisible(hWnd) && std::strcmp(className.data(), "#32770") == 0)
                *reinterpret_cast<BOOL*>(lShown) = TRUE;
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&bShown));
    if (bShown)
        ExitThread(0);
}

DWORD WINAPI AskAndEnd(void* pAsk) {
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &EndThread);
    (*static_cast<const std::function<uint32_t()>*>(pAsk))();
    return 1;  // the dialog ended, not the thread
}

void EndUnderDialog(const std::function<uint32_t()>& ask) {
    const KernelHandle thread(CreateThread(
        nullptr, 0, &AskAndEnd, const_cast<std::function<uint32_t()>*>(&ask), 0, nullptr));
    ASSERT_EQ(WaitForSingleObject(thread.get(), 20'000), WAIT_OBJECT_0);
    DWORD dwCode = 1;
    GetExitCodeThread(thread.get(), &dwCode);
    ASSERT_EQ(dwCode, 0U);
}

void RemoveCard() {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A"), VKEVTSUB_OK);
    EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
}

TEST(EndedThread, LeavesNothingThatTouchesItsStack) {
    LogRecorder log;
    Library library;
    EndUnderDialog([&] { return library.AskForPin(); });
    RemoveCard();
    EndUnderDialog([&] { return library.AskForNewPin(); });
    log.Clear();
    RemoveCard();
    EXPECT_EQ(std::ssize(log.Texts(16)), 2) << "both still hear of it: " << log.Dump();
    {
        // The panel that was left behind is nobody's answer.
        DialogDriver driver([](Dialog& d) { d.Escape(); });
        EXPECT_EQ(library.AskForNewPin(), MVPINGUI_REFUSED);
    }
    library.Free();
    RemoveCard();
}

}  // namespace
}  // namespace mvp::test
