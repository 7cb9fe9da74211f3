/* vkerrmes: the message boxes of the suite.
 *
 * Both functions show a modal message box and return when the user has answered it: 1 for the
 * accepting answer (OK, Yes), 0 for every other one and also when the box could not be shown, so
 * that nothing goes on unless the user agreed to it.
 *
 * Texts are in the system's ANSI code page; null counts as empty, and what is longer than
 * VKERRMES_TEXT_MAX bytes is cut.
 *
 * nMessageType  VKERRMES_FREE_TEXT: pszText is shown as given. There is no other kind; every value
 *               is taken for this one.
 * nButtons      the buttons, MB_OK to MB_RETRYCANCEL. 0 (or a value beyond them) stands for the
 *               function's own: OK alone, or OK and Cancel where the function says so.
 * nIcon         MB_ICONERROR, MB_ICONQUESTION, MB_ICONWARNING or MB_ICONINFORMATION. 0 (or another
 *               value) stands for the warning icon.
 * nFlags        MB_DEFBUTTON2 or MB_DEFBUTTON3, MB_RIGHT, MB_RTLREADING, MB_SETFOREGROUND,
 *               MB_TOPMOST; other flags are ignored.
 *
 * A box over no window comes to the foreground above all windows, so that it is not lost behind
 * them, and disables the calling thread's windows while it is open.
 */
#ifndef VKERRMES_VKERRMES_H
#define VKERRMES_VKERRMES_H

#include <windows.h>

#if defined(VKERRMES_EXPORTS)
#define VKERRMES_API __declspec(dllexport)
#else
#define VKERRMES_API __declspec(dllimport)
#endif

#define VKERRMES_FREE_TEXT (-1)
#define VKERRMES_TEXT_MAX 4096

#ifdef __cplusplus
extern "C" {
#endif

/* A notice with OK alone, over no window. */
VKERRMES_API int __cdecl VKErrMesDisplayEx(int nMessageType, const char* pszText, UINT nButtons,
                                           UINT nIcon, UINT nFlags);

/* A warning that can be declined: with nButtons 0 it has OK and Cancel, and Cancel is the default
 * button. The box may come up while the user is typing elsewhere, and a stray Enter must not accept
 * what nobody has read.
 *
 * hParent is disabled while the box is open; null or a window that is gone means no window.
 * pszReader, the smart-card reader concerned, appears in the caption; null or empty names none.
 * pReserved is ignored. */
VKERRMES_API int __cdecl VKErrMesDisplayExWithParentParamAndReader(
    HWND hParent, int nMessageType, const char* pszText, UINT nButtons, UINT nIcon, UINT nFlags,
    const void* pReserved, const char* pszReader);

#ifdef __cplusplus
}
#endif

#endif
