// change-pin: asks the user for a new PIN and the current one, and changes the card's.
#include <cstdint>
#include <optional>

#include "pinhost/commands/card_flow.h"
#include "pinhost/commands/commands.h"
#include "pinhost/flow_library.h"
#include "pinhost/pin_library.h"
#include "pinhost/text.h"

namespace pinhost {
namespace {

// The library bounds a PIN by its rules alone, and those may set no maximum. This is the most that
// a user can type into an edit, and the terminator.
constexpr std::size_t kPinCapacity = 32767 + 1;

// What one request brings back; wiped when it goes.
class ChangeRequest {
public:
    // Through the library's own dialog.
    bool Ask(const PinLibrary& library, const PwdRuleArgs& rules, bool bLastTry,
             const std::string& strReader, bool bAskCurrentPin) {
        return library.GetChangePINInfoFromUser(
                   &rules, bLastTry ? 1 : 0, m_newPin.data(), &m_cbNewPin, m_oldPin.data(),
                   &m_cbOldPin, strReader.c_str(), nullptr, bAskCurrentPin) == MVPINGUI_OK;
    }

    // Through a window of the host's own. The warning comes before it: the window could not be
    // left in favour of the warning.
    bool AskEmbedded(const PinLibrary& library, const PwdRuleArgs& rules, bool bLastTry,
                     const std::string& strReader, bool bAskCurrentPin) {
        const FlowLibrary flows;
        if (bLastTry && library.DisplayLastPINTry(strReader.c_str()) != MVPINGUI_OK) {
            return false;
        }
        PinHostChangePin request{&rules,      strReader.c_str(), bAskCurrentPin, m_newPin.data(),
                                 &m_cbNewPin, m_oldPin.data(),   &m_cbOldPin,    0};
        return flows.ChangePinEmbedded(&request) == MVPINGUI_OK;
    }

    std::span<const char> NewPin() const { return {m_newPin.data(), m_cbNewPin}; }
    std::span<const char> OldPin() const { return {m_oldPin.data(), m_cbOldPin}; }

private:
    Secret m_newPin = Secret(kPinCapacity);
    Secret m_oldPin = Secret(kPinCapacity);
    std::uint32_t m_cbNewPin = 0;
    std::uint32_t m_cbOldPin = 0;
};

class ChangePinCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override;
    Outcome Run(const HostOptions& options) override;

private:
    void AddTypingTo(CLI::App& command);
    void MakePlan();
    PwdRuleArgs Rules(const CardPolicy& policy) const;
    void AskAndChange(const PinLibrary& library, ICard& card, Outcome& outcome);
    void Change(const ChangeRequest& request, ICard& card, Outcome& outcome) const;

