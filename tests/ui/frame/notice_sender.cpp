// Sends one notice and ends at once, without waiting for anything.
#include "services/notify_event.h"

int main() {
    NotifyEvent(kEventUnlockCodeShown, "Reader B", reinterpret_cast<HWND>(UINT_PTR{1234}));
}
