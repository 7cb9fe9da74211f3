/* vklog: the logging module of the suite.
 *
 *     vklogLog("MVPINGUI", VKLOG_INFORMATION, "tries left: %u", tries);
 *
 * writes one line to the log file when that level is on, and costs next to nothing when it is off.
 * Logging is off until it is configured. Two values under the local-machine key
 * "SOFTWARE\Quillon\Veskara\Logging" switch it on; they are read once, at the first call:
 *
 *     LogFile    REG_SZ     the file; lines are appended to it. In a REG_EXPAND_SZ, environment
 *                           variables are replaced
 *     LogLevels  REG_DWORD  the levels that are on, as a mask (see below)
 *
 * Both are needed. Several processes may share a file.
 *
 * A file that cannot be opened or written silences the log; it is tried again after some seconds.
 * The first failure goes to the debugger, with the file and the error; when the file can be written
 * again, its first line says how many lines are missing. A LogFile of another type, or too long, is
 * told to the debugger as well, and wrong LogLevels also in the log file.
 *
 * A line holds local date and time, process and thread identifier in decimal, tag, level and text:
 *
 *     2024-03-09 14:03:05.123 [4711:4720] MVPINGUI entry: GetPINFromUser
 *
 * A call writes one line, never more: line ends and other control characters in tag and text appear
 * as \n, \r, \t or \xHH. A line is at most VKLOG_LINE_MAX bytes long, its line end included; what
 * exceeds that is cut off and the line ends with VKLOG_CUT_MARK.
 *
 * All functions may be called from every thread.
 */
#ifndef VKLOG_VKLOG_H
#define VKLOG_VKLOG_H

#if !defined(_WIN32)
#define VKLOG_API
#define VKLOG_CALL
#elif defined(VKLOG_EXPORTS)
#define VKLOG_API __declspec(dllexport)
#else
#define VKLOG_API __declspec(dllimport)
#endif
#if defined(_WIN32)
#define VKLOG_CALL __cdecl
#endif

/* The module formats by the rules of the C standard (%zu, %lld), whatever the caller's C library.
 */
#if defined(__clang__)
#define VKLOG_PRINTF(format, first) __attribute__((__format__(__printf__, format, first)))
#elif defined(__GNUC__)
#define VKLOG_PRINTF(format, first) __attribute__((__format__(__gnu_printf__, format, first)))
#else
#define VKLOG_PRINTF(format, first)
#endif

/* Levels. In the mask a level stands for itself; level 0, which has no bit of its own, is switched
 * by VKLOG_DETAIL_BIT. Any other number may be used as a level too: it is on when one of its bits
 * is in the mask, and appears as a number in the line. */
#define VKLOG_DETAIL 0 /* may hold secrets: for the development bench alone */
#define VKLOG_ERROR 1
#define VKLOG_INFORMATION 2
#define VKLOG_ENTRY 8
#define VKLOG_EXIT 16
#define VKLOG_DETAIL_BIT 4

#define VKLOG_LINE_MAX 4096
#define VKLOG_CUT_MARK " [cut]"

#ifdef __cplusplus
extern "C" {
#endif

/* Writes one line of level nLevel. pszTag names the calling module. A null tag or format is written
 * as "(null)"; the arguments must fit the format. Leaves GetLastError() as it was. */
VKLOG_API void VKLOG_CALL vklogLog(const char* pszTag, int nLevel, const char* pszFormat, ...)
    VKLOG_PRINTF(3, 4);

/* Sets file and levels for this process, in place of the registry's. A null or empty file, or a
 * mask of 0, switches the log off. A relative path is taken from the directory current now. */
VKLOG_API void VKLOG_CALL vklogSetOutput(const char* pszFile, unsigned nLevelMask);

#ifdef __cplusplus
}
#endif

#endif
