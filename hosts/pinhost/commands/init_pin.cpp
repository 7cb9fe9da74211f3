// init-pin: lets the user give a card that has none its first PIN.
#include <optional>

#include "pinhost/commands/card_dialog.h"
#include "pinhost/commands/commands.h"
#include "pinhost/option_values.h"

namespace pinhost {
namespace {

class InitPinCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override;
    Outcome Run(const HostOptions& options) override;

private:
    void AddPoliciesTo(CLI::App& command);
    void FitPoliciesTo(const CardPolicy& policy);
    void Initialize(const HostOptions& options, ICard& card, Outcome& outcome);

    static constexpr std::uint32_t kOpen = MVP_POLICY_FROM_CONFIGURATION;

    CardDialog m_dialog;
    PINPolicies m_policies{kOpen, kOpen, kOpen, kOpen, kOpen, kOpen, kOpen, kOpen, kOpen};
    std::optional<std::string> m_strNew;
    std::optional<std::string> m_strConfirmation;
};

CLI::App* InitPinCommand::AddTo(CLI::App& app) {
    CLI::App* command =
        app.add_subcommand("init-pin", "Let the user give a card without one its first PIN");
    m_dialog.AddTo(*command);
    m_dialog.AddCardFailsTo(*command);
    m_dialog.options.AddTransportPinTo(*command);
    m_dialog.AddTickTo(*command);
    AddNextScreenshotOption(*command, m_dialog.plan);
    AddPoliciesTo(*command);
    command->add_option("--type-new", m_strNew, "type this as the new PIN")->type_name("NEW");
    command
        ->add_option("--type-confirm", m_strConfirmation,
                     "type this as the confirmation (NEW when that is typed)")
        ->type_name("CONFIRM");
    m_dialog.options.bBlank = true;
    m_dialog.plan.bNeedsEdit = true;
    return command;
}

// What is not given is the configuration's.
void InitPinCommand::AddPoliciesTo(CLI::App& command) {
    const auto add = [&](const char* pszName, std::uint32_t& dwValue, const char* pszText) {
        command.add_option(pszName, dwValue, pszText)->check(WholeNumber(0, kOpen));
    };
    add("--min", m_policies.MinimumPINLength, "shortest PIN in bytes");
    add("--max", m_policies.MaximumPINLength, "longest PIN in bytes");
    add("--max-tries", m_policies.MaxPINTries, "wrong PINs that block the card");
    add("--max-unlocks", m_policies.MaxPINUnlock, "wrong unlock codes that the card allows");
    add("--weak-allowed", m_policies.WeakPINAllowed, "1: the card is told to accept weak PINs");
    add("--force-change", m_policies.ForceChangePIN, "1: the PIN must be changed at its first use");
    add("--alpha-allowed", m_policies.AlphaPINAllowed, "1: the PIN may hold letters");
}

void InitPinCommand::Initialize(const HostOptions& options, ICard& card, Outcome& outcome) {
    if (m_strNew || m_strConfirmation) {
        const std::string newPin = m_strNew.value_or("");
        m_dialog.plan.typed = {newPin, m_strConfirmation.value_or(newPin)};
    }
    CardSide side = m_dialog.SideOf(card);
    const Asked asked =
        m_dialog.Run(options, side, [&](const FlowLibrary& flows, const PinHostCard& functions) {
            return flows.InitializePin(&functions, &m_policies) == MVPINGUI_OK;
        });
    if (asked.bConfirmed) {
        // The library does not tell the card of it.
        if (FileCard* file = card.InFile();
            file != nullptr && m_policies.AlphaPINAllowed != kOpen) {
            file->Software().policy.bPreventAlphaPin = m_policies.AlphaPINAllowed != 1;
            file->Save();
        }
        Tell(outcome, ExitCode::Accepted, "initialized", "The card has its PIN.");
    } else if (side.FirstPinVerdict() == Verdict::Wrong ||
               side.FirstPinVerdict() == Verdict::Blocked) {
        Tell(outcome, ExitCode::NotAccepted, "refused",
             "The card has another PIN than the transport PIN.");
    } else if (side.LastResult() != kCardOk) {
        Tell(outcome, ExitCode::NotAccepted, "refused", "The card refused the PIN.");
    } else {
        TellNotDone(outcome, asked.bCardRemoved, "The card was given no PIN.");
    }
    if (FileCard* file = card.InFile()) {
        outcome.json["unlockCodeSeen"] = file->Software().bUnlockCodeSeen;
    }
    TellRemark(outcome, asked.strRemark);
}

// A PIV card keeps no rules; what it takes is what the dialog asks for.
void InitPinCommand::FitPoliciesTo(const CardPolicy& policy) {
    const auto isGiven = [](std::uint32_t dwValue) { return dwValue != kOpen; };
    m_dialog.options.RefuseOnPiv(isGiven(m_policies.MaxPINTries), "number of tries to set");
    m_dialog.options.RefuseOnPiv(isGiven(m_policies.MaxPINUnlock), "number of unlocks to set");
    m_dialog.options.RefuseOnPiv(isGiven(m_policies.ForceChangePIN), "change of its PIN to force");
    const auto fill = [&](std::uint32_t& dwValue, std::uint32_t dwOwn) {
        dwValue = isGiven(dwValue) ? dwValue : dwOwn;
    };
    fill(m_policies.MinimumPINLength, policy.dwMinPinLength);
    fill(m_policies.MaximumPINLength, policy.dwMaxPinLength);
    fill(m_policies.AlphaPINAllowed, policy.bPreventAlphaPin ? 0 : 1);
}

Outcome InitPinCommand::Run(const HostOptions& options) {
    m_dialog.options.NeedTransportPin();
    return RunOnCard(m_dialog.options, [&](ICard& card, Outcome& outcome) {
        if (m_dialog.options.IsPiv()) {
            FitPoliciesTo(card.Policy());
        }
        if (card.InFile() != nullptr && card.IsInitialized()) {
            Tell(outcome, ExitCode::NotAccepted, "refused",
                 "The card has a PIN. It must be reset first.");
        } else if (card.TriesLeft() == 0U) {
            Tell(outcome, ExitCode::NotAccepted, "blocked", "The card is blocked.");
        } else {
            Initialize(options, card, outcome);
        }
        TellUnlocksLeft(outcome, card);
    });
}

}  // namespace

std::unique_ptr<Command> MakeInitPinCommand() {
    return std::make_unique<InitPinCommand>();
}

}  // namespace pinhost
