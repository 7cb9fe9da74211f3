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
        CLI::App* pCommand =
            app.add_subcommand("error-text", "Print the text for a card operation's result code");
        pCommand->add_option("code", m_nCode, "the result code")
            ->check(AnyWholeNumber<std::int32_t>())
            ->required();
        return pCommand;
    }

    Outcome Run(const HostOptions& options) override {
        const PinLibrary library(options);
        const std::string strText = Utf8FromAnsi(library.GetErrorString(m_nCode));
        if (strText.empty())
            return {ExitCode::kNotAccepted,
                    "There is no text for code " + std::to_string(m_nCode) + ".",
                    {{"result", "unknown"}, {"code", m_nCode}}};
        return {ExitCode::kAccepted,
                strText,
                {{"result", "shown"}, {"code", m_nCode}, {"text", strText}}};
    }

private:
    std::int32_t m_nCode = 0;
};

}  // namespace

std::unique_ptr<Command> MakeErrorTextCommand() {
    return std::make_unique<ErrorTextCommand>();
}

}  // namespace pinhost
