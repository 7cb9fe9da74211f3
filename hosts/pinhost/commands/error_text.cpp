// error-text CODE: the library's text for a card operation's result code.
#include <cstdint>

#include "pinhost/commands/commands.h"
#include "pinhost/pin_library.h"
#include "pinhost/text.h"

namespace pinhost {
namespace {

class ErrorTextCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* pCommand =
            app.add_subcommand("error-text", "Print the text for a card operation's result code");
        pCommand->add_option("code", m_nCode, "the result code")->required();
        return pCommand;
    }

    Outcome Run(const HostOptions& options) override {
        const PinLibrary library(options);
        const std::string strText = Utf8FromAnsi(library.GetErrorString(m_nCode));
        Outcome outcome;
        outcome.json["code"] = m_nCode;
        outcome.json["text"] = strText;
        outcome.strText = strText;
        if (strText.empty()) {
            outcome.code = ExitCode::kNotAccepted;
            outcome.strText = "There is no text for code " + std::to_string(m_nCode) + ".";
        }
        return outcome;
    }

private:
    std::int32_t m_nCode = 0;
};

}  // namespace

std::unique_ptr<Command> MakeErrorTextCommand() {
    return std::make_unique<ErrorTextCommand>();
}

}  // namespace pinhost
