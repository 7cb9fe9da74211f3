#include "suite/mvcext/mvcext.h"

#include <new>
#include <utility>

#include "platform/barrier.h"
#include "suite/log_exception.h"
#include "suite/mvcext/pattern_compiler.h"

namespace {

mvp::PatternProgram* Compile(const char* pszPattern, bool bIgnoreCase) {
    auto program = mvp::CompilePattern(pszPattern, bIgnoreCase);
    return program ? new mvp::PatternProgram(std::move(*program)) : nullptr;
}

}  // namespace

CPattern::CPattern(const char* pszPattern, bool bIgnoreCase) noexcept {
    if (pszPattern != nullptr) {
        m_pProgram = mvp::Guarded<mvp::PatternProgram*>(
            nullptr, [&] { return Compile(pszPattern, bIgnoreCase); },
            mvp::LogSuiteException("MVCEXT", "CPattern::CPattern"));
    }
}

CPattern::~CPattern() {
    delete m_pProgram;
}

bool CPattern::IsValid() const noexcept {
    return m_pProgram != nullptr;
}

bool CPattern::IsMatched(const char* pszText) const noexcept {
    if (m_pProgram == nullptr || pszText == nullptr) {
        return false;
    }
    return mvp::Guarded(
        false, [&] { return m_pProgram->Matches(pszText); },
        mvp::LogSuiteException("MVCEXT", "CPattern::IsMatched"));
}
