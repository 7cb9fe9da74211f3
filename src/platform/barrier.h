// Keeps exceptions inside: every window procedure, callback, thread routine and exported function
// runs its body through this barrier, and so does every member of an exported class that could
// throw.
#pragma once

#include <type_traits>
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

// The same for a body that returns nothing: returns whether it came to its end.
template <class Body, class OnError>
requires std::is_void_v<std::invoke_result_t<Body>>
bool Guarded(Body&& body, OnError&& onError) noexcept {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        std::forward<OnError>(onError)();
        return false;
    }
}

}  // namespace mvp
