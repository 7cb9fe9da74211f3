// pinentry: asks for PINs and passphrases through the PIN library, on behalf of key managers, which
// speak the line protocol with it, and of programs that start it with a prompt.
#include <windows.h>
#include <shellapi.h>

#include <cstdio>
#include <string>
#include <vector>

#include "common/crash_exit.h"
#include "pinentry/core/askpass.h"
#include "pinentry/core/command_line.h"
#include "pinentry/core/session.h"
#include "pinentry/windows/code_page.h"
#include "pinentry/windows/library_interface.h"
#include "pinentry/windows/stdio_channel.h"
#include "platform/barrier.h"

namespace pinentry {
namespace {

constexpr int kDone = 0;
constexpr int kUsage = 2;
constexpr int kFailed = 3;
constexpr int kCrashed = 4;

// In Unicode, as the system gives them.
std::vector<std::string> Arguments() {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; words != nullptr && i < count; ++i) {
        arguments.push_back(Utf8FromWide(words[i]));
    }
    LocalFree(words);
    return arguments;
}

std::string EnvironmentText(const char* pszName) {
    char text[64] = {};
    const DWORD length = GetEnvironmentVariableA(pszName, text, sizeof text);
    return length < sizeof text ? text : "";
}

int Serve(const CommandLine& line) {
    StdioChannel channel(GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_OUTPUT_HANDLE));
    LibraryInterface user(&channel, line.strLogFile);
    const AnsiCodePage codePage;
    Session session(channel, user, codePage, {GetCurrentProcessId(), PINENTRY_VERSION},
                    line.options, line.nTimeout);
    session.Run();
    return kDone;
}

int Ask(const CommandLine& line) {
    OutputChannel output(GetStdHandle(STD_OUTPUT_HANDLE));
    LibraryInterface user(nullptr, line.strLogFile);
    return RunAskpass(
        {*line.strPrompt, EnvironmentText("SSH_ASKPASS_PROMPT"), line.options, line.nTimeout},
        output, user, AnsiCodePage());
}

int PrintVersion() {
    constexpr std::string_view kText = "pinentry (mvpingui) " PINENTRY_VERSION "\n";
    OutputChannel output(GetStdHandle(STD_OUTPUT_HANDLE));
    return output.Write({kText.data(), kText.size()}) ? kDone : kFailed;
}

int Main() {
    std::string fault;
    const std::optional<CommandLine> line = ParseCommandLine(Arguments(), fault);
    if (!line) {
        std::fprintf(stderr, "pinentry: %s\n", fault.c_str());
        return kUsage;
    }
    if (line->bVersion) {
        return PrintVersion();
    }
    return line->strPrompt ? Ask(*line) : Serve(*line);
}

}  // namespace
}  // namespace pinentry

int main() {
    mvp::EndWithCodeOnCrash(pinentry::kCrashed);
    return mvp::Guarded(
        pinentry::kFailed, [] { return pinentry::Main(); },
        [] { std::fputs("pinentry: out of memory\n", stderr); });
}
