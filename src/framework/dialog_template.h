// Dialog templates: where they come from and what they say.
#pragma once

#include <windows.h>

namespace dlgfw {

// Null when the module has no such dialog, or one too small to be a template.
LPCDLGTEMPLATE LockDialogResource(HINSTANCE hInst, LPCSTR lpszName) noexcept;

// Neither a position nor a style that asks for one: the framework may choose the place.
bool LeavesPlaceOpen(LPCDLGTEMPLATE pTemplate) noexcept;

}  // namespace dlgfw
