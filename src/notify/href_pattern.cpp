#include "notify/href_pattern.h"

#include <mvcext/mvcext.h>

#include "notify/notice_text.h"

namespace mvp {

bool MatchesHref(const char* pszText) {
    const CPattern pattern(kHrefPattern);
    return !pattern.IsValid() || pattern.IsMatched(pszText);
}

}  // namespace mvp
