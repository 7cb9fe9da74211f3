// The suite's pattern matching as a notice's text needs it.
#pragma once

namespace mvp {

// Whether the text matches kHrefPattern (notice_text.h); so does every text when memory does not
// suffice for the pattern. Any thread.
bool MatchesHref(const char* pszText);

}  // namespace mvp
