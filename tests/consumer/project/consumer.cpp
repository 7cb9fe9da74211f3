// Uses an exported class from C++: a dialog of the host's own on the library's base. Raises a
// card's removal by hand.
#include <cstdio>

#include <dlgfw/dlgfw.h>
#include <mvpingui/base_dialog.h>
#include <mvpingui/mvpingui.h>
#include <vkevtsub/vkevtsub.h>

namespace {

class HostDialog : public CBaseDialog {
public:
    // No such template: the modal loop answers -1.
    HostDialog() : CBaseDialog(1, 1, nullptr, nullptr) {}
};

}  // namespace

int main() {
    InitGUIDll();
    CString secret("1234");
    CBaseDialog::HidePinFromMemory(secret);
    HostDialog dialog;
    const bool right = secret.IsEmpty() && dialog.DoModal() == -1 &&
                       VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A") == VKEVTSUB_OK;
    std::puts(right ? "ok" : "wrong");
    return right ? 0 : 1;
}
