// The window that a PIN is asked for: disabled meanwhile and given back, or gone, or of no use.
#include <atomic>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "resources/resource_numbers.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"
#include "support/ui_thread.h"
#include "support/waiting.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/pin_request.h"

namespace mvp::test {
namespace {

constexpr std::chrono::seconds kTimeout{10};

HWND MakeParent() {
    return CreateWindowExA(0, "STATIC", "parent", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 300, 300, 200,
                           100, nullptr, nullptr, nullptr, nullptr);
}

// A window of a thread of its own, which takes messages until the object goes.
class ForeignParent {
public:
    ForeignParent() : m_thread([this] { Main(); }) {
        EXPECT_TRUE(WaitFor(kTimeout, [this] { return m_hWnd.load() != nullptr; }));
    }
    ForeignParent(const ForeignParent&) = delete;
    ForeignParent& operator=(const ForeignParent&) = delete;
    ~ForeignParent() {
        PostThreadMessageA(m_pThread->Id(), WM_QUIT, 0, 0);
        m_thread.join();
    }
    HWND Handle() const { return m_hWnd; }
    void Destroy() {
        m_pThread->Run([this] { DestroyWindow(m_hWnd); }, kTimeout);
    }

private:
    void Main() {
        m_pThread = std::make_unique<UiThread>();
        m_hWnd = MakeParent();
        for (MSG message; GetMessageA(&message, nullptr, 0, 0) > 0;)
            DispatchMessageA(&message);
        m_pThread.reset();
    }

    std::unique_ptr<UiThread> m_pThread;
    std::atomic<HWND> m_hWnd = nullptr;
    std::thread m_thread;
};

class EnterPinParent : public testing::Test {
protected:
    AttachedLibrary m_library;
    LogRecorder m_log;
};

// Both endings of a request for `hParent`, which is disabled only meanwhile.
void ExpectDisabledMeanwhile(HWND hParent) {
    for (const WORD key : {WORD{VK_ESCAPE}, WORD{VK_RETURN}}) {
        PinRequest request{.hParent = hParent};
        DialogDriver driver([&](Dialog& d) {
            EXPECT_EQ(GetWindow(d.Handle(), GW_OWNER), hParent);
            EXPECT_FALSE(IsWindowEnabled(hParent));
            d.Type(IDC_ENTER_PIN_EDIT, "1234");
            d.Press(key);
        });
        EXPECT_EQ(request.Call(), key == VK_RETURN ? MVPINGUI_OK : MVPINGUI_REFUSED);
        driver.Join();
        EXPECT_TRUE(IsWindowEnabled(hParent));
        request.Free();
    }
}

TEST_F(EnterPinParent, IsDisabledMeanwhileAndGivenBack) {
    HWND hParent = MakeParent();
    ExpectDisabledMeanwhile(hParent);
    DestroyWindow(hParent);
}

TEST_F(EnterPinParent, MayBelongToAnotherThread) {
    const ForeignParent parent;
    ExpectDisabledMeanwhile(parent.Handle());
}

TEST_F(EnterPinParent, CancelsWhenDestroyedMeanwhile) {
    HWND hParent = MakeParent();
    PinRequest request{.hParent = hParent};
    DialogDriver driver([&](Dialog& d) { d.Run([&] { DestroyWindow(hParent); }); });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(request.IsUntouched());
    request.Free();
}

// The system destroys owned windows of the same thread only; the dialog goes on without its owner.
TEST_F(EnterPinParent, OfAnotherThreadMayGoMeanwhile) {
    ForeignParent parent;
    PinRequest request{.hParent = parent.Handle()};
    DialogDriver driver([&](Dialog& d) {
        parent.Destroy();
        d.Type(IDC_ENTER_PIN_EDIT, "1234");
        d.Click(IDOK);
    });
    EXPECT_EQ(request.Call(), MVPINGUI_OK);
    driver.Join();
    request.Free();
}

HWND g_hRefused = nullptr;

// Lets no window be created over g_hRefused.
LRESULT CALLBACK RefuseOwner(int nCode, WPARAM wParam, LPARAM lParam) {
    if (nCode == HCBT_CREATEWND &&
        reinterpret_cast<const CBT_CREATEWNDA*>(lParam)->lpcs->hwndParent == g_hRefused)
        return 1;
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

// The dialog opens without it, and it stays disabled: it is in no state to be used.
TEST_F(EnterPinParent, OfNoUseIsTriedWithout) {
    for (const bool exists : {false, true}) {
        HWND hParent = MakeParent();
        if (!exists)
            DestroyWindow(hParent);
        g_hRefused = hParent;
        HHOOK hHook = SetWindowsHookExA(WH_CBT, &RefuseOwner, nullptr, GetCurrentThreadId());
        PinRequest request{.hParent = hParent};
        DialogDriver driver([](Dialog& d) {
            EXPECT_EQ(GetWindow(d.Handle(), GW_OWNER), nullptr);
            d.Escape();
        });
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        driver.Join();
        UnhookWindowsHookEx(hHook);
        request.Free();
        EXPECT_TRUE(m_log.Contains(
            2, "CEnterPinDlg::OnContextualHelp: Now try to CreateDlgIndirect with NULL"))
            << m_log.Dump();
        EXPECT_FALSE(IsWindowEnabled(hParent));
        DestroyWindow(hParent);
        m_log.Clear();
    }
}

}  // namespace
}  // namespace mvp::test
