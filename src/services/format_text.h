// Texts of the resource module with another text put in.
#pragma once

#include <windows.h>

#include <dlgfw/string.h>

namespace mvp {

// Format `nFormat` of the resource module with `pszText` in place of its "%s", by the system's
// wsprintf, which cuts at 1024 characters. `pszText` alone when the format is missing or takes
// anything else.
CString FormatResourceText(UINT nFormat, LPCSTR pszText);

}  // namespace mvp
