#include "notify/card_expiry_help.h"

#include <array>

#include "platform/shell_document.h"
#include "services/log.h"
#include "services/registry_value.h"

namespace mvp {
namespace {

constexpr char kConfigKey[] = R"(SOFTWARE\Quillon\Veskara\GlobalConfig)";
constexpr char kHelpValue[] = "ValidityCheckHelp";
constexpr DWORD kHelpCapacity = 260;
// One byte more than is offered: a value that fills the buffer may come without a terminator.
using HelpPath = std::array<char, kHelpCapacity + 1>;

bool ReadPath(HelpPath& path) {
    const RegistryRead read = ReadRegistry({kConfigKey, kHelpValue}, path.data(), kHelpCapacity);
    if (read) {
        return true;
    }
    if (read.failed == RegistryStep::OpenKey) {
        vklogLog(g_szLogTag, kLogError, "RegOpenKeyEx \"%s\" failed", kConfigKey);
    } else {
        // The name of the other help value has always stood here; log readers look for it.
        vklogLog(g_szLogTag, kLogError, "RegQueryValueEx \"VeskaraHelpPath\" failed");
    }
    if (read.error == ERROR_MORE_DATA) {
        LogIgnoredSetting(kConfigKey, kHelpValue, "longer than 260 bytes");
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
