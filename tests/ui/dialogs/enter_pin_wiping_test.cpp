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

TEST(Wiping, AfterCancel) {
    static constexpr std::string_view kPin = "52718394";
    PinRequest request;
    DialogDriver driver([](Dialog& d) {
        Type(d, kPin);
        d.Escape();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    driver.Join();
    request.Free();
    ExpectNothingLeft(Needle(kPin), "after Cancel");
}

TEST(Wiping, AfterCorrections) {
    static constexpr std::string_view kPin = "64829173";
    PinRequest request;
    DialogDriver driver([](Dialog& d) {
        Type(d, kPin);
        d.Send(IDC_ENTER_PIN_EDIT, EM_SETSEL, 0, -1);
        d.Send(IDC_ENTER_PIN_EDIT, WM_CLEAR);
        Type(d, kPin);
        d.Send(IDC_ENTER_PIN_EDIT, EM_SETSEL, 0, 4);
        d.Send(IDC_ENTER_PIN_EDIT, WM_CLEAR);
        d.Escape();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    driver.Join();
    request.Free();
    ExpectNothingLeft(Needle(kPin), "after deleting and cancelling");
    ExpectNothingLeft(Needle(kPin.substr(2)), "after deleting, all but the first two characters");
}

TEST(Wiping, AfterRemoval) {
    static constexpr std::string_view kPin = "91736485";
    PinRequest request;
    DialogDriver driver([](Dialog& d) {
        Type(d, kPin);
        VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
        d.WaitGone();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    driver.Join();
    request.Free();
    ExpectNothingLeft(Needle(kPin), "after removal");
}

TEST(Wiping, OfARefusedLength) {
    static constexpr std::string_view kPin = "749281635507";
    PinRequest request;
    DialogDriver driver([](Dialog& d) {
        Type(d, kPin);
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Escape();
    });
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    driver.Join();
    request.Free();
    ExpectNothingLeft(Needle(kPin), "after a PIN that is too long");
    ExpectNothingLeft(Needle(kPin.substr(4)), "the tail of a PIN that is too long");
}

}  // namespace
}  // namespace mvp::test
