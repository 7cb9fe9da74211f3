#include "notify/card_expiry_help.h"

#include <array>

#include "platform/shell_document.h"
#include "services/log.h"
#include "services/registry_value.h"
#include "settings/settings.h"

namespace mvp {
namespace {

constexpr TextSetting kHelp = settings::kValidityHelp;
// One byte more than is offered: a value that fills the buffer may come without a terminator.
using HelpPath = std::array<char, kHelp.nCapacity + 1>;

bool ReadPath(HelpPath& path) {
    const RegistryRead read = ReadRegistry(ValueOf(kHelp), path.data(), kHelp.nCapacity);
    if (read) {
        return true;
    }
    if (read.failed == RegistryStep::OpenKey) {
        vklogLog(g_szLogTag, kLogError, "RegOpenKeyEx \"%s\" failed", kHelp.pszKey);
    } else {
        // The name of the other help value has always stood here; log readers look for it.
        vklogLog(g_szLogTag, kLogError, "RegQueryValueEx \"VeskaraHelpPath\" failed");
    }
    if (read.error == ERROR_MORE_DATA) {
        LogIgnoredSetting(kHelp, "longer than 260 bytes");
    }
    return false;
}

}  // namespace

bool OpenValidityHelp() {
    HelpPath path{};
    if (!ReadPath(path) || path.front() == '\0') {
        return false;
    }
    if (OpenDocument("open", path.data()) > kLastShellError) {
        return true;
    }
    vklogLog(g_szLogTag, kLogError, "ShellExecute with \"%s\" failed", path.data());
    return false;
}

}  // namespace mvp
