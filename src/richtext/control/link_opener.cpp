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
    char szValue[2048];
    const RegistryRead read = ReadRegistry(
        {strKey.c_str(), nullptr, KEY_QUERY_VALUE, HKEY_CLASSES_ROOT}, szValue, sizeof szValue - 1);
    if (!read || (read.type != REG_SZ && read.type != REG_EXPAND_SZ)) {
        return {};
    }
    szValue[read.size] = '\0';
    if (read.type == REG_SZ) {
        return szValue;
    }
    char szExpanded[4096];
    const DWORD nLength = ExpandEnvironmentStringsA(szValue, szExpanded, sizeof szExpanded);
    return nLength > 0 && nLength <= sizeof szExpanded ? szExpanded : std::string();
}

class CSystemShell final : public CShell {
public:
    long long Open(const std::string& strTarget) override {
        // Loaded when the first link is followed: few are, and the shell is large. Given up to the
        // process, as the shell may go on working after the call.
        static const HMODULE hShell = LoadSystemLibrary("shell32.dll").release();
        const auto pfnExecute = FindFunction<decltype(&ShellExecuteA)>(hShell, "ShellExecuteA");
        if (pfnExecute == nullptr) {
            return 0;
        }
        return reinterpret_cast<INT_PTR>(
            pfnExecute(nullptr, "open", strTarget.c_str(), nullptr, nullptr, SW_SHOW));
    }
    std::string HtmlCommand() override {
        const std::string strClass = ClassValue(".htm");
        return strClass.empty() ? std::string() : ClassValue(strClass + R"(\shell\open\command)");
    }
    bool Start(const std::string& strCommandLine) override {
        return WinExec(strCommandLine.c_str(), SW_SHOW) > kLastExecError;
    }
};

}  // namespace

CShell& SystemShell() {
    static CSystemShell shell;
    return shell;
}

bool OpenLinkTarget(CShell& shell, const std::string& strTarget) {
    if (shell.Open(strTarget) > kLastShellError) {
        return true;
    }
    const std::string strCommand = shell.HtmlCommand();
    return !strCommand.empty() && shell.Start(BrowserCommandLine(strCommand, strTarget));
}

}  // namespace mvp::richtext
