// What the library asks the system for and that no window shows: the help, documents, sounds, the
// time that a notice stays, the product of the about box. Kept instead of done, while it lives.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "common/patched_imports.h"

namespace governed {

// Of the library that is loaded. One at a time.
class ReplacedSystem {
public:
    // `nBitsPerPixel` is what the screen is said to have; 0: what it has.
    explicit ReplacedSystem(int nBitsPerPixel);
    ReplacedSystem(const ReplacedSystem&) = delete;
    ReplacedSystem& operator=(const ReplacedSystem&) = delete;
    ~ReplacedSystem();

    std::vector<std::string> helpFiles;  // in UTF-8, as the documents
    std::vector<std::string> documents;
    int nSounds = 0;
    std::vector<UINT> stays;  // in milliseconds; none of them ends

private:
    static FARPROC WINAPI Find(HMODULE hModule, LPCSTR pszName);
    static HWND WINAPI ShowHelp(HWND hOwner, LPCSTR pszFile, UINT nCommand, DWORD_PTR nTopic);
    static HINSTANCE WINAPI OpenDocument(HWND hOwner, LPCSTR pszVerb, LPCSTR pszDocument,
                                         LPCSTR pszParameters, LPCSTR pszFolder, INT nShow);
    // The name of every product is its code.
    static UINT WINAPI NameProduct(LPCSTR pszCode, LPCSTR pszProperty, LPSTR pszText,
                                   LPDWORD pnSize);
    static BOOL WINAPI Sound(DWORD dwHertz, DWORD dwMilliseconds);
    static UINT_PTR WINAPI StartTimer(HWND hWnd, UINT_PTR nId, UINT nMilliseconds,
                                      TIMERPROC pfnTimer);
    static int WINAPI DeviceCaps(HDC hDc, int nIndex);

    static inline ReplacedSystem* s_pOne = nullptr;

    int m_nBitsPerPixel;
    mvp::PatchedImports m_library;
    mvp::PatchedImports m_framework;
};

}  // namespace governed
