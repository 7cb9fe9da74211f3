/* Uses the C interface from C, with an about box that closes itself. Prints what string of the resource module tells code 11. */
#include <stdio.h>

#include <mvpingui/mvpingui.h>
#include <vkerrmes/vkerrmes.h>
#include <vklog/vklog.h>

/* Called until the box, the only window of the thread, is there and gone. */
static void CALLBACK CloseBox(HWND hWnd, UINT nMessage, UINT_PTR nTimer, DWORD dwTime) {
    (void)hWnd, (void)nMessage, (void)nTimer, (void)dwTime;
    PostMessageA(GetActiveWindow(), WM_COMMAND, IDCANCEL, 0);
}

static int ShowsAbout(void) {
    const UINT_PTR timer = SetTimer(NULL, 0, 10, &CloseBox);
    const uint32_t answer = ShowAbout(1, "ignored", "Consumer");
    KillTimer(NULL, timer);
    return answer == IDCANCEL;
}

int main(void) {
    InitGUIDll();
    SetPinPromptString("Your PIN");
    SetPinPromptString(NULL);
    FreeGetPinBuffer(NULL, 0);
    if (DisplayCardExpiryNotification(NULL, NULL) != -1) {
        return 1;
    }
    puts(GetErrorString(11));
    return GetErrorString(11)[0] != '\0' && ShowsAbout() ? 0 : 1;
}