    CardOptions m_options;
    bool m_bNotWeak = false;
    bool m_bDigitsOnly = false;
    bool m_bNotSame = false;
    bool m_bNoCurrent = false;
    bool m_bMandatory = false;
    bool m_bEmbedded = false;
    std::optional<std::string> m_strCurrent;
    std::optional<std::string> m_strNew;
    std::optional<std::string> m_strConfirmation;
    UserPlan m_plan;
};

CLI::App* ChangePinCommand::AddTo(CLI::App& app) {
    CLI::App* command = app.add_subcommand("change-pin", "Ask for a new PIN and change the card's");
    m_options.AddTo(*command);
    m_options.AddLengthsTo(*command);
    command->add_flag("--no-weak", m_bNotWeak,
                      "refuse simple series such as 1234, whatever the card's own rule");
    command->add_flag("--digits-only", m_bDigitsOnly,
                      "refuse all but digits, whatever the card's own rule");
    command->add_flag("--not-same", m_bNotSame,
                      "refuse the current PIN as the new one, whatever the card's own rule");
    command->add_flag("--no-current", m_bNoCurrent,
                      "do not ask for the current PIN: the card has been opened otherwise");
    command->add_flag("--mandatory", m_bMandatory,
                      "the dialog cannot be cancelled; the card's removal closes it");
    command->add_flag("--embedded", m_bEmbedded, "show the panel inside a window of the host's");
    AddTypingTo(*command);
    m_plan.bNeedsEdit = true;
    AddPlanOptions(*command, m_plan);
    return command;
}

void ChangePinCommand::AddTypingTo(CLI::App& command) {
    command
        .add_option("--type", m_strCurrent, "type this as the current PIN, with real key strokes")
        ->type_name("CURRENT");
    command.add_option("--type-new", m_strNew, "type this as the new PIN")->type_name("NEW");
    command
        .add_option("--type-confirm", m_strConfirmation,
                    "type this as the confirmation (NEW when that is typed)")
        ->type_name("CONFIRM");
}

void ChangePinCommand::MakePlan() {
    if (m_bNoCurrent && m_strCurrent) {
        throw UsageError("--no-current leaves no edit for the current PIN (--type)");
    }
    // Nothing but the card's removal would close the dialog.
    if (m_bMandatory && m_plan.press == Press::Cancel && !m_options.dwRemoveAfter) {
        throw UsageError("what is mandatory cannot be cancelled: --remove-card-after is needed");
    }
    m_plan.strScreenshot = AbsolutePath(m_plan.strScreenshot);
    if (!m_strCurrent && !m_strNew && !m_strConfirmation) {
        return;
    }
    if (!m_bNoCurrent) {
        m_plan.typed.push_back(m_strCurrent.value_or(""));
    }
    m_plan.typed.push_back(m_strNew.value_or(""));
    m_plan.typed.push_back(m_strConfirmation.value_or(m_plan.typed.back()));
}

PwdRuleArgs ChangePinCommand::Rules(const CardPolicy& policy) const {
    PwdRuleArgs rules{};
    rules.bPreventAlphaPIN = m_bDigitsOnly || policy.bPreventAlphaPin ? 1 : 0;
    rules.bPreventWeakPIN = m_bNotWeak || policy.bPreventWeakPin ? 1 : 0;
    rules.bPreventSamePIN = m_bNotSame || policy.bPreventSamePin ? 1 : 0;
    rules.dwMinPINLen = *m_options.dwMin;
    rules.dwMaxPINLen = *m_options.dwMax;
    rules.bCancelDisabled = m_bMandatory ? 1 : 0;
    return rules;
}

void ChangePinCommand::AskAndChange(const PinLibrary& library, ICard& card, Outcome& outcome) {
    const PwdRuleArgs rules = Rules(card.Policy());
    ChangeRequest request;
    // Without the current PIN no try is at stake.
    const bool lastTry = outcome.json["lastTry"] && !m_bNoCurrent;
    const auto ask = m_bEmbedded ? &ChangeRequest::AskEmbedded : &ChangeRequest::Ask;
    const Asked asked = AskUser(m_options, m_plan, card, [&] {
        return (request.*ask)(library, rules, lastTry, m_options.strReader, !m_bNoCurrent);
    });
    if (asked.bConfirmed) {
        Change(request, card, outcome);
    } else {
        TellNoPin(outcome, asked.bCardRemoved);
    }
    TellRemark(outcome, asked.strRemark);
}

void ChangePinCommand::Change(const ChangeRequest& request, ICard& card, Outcome& outcome) const {
    const Verdict verdict = m_bNoCurrent ? card.InFile()->SetPin(request.NewPin())
                                         : card.Change(request.OldPin(), request.NewPin());
    if (verdict == Verdict::Accepted) {
        Tell(outcome, ExitCode::Accepted, "changed", "PIN changed.");
    } else if (verdict == Verdict::Refused) {
        Tell(outcome, ExitCode::NotAccepted, "refused", "The card cannot store this PIN.");
    } else {
        TellRefusal(outcome, verdict, card);
    }
}

Outcome ChangePinCommand::Run(const HostOptions& options) {
    m_options.RefuseOnPiv(m_bNoCurrent, "way to be opened but its PIN (--no-current)");
    MakePlan();
    return RunOnUsableCard(m_options, [&](ICard& card, Outcome& outcome) {
        AskAndChange(PinLibrary(options), card, outcome);
    });
}

}  // namespace

std::unique_ptr<Command> MakeChangePinCommand() {
    return std::make_unique<ChangePinCommand>();
}

}  // namespace pinhost
