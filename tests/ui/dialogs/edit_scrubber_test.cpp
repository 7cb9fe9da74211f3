// What the system's edit remembers of a PIN, seen while its window still lives.
#include "dialogs/base/edit_scrubber.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "support/memory_scan.h"

namespace mvp::test {
namespace {

HWND NewEdit() {
    return CreateWindowExA(0, "EDIT", "", WS_POPUP | ES_PASSWORD | ES_AUTOHSCROLL, 0, 0, 100, 20,
                           nullptr, nullptr, nullptr, nullptr);
}

void Type(HWND hEdit, const Secret& pin) {
    for (size_t i = 0; i < pin.size(); ++i)
        SendMessageA(hEdit, WM_CHAR, static_cast<unsigned char>(pin[i]), 1);
}

TEST(Scrubbing, LeavesNothingInTheEdit) {
    const Secret pin;
    // The control's blocks lie on a heap; a stack keeps what it likes of the typing.
    const auto hits = [&] {
        return std::ranges::count(ScanOwnMemory(pin), MemoryHit::Place::kHeap, &MemoryHit::place);
    };
    const HWND hEdit = NewEdit();
    PrepareEditForSecret(hEdit);
    EXPECT_EQ(GetWindowTextLengthA(hEdit), 0);
    Type(hEdit, pin);
    EXPECT_EQ(hits(), 1) << "the text has not moved";
    // One by one, which is how the control comes to remember all of it.
    for (size_t i = 0; i < pin.size(); ++i)
        SendMessageA(hEdit, WM_CHAR, VK_BACK, 1);
    Type(hEdit, pin);
    EXPECT_EQ(hits(), 2) << "the text, and the one that was deleted";
    ScrubEdit(hEdit);
    EXPECT_EQ(hits(), 0);
    EXPECT_EQ(GetWindowTextLengthA(hEdit), 0);
    EXPECT_FALSE(SendMessageA(hEdit, EM_CANUNDO, 0, 0));
    DestroyWindow(hEdit);
}

// What the control copies of so long a text lies in blocks that it has freed.
TEST(Scrubbing, ReachesTheEndOfALongText) {
    const Secret pin;
    const HWND hEdit = NewEdit();
    SetWindowTextA(hEdit, std::string(600, 'x').c_str());
    SendMessageA(hEdit, EM_SETSEL, 600, 600);
    Type(hEdit, pin);
    ScrubEdit(hEdit);
    for (const MemoryHit& hit : ScanOwnMemory(pin))
        EXPECT_TRUE(hit.place != MemoryHit::Place::kHeap || hit.bFreed) << hit;
    DestroyWindow(hEdit);
}

}  // namespace
}  // namespace mvp::test
