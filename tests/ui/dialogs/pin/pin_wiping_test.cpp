// That nothing of a PIN is left in the memory of the process, be it the library's or the system's,
// after every ending of a request.
#include <vector>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "mvpingui/change_pin_dialog.h"
#include "support/memory_scan.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

using End = void (*)(Dialog& dialog, const Secret& pin);

void Cancel(Dialog& d, const Secret& /*pin*/) {
    d.Escape();
}
void RemoveCard(Dialog& d, const Secret& /*pin*/) {
    VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
    d.WaitGone();
}

TEST(Wiping, AfterOk) {
    const Secret pin;
    const SecretWatch watch({&pin});
    PinRequest request{.dwMax = 100};
    const auto enter = [&pin](Dialog& d) {
        d.Type(IDC_ENTER_PIN_EDIT, pin);
        d.Click(IDOK);
    };
    ASSERT_EQ(request.Call(enter), MVPINGUI_OK);
    // The caller's buffer holds it, and nothing else does.
    const std::vector<MemoryHit> hits = ScanOwnMemory(pin);
    ASSERT_EQ(hits.size(), 1U) << testing::PrintToString(hits);
    EXPECT_EQ(hits.front().address, reinterpret_cast<ULONG_PTR>(request.pPin));
    EXPECT_EQ(hits.front().nCount, pin.size());
    FreeGetPinBuffer(request.pPin, request.cbPin);
    watch.ExpectNothingLeft("given back");
}

// Deletes all of the PIN in every way there is, and types it anew.
void DeleteAndCancel(Dialog& d, const Secret& pin) {
    const struct {
        UINT nMessage;
        WPARAM wParam;
        LRESULT nLeft;
    } deletions[] = {
        {WM_CLEAR, 0, 0}, {WM_KEYDOWN, VK_DELETE, 0}, {WM_CHAR, VK_BACK, 0}, {WM_CHAR, 'x', 1}};
    for (const auto& deletion : deletions) {
        d.Send(IDC_ENTER_PIN_EDIT, EM_SETSEL, 0, -1);
        d.Send(IDC_ENTER_PIN_EDIT, deletion.nMessage, deletion.wParam);
        EXPECT_EQ(d.Send(IDC_ENTER_PIN_EDIT, WM_GETTEXTLENGTH), deletion.nLeft);
        EXPECT_FALSE(d.Send(IDC_ENTER_PIN_EDIT, EM_CANUNDO));
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Type(IDC_ENTER_PIN_EDIT, pin);
    }
    // One by one, which is how the control comes to remember all of it.
    for (size_t i = 0; i < Secret::kLength; ++i) {
        d.Send(IDC_ENTER_PIN_EDIT, WM_CHAR, VK_BACK);
    }
    d.Escape();
}

TEST(Wiping, AfterARefusedRequest) {
    const struct {
        const char* pszWhen;
        std::uint32_t dwMax;
        End end;
    } cases[] = {
        {"Cancel", 100, Cancel},
        {"deleted and cancelled", 100, DeleteAndCancel},
        {"removal", 100, RemoveCard},
        {"a false end of the edit", 100,
         [](Dialog& d, const Secret&) {
             SendMessageA(d.Control(IDC_ENTER_PIN_EDIT), WM_NCDESTROY, 0, 0);
         }},
        {"a false end of the dialog", 100,
         [](Dialog& d, const Secret&) { SendMessageA(d.Handle(), WM_NCDESTROY, 0, 0); }},
        {"too long", 8, Cancel},
    };
    for (const auto& c : cases) {
        const Secret pin;
        const SecretWatch watch({&pin});
        const auto enter = [&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, pin);
            EXPECT_EQ(d.IsEnabled(IDOK), c.dwMax == 100);
            c.end(d, pin);
        };
        EXPECT_EQ(PinRequest{.dwMax = c.dwMax}.Ask(enter), kRefused);
        watch.ExpectNothingLeft(c.pszWhen);
    }
}

constexpr PwdRuleArgs kLongPins = {0, 0, 1, 1, 4, 64, 0};

// The function's result. The caller's own copies are the caller's affair.
std::uint32_t CallAndWipe(ChangePinRequest&& request) {
    const std::uint32_t result = request.CallAlone();
    SecureZeroMemory(&request, sizeof request);
    return result;
}

TEST(Wiping, AfterAChangeOfThePin) {
    const struct {
        const char* pszWhen;
        End end;
        std::uint32_t dwResult;
    } cases[] = {
        {"OK", [](Dialog& d, const Secret&) { d.Click(IDOK); }, MVPINGUI_OK},
        {"Cancel", Cancel, MVPINGUI_REFUSED},
        {"removal", RemoveCard, MVPINGUI_REFUSED},
    };
    for (const auto& c : cases) {
        const Secret currentPin;
        const Secret newPin;
        const SecretWatch watch({&currentPin, &newPin});
        {
            const DialogDriver driver([&](Dialog& d) {
                d.Type(kCurrent, currentPin);
                d.Type(kNew, newPin);
                d.Type(kConfirm, newPin);
                // Deleted and typed anew, as people do: what the edit remembers for undoing.
                d.Send(kNew, EM_SETSEL, 0, -1);
                d.Send(kNew, WM_CLEAR);
                d.Type(kNew, newPin);
                c.end(d, newPin);
            });
            EXPECT_EQ(CallAndWipe({.pRules = &kLongPins}), c.dwResult);
        }
        watch.ExpectNothingLeft(c.pszWhen);
    }
}

TEST(Wiping, AfterAnEmbeddedPanel) {
    const Secret pin;
    const SecretWatch watch({&pin});
    {
        CWnd host;
        host.CreateEx(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, 0, 0, 500, 400, nullptr, nullptr);
        CChangePINDialog panel(0, 0, false, nullptr, &kLongPins, nullptr, &host, 15, 0, 6);
        ASSERT_NE(panel.LocCreate(&host), 0);
        for (size_t i = 0; i < 2 * Secret::kLength; ++i) {
            SendDlgItemMessageA(panel.m_hWnd, i % 2 == 0 ? kNew : kConfirm, WM_CHAR,
                                static_cast<WPARAM>(pin[i / 2]), 1);
        }
        EXPECT_EQ(CallAndWipe({.hHost = host.m_hWnd}), MVPINGUI_OK);
        host.DestroyWindow();
    }
    watch.ExpectNothingLeft("embedded");
}

}  // namespace
}  // namespace mvp::test
