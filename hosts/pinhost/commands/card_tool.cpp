// card-tool: the notice that a tool is at work on the card, which closes with the card.
#include "pinhost/commands/card_dialog.h"
#include "pinhost/commands/commands.h"
#include "pinhost/option_values.h"

namespace pinhost {
namespace {

class CardToolCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command =
            app.add_subcommand("card-tool", "Tell the user that a tool is at work on the card");
        m_dialog.AddTo(*command);
        command->add_option("--mode", m_strMode, "what the tool does to the card")
            ->check(OneOf({"unlock", "init"}))
            ->type_name("unlock|init");
        return command;
    }

    Outcome Run(const HostOptions& options) override {
        return RunOnCard(m_dialog.options, [&](ICard& card, Outcome& outcome) {
            CardSide side = m_dialog.SideOf(card);
            const bool unlocking = m_strMode == "unlock";
            const auto flow = [=](const FlowLibrary& flows, const PinHostCard& functions) {
                return flows.ToolAtWork(&functions, unlocking) == MVPINGUI_OK;
            };
            const Asked asked = m_dialog.Run(options, side, flow);
            if (asked.bConfirmed) {
                Tell(outcome, ExitCode::Accepted, "accepted", "The user has read the notice.");
            } else {
                TellNotDone(outcome, asked.bCardRemoved, "The user closed the notice.");
            }
        });
    }

private:
    CardDialog m_dialog;
    std::string m_strMode = "unlock";
};

}  // namespace

std::unique_ptr<Command> MakeCardToolCommand() {
    return std::make_unique<CardToolCommand>();
}

}  // namespace pinhost
