// What every header of the dialog framework stands on: the export mark and the operating system's
// types.
//
// The framework speaks 8-bit strings. Its method names meet the operating system's macros of the
// same name (GetWindowText and others), so whoever includes it must see the same 8-bit variants as
// the library was built with.
#pragma once

#ifdef UNICODE
#error "dlgfw is an 8-bit library: build without UNICODE"
#endif

#include <windows.h>

#ifdef DLGFW_EXPORTS
#define DLGFW_API __declspec(dllexport)
#else
#define DLGFW_API __declspec(dllimport)
#endif

// Lets the compiler compare a printf-style format with its arguments, the object itself counting as
// the first one.
#if defined(__clang__)
#define AFX_PRINTF(nFormat, nFirst) __attribute__((format(printf, nFormat, nFirst)))
#elif defined(__GNUC__)
#define AFX_PRINTF(nFormat, nFirst) __attribute__((format(gnu_printf, nFormat, nFirst)))
#else
#define AFX_PRINTF(nFormat, nFirst)
#endif

// Marks the message handlers among a class's functions, for the reader.
#define afx_msg
