#include "pinhost/commands/card_flow.h"

#include <chrono>
#include <string_view>
#include <utility>

#include "pinhost/apdu_channel.h"
#include "pinhost/card_remover.h"
#include "pinhost/option_values.h"
#include "pinhost/pcsc_channel.h"
#include "pinhost/piv_card.h"
#include "pinhost/text.h"

namespace pinhost {

namespace {

constexpr std::string_view kService = "pcsc";

// What the card's tries are now, if it tells. What came of the flow stands already: that the card
// is not to be asked any more takes nothing away from it.
std::optional<std::uint32_t> TriesNow(ICard& card) {
    try {
        return card.TriesLeft();
    } catch (const CardError&) {
        return {};
    }
}

nlohmann::ordered_json Json(const std::optional<std::uint32_t>& number) {
    return number ? nlohmann::ordered_json(*number) : nlohmann::ordered_json();
}

std::string TriesText(const std::optional<std::uint32_t>& tries) {
    return tries ? " Tries left: " + std::to_string(*tries) + "." : "";
}

}  // namespace

void CardOptions::AddFileTo(CLI::App& command) {
    command.add_option("--card", strCard,
                       "file of the software card; made anew when there is none "
                       "(pinhost-card.json beside the program)");
}

void CardOptions::AddTransportPinTo(CLI::App& command) {
    command
        .add_option("--transport-pin", strTransportPin,
                    "the PIN that a PIV card has before it is initialized")
        ->type_name("PIN");
}

void CardOptions::AddTo(CLI::App& command) {
    command.add_option(
        "--card", strCard,
        "file of the software card, made anew when there is none "
        "(pinhost-card.json beside the program), or pcsc[:READER]: the PIV card in a "
        "reader of the system's");
    command.add_option("--reader", strReader, "name of the reader (the card's own)");
    command
        .add_option("--remove-card-after", dwRemoveAfter,
                    "pull the card this many milliseconds after the dialog has opened")
        ->check(AnyWholeNumber<std::uint32_t>())
        ->type_name("MS");
}

void CardOptions::AddLengthsTo(CLI::App& command) {
    const CLI::Validator number = AnyWholeNumber<std::uint32_t>();
    command.add_option("--min", dwMin, "shortest PIN in bytes (the card's own rule)")
        ->check(number);
    command.add_option("--max", dwMax, "longest PIN in bytes (the card's own rule)")->check(number);
}

bool CardOptions::IsPiv() const {
    const std::string_view card = strCard;
    return card.substr(0, kService.size()) == kService &&
           (card.size() == kService.size() || card[kService.size()] == ':');
}

void CardOptions::RefuseOnPiv(bool bAsked, const char* pszWhat) const {
    if (bAsked && IsPiv()) {
        throw UsageError(std::string("a PIV card has no ") + pszWhat +
                         ": only the software card has");
    }
}

void CardOptions::NeedTransportPin() const {
    if (IsPiv() && strTransportPin.empty()) {
        throw UsageError("a PIV card always has a PIN: --transport-pin is needed, the one before");
    }
}

std::unique_ptr<FileCard> CardOptions::LoadSoftware() {
    strCard = strCard.empty() ? OwnFolder() + "\\pinhost-card.json" : AbsolutePath(strCard);
    auto card = std::make_unique<FileCard>(PathFromAnsi(strCard), bBlank);
    if (strReader.empty()) {
        strReader = AnsiFromUtf8(card->Software().strReader);
    }
    return card;
}

std::unique_ptr<ICard> CardOptions::LoadPiv() {
    if (!strReader.empty()) {
        throw UsageError("--card pcsc:READER names the reader of a PIV card, not --reader");
    }
    RefuseOnPiv(dwRemoveAfter.has_value(), "removal by --remove-card-after");
    const std::size_t name = kService.size() + 1;
    auto channel = PcscChannel::Open(strCard.size() > name ? strCard.substr(name) : "");
    strReader = channel->Reader();
    return std::make_unique<PivCard>(std::move(channel),
                                     Secret(strTransportPin.begin(), strTransportPin.end()));
}

std::unique_ptr<ICard> CardOptions::Load() {
    std::unique_ptr<ICard> card;
    if (IsPiv()) {
        card = LoadPiv();
    } else {
        card = LoadSoftware();
    }
    const CardPolicy policy = card->Policy();
    dwMin = dwMin.value_or(policy.dwMinPinLength);
    dwMax = dwMax.value_or(policy.dwMaxPinLength);
    if (*dwMin > *dwMax) {
        throw UsageError("the shortest PIN (--min) is longer than the longest (--max)");
    }
    // A card that cannot be written would give tries for nothing: this is found out before the
    // user is asked.
    if (const FileCard* file = card->InFile()) {
        file->Save();
    }
    return card;
}

void Tell(Outcome& outcome, ExitCode code, const char* pszResult, const std::string& strText) {
    outcome.code = code;
    outcome.strText = strText;
    outcome.json["result"] = pszResult;
}

void TellRefusal(Outcome& outcome, Verdict verdict, ICard& card) {
    if (verdict == Verdict::Blocked) {
        Tell(outcome, ExitCode::NotAccepted, "blocked", "Wrong PIN. The card is blocked.");
    } else {
        Tell(outcome, ExitCode::NotAccepted, "wrong", "Wrong PIN." + TriesText(TriesNow(card)));
    }
}

void TellCodeRefusal(Outcome& outcome, Verdict verdict, const ICard& card) {
    if (verdict == Verdict::Blocked) {
        Tell(outcome, ExitCode::NotAccepted, "blocked",
             "Wrong unlock code. The unlock code is blocked.");
    } else {
        Tell(outcome, ExitCode::NotAccepted, "wrong",
             "Wrong unlock code." + TriesText(card.UnlocksLeft()));
    }
}

void TellUnlocksLeft(Outcome& outcome, const ICard& card) {
    outcome.json["unlocksLeft"] = Json(card.UnlocksLeft());
}

void TellNoPinYet(Outcome& outcome) {
    Tell(outcome, ExitCode::NotAccepted, "uninitialized", "The card has no PIN yet.");
}

void TellNotDone(Outcome& outcome, bool bCardRemoved, const char* pszCancelled) {
    if (bCardRemoved) {
        Tell(outcome, ExitCode::NotAccepted, "removed", "The card was removed.");
    } else {
        Tell(outcome, ExitCode::NotAccepted, "cancelled", pszCancelled);
    }
}

Outcome RunOnCard(CardOptions& options, const CardFlow& flow) {
    const std::unique_ptr<ICard> card = options.Load();
    Outcome outcome;
    outcome.json["reader"] = Utf8FromAnsi(options.strReader);
    try {
        flow(*card, outcome);
    } catch (const CardGone&) {
        TellNotDone(outcome, true, "");
    }
    outcome.json["triesLeft"] = Json(TriesNow(*card));
    return outcome;
}

Outcome RunOnUsableCard(CardOptions& options, const CardFlow& flow) {
    return RunOnCard(options, [&](ICard& card, Outcome& outcome) {
        const std::optional<std::uint32_t> tries = card.TriesLeft();
        outcome.json["lastTry"] = tries == 1U;
        if (!card.IsInitialized()) {
            TellNoPinYet(outcome);
        } else if (tries == 0U) {
            Tell(outcome, ExitCode::NotAccepted, "blocked", "The card is blocked.");
        } else {
            flow(card, outcome);
        }
    });
}

Asked AskUser(const CardOptions& options, const UserPlan& plan, ICard& card,
              const std::function<bool()>& ask) {
    Asked asked;
    std::optional<CardRemover> remover;
    if (options.dwRemoveAfter) {
        remover.emplace(options.strReader, std::chrono::milliseconds(*options.dwRemoveAfter),
                        [thread = GetCurrentThreadId(), edit = plan.bNeedsEdit] {
                            return IsDialogOpen(thread, edit);
                        });
    }
    AutomaticUser user(plan, GetCurrentThreadId());
    asked.bConfirmed = ask();
    asked.bCardRemoved = (remover && remover->Finish()) || (!asked.bConfirmed && card.WasRemoved());
    user.Finish();
    asked.strRemark = user.Remark();
    return asked;
}

void TellRemark(Outcome& outcome, const std::string& strRemark) {
    if (strRemark.empty()) {
        return;
    }
    outcome.json["remark"] = strRemark;
    outcome.strText.append(" (").append(strRemark).append(")");
}

}  // namespace pinhost
