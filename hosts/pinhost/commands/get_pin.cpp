// get-pin: asks the user for the card's PIN and lets the card verify it.
#include <cstdint>
#include <optional>

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
    void AskAndVerify(const PinLibrary& library, ICard& card, Outcome& outcome);

    CardOptions m_options;
    std::string m_strPrompt;
    bool m_bParent = false;
    std::optional<std::string> m_strTyped;
    UserPlan m_plan;
};

CLI::App* GetPinCommand::AddTo(CLI::App& app) {
    CLI::App* command =
        app.add_subcommand("get-pin", "Ask for the card's PIN and verify it against the card");
    m_options.AddTo(*command);
    m_options.AddLengthsTo(*command);
    command->add_option("--prompt", m_strPrompt, "text above the edit");
    command->add_flag("--parent", m_bParent, "open a window and show the dialog over it");
    command->add_option("--type", m_strTyped,
                        "type this text into the dialog, with real key strokes");
    m_plan.bNeedsEdit = true;
    AddPlanOptions(*command, m_plan);
    return command;
}

void GetPinCommand::AskAndVerify(const PinLibrary& library, ICard& card, Outcome& outcome) {
    std::optional<OwnerWindow> owner;
    if (m_bParent) {
        owner.emplace();
    }
    PinRequest request(library);
    const bool lastTry = outcome.json["lastTry"];
    const Asked asked = AskUser(m_options, m_plan, card, [&] {
        return request.Ask(owner ? owner->Handle() : nullptr, m_options.strReader, lastTry,
                           *m_options.dwMin, *m_options.dwMax);
    });
    if (asked.bConfirmed) {
        const Verdict verdict = card.Verify(request.Pin());
        if (verdict == Verdict::Accepted) {
            Tell(outcome, ExitCode::Accepted, "accepted",
                 card.Policy().bForceChangePin ? "PIN accepted. It must be changed."
                                               : "PIN accepted.");
        } else {
            TellRefusal(outcome, verdict, card);
        }
    } else {
        TellNoPin(outcome, asked.bCardRemoved);
    }
    TellRemark(outcome, asked.strRemark);
    if (owner) {
        outcome.json["parentEnabled"] = IsWindowEnabled(owner->Handle()) != FALSE;
    }
}

Outcome GetPinCommand::Run(const HostOptions& options) {
    if (m_strTyped) {
        m_plan.typed = {*m_strTyped};
    }
    m_plan.strScreenshot = AbsolutePath(m_plan.strScreenshot);
    return RunOnUsableCard(m_options, [&](ICard& card, Outcome& outcome) {
        const PinLibrary library(options);
        library.SetPinPromptString(m_strPrompt.c_str());
        AskAndVerify(library, card, outcome);
    });
}

}  // namespace

std::unique_ptr<Command> MakeGetPinCommand() {
    return std::make_unique<GetPinCommand>();
}

}  // namespace pinhost
