// Stands in for mvcext in tests: the real engine, and the test hears of every match.
#include <string>
#include <utility>

#include "platform/barrier.h"
#include "suite/mvcext/mvcext.h"
#include "suite/mvcext/pattern_compiler.h"
#include "support/recording/recording.h"

namespace {

mvp::test::PatternReceiver g_receiver = nullptr;
void* g_pContext = nullptr;

// The program with what is to be recorded; this is what a CPattern of this module points to.
struct RecordedProgram : mvp::CPatternProgram {
    RecordedProgram(mvp::CPatternProgram program, const char* pszPattern, bool bIgnoresCase,
                    bool bIsValid)
        : CPatternProgram(std::move(program)),
          strPattern(pszPattern),
          bIgnoreCase(bIgnoresCase),
          bValid(bIsValid) {}

    std::string strPattern;
    bool bIgnoreCase;
    bool bValid;
};

const RecordedProgram& Recorded(const mvp::CPatternProgram* pProgram) {
    return *static_cast<const RecordedProgram*>(pProgram);
}

mvp::CPatternProgram* Compile(const char* pszPattern, bool bIgnoreCase) {
    auto program = mvp::CompilePattern(pszPattern, bIgnoreCase);
    const bool bValid = program.has_value();
    if (!bValid)
        program = mvp::CompilePattern("", false);
    return new RecordedProgram(std::move(*program), pszPattern, bIgnoreCase, bValid);
}

}  // namespace

extern "C" __declspec(dllexport) void MvcextRecordTo(mvp::test::PatternReceiver receiver,
                                                     void* pContext) {
    g_receiver = receiver;
    g_pContext = pContext;
}

CPattern::CPattern(const char* pszPattern, bool bIgnoreCase) noexcept {
    if (pszPattern != nullptr)
        m_pProgram = mvp::Guarded<mvp::CPatternProgram*>(
            nullptr, [&] { return Compile(pszPattern, bIgnoreCase); }, [] {});
}

CPattern::~CPattern() {
    delete static_cast<RecordedProgram*>(m_pProgram);
}

bool CPattern::IsValid() const noexcept {
    return m_pProgram != nullptr && Recorded(m_pProgram).bValid;
}

bool CPattern::IsMatched(const char* pszText) const noexcept {
    if (m_pProgram == nullptr || pszText == nullptr)
        return false;
    const RecordedProgram& program = Recorded(m_pProgram);
    const bool bMatched = mvp::Guarded(
        false, [&] { return program.bValid && program.Matches(pszText); }, [] {});
    if (g_receiver != nullptr)
        g_receiver(g_pContext,
                   {program.strPattern.c_str(), program.bIgnoreCase, pszText, bMatched});
    return bMatched;
}
