// That nothing of a PIN is left in the memory of the process, be it the library's or the system's,
// after every ending of a request.
#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "resources/resource_numbers.h"
#include "support/dialog_driver.h"
#include "support/memory_scan.h"
#include "ui/dialogs/pin_request.h"

namespace mvp::test {
namespace {

TEST(Wiping, AfterOk) {
    const Secret pin;
    const SecretWatch watch({&pin});
    PinRequest request{.dwMax = 100};
    {
        DialogDriver driver([&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, pin);
            d.Click(IDOK);
        });
        ASSERT_EQ(request.Call(), MVPINGUI_OK);
    }
    // The caller's buffer holds it, and nothing else does.
    const std::vector<MemoryHit> hits = ScanOwnMemory(pin);
    ASSERT_EQ(hits.size(), 1U) << testing::PrintToString(hits);
    EXPECT_EQ(hits.front().address, reinterpret_cast<ULONG_PTR>(request.pPin));
    EXPECT_EQ(hits.front().nCount, pin.size());
    request.Free();
    watch.ExpectNothingLeft("given back");
}

TEST(Wiping, AfterARefusedRequest) {
    struct Case {
        const char* pszWhen;
        uint32_t dwMax;
        void (*end)(Dialog& dialog, const Secret& pin);
    };
    const Case cases[] = {
        {"Cancel", 100, [](Dialog& d, const Secret&) { d.Escape(); }},
        {"deleted and cancelled", 100,
         [](Dialog& d, const Secret& pin) {
             const struct {
                 UINT nMessage;
                 WPARAM wParam;
                 LRESULT nLeft;
             } deletions[] = {{WM_CLEAR, 0, 0},
                              {WM_KEYDOWN, VK_DELETE, 0},
                              {WM_CHAR, VK_BACK, 0},
                              {WM_SETTEXT, 0, 0},
                              {WM_CHAR, 'x', 1}};
             for (const auto& deletion : deletions) {
                 d.Send(IDC_ENTER_PIN_EDIT, EM_SETSEL, 0, -1);
                 d.Send(IDC_ENTER_PIN_EDIT, deletion.nMessage, deletion.wParam);
                 EXPECT_EQ(d.Send(IDC_ENTER_PIN_EDIT, WM_GETTEXTLENGTH), deletion.nLeft);
                 EXPECT_FALSE(d.Send(IDC_ENTER_PIN_EDIT, EM_CANUNDO));
                 EXPECT_FALSE(d.IsEnabled(IDOK));
                 d.Type(IDC_ENTER_PIN_EDIT, pin);
             }
             // One by one, which is how the control comes to remember all of it.
             for (size_t i = 0; i < pin.size(); ++i)
                 d.Send(IDC_ENTER_PIN_EDIT, WM_CHAR, VK_BACK);
             d.Escape();
         }},
        {"removal", 100,
         [](Dialog& d, const Secret&) {
             VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
             d.WaitGone();
         }},
        {"a false end of the edit", 100,
         [](Dialog& d, const Secret&) {
             SendMessageA(d.Control(IDC_ENTER_PIN_EDIT), WM_NCDESTROY, 0, 0);
         }},
        {"a false end of the dialog", 100,
         [](Dialog& d, const Secret&) { SendMessageA(d.Handle(), WM_NCDESTROY, 0, 0); }},
        {"too long", 8,
         [](Dialog& d, const Secret&) {
             EXPECT_FALSE(d.IsEnabled(IDOK));
             d.Escape();
         }},
    };
    for (const Case& c : cases) {
        const Secret pin;
        const SecretWatch watch({&pin});
        PinRequest request{.dwMax = c.dwMax};
        DialogDriver driver([&](Dialog& d) {
            d.Type(IDC_ENTER_PIN_EDIT, pin);
            c.end(d, pin);
        });
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        driver.Join();
        request.Free();
        watch.ExpectNothingLeft(c.pszWhen);
    }
}

}  // namespace
}  // namespace mvp::test
