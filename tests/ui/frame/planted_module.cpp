// A resource module as an attacker would plant it: its resources are as they should be, and it has
// code that leaves a mark when it runs.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, void*) {
    return SetEnvironmentVariableA("MVP_PLANTED_CODE_RAN", "1");
}
