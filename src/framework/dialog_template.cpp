#include "framework/dialog_template.h"

#include <cstddef>
#include <cstring>

namespace dlgfw {
namespace {

// The beginning of the extended form, which the system's headers do not declare.
struct ExtendedTemplate {
    WORD wVersion;
    WORD wSignature;
    DWORD dwHelpID;
    DWORD dwExStyle;
    DWORD dwStyle;
    WORD nItems;
    short x;
    short y;
    short cx;
    short cy;
};

}  // namespace

LPCDLGTEMPLATE LockDialogResource(HINSTANCE hInst, LPCSTR lpszName) noexcept {
    HRSRC resource = ::FindResourceA(hInst, lpszName, RT_DIALOG);
    if (resource == nullptr || ::SizeofResource(hInst, resource) < sizeof(ExtendedTemplate)) {
        return nullptr;
    }
    // Loaded resources lie in the module and need no release.
    HGLOBAL loaded = ::LoadResource(hInst, resource);
    return loaded == nullptr ? nullptr : static_cast<LPCDLGTEMPLATE>(::LockResource(loaded));
}

bool LeavesPlaceOpen(LPCDLGTEMPLATE pTemplate) noexcept {
    constexpr DWORD placing = DS_CENTER | DS_CENTERMOUSE | DS_ABSALIGN;
    DLGTEMPLATE plain = {};
    std::memcpy(&plain, pTemplate, offsetof(DLGTEMPLATE, cx));
    // The extended form begins with version 1 and signature 0xFFFF, which is no style.
    if (plain.style == 0xFFFF0001) {
        ExtendedTemplate extended = {};
        std::memcpy(&extended, pTemplate, offsetof(ExtendedTemplate, cx));
        return (extended.dwStyle & placing) == 0 && extended.x == 0 && extended.y == 0;
    }
    return (plain.style & placing) == 0 && plain.x == 0 && plain.y == 0;
}

}  // namespace dlgfw
