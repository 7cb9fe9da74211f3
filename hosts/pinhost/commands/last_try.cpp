// last-try: the warning that the next wrong PIN blocks the card.
#include "pinhost/automatic_user.h"
#include "pinhost/commands/commands.h"
#include "pinhost/pin_library.h"
#include "pinhost/text.h"

namespace pinhost {
namespace {

class LastTryCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command =
            app.add_subcommand("last-try", "Warn that the next wrong PIN blocks the card");
        command->add_option("--reader", m_strReader, "name of the reader");
        AddPlanOptions(*command, m_plan);
        return command;
    }

    Outcome Run(const HostOptions& options) override {
        m_plan.strScreenshot = AbsolutePath(m_plan.strScreenshot);
        const PinLibrary library(options);
        AutomaticUser user(m_plan, GetCurrentThreadId());
        const bool accepted = library.DisplayLastPINTry(m_strReader.c_str()) == MVPINGUI_OK;
        user.Finish();
        Outcome outcome;
        outcome.code = accepted ? ExitCode::Accepted : ExitCode::NotAccepted;
        outcome.strText =
            accepted ? "The user accepted the warning." : "The user declined the last try.";
        outcome.json["reader"] = Utf8FromAnsi(m_strReader);
        outcome.json["result"] = accepted ? "accepted" : "declined";
        return outcome;
    }

private:
    std::string m_strReader = "Veskara Software Reader 0";
    UserPlan m_plan;
};

}  // namespace

std::unique_ptr<Command> MakeLastTryCommand() {
    return std::make_unique<LastTryCommand>();
}

}  // namespace pinhost
