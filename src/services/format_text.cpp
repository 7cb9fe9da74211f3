#include "services/format_text.h"

#include <array>

#include "services/format_check.h"
#include "services/log.h"
#include "services/resource_module.h"
#include "services/text_view.h"

namespace mvp {

CString FormatResourceText(UINT nFormat, LPCSTR pszText) {
    const CString format = ResourceString(nFormat);
    if (!TakesOneText(View(format))) {
        vklogLog(g_szLogTag, kLogError, "String %u does not take one text", nFormat);
        return {pszText};
    }
    // The most that wsprintf writes, terminator included.
    std::array<char, 1024 + 1> text{};
    wsprintfA(text.data(), format, pszText);
    return {text.data()};
}

}  // namespace mvp
