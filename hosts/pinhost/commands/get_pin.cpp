// get-pin: asks the user for the card's PIN and lets the software card verify it.
#include <chrono>
#include <cstdint>
#include <optional>

#include "pinhost/automatic_user.h"
#include "pinhost/card_remover.h"
#include "pinhost/commands/card_flow.h"
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
    bool AskAndVerify(const PinLibrary& library, SoftwareCard& card, Outcome& outcome);

    CardOptions m_options;
    std::string m_strPrompt;
    bool m_bParent = false;
    std::optional<std::string> m_strTyped;
    UserPlan m_plan;
};

CLI::App* GetPinCommand::AddTo(CLI::App& app) {
    CLI::App* pCommand =
        app.add_subcommand("get-pin", "Ask for the card's PIN and verify it against the card");
    m_options.AddTo(*pCommand);
    pCommand->add_option("--prompt", m_strPrompt, "text above the edit");
    pCommand->add_flag("--parent", m_bParent, "open a window and show the dialog over it");
    pCommand->add_option("--type", m_strTyped,
                         "type this text into the dialog, with real key strokes");
    m_plan.bNeedsEdit = true;
    AddPlanOptions(*pCommand, m_plan);
    return pCommand;
}

bool GetPinCommand::AskAndVerify(const PinLibrary& library, SoftwareCard& card, Outcome& outcome) {
    std::optional<OwnerWindow> owner;
    if (m_bParent)
        owner.emplace();
    std::optional<CardRemover> remover;
    if (m_options.dwRemoveAfter)
        remover.emplace(m_options.strReader, std::chrono::milliseconds(*m_options.dwRemoveAfter),
                        GetCurrentThreadId());
    AutomaticUser user(m_plan, GetCurrentThreadId());
    PinRequest request(library);
    const bool bConfirmed = request.Ask(owner ? owner->Handle() : nullptr, m_options.strReader,
                                        card.IsLastTry(), *m_options.dwMin, *m_options.dwMax);
    const bool bRemoved = remover && remover->Finish();
    user.Finish();
    if (bConfirmed) {
        const Verdict verdict = card.Verify(request.Pin());
        if (verdict == Verdict::kAccepted)
            Tell(outcome, ExitCode::kAccepted, "accepted", "PIN accepted.");
        else
            TellRefusal(outcome, verdict, card);
    } else {
        TellNoPin(outcome, bRemoved);
    }
    TellRemark(outcome, user);
    if (owner)
        outcome.json["parentEnabled"] = IsWindowEnabled(owner->Handle()) != FALSE;
    return bConfirmed;
}

Outcome GetPinCommand::Run(const HostOptions& options) {
    SoftwareCard card = m_options.Load();
    if (m_strTyped)
        m_plan.typed = {*m_strTyped};
    m_plan.strScreenshot = AbsolutePath(m_plan.strScreenshot);
    Outcome outcome;
    outcome.json["reader"] = Utf8FromAnsi(m_options.strReader);
    outcome.json["lastTry"] = card.IsLastTry();
    if (card.IsBlocked()) {
        Tell(outcome, ExitCode::kNotAccepted, "blocked", "The card is blocked.");
    } else {
        const PinLibrary library(options);
        library.SetPinPromptString(m_strPrompt.c_str());
        if (AskAndVerify(library, card, outcome))
            m_options.Save(card);
    }
    outcome.json["triesLeft"] = card.nTriesLeft;
    return outcome;
}

}  // namespace

std::unique_ptr<Command> MakeGetPinCommand() {
    return std::make_unique<GetPinCommand>();
}

}  // namespace pinhost
