/* Keeps one program with a window alive in a Wine prefix, so that the desktop and the services stay
 * up between the short programs of a test run: each would else pay for a cold start. Writes a line
 * when all is up. */
#include <windows.h>

#include <stdio.h>

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR arguments, int show) {
    (void)previous;
    (void)arguments;
    (void)show;
    CreateWindowExA(0, "STATIC", "keepalive", WS_OVERLAPPED, 0, 0, 1, 1, NULL, NULL, instance, NULL);
    puts("ready");
    fflush(stdout);
    MSG message;
    while (GetMessageA(&message, NULL, 0, 0) > 0)
        DispatchMessageA(&message);
    return 0;
}
