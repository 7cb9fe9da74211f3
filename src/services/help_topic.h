// Context help: opens the suite's help file at a numbered topic.
#pragma once

#include <windows.h>

// Shows topic `nTopic` of the help file that the configuration names, over the active window.
// Without a configured help file nothing is shown; the log says why. Call on the thread of the
// dialog that asks.
void DoDisplayTopic(int nTopic);

namespace mvp {

// The help viewer's entry point. Tests put their own in its place; null restores the system's.
using HelpViewer = HWND(WINAPI*)(HWND hCaller, LPCSTR pszFile, UINT uCommand, DWORD_PTR dwData);
void SetHelpViewer(HelpViewer pViewer) noexcept;

}  // namespace mvp
