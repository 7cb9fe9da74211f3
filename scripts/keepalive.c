/* Keeps one program with a window alive in a Wine prefix, so that the desktop and the services stay
 * up between the short programs of a test run: each would else pay for a cold start. Says "up" on
 * its standard output when they are. */
#include <windows.h>

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR arguments, int show) {
    (void)previous;
    (void)arguments;
    (void)show;
    CreateWindowExA(0, "STATIC", "keepalive", WS_OVERLAPPED, 0, 0, 1, 1, NULL, NULL, instance,
                    NULL);
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), "up\n", 3, &written, NULL);
    MSG message;
    while (GetMessageA(&message, NULL, 0, 0) > 0) {
        DispatchMessageA(&message);}
    return 0;
}
