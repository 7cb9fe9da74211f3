// card-locked: the notice that the card manager of the card is blocked.
#include "pinhost/commands/card_dialog.h"
#include "pinhost/commands/commands.h"

namespace pinhost {
namespace {

class CardLockedCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command =
            app.add_subcommand("card-locked", "Tell the user that the card manager is blocked");
        m_dialog.AddTo(*command);
        return command;
    }

    Outcome Run(const HostOptions& options) override {
        return RunOnCard(m_dialog.options, [&](ICard& card, Outcome& outcome) {
            CardSide side = m_dialog.SideOf(card);
            const auto flow = [](const FlowLibrary& flows, const PinHostCard& functions) {
                return flows.CardManagerLocked(&functions) == MVPINGUI_OK;
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
};

}  // namespace

std::unique_ptr<Command> MakeCardLockedCommand() {
    return std::make_unique<CardLockedCommand>();
}

}  // namespace pinhost
