// The benchmark documents in the dialects of the peers: the same words in the same order, with the
// same number of changes of style.
#pragma once

#include <string>

namespace mvp::bench {

// For HTML readers. A heading is a block there, so the break behind it is left out.
std::string ToHtml(const std::string& strMarkup);

// For Pango, which knows neither tables nor links nor style sheets: the built-in rules are written
// out at each place. The text must be without a table.
std::string ToPangoMarkup(const std::string& strMarkup);

}  // namespace mvp::bench
