// unlock: lets the user unblock the card with its unlock code and a new PIN.
#include <optional>

#include "pinhost/commands/card_dialog.h"
#include "pinhost/commands/commands.h"
#include "pinhost/option_values.h"
#include "pinhost/system_crypto.h"

namespace pinhost {
namespace {

class UnlockCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override;
    Outcome Run(const HostOptions& options) override;

private:
    bool IsChallenge() const { return m_strMode == "challenge"; }
    void MakePlan(ICard& card);
    PwdRuleArgs Rules(const CardPolicy& policy) const;
    void Unlock(const HostOptions& options, ICard& card, Outcome& outcome);
    void TellFailure(Outcome& outcome, const CardSide& side, const ICard& card,
                     bool bCardRemoved) const;

    CardDialog m_dialog;
    std::string m_strMode = "static";
    std::optional<std::string> m_strCode;
    std::optional<std::string> m_strNew;
};

CLI::App* UnlockCommand::AddTo(CLI::App& app) {
    CLI::App* command =
        app.add_subcommand("unlock", "Let the user unblock the card with its unlock code");
    m_dialog.AddTo(*command);
    m_dialog.options.AddLengthsTo(*command);
    m_dialog.AddCardFailsTo(*command);
    AddNextScreenshotOption(*command, m_dialog.plan);
    command
        ->add_option("--mode", m_strMode,
                     "the unlock code is a fixed one, or the help desk's answer to a challenge")
        ->check(OneOf({"static", "challenge"}))
        ->type_name("static|challenge");
    command->add_option("--code", m_strCode,
                        "type this unlock code (with --press ok, the help desk's answer to a "
                        "challenge)");
    command->add_option("--new-pin", m_strNew, "type this as the new PIN, twice")->type_name("NEW");
    m_dialog.plan.bNeedsEdit = true;
    return command;
}

void UnlockCommand::MakePlan(ICard& card) {
    if (IsChallenge() && !m_strCode && m_dialog.plan.press == Press::Ok) {
        const SoftwareCard& software = card.InFile()->Software();
        const Secret response = software.ResponseTo(software.strChallenge, HmacSha256);
        m_strCode.emplace(response.begin(), response.end());
    }
    if (m_strCode || m_strNew) {
        const std::string newPin = m_strNew.value_or("");
        m_dialog.plan.typed = {m_strCode.value_or(""), newPin, newPin};
    }
}

PwdRuleArgs UnlockCommand::Rules(const CardPolicy& policy) const {
    PwdRuleArgs rules{};
    rules.bPreventAlphaPIN = policy.bPreventAlphaPin ? 1 : 0;
    rules.bPreventWeakPIN = policy.bPreventWeakPin ? 1 : 0;
    rules.dwMinPINLen = *m_dialog.options.dwMin;
    rules.dwMaxPINLen = *m_dialog.options.dwMax;
    return rules;
}

void UnlockCommand::TellFailure(Outcome& outcome, const CardSide& side, const ICard& card,
                                bool bCardRemoved) const {
    switch (side.LastResult()) {
        case kCardOk:
            TellNotDone(outcome, bCardRemoved, "The card was not unlocked.");
            break;
        case kCardWrongUnlockCode:
            TellCodeRefusal(outcome, Verdict::Wrong, card);
            break;
        case kCardUnlockCodeBlocked:
            TellCodeRefusal(outcome, Verdict::Blocked, card);
            break;
        default:
            Tell(outcome, ExitCode::NotAccepted, "refused", "The card refused the new PIN.");
    }
}

void UnlockCommand::Unlock(const HostOptions& options, ICard& card, Outcome& outcome) {
    if (IsChallenge()) {
        card.InFile()->UseChallenge(RandomChallenge(), HmacSha256);
    }
    MakePlan(card);
    CardSide side = m_dialog.SideOf(card);
    const PwdRuleArgs rules = Rules(card.Policy());
    const Asked asked =
        m_dialog.Run(options, side, [&](const FlowLibrary& flows, const PinHostCard& functions) {
            return flows.UnlockCard(&functions, &rules) == MVPINGUI_OK;
        });
    if (asked.bConfirmed) {
        Tell(outcome, ExitCode::Accepted, "unlocked", "Card unlocked.");
    } else {
        TellFailure(outcome, side, card, asked.bCardRemoved);
    }
    TellRemark(outcome, asked.strRemark);
}

Outcome UnlockCommand::Run(const HostOptions& options) {
    m_dialog.options.RefuseOnPiv(IsChallenge(), "challenge");
    return RunOnCard(m_dialog.options, [&](ICard& card, Outcome& outcome) {
        if (!card.IsInitialized()) {
            TellNoPinYet(outcome);
        } else if (card.UnlocksLeft() == 0U) {
            Tell(outcome, ExitCode::NotAccepted, "blocked", "The unlock code is blocked.");
        } else {
            Unlock(options, card, outcome);
        }
        TellUnlocksLeft(outcome, card);
    });
}

}  // namespace

std::unique_ptr<Command> MakeUnlockCommand() {
    return std::make_unique<UnlockCommand>();
}

}  // namespace pinhost
