// The words of a document without their looks, for those who listen instead of looking.
#pragma once

#include <string>

#include "richtext/document/styled_document.h"

namespace mvp::richtext {

// Lines separated by line feeds, cells by a space.
std::string PlainTextOf(const StyledDocument& document);
std::string LinkTextOf(const StyledDocument& document, std::uint32_t nLink);

}  // namespace mvp::richtext
