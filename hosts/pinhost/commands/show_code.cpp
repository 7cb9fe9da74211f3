// show-code: shows the user the software card's unlock code.
#include "pinhost/commands/card_dialog.h"
#include "pinhost/commands/commands.h"

namespace pinhost {
namespace {

class ShowCodeCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command = app.add_subcommand("show-code", "Show the user the card's unlock code");
        m_dialog.AddTo(*command);
        m_dialog.AddCardFailsTo(*command);
        m_dialog.AddTickTo(*command);
        return command;
    }

    Outcome Run(const HostOptions& options) override {
        m_dialog.options.RefuseOnPiv(true, "unlock code that it would show");
        return RunOnCard(m_dialog.options, [&](ICard& card, Outcome& outcome) {
            Show(options, card, outcome);
            outcome.json["unlockCodeSeen"] = card.InFile()->Software().bUnlockCodeSeen;
        });
    }

private:
    void Show(const HostOptions& options, ICard& card, Outcome& outcome) {
        CardSide side = m_dialog.SideOf(card);
        const auto flow = [](const FlowLibrary& flows, const PinHostCard& functions) {
            return flows.ShowUnlockCode(&functions) == MVPINGUI_OK;
        };
        const Asked asked = m_dialog.Run(options, side, flow);
        if (m_dialog.nCardFails != kCardOk) {
            Tell(outcome, ExitCode::NotAccepted, "refused", "The card did not give its code.");
        } else if (card.InFile()->Software().unlockCode.empty()) {
            Tell(outcome, ExitCode::NotAccepted, "none", "The card has no unlock code.");
        } else if (asked.bConfirmed) {
            Tell(outcome, ExitCode::Accepted, "accepted", "The user has the unlock code.");
        } else if (asked.bCardRemoved) {
            TellNotDone(outcome, true, "");
        } else {
            Tell(outcome, ExitCode::NotAccepted, "declined",
                 "The user wants to see the unlock code again.");
        }
    }

    CardDialog m_dialog;
};

}  // namespace

std::unique_ptr<Command> MakeShowCodeCommand() {
    return std::make_unique<ShowCodeCommand>();
}

}  // namespace pinhost
