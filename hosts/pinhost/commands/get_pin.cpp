// get-pin: asks the user for the card's PIN and lets the software card verify it.
#include <chrono>
#include <cstdint>
#include <optional>

#include "pinhost/automatic_user.h"
#include "pinhost/card_file.h"
#include "pinhost/card_remover.h"
#include "pinhost/commands/commands.h"
#include "pinhost/owner_window.h"
#include "pinhost/pin_library.h"
#include "pinhost/text.h"

namespace pinhost {
namespace {

// What one request brings back. However it ends, the library gets its buffer back.
class PinRequest {
public:
    explicit PinRequest(const PinLibrary& library) : m_library(library) {}
    PinRequest(const PinRequest&) = delete;
    PinRequest& operator=(const PinRequest&) = delete;
    ~PinRequest() { m_library.FreeGetPinBuffer(m_pPin, m_cbPin); }

    bool Ask(HWND hParent, const std::string& strReader, bool bLastTry, std::uint32_t dwMin,
             std::uint32_t dwMax) {
        return m_library.GetPINFromUser(hParent, strReader.c_str(), bLastTry ? 1 : 0, dwMin, dwMax,
                                        &m_pPin, &m_cbPin) == MVPINGUI_OK;
    }
    std::span<const char> Pin() const { return {m_pPin, m_cbPin}; }

private:
    const PinLibrary& m_library;
    char* m_pPin = nullptr;
    std::uint32_t m_cbPin = 0;
};

class GetPinCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override;
    Outcome Run(const HostOptions& options) override;

private:
    SoftwareCard LoadCard();
    bool AskAndVerify(const PinLibrary& library, SoftwareCard& card, Outcome& outcome);

    std::string m_strReader;
    std::string m_strPrompt;
    std::string m_strCardFile;
    std::optional<std::uint32_t> m_dwMin;
    std::optional<std::uint32_t> m_dwMax;
    std::optional<std::uint32_t> m_dwRemoveAfter;
    bool m_bParent = false;
    UserPlan m_plan;
};

CLI::App* GetPinCommand::AddTo(CLI::App& app) {
    CLI::App* pCommand =
        app.add_subcommand("get-pin", "Ask for the card's PIN and verify it against the card");
    pCommand->add_option("--card", m_strCardFile,
                         "file of the software card; made anew when there is none "
                         "(pinhost-card.json beside the program)");
    pCommand->add_option("--reader", m_strReader, "name of the reader (the card's own)");
    pCommand->add_option("--min", m_dwMin, "shortest PIN in bytes (the card's own rule)");
    pCommand->add_option("--max", m_dwMax, "longest PIN in bytes (the card's own rule)");
    pCommand->add_option("--prompt", m_strPrompt, "text above the edit");
    pCommand->add_flag("--parent", m_bParent, "open a window and show the dialog over it");
    pCommand
        ->add_option("--remove-card-after", m_dwRemoveAfter,
                     "pull the card this many milliseconds after the dialog has opened")
        ->type_name("MS");
    m_plan.bNeedsEdit = true;
    AddPlanOptions(*pCommand, m_plan);
    return pCommand;
}

// The card, and from it what the command line leaves open.
SoftwareCard GetPinCommand::LoadCard() {
    m_strCardFile =
        m_strCardFile.empty() ? OwnFolder() + "\\pinhost-card.json" : AbsolutePath(m_strCardFile);
    SoftwareCard card = ReadCard(PathFromAnsi(m_strCardFile));
    m_dwMin = m_dwMin.value_or(card.policy.dwMinPinLength);
    m_dwMax = m_dwMax.value_or(card.policy.dwMaxPinLength);
    if (*m_dwMin > *m_dwMax)
        throw UsageError("the shortest PIN (--min) is longer than the longest (--max)");
    if (m_strReader.empty())
        m_strReader = AnsiFromUtf8(card.strReader);
    // A card that cannot be written would give tries for nothing: this is found out before the
    // user is asked.
    WriteCard(PathFromAnsi(m_strCardFile), card);
    return card;
}

void Tell(Outcome& outcome, ExitCode code, const char* pszResult, const std::string& strText) {
    outcome.code = code;
    outcome.strText = strText;
    outcome.json["result"] = pszResult;
}

void TellVerdict(Outcome& outcome, Verdict verdict, const SoftwareCard& card) {
    const std::string strTries = std::to_string(card.nTriesLeft);
    if (verdict == Verdict::kAccepted)
        Tell(outcome, ExitCode::kAccepted, "accepted", "PIN accepted.");
    else if (verdict == Verdict::kBlocked)
        Tell(outcome, ExitCode::kNotAccepted, "blocked", "Wrong PIN. The card is blocked.");
    else
        Tell(outcome, ExitCode::kNotAccepted, "wrong", "Wrong PIN. Tries left: " + strTries + ".");
}

bool GetPinCommand::AskAndVerify(const PinLibrary& library, SoftwareCard& card, Outcome& outcome) {
    std::optional<OwnerWindow> owner;
    if (m_bParent)
        owner.emplace();
    std::optional<CardRemover> remover;
    if (m_dwRemoveAfter)
        remover.emplace(m_strReader, std::chrono::milliseconds(*m_dwRemoveAfter),
                        GetCurrentThreadId());
    AutomaticUser user(m_plan, GetCurrentThreadId());
    PinRequest request(library);
    const bool bConfirmed = request.Ask(owner ? owner->Handle() : nullptr, m_strReader,
                                        card.IsLastTry(), *m_dwMin, *m_dwMax);
    const bool bRemoved = remover && remover->Finish();
    user.Finish();
    if (bConfirmed) {
        const Verdict verdict = card.Verify(request.Pin());
        TellVerdict(outcome, verdict, card);
    } else if (bRemoved) {
        Tell(outcome, ExitCode::kNotAccepted, "removed", "The card was removed.");
    } else {
        Tell(outcome, ExitCode::kNotAccepted, "cancelled", "No PIN was entered.");
    }
    if (!user.Remark().empty()) {
        outcome.json["remark"] = user.Remark();
        outcome.strText.append(" (").append(user.Remark()).append(")");
    }
    if (owner)
        outcome.json["parentEnabled"] = IsWindowEnabled(owner->Handle()) != FALSE;
    return bConfirmed;
}

Outcome GetPinCommand::Run(const HostOptions& options) {
    SoftwareCard card = LoadCard();
    m_plan.strScreenshot = AbsolutePath(m_plan.strScreenshot);
    Outcome outcome;
    outcome.json["reader"] = Utf8FromAnsi(m_strReader);
    outcome.json["lastTry"] = card.IsLastTry();
    if (card.IsBlocked()) {
        Tell(outcome, ExitCode::kNotAccepted, "blocked", "The card is blocked.");
    } else {
        const PinLibrary library(options);
        library.SetPinPromptString(m_strPrompt.c_str());
        if (AskAndVerify(library, card, outcome))
            WriteCard(PathFromAnsi(m_strCardFile), card);
    }
    outcome.json["triesLeft"] = card.nTriesLeft;
    return outcome;
}

}  // namespace

std::unique_ptr<Command> MakeGetPinCommand() {
    return std::make_unique<GetPinCommand>();
}

}  // namespace pinhost
