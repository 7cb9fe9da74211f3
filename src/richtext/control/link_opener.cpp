#include "richtext/control/link_opener.h"

#include <windows.h>
#include <shellapi.h>

#include "platform/system_library.h"
#include "richtext/control/browser_command.h"
#include "services/registry_value.h"

namespace mvp::richtext {
namespace {

constexpr long long kLastShellError = 32;
constexpr UINT kLastExecError = 31;

// The default value of a key of HKEY_CLASSES_ROOT, with the environment's variables put in.
std::string ClassValue(const std::string& strKey) {
    // Values need not end in a zero: room for one is kept.
    char value[2048];
    const RegistryRead read = ReadRegistry(
        {strKey.c_str(), nullptr, KEY_QUERY_VALUE, HKEY_CLASSES_ROOT}, value, sizeof value - 1);
    if (!read || (read.type != REG_SZ && read.type != REG_EXPAND_SZ)) {
        return {};
    }
    value[read.size] = '\0';
    if (read.type == REG_SZ) {
        return value;
    }
    char expanded[4096];
    const DWORD length = ExpandEnvironmentStringsA(value, expanded, sizeof expanded);
    return length > 0 && length <= sizeof expanded ? expanded : std::string();
}

class WindowsShell final : public Shell {
public:
    long long Open(const std::string& strTarget) override {
        // Loaded when the first link is followed: few are, and the shell is large. Given up to the
        // process, as the shell may go on working after the call.
        static const HMODULE shell = LoadSystemLibrary("shell32.dll").release();
        const auto executeFunction = FindFunction<decltype(&ShellExecuteA)>(shell, "ShellExecuteA");
        if (executeFunction == nullptr) {
            return 0;
        }
        return reinterpret_cast<INT_PTR>(
            executeFunction(nullptr, "open", strTarget.c_str(), nullptr, nullptr, SW_SHOW));
    }
    std::string HtmlCommand() override {
        const std::string className = ClassValue(".htm");
        return className.empty() ? std::string() : ClassValue(className + R"(\shell\open\command)");
    }
    bool Start(const std::string& strCommandLine) override {
        return WinExec(strCommandLine.c_str(), SW_SHOW) > kLastExecError;
    }
};

}  // namespace

Shell& SystemShell() {
    static WindowsShell shell;
    return shell;
}

bool OpenLinkTarget(Shell& shell, const std::string& strTarget) {
    if (shell.Open(strTarget) > kLastShellError) {
        return true;
    }
    const std::string command = shell.HtmlCommand();
    return !command.empty() && shell.Start(BrowserCommandLine(command, strTarget));
}

}  // namespace mvp::richtext
