// How a test moves the readers of the winscard.dll that it has made itself.
#pragma once

#include <windows.h>

#if defined(FAKE_WINSCARD_EXPORTS)
#define FAKE_WINSCARD_API __declspec(dllexport)
#else
#define FAKE_WINSCARD_API __declspec(dllimport)
#endif

extern "C" {
// Plugs a reader in, or changes its state.
FAKE_WINSCARD_API void FakeSetReader(const char* pszReader, DWORD nState);
FAKE_WINSCARD_API void FakeRemoveReader(const char* pszReader);
// Starts or stops the service.
FAKE_WINSCARD_API void FakeSetUp(BOOL bUp);
// Whether a wait goes on when its time is over, until there is a change or it is cancelled.
FAKE_WINSCARD_API void FakeSetPatient(BOOL bPatient);
FAKE_WINSCARD_API int FakeContexts();
// How often somebody tried to connect, in vain or not.
FAKE_WINSCARD_API int FakeConnects();
// Whether somebody waits and knows of everything that was changed.
FAKE_WINSCARD_API BOOL FakeIsSettled();
}
