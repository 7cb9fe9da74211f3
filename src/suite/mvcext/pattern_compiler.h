// Turns the text of a pattern into a PatternProgram. mvcext.h describes the notation.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "suite/mvcext/pattern_program.h"

namespace mvp {

constexpr std::size_t kPatternMax = 4096;  // bytes

// Nothing when the pattern is malformed or longer than kPatternMax.
std::optional<PatternProgram> CompilePattern(std::string_view pattern, bool bIgnoreCase);

}  // namespace mvp
