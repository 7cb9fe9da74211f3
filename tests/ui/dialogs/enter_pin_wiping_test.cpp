// What is left of a PIN in the memory of the process, after every ending of a request.
//
// The library's and the framework's own memory must hold nothing. The system's edit control is
// overwritten as far as its messages reach; what it keeps all the same is counted and printed.
#include <iostream>
#include <string_view>

#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "resources/resource_numbers.h"
#include "support/dialog_driver.h"
#include "support/memory_scan.h"
#include "ui/dialogs/pin_request.h"

namespace mvp::test {
namespace {

// Heaps that the library's code allocates from; the system's controls use the process heap.
bool IsOurs(const MemoryHit& hit) {
    return hit.place == MemoryHit::Place::kModule || hit.strOwner == "C heap";
}

void ExpectNothingLeft(const Needle& needle, const char* pszWhen) {
    std::size_t system = 0;
    for (const MemoryHit& hit : ScanOwnMemory(needle)) {
        if (IsOurs(hit)) {
            ADD_FAILURE() << pszWhen << ": " << hit;
        } else {
            ++system;
            std::cout << pszWhen << ", system's own: " << hit << "\n";
        }
    }
    std::cout << pszWhen << ": " << system << " hits in the system's own memory\n";
}

// Types by messages, one character at a time, from read-only memory.
void Type(Dialog& d, std::string_view pin) {
    for (const char c : pin)
        SendMessageA(d.Control(IDC_ENTER_PIN_EDIT), WM_CHAR, static_cast<unsigned char>(c), 1);
}

TEST(Wiping, AfterOk) {
    static constexpr std::string_view kPin = "83512764";
    const Needle needle(kPin);
    PinRequest request;
    {
        DialogDriver driver([](Dialog& d) {
            Type(d, kPin);
            d.Click(IDOK);
        });
        ASSERT_EQ(request.Call(), MVPINGUI_OK);
    }
    // The caller's buffer holds it, and nothing else does.
    std::size_t callers = 0;
    for (const MemoryHit& hit : ScanOwnMemory(needle))
        callers += hit.address == reinterpret_cast<ULONG_PTR>(request.pPin) ? 1U : 0U;
    EXPECT_EQ(callers, 1U);
    request.Free();
    ExpectNothingLeft(needle, "after OK");
}

void Clear(Dialog& d, WPARAM nFrom, LPARAM nTo) {
    d.Send(IDC_ENTER_PIN_EDIT, EM_SETSEL, nFrom, nTo);
    d.Send(IDC_ENTER_PIN_EDIT, WM_CLEAR);
}

TEST(Wiping, AfterARefusedRequest) {
    // Each case has a PIN of its own: what one left must not pass for what another did.
    struct Case {
        const char* pszWhen;
        std::string_view pin;
        std::string_view
            tail;  // stays in the edit or beyond the allowed length; to be gone as well
        Script end;
    };
    const Case cases[] = {
        {"after Cancel", "52718394", "718394", [](Dialog& d) { d.Escape(); }},
        {"after deleting and cancelling", "64829173", "829173",
         [](Dialog& d) {
             Clear(d, 0, -1);
             Type(d, "64829173");
             Clear(d, 0, 4);
             d.Escape();
         }},
        {"after removal", "91736485", "736485",
         [](Dialog& d) {
             VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
             d.WaitGone();
         }},
        {"after a false end of the edit", "38162957", "162957",
         [](Dialog& d) { SendMessageA(d.Control(IDC_ENTER_PIN_EDIT), WM_NCDESTROY, 0, 0); }},
        {"after a false end of the dialog", "27463918", "463918",
         [](Dialog& d) { SendMessageA(d.Handle(), WM_NCDESTROY, 0, 0); }},
        {"after a PIN that is too long", "749281635507", "81635507",
         [](Dialog& d) {
             EXPECT_FALSE(d.IsEnabled(IDOK));
             d.Escape();
         }},
    };
    for (const Case& c : cases) {
        PinRequest request;
        DialogDriver driver([&](Dialog& d) {
            Type(d, c.pin);
            c.end(d);
        });
        EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
        driver.Join();
        request.Free();
        ExpectNothingLeft(Needle(c.pin), c.pszWhen);
        ExpectNothingLeft(Needle(c.tail), c.pszWhen);
    }
}

}  // namespace
}  // namespace mvp::test
