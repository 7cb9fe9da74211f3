// What a barrier of a suite module does with an exception that it has stopped: one line of the
// error level in the suite's log.
//
//     mvp::Guarded([&] { ... }, mvp::LogSuiteException("VKEVTSUB", "VKRaiseEvent"));
#pragma once

#include "suite/vklog/vklog.h"

namespace mvp {

class LogSuiteException {
public:
    // The module's tag and the function that was left. Both must outlive the barrier: pass
    // literals.
    constexpr LogSuiteException(const char* pszTag, const char* pszFunction) noexcept
        : m_pszTag(pszTag), m_pszFunction(pszFunction) {}
    void operator()() const noexcept {
        vklogLog(m_pszTag, VKLOG_ERROR, "%s: exception", m_pszFunction);
    }

private:
    const char* m_pszTag;
    const char* m_pszFunction;
};

}  // namespace mvp
