#include "ui/dialogs/other_system.h"

#include <windows.h>

namespace {

int g_nBitsPerPixel = 0;  // 0: the screen's own
bool g_bOldSystem = false;

int WINAPI AskDevice(HDC hDC, int nIndex);
BOOL WINAPI AskVersion(OSVERSIONINFOA* pVersion);

}  // namespace

// What the linker routes to us, and what it routed away: pointers to the system's functions.
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" {
extern decltype(&AskDevice) __real___imp_GetDeviceCaps;
extern decltype(&AskVersion) __real___imp_GetVersionExA;
decltype(&AskDevice) __wrap___imp_GetDeviceCaps = &AskDevice;
decltype(&AskVersion) __wrap___imp_GetVersionExA = &AskVersion;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

int WINAPI AskDevice(HDC hDC, int nIndex) {
    if (nIndex == BITSPIXEL && g_nBitsPerPixel != 0)
        return g_nBitsPerPixel;
    return __real___imp_GetDeviceCaps(hDC, nIndex);
}

BOOL WINAPI AskVersion(OSVERSIONINFOA* pVersion) {
    const BOOL bKnown = __real___imp_GetVersionExA(pVersion);
    if (g_bOldSystem) {
        pVersion->dwMajorVersion = 5;
        pVersion->dwMinorVersion = 0;
    }
    return bKnown;
}

}  // namespace

namespace mvp::test {

ScreenOfDepth::ScreenOfDepth(int nBitsPerPixel) {
    g_nBitsPerPixel = nBitsPerPixel;
}
ScreenOfDepth::~ScreenOfDepth() {
    g_nBitsPerPixel = 0;
}

OldSystem::OldSystem() {
    g_bOldSystem = true;
}
OldSystem::~OldSystem() {
    g_bOldSystem = false;
}

}  // namespace mvp::test
