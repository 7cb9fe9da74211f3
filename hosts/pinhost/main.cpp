// pinhost: plays the middleware of the suite on the command line. Each flow of the PIN library is a
// command; the card behind it is a software card.
#include <windows.h>

#include <cstdio>
#include <iostream>
#include <utility>
#include <vector>

#include "common/crash_exit.h"
#include "pinhost/card_file.h"
#include "pinhost/command.h"
#include "pinhost/commands/commands.h"
#include "platform/barrier.h"
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace pinhost {
namespace {

constexpr char kFooter[] =
    "Exit codes:\n"
    "  0  accepted, confirmed, shown\n"
    "  1  wrong PIN, blocked, cancelled, refused\n"
    "  2  wrong command line\n"
    "  3  a library, a file or the display failed\n"
    "  4  the host crashed";

// The console shows UTF-8 while this lives.
class Utf8Console {
public:
    Utf8Console() : m_nBefore(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;
    ~Utf8Console() { SetConsoleOutputCP(m_nBefore); }

private:
    UINT m_nBefore;
};

void AddHostOptions(CLI::App& app, HostOptions& options) {
    app.add_flag("--json", options.bJson, "print the result as one JSON object");
    app.add_option("--language", options.strLanguage,
                   "language of the library's texts, such as en or fr");
    auto* pLog = app.add_option("--log", options.strLogFile, "write the suite's log to this file");
    app.add_flag("--log-detail", options.bLogDetail, "log the details as well: they can show PINs")
        ->needs(pLog);
}

void Print(const std::string& strCommand, const Outcome& outcome, bool bJson) {
    if (!bJson) {
        std::cout << outcome.strText << std::endl;
        return;
    }
    nlohmann::ordered_json json{{"command", strCommand}};
    json.update(outcome.json);
    std::cout << json.dump() << std::endl;
}

ExitCode Complain(const std::exception& error, ExitCode code) {
    std::cerr << "pinhost: " << error.what() << std::endl;
    return code;
}

using Commands = std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>>;

ExitCode RunChosen(const Commands& commands, const HostOptions& options) {
    for (const auto& [pChosen, pCommand] : commands) {
        if (!pChosen->parsed())
            continue;
        const Outcome outcome = pCommand->Run(options);
        Print(pChosen->get_name(), outcome, options.bJson);
        return outcome.code;
    }
    throw UsageError("no command");
}

ExitCode Main(int argc, char** argv) {
    const Utf8Console console;
    CLI::App app("Plays the smart-card middleware with a software card.", "pinhost");
    app.footer(kFooter);
    app.require_subcommand(1);
    app.fallthrough();
    HostOptions options;
    AddHostOptions(app, options);
    Commands commands;
    for (auto* pMake : {MakeErrorTextCommand, MakeLastTryCommand, MakeGetPinCommand,
                        MakeChangePinCommand, MakeRichTextCommand}) {
        auto pCommand = pMake();
        CLI::App* pAdded = pCommand->AddTo(app);
        commands.emplace_back(pAdded, std::move(pCommand));
    }
    try {
        app.parse(argc, argv);
        return RunChosen(commands, options);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? ExitCode::kAccepted : ExitCode::kUsage;
    } catch (const UsageError& error) {
        return Complain(error, ExitCode::kUsage);
    } catch (const std::exception& error) {
        return Complain(error, ExitCode::kEnvironment);
    }
}

}  // namespace
}  // namespace pinhost

int main(int argc, char** argv) {
    mvp::EndWithCodeOnCrash(static_cast<unsigned>(pinhost::ExitCode::kCrashed));
    return mvp::Guarded(
        static_cast<int>(pinhost::ExitCode::kEnvironment),
        [&] { return static_cast<int>(pinhost::Main(argc, argv)); },
        [] { std::fputs("pinhost: out of memory\n", stderr); });
}
