// A winscard.dll whose readers a test moves. It has what CPcscService uses, and counts contexts.
#include "fake_winscard.h"

#include <windows.h>
#include <winscard.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include "platform/critical_section.h"

namespace {

struct World {
    World() { InitializeConditionVariable(&changed); }
    void Change() {
        ++nChange;
        WakeAllConditionVariable(&changed);
    }

    mvp::CCriticalSection lock;
    CONDITION_VARIABLE changed;
    unsigned nChange = 1;      // the number of the last change
    unsigned nSeenChange = 0;  // the last one that a wait has taken note of
    bool bUp = true;
    bool bPatient = false;
    std::map<std::string, DWORD> readers;  // name and state
    std::set<SCARDCONTEXT> contexts;
    std::set<SCARDCONTEXT> cancelled;
    SCARDCONTEXT nLast = 0;
    int nConnects = 0;
};
World g_world;

constexpr char kComingAndGoing[] = R"(\\?PnP?\Notification)";

// What a wait finds now; SCARD_E_TIMEOUT when nothing differs from what is known.
LONG Look(LPSCARD_READERSTATEA pStates, DWORD nStates) {
    if (!g_world.bUp)
        return SCARD_E_SERVICE_STOPPED;
    bool bChange = false;
    for (DWORD i = 0; i < nStates; ++i) {
        SCARD_READERSTATEA& state = pStates[i];
        const auto reader = g_world.readers.find(state.szReader);
        const bool bReaders = std::strcmp(state.szReader, kComingAndGoing) == 0;
        if (!bReaders && reader == g_world.readers.end())
            return SCARD_E_UNKNOWN_READER;
        state.dwEventState =
            bReaders ? static_cast<DWORD>(g_world.readers.size()) << 16 : reader->second;
        if (state.dwEventState == (state.dwCurrentState & ~DWORD{SCARD_STATE_CHANGED}))
            continue;
        state.dwEventState |= SCARD_STATE_CHANGED;
        bChange = true;
    }
    return bChange ? SCARD_S_SUCCESS : SCARD_E_TIMEOUT;
}

}  // namespace

void FakeSetReader(const char* pszReader, DWORD nState) {
    const mvp::CScopedLock lock(g_world.lock);
    g_world.readers[pszReader] = nState;
    g_world.Change();
}

void FakeRemoveReader(const char* pszReader) {
    const mvp::CScopedLock lock(g_world.lock);
    g_world.readers.erase(pszReader);
    g_world.Change();
}

void FakeSetUp(BOOL bUp) {
    const mvp::CScopedLock lock(g_world.lock);
    g_world.bUp = bUp != FALSE;
    g_world.Change();
}

BOOL FakeIsSettled() {
    const mvp::CScopedLock lock(g_world.lock);
    return g_world.nSeenChange == g_world.nChange;
}

void FakeSetPatient(BOOL bPatient) {
    const mvp::CScopedLock lock(g_world.lock);
    g_world.bPatient = bPatient != FALSE;
}

int FakeContexts() {
    const mvp::CScopedLock lock(g_world.lock);
    return static_cast<int>(g_world.contexts.size());
}

int FakeConnects() {
    const mvp::CScopedLock lock(g_world.lock);
    return g_world.nConnects;
}

extern "C" {

__declspec(dllexport) LONG WINAPI
    SCardEstablishContext(DWORD, LPCVOID, LPCVOID, LPSCARDCONTEXT phContext) {
    const mvp::CScopedLock lock(g_world.lock);
    ++g_world.nConnects;
    if (!g_world.bUp)
        return SCARD_E_NO_SERVICE;
    *phContext = ++g_world.nLast;
    g_world.contexts.insert(*phContext);
    return SCARD_S_SUCCESS;
}

__declspec(dllexport) LONG WINAPI SCardReleaseContext(SCARDCONTEXT hContext) {
    const mvp::CScopedLock lock(g_world.lock);
    return g_world.contexts.erase(hContext) > 0 ? SCARD_S_SUCCESS : SCARD_E_INVALID_HANDLE;
}

__declspec(dllexport) LONG WINAPI
    SCardListReadersA(SCARDCONTEXT, LPCSTR, LPSTR pszReaders, LPDWORD pnLength) {
    const mvp::CScopedLock lock(g_world.lock);
    if (!g_world.bUp)
        return SCARD_E_SERVICE_STOPPED;
    if (g_world.readers.empty())
        return SCARD_E_NO_READERS_AVAILABLE;
    std::string list;
    for (const auto& [name, nState] : g_world.readers)
        list += name + '\0';
    list += '\0';
    const DWORD nRoom = *pnLength;
    *pnLength = static_cast<DWORD>(list.size());
    if (pszReaders == nullptr)
        return SCARD_S_SUCCESS;
    if (nRoom < list.size())
        return SCARD_E_INSUFFICIENT_BUFFER;
    std::ranges::copy(list, pszReaders);
    return SCARD_S_SUCCESS;
}

__declspec(dllexport) LONG WINAPI
    SCardGetStatusChangeA(SCARDCONTEXT hContext, DWORD nTimeoutMs, LPSCARD_READERSTATEA pStates,
                          DWORD nStates) {
    const mvp::CScopedLock lock(g_world.lock);
    const ULONGLONG nEnd = GetTickCount64() + nTimeoutMs;
    for (;;) {
        if (g_world.cancelled.erase(hContext) > 0)
            return SCARD_E_CANCELLED;
        const LONG nResult = Look(pStates, nStates);
        const ULONGLONG nNow = GetTickCount64();
        if (nResult != SCARD_E_TIMEOUT || (nNow >= nEnd && !g_world.bPatient))
            return nResult;
        g_world.nSeenChange = g_world.nChange;
        SleepConditionVariableCS(&g_world.changed, g_world.lock.get(),
                                 g_world.bPatient ? INFINITE : static_cast<DWORD>(nEnd - nNow));
    }
}

__declspec(dllexport) LONG WINAPI SCardCancel(SCARDCONTEXT hContext) {
    const mvp::CScopedLock lock(g_world.lock);
    g_world.cancelled.insert(hContext);
    WakeAllConditionVariable(&g_world.changed);
    return SCARD_S_SUCCESS;
}

}  // extern "C"
