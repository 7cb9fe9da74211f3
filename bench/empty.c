/* The baselines' library: it does nothing. */
#include <windows.h>

__declspec(dllexport) void BenchEmptyLog(const char* pszTag, int nLevel, const char* pszFormat, ...);

__declspec(dllexport) void BenchEmptyLog(const char* pszTag, int nLevel, const char* pszFormat,
                                         ...) {
    (void)pszTag;
    (void)nLevel;
    (void)pszFormat;
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* reserved) {
    (void)instance;
    (void)reason;
    (void)reserved;
    return TRUE;
}
