// That nothing of the PINs stays in the process's memory when a change of the PIN has ended, in
// whatever way.
#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/change_pin_dialog.h"
#include "resources/resource_numbers.h"
#include "support/dialog_driver.h"
#include "support/memory_scan.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/change_pin_request.h"

namespace mvp::test {
namespace {

constexpr int kCurrent = IDC_CHANGE_PIN_PANEL_CURRENT_EDIT;
constexpr int kNew = IDC_CHANGE_PIN_PANEL_NEW_EDIT;
constexpr int kConfirm = IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT;
constexpr PwdRuleArgs kRules = {0, 0, 1, 1, 4, 64, 0};

class ChangePinMemory : public testing::Test {
protected:
    // The caller's own copies are the caller's affair.
    static void Wipe(ChangePinRequest& request) {
        SecureZeroMemory(request.newPin.data(), request.newPin.size());
        SecureZeroMemory(request.oldPin.data(), request.oldPin.size());
    }

    AttachedLibrary m_library;
};

TEST_F(ChangePinMemory, HoldsNoPinAfterTheDialog) {
    struct Case {
        const char* pszWhat;
        Script end;
        uint32_t result;
    };
    const Case cases[] = {
        {"OK", [](Dialog& d) { d.Click(IDOK); }, MVPINGUI_OK},
        {"Cancel", [](Dialog& d) { d.Escape(); }, MVPINGUI_REFUSED},
        {"removal", [](Dialog&) { VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A"); },
         MVPINGUI_REFUSED},
    };
    for (const Case& c : cases) {
        const Secret currentPin;
        const Secret newPin;
        const SecretWatch watch({&currentPin, &newPin});
        {
            ChangePinRequest request{.rules = kRules};
            DialogDriver driver([&](Dialog& d) {
                d.Type(kCurrent, currentPin);
                d.Type(kNew, newPin);
                d.Type(kConfirm, newPin);
                // Deleted and typed anew, as people do: what the edit remembers for undoing.
                d.Send(kNew, EM_SETSEL, 0, -1);
                d.Send(kNew, WM_CLEAR);
                d.Type(kNew, newPin);
                c.end(d);
            });
            EXPECT_EQ(request.Call(), c.result);
            driver.Join();
            Wipe(request);
        }
        watch.ExpectNothingLeft(c.pszWhat);
    }
}

TEST_F(ChangePinMemory, HoldsNoPinAfterAnEmbeddedPanel) {
    const Secret currentPin;
    const Secret newPin;
    const SecretWatch watch({&currentPin, &newPin});
    {
        CWnd host;
        ASSERT_TRUE(host.CreateEx(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, 0, 0, 500, 400,
                                  nullptr, nullptr));
        CChangePINDialog panel(0, 0, true, nullptr, &kRules, nullptr, &host, 15, 0, 6);
        ASSERT_NE(panel.LocCreate(&host), 0);
        const auto type = [&panel](int nId, const Secret& pin) {
            for (size_t i = 0; i < pin.size(); ++i)
                SendDlgItemMessageA(panel.m_hWnd, nId, WM_CHAR, static_cast<WPARAM>(pin[i]), 1);
        };
        type(kCurrent, currentPin);
        type(kNew, newPin);
        type(kConfirm, newPin);
        ChangePinRequest request{.hHost = host.m_hWnd};
        EXPECT_EQ(request.Call(), MVPINGUI_OK);
        EXPECT_EQ(request.cbNewPin, newPin.size());
        Wipe(request);
        host.DestroyWindow();
    }
    watch.ExpectNothingLeft("embedded");
}

}  // namespace
}  // namespace mvp::test
