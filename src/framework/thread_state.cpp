#include "framework/thread_state.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/critical_section.h"

namespace dlgfw {
namespace {

DWORD g_dwTlsIndex = TLS_OUT_OF_INDEXES;

// All states there are, so that unloading the library frees those of the threads that live on.
mvp::CriticalSection g_statesLock;
std::vector<std::unique_ptr<ThreadState>> g_states;

}  // namespace

ThreadState* ThreadState::TryGet() noexcept {
    // Reading the slot resets the error code that a caller may be about to ask for.
    const DWORD error = GetLastError();
    auto* state = static_cast<ThreadState*>(TlsGetValue(g_dwTlsIndex));
    SetLastError(error);
    return state;
}

ThreadState& ThreadState::Get() {
    ThreadState* state = TryGet();
    if (state == nullptr) {
        auto newObject = std::make_unique<ThreadState>();
        state = newObject.get();
        const mvp::ScopedLock lock(g_statesLock);
        g_states.push_back(std::move(newObject));
        TlsSetValue(g_dwTlsIndex, state);
    }
    return *state;
}

bool AttachProcess() noexcept {
    g_dwTlsIndex = TlsAlloc();
    return g_dwTlsIndex != TLS_OUT_OF_INDEXES;
}

void DetachThread() noexcept {
    const ThreadState* state = ThreadState::TryGet();
    if (state == nullptr) {
        return;
    }
    TlsSetValue(g_dwTlsIndex, nullptr);
    const mvp::ScopedLock lock(g_statesLock);
    std::erase_if(g_states, [=](const auto& p) { return p.get() == state; });
}

void DetachProcess() noexcept {
    {
        const mvp::ScopedLock lock(g_statesLock);
        g_states.clear();
    }
    TlsFree(g_dwTlsIndex);
    g_dwTlsIndex = TLS_OUT_OF_INDEXES;
}

}  // namespace dlgfw
