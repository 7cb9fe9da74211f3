// Keeps exceptions inside: every window procedure, callback, thread routine and exported function
// runs its body through this barrier.
#pragma once

#include <utility>

namespace mvp {

// Runs `body` and returns what it returns; when it throws, calls `onError` (to log; it must not
// throw) and returns `fallback`.
template <class Result, class Body, class OnError>
Result Guarded(Result fallback, Body&& body, OnError&& onError) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        std::forward<OnError>(onError)();
        return fallback;
    }
}

}  // namespace mvp
