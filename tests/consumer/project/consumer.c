/* Calls every function of the C interface from C; what they show closes itself. Prints what string
 * of the resource module tells code 11. */
#include <stdio.h>

#include <mvpingui/mvpingui.h>
#include <vkerrmes/vkerrmes.h>
#include <vklog/vklog.h>

/* Called again and again while a function shows its dialog, the only window of the thread. */
static void CALLBACK CloseDialog(HWND hWnd, UINT nMessage, UINT_PTR nTimer, DWORD dwTime) {
    (void)hWnd, (void)nMessage, (void)nTimer, (void)dwTime;
    PostMessageA(GetActiveWindow(), WM_COMMAND, IDCANCEL, 0);
}

static int ShowsDialogs(void) {
    char* pin = NULL;
    char pins[2][9] = {"", ""};
    uint32_t length = 0;
    const UINT_PTR timer = SetTimer(NULL, 0, 10, &CloseDialog);
    const int right =
        ShowAbout(1, "ignored", "Consumer") == IDCANCEL &&
        DisplayLastPINTry("Reader A") == MVPINGUI_REFUSED &&
        GetPINFromUser(NULL, "Reader A", 0, 4, 8, &pin, &length) == MVPINGUI_REFUSED &&
        GetChangePINInfoFromUser(NULL, 0, pins[0], &length, pins[1], &length, "Reader A", NULL,
                                 true) == MVPINGUI_REFUSED;
    KillTimer(NULL, timer);
    FreeGetPinBuffer(pin, 0);
    return right;
}

int main(void) {
    InitGUIDll();
    SetPinPromptString("Your PIN");
    SetPinPromptString(NULL);
    if (DisplayCardExpiryNotification(NULL, NULL) != -1) {
        return 1;
    }
    puts(GetErrorString(11));
    return GetErrorString(11)[0] != '\0' && ShowsDialogs() ? 0 : 1;
}
