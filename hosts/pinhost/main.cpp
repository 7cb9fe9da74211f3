// pinhost: plays the middleware of the suite on the command line. Each flow of the PIN library is a
// command; the card behind it is a software card or a real one.
#include <windows.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

#include "common/crash_exit.h"
#include "pinhost/command.h"
#include "pinhost/commands/commands.h"
#include "pinhost/ending.h"
#include "pinhost/pin_library.h"
#include "pinhost/text.h"
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
    "  4  the host crashed\n"
    "docs/pinhost.md tells what --json prints.";

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
    app.add_flag("--json")->description("print the result as one JSON object, whatever it is");
    app.add_option("--language", options.strLanguage,
                   "language of the library's texts: de, en, es, fr, it");
    auto* log = app.add_option("--log", options.strLogFile, "write the suite's log to this file");
    app.add_flag("--log-detail", options.bLogDetail, "log the details as well: they can show PINs")
        ->needs(log);
}

using Commands = std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>>;

Commands AddCommands(CLI::App& app) {
    Commands commands;
    for (auto* make :
         {MakeErrorTextCommand, MakeLastTryCommand, MakeGetPinCommand, MakeChangePinCommand,
          MakeUnlockCommand, MakeHelpDeskCommand, MakeInitPinCommand, MakeResetCommand,
          MakeShowCodeCommand, MakeCardLockedCommand, MakeCardToolCommand, MakeExpiryCommand,
          MakePopupCommand, MakeAboutCommand, MakeRichTextCommand, MakeSettingsCommand}) {
        auto command = make();
        CLI::App* added = command->AddTo(app);
        commands.emplace_back(added, std::move(command));
    }
    return commands;
}

std::string NamesOf(const Commands& commands) {
    std::string names;
    for (const auto& command : commands) {
        names.append(names.empty() ? "" : ", ").append(command.first->get_name());
    }
    return names;
}

Outcome RunChosen(const Commands& commands, const HostOptions& options) {
    const auto it = std::find_if(commands.begin(), commands.end(),
                                 [](const auto& command) { return command.first->parsed(); });
    if (it == commands.end()) {
        throw UsageError("no command; there are " + NamesOf(commands));
    }
    EndAs(it->first->get_name());
    const mvp::ModuleHandle log = TurnLogOn(options);
    return it->second->Run(options);
}

// What the parser has against the command line.
std::string Fault(const CLI::App& app, const Commands& commands, const CLI::ParseError& error) {
    std::string fault = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        return fault.substr(0, fault.find(':')) + " needs a value";
    }
    const std::vector<std::string> rest = app.remaining(true);
    if (dynamic_cast<const CLI::ExtrasError*>(&error) == nullptr || rest.empty()) {
        return fault;
    }
    if (app.get_subcommands().empty() && rest.front().rfind('-', 0) != 0) {
        return "unknown command \"" + rest.front() + "\"; there are " + NamesOf(commands);
    }
    fault = "not understood:";
    for (const std::string& word : rest) {
        fault.append(" ").append(word);
    }
    return fault;
}

ExitCode TellParse(const CLI::App& app, const Commands& commands, const CLI::ParseError& error) {
    if (!app.get_subcommands().empty()) {
        EndAs(app.get_subcommands().front()->get_name());
    }
    if (error.get_exit_code() != 0) {
        return TellFailure(ExitCode::Usage, Utf8FromAnsi(Fault(app, commands, error)) +
                                                ". Run with --help for more information.");
    }
    std::ostringstream text;  // of --help or --version
    app.exit(error, text, text);
    Outcome outcome;
    outcome.strText = text.str();
    outcome.strText.erase(outcome.strText.find_last_not_of('\n') + 1);
    outcome.json = {{"result", "shown"}, {"text", outcome.strText}};
    return TellOutcome(outcome);
}

ExitCode Main(int argc, char** argv) {
    const Utf8Console console;
    // Before the parser: what it refuses is told in the same form.
    if (std::find(argv + 1, argv + argc, std::string_view("--json")) != argv + argc) {
        EndInJson();
    }
    CLI::App app("Plays the smart-card middleware with a software card or a PIV card.", "pinhost");
    app.footer(kFooter);
    app.set_version_flag("--version", "pinhost " PINHOST_VERSION);
    // A word that begins with a slash is a path.
    app.allow_windows_style_options(false);
    // None is refused later, so that the parser gets to say which word is no command.
    app.require_subcommand(0, 1);
    app.fallthrough();
    HostOptions options;
    AddHostOptions(app, options);
    const Commands commands = AddCommands(app);
    try {
        app.parse(argc, argv);
        return TellOutcome(RunChosen(commands, options));
    } catch (const CLI::ParseError& error) {
        return TellParse(app, commands, error);
    } catch (const UsageError& error) {
        return TellFailure(ExitCode::Usage, error.what());
    } catch (const std::exception& error) {
        return TellFailure(ExitCode::Environment, error.what());
    }
}

}  // namespace
}  // namespace pinhost

int main(int argc, char** argv) {
    mvp::EndWithCodeOnCrash(static_cast<unsigned>(pinhost::ExitCode::Crashed));
    return mvp::Guarded(
        static_cast<int>(pinhost::ExitCode::Environment),
        [&] { return static_cast<int>(pinhost::Main(argc, argv)); },
        [] { pinhost::EndNow("out of memory"); });
}
