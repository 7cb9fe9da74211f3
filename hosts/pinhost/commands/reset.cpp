// reset: asks the user for the right to reset the card, and takes its PIN away.
#include <optional>

#include "pinhost/commands/card_dialog.h"
#include "pinhost/commands/commands.h"
#include "pinhost/option_values.h"
#include "pinhost/system_crypto.h"

namespace pinhost {
namespace {

// The most that a user can type into an edit, and the terminator.
constexpr std::size_t kProofCapacity = 32767 + 1;

class ResetCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override;
    Outcome Run(const HostOptions& options) override;

private:
    bool IsChallenge() const { return m_strRoute == "challenge"; }
    bool IsPinRoute() const { return m_strRoute == "pin"; }
    void MakePlan(ICard& card);
    void Ask(const HostOptions& options, ICard& card, Outcome& outcome);
    void Reset(const PinHostReset& reset, ICard& card, Outcome& outcome) const;

    CardDialog m_dialog;
    std::string m_strRoute = "pin";
    bool m_bNoPinRoute = false;
    std::optional<std::string> m_strPin;
    std::optional<std::string> m_strCode;
};

CLI::App* ResetCommand::AddTo(CLI::App& app) {
    CLI::App* command =
        app.add_subcommand("reset", "Take the card's PIN away, after its PIN or unlock code");
    m_dialog.AddTo(*command);
    command
        ->add_option("--route", m_strRoute,
                     "what is typed: the PIN, the fixed unlock code, or the help desk's answer to "
                     "a challenge, which the dialog then shows")
        ->check(OneOf({"pin", "code", "challenge"}))
        ->type_name("pin|code|challenge");
    m_dialog.options.AddTransportPinTo(*command);
    command->add_flag("--no-pin-route", m_bNoPinRoute, "the card's PIN cannot be used");
    command->add_option("--type", m_strPin, "type this as the PIN")->type_name("PIN");
    command->add_option("--code", m_strCode,
                        "type this unlock code (with --press ok, the help desk's answer to a "
                        "challenge)");
    m_dialog.plan.bNeedsEdit = true;
    return command;
}

void ResetCommand::MakePlan(ICard& card) {
    UserPlan& plan = m_dialog.plan;
    plan.bSecondChoice = !IsPinRoute() && !m_bNoPinRoute;
    if (IsChallenge() && !m_strCode && plan.press == Press::Ok) {
        const SoftwareCard& software = card.InFile()->Software();
        const Secret response = software.ResponseTo(software.strChallenge, HmacSha256);
        m_strCode.emplace(response.begin(), response.end());
    }
    const std::optional<std::string>& typed = IsPinRoute() ? m_strPin : m_strCode;
    if (typed) {
        plan.typed = {*typed};
    }
}

void ResetCommand::Ask(const HostOptions& options, ICard& card, Outcome& outcome) {
    if (IsChallenge()) {
        card.InFile()->UseChallenge(RandomChallenge(), HmacSha256);
    }
    MakePlan(card);
    Secret proof(kProofCapacity);
    const std::string challenge = IsChallenge() ? card.InFile()->Software().strChallenge : "";
    PinHostReset reset{challenge.c_str(), m_bNoPinRoute, false, proof.data(),
                       static_cast<std::uint32_t>(proof.size())};
    CardSide side = m_dialog.SideOf(card);
    const Asked asked =
        m_dialog.Run(options, side, [&](const FlowLibrary& flows, const PinHostCard& functions) {
            return flows.ResetCard(&functions, &reset) == MVPINGUI_OK;
        });
    if (asked.bConfirmed) {
        Reset(reset, card, outcome);
    } else {
        TellNotDone(outcome, asked.bCardRemoved, "The card was not reset.");
    }
    TellRemark(outcome, asked.strRemark);
}

void ResetCommand::Reset(const PinHostReset& reset, ICard& card, Outcome& outcome) const {
    const std::string_view proof = reset.pszProof;
    const Verdict verdict =
        reset.bByPin ? card.Reset(proof, true) : card.Reset(WithoutDashes(proof), false);
    if (verdict == Verdict::Accepted) {
        Tell(outcome, ExitCode::Accepted, "reset",
             m_dialog.options.IsPiv() ? "Card reset. It has its transport PIN now."
                                      : "Card reset. It has no PIN now.");
    } else if (verdict == Verdict::Refused) {
        Tell(outcome, ExitCode::NotAccepted, "refused", "The card refused its transport PIN.");
    } else if (reset.bByPin) {
        TellRefusal(outcome, verdict, card);
    } else {
        TellCodeRefusal(outcome, verdict, card);
    }
}

Outcome ResetCommand::Run(const HostOptions& options) {
    if (IsPinRoute() ? m_bNoPinRoute || m_strCode : m_strPin.has_value()) {
        throw UsageError("--route says what is typed: the PIN (--type), or else a code (--code)");
    }
    m_dialog.options.RefuseOnPiv(IsChallenge(), "challenge");
    m_dialog.options.NeedTransportPin();
    return RunOnCard(m_dialog.options, [&](ICard& card, Outcome& outcome) {
        const bool pinUsable = card.IsInitialized() && card.TriesLeft() != 0U;
        m_bNoPinRoute = m_bNoPinRoute || !pinUsable;
        if (IsPinRoute() && !card.IsInitialized()) {
            TellNoPinYet(outcome);
        } else if (IsPinRoute() ? !pinUsable : card.UnlocksLeft() == 0U) {
            Tell(outcome, ExitCode::NotAccepted, "blocked",
                 IsPinRoute() ? "The card is blocked." : "The unlock code is blocked.");
        } else {
            Ask(options, card, outcome);
        }
        TellUnlocksLeft(outcome, card);
    });
}

}  // namespace

std::unique_ptr<Command> MakeResetCommand() {
    return std::make_unique<ResetCommand>();
}

}  // namespace pinhost
