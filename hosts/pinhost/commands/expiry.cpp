// expiry: tells the user what expires on a card.
#include <chrono>
#include <ctime>
#include <optional>
#include <thread>
#include <vector>

#include "common/wait_for.h"
#include "pinhost/automatic_user.h"
#include "pinhost/commands/card_flow.h"
#include "pinhost/commands/commands.h"
#include "pinhost/expiry_date.h"
#include "pinhost/flow_library.h"
#include "pinhost/option_values.h"
#include "pinhost/pin_library.h"
#include "pinhost/text.h"

namespace pinhost {
namespace {

constexpr std::int32_t kUnchanged = -1;
constexpr char kDateForms[] = "a date is 2031-05-17, or days from now as +30 or -3";

std::int64_t MomentOrUsageError(const std::string& strText) {
    const auto moment = MomentOf(strText, std::time(nullptr));
    if (!moment) {
        throw UsageError("\"" + Utf8FromAnsi(strText) + "\" is no date: " + kDateForms);
    }
    return *moment;
}

// The event that closes the notice, signalled some time after the notice has opened.
class Canceller {
public:
    explicit Canceller(std::optional<std::uint32_t> dwDelay)
        : m_event(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {
        if (!m_event) {
            throw EnvironmentError("the cancel event could not be made");
        }
        if (dwDelay) {
            m_thread = std::jthread([this, delay = std::chrono::milliseconds(*dwDelay),
                                     ui = GetCurrentThreadId()](const std::stop_token& stop) {
                Wait(stop, delay, ui);
            });
        }
    }

    HANDLE Event() const { return m_event.get(); }
    // To be called when the library has returned. Whether the event was signalled by then.
    bool Finish() {
        m_thread = {};
        return WaitForSingleObject(m_event.get(), 0) == WAIT_OBJECT_0;
    }

private:
    void Wait(const std::stop_token& stop, std::chrono::milliseconds delay,
              DWORD dwUiThread) const {
        constexpr auto kForever = std::chrono::hours(24);
        mvp::WaitFor(kForever,
                     [&] { return stop.stop_requested() || IsDialogOpen(dwUiThread, false); });
        mvp::WaitFor(delay, [&] { return stop.stop_requested(); });
        if (!stop.stop_requested()) {
            SetEvent(m_event.get());
        }
    }

    mvp::KernelHandle m_event;
    std::jthread m_thread;  // last: it uses the event
};

class ExpiryCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override;
    Outcome Run(const HostOptions& options) override;

private:
    struct Entry {
        std::string strName;
        std::int64_t nExpiry;
    };

    std::vector<Entry> Entries() const;
    Outcome Tell(const PinHostExpiry& expiry, bool bCancelled) const;

    std::string m_strReader = "Veskara Software Reader 0";
    std::string m_strCard;
    std::vector<std::string> m_certificates;
    std::int32_t m_nDays = 14;
    std::optional<std::uint32_t> m_dwCancelAfter;
    std::string m_strTyped;
    UserPlan m_plan;
};

CLI::App* ExpiryCommand::AddTo(CLI::App& app) {
    CLI::App* command = app.add_subcommand("expiry", "Tell the user what expires on a card");
    command->add_option("--card", m_strCard, std::string("when the card expires; ") + kDateForms)
        ->type_name("DATE");
    command
        ->add_option("--cert", m_certificates,
                     "a certificate and when it expires; given once for each")
        ->type_name("NAME=DATE");
    command->add_option("--days", m_nDays, "days before an expiry that the user is reminded (14)")
        ->check(AnyWholeNumber<std::int32_t>())
        ->type_name("N");
    command
        ->add_option("--cancel-after", m_dwCancelAfter,
                     "close the notice this many milliseconds after it has opened")
        ->check(AnyWholeNumber<std::uint32_t>())
        ->type_name("MS");
    command->add_option("--reader", m_strReader, "name of the reader");
    command->add_option("--type", m_strTyped, "type this over the days, with real key strokes")
        ->type_name("TEXT");
    command->add_flag("--tick", m_plan.bTick, "tick the box that asks for no more reminders");
    AddPlanOptions(*command, m_plan);
    return command;
}

std::vector<ExpiryCommand::Entry> ExpiryCommand::Entries() const {
    std::vector<Entry> entries;
    for (const std::string& text : m_certificates) {
        const std::size_t mark = text.rfind('=');
        if (mark == std::string::npos) {
            throw UsageError("\"" + Utf8FromAnsi(text) + "\" is not NAME=DATE");
        }
        entries.push_back({text.substr(0, mark), MomentOrUsageError(text.substr(mark + 1))});
    }
    return entries;
}

Outcome ExpiryCommand::Run(const HostOptions& options) {
    const std::vector<Entry> entries = Entries();
    std::vector<PinHostCertificate> certificates;
    certificates.reserve(entries.size());
    for (const Entry& entry : entries) {
        certificates.push_back({entry.strName.c_str(), entry.nExpiry});
    }
    PinHostExpiry expiry{};
    expiry.nNewDays = kUnchanged;
    expiry.pszReader = m_strReader.c_str();
    expiry.nDays = m_nDays;
    expiry.bCard = !m_strCard.empty();
    expiry.nCardExpiry = expiry.bCard ? MomentOrUsageError(m_strCard) : 0;
    expiry.pCertificates = certificates.data();
    expiry.nCertificates = static_cast<std::uint32_t>(certificates.size());
    m_plan.strScreenshot = AbsolutePath(m_plan.strScreenshot);
    if (!m_strTyped.empty()) {
        m_plan.typed = {m_strTyped};
        m_plan.bSeeksEdit = true;
    }
    const PinLibrary library(options);
    const FlowLibrary flows;
    Canceller canceller(m_dwCancelAfter);
    expiry.hCancel = canceller.Event();
    // A notice that tells nothing does not open.
    const bool isToOpen = expiry.bCard || expiry.nCertificates > 0;
    AutomaticUser user(isToOpen ? m_plan : UserPlan(), GetCurrentThreadId());
    flows.TellExpiry(&expiry);
    const bool cancelled = canceller.Finish();
    user.Finish();
    return Tell(expiry, cancelled);
}

Outcome ExpiryCommand::Tell(const PinHostExpiry& expiry, bool bCancelled) const {
    Outcome outcome;
    outcome.json["reader"] = Utf8FromAnsi(m_strReader);
    outcome.json["days"] = expiry.nNewDays;
    if (expiry.nNewDays != kUnchanged) {
        pinhost::Tell(outcome, ExitCode::Accepted, "changed",
                      "The user is reminded " + std::to_string(expiry.nNewDays) +
                          " days before the expiry from now on.");
    } else if (!expiry.bCard && expiry.nCertificates == 0) {
        pinhost::Tell(outcome, ExitCode::NotAccepted, "none", "There was nothing to tell.");
    } else if (bCancelled) {
        pinhost::Tell(outcome, ExitCode::NotAccepted, "cancelled", "The notice was called off.");
    } else {
        pinhost::Tell(outcome, ExitCode::NotAccepted, "unchanged",
                      "The user has left the reminder as it is.");
    }
    return outcome;
}

}  // namespace

std::unique_ptr<Command> MakeExpiryCommand() {
    return std::make_unique<ExpiryCommand>();
}

}  // namespace pinhost
