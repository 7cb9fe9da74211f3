// help-desk CHALLENGE: answers a challenge of the software card as the help desk would.
#include <algorithm>
#include <cctype>

#include "pinhost/commands/card_dialog.h"
#include "pinhost/commands/commands.h"
#include "pinhost/system_crypto.h"

namespace pinhost {
namespace {

class HelpDeskCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command =
            app.add_subcommand("help-desk", "Answer a challenge as the help desk would");
        m_options.AddFileTo(*command);
        command
            ->add_option("challenge", m_strChallenge,
                         "the challenge as it is read out: 16 hexadecimal digits, dashes anywhere")
            ->required();
        return command;
    }

    Outcome Run(const HostOptions& /*options*/) override {
        m_options.RefuseOnPiv(true, "challenge");
        Secret challenge = WithoutDashes(m_strChallenge);
        const bool isHex = std::all_of(challenge.begin(), challenge.end(),
                                       [](unsigned char ch) { return std::isxdigit(ch) != 0; });
        if (!isHex || challenge.size() != kChallengeDigits) {
            throw UsageError("a challenge is 16 hexadecimal digits");
        }
        std::transform(challenge.begin(), challenge.end(), challenge.begin(),
                       [](unsigned char ch) { return static_cast<char>(std::toupper(ch)); });
        const Secret secret =
            m_options.LoadSoftware()->Software().ResponseTo(challenge, HmacSha256);
        const std::string response(secret.begin(), secret.end());
        return {ExitCode::Accepted, response, {{"result", "shown"}, {"response", response}}};
    }

private:
    CardOptions m_options;
    std::string m_strChallenge;
};

}  // namespace

std::unique_ptr<Command> MakeHelpDeskCommand() {
    return std::make_unique<HelpDeskCommand>();
}

}  // namespace pinhost
