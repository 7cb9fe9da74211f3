#include "framework/thread_state.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/critical_section.h"

namespace dlgfw {
namespace {

DWORD g_dwTlsIndex = TLS_OUT_OF_INDEXES;

// All states there are, so that unloading the library frees those of the threads that live on.
mvp::CCriticalSection g_statesLock;
std::vector<std::unique_ptr<ThreadState>> g_states;

}  // namespace

ThreadState* ThreadState::TryGet() noexcept {
    // Reading the slot resets the error code that a caller may be about to ask for.
    const DWORD dwError = GetLastError();
    auto* pState = static_cast<ThreadState*>(TlsGetValue(g_dwTlsIndex));
    SetLastError(dwError);
    return pState;
}

ThreadState& ThreadState::Get() {
    ThreadState* pState = TryGet();
    if (pState == nullptr) {
        auto pNew = std::make_unique<ThreadState>();
        pState = pNew.get();
        const mvp::CScopedLock lock(g_statesLock);
        g_states.push_back(std::move(pNew));
        TlsSetValue(g_dwTlsIndex, pState);
    }
    return *pState;
}

bool AttachProcess() noexcept {
    g_dwTlsIndex = TlsAlloc();
    return g_dwTlsIndex != TLS_OUT_OF_INDEXES;
}

void DetachThread() noexcept {
    const ThreadState* pState = ThreadState::TryGet();
    if (pState == nullptr)
        return;
    TlsSetValue(g_dwTlsIndex, nullptr);
    const mvp::CScopedLock lock(g_statesLock);
    std::erase_if(g_states, [=](const auto& p) { return p.get() == pState; });
}

void DetachProcess() noexcept {
    {
        const mvp::CScopedLock lock(g_statesLock);
        g_states.clear();
    }
    TlsFree(g_dwTlsIndex);
    g_dwTlsIndex = TLS_OUT_OF_INDEXES;
}

}  // namespace dlgfw
