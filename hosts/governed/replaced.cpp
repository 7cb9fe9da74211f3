#include "governed/replaced.h"

#include <cstdint>
#include <cstring>

#include "common/thread_windows.h"
#include "common/utf8.h"

namespace governed {
namespace {

// The timer of a notice that runs while it stays.
constexpr UINT_PTR kStayTimer = 2;
// What the shell answers when it has opened a document.
constexpr std::uintptr_t kOpened = 33;

std::string Utf8Of(const char* pszAnsi) {
    std::wstring text(std::strlen(pszAnsi), L'\0');
    text.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_ACP, 0, pszAnsi, static_cast<int>(text.size()), text.data(),
                            static_cast<int>(text.size()))));
    return mvp::Utf8(text);
}

template <class Function>
FARPROC Procedure(Function* pFunction) {
    return reinterpret_cast<FARPROC>(mvp::Address(pFunction));
}

}  // namespace

ReplacedSystem::ReplacedSystem(int nBitsPerPixel)
    : m_nBitsPerPixel(nBitsPerPixel),
      m_library("mvpingui.dll", {{"GetProcAddress", mvp::Address(&Find)},
                                 {"Beep", mvp::Address(&Sound)},
                                 {"GetDeviceCaps", mvp::Address(&DeviceCaps)}}),
      m_framework("dlgfw.dll", {{"SetTimer", mvp::Address(&StartTimer)}}) {
    s_pOne = this;
}

ReplacedSystem::~ReplacedSystem() {
    s_pOne = nullptr;
}

FARPROC WINAPI ReplacedSystem::Find(HMODULE hModule, LPCSTR pszName) {
    const bool byNumber = reinterpret_cast<std::uintptr_t>(pszName) <= 0xFFFF;
    const auto is = [=](const char* pszWanted) {
        return !byNumber && std::strcmp(pszName, pszWanted) == 0;
    };
    if (is("HtmlHelpA")) {
        return Procedure(&ShowHelp);
    }
    if (is("ShellExecuteA")) {
        return Procedure(&OpenDocument);
    }
    if (is("MsiGetProductInfoA")) {
        return Procedure(&NameProduct);
    }
    return GetProcAddress(hModule, pszName);
}

HWND WINAPI ReplacedSystem::ShowHelp(HWND, LPCSTR pszFile, UINT, DWORD_PTR) {
    s_pOne->helpFiles.push_back(Utf8Of(pszFile));
    return nullptr;
}

HINSTANCE WINAPI ReplacedSystem::OpenDocument(HWND, LPCSTR, LPCSTR pszDocument, LPCSTR, LPCSTR,
                                              INT) {
    s_pOne->documents.push_back(Utf8Of(pszDocument));
    return reinterpret_cast<HINSTANCE>(kOpened);
}

UINT WINAPI ReplacedSystem::NameProduct(LPCSTR pszCode, LPCSTR, LPSTR pszText, LPDWORD pnSize) {
    const auto length = static_cast<DWORD>(std::strlen(pszCode));
    const bool fits = *pnSize > length;
    if (fits) {
        std::memcpy(pszText, pszCode, length + 1);
    }
    *pnSize = length;
    return fits ? ERROR_SUCCESS : ERROR_MORE_DATA;
}

BOOL WINAPI ReplacedSystem::Sound(DWORD, DWORD) {
    ++s_pOne->nSounds;
    return TRUE;
}

UINT_PTR WINAPI ReplacedSystem::StartTimer(HWND hWnd, UINT_PTR nId, UINT nMilliseconds,
                                           TIMERPROC pfnTimer) {
    if (nId != kStayTimer || mvp::IsDialog(hWnd)) {
        return SetTimer(hWnd, nId, nMilliseconds, pfnTimer);
    }
    s_pOne->stays.push_back(nMilliseconds);
    return nId;
}

int WINAPI ReplacedSystem::DeviceCaps(HDC hDc, int nIndex) {
    const bool told = nIndex == BITSPIXEL && s_pOne->m_nBitsPerPixel != 0;
    return told ? s_pOne->m_nBitsPerPixel : GetDeviceCaps(hDc, nIndex);
}

}  // namespace governed
