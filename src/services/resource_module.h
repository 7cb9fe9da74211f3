// The localized resource module, mvpinguirc: every string, dialog template, bitmap and icon of the
// library comes from it. Without the module strings are empty and dialogs cannot be created; the
// accessors here keep a missing one from turning into a search of the host's own resources, which a
// null module handle means to the system.
//
// The module is data. It is mapped, never run: whoever plants a file of its name in the current
// directory decides what is shown, not what is done. Its handle serves whatever loads resources,
// and nothing else: GetModuleHandle and GetProcAddress do not know it.
//
// A missing module is logged once, when it is looked for. What a module lacks is logged each time
// it is asked for, as an error that names it.
#pragma once

#include <windows.h>

#include <optional>

#include <dlgfw/string.h>

#include "platform/handle.h"
#include "platform/pixel_scale.h"

namespace mvp {

// Null while no module is loaded.
HINSTANCE ResourceModule() noexcept;

// Loads the module: from ".\Resources\Localized" of the process's current directory, else from the
// same folder under the suite's install path. Logs the failure of both; nothing else is done.
void LoadResourceModule() noexcept;
void FreeResourceModule() noexcept;

// Sets `text` to string `nId` and returns true; leaves it as it is and returns false when the
// module or the string is missing.
bool LoadResourceString(UINT nId, CString& text);

// The string, or an empty text.
CString ResourceString(UINT nId);

// The string, cut to `nCapacity` bytes with its terminator, or an empty text, in `pszText`.
void LoadResourceText(UINT nId, char* pszText, int nCapacity) noexcept;

// The module, when it is there and holds dialog template `nId`; else null.
HINSTANCE ModuleOfDialog(UINT nId) noexcept;

// An icon of the module that stays valid as long as the module is loaded and is the module's: the
// same one each time, never to be destroyed. Null when missing. `nSize` is its width and height in
// pixels. May be called from any thread.
HICON LoadResourceIcon(UINT nId, int nSize) noexcept;

// A copy of a bitmap of the module, checked before the system is given it, 32 bits a pixel. Empty
// when it is missing or not what its headers say.
Bitmap LoadResourceBitmap(UINT nId) noexcept;

// The same in `size`, on a screen of `nDpi`; without a size in the one that it has there. From
// 150 % on it is made from the module's drawing for 200 %, where there is one.
Bitmap LoadResourcePicture(UINT nId, int nDpi, Scaling scaling = Scaling::Smooth,
                           std::optional<PixelSize> size = std::nullopt) noexcept;

}  // namespace mvp
