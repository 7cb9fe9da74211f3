// error-text CODE: the library's text for a card operation's result code.
#include <cstdint>

#include "pinhost/commands/commands.h"
#include "pinhost/option_values.h"
#include "pinhost/pin_library.h"
#include "pinhost/text.h"

namespace pinhost {
namespace {

class ErrorTextCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command =
            app.add_subcommand("error-text", "Print the text for a card operation's result code");
        command->add_option("code", m_nCode, "the result code")
            ->check(AnyWholeNumber<std::int32_t>())
            ->required();
        return command;
    }

    Outcome Run(const HostOptions& options) override {
        const PinLibrary library(options);
        const std::string text = Utf8FromAnsi(library.GetErrorString(m_nCode));
        if (text.empty()) {
            return {ExitCode::NotAccepted,
                    "There is no text for code " + std::to_string(m_nCode) + ".",
                    {{"result", "unknown"}, {"code", m_nCode}}};
        }
        return {ExitCode::Accepted, text, {{"result", "shown"}, {"code", m_nCode}, {"text", text}}};
    }

private:
    std::int32_t m_nCode = 0;
};

}  // namespace

std::unique_ptr<Command> MakeErrorTextCommand() {
    return std::make_unique<ErrorTextCommand>();
}

}  // namespace pinhost
