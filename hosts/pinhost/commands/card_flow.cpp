#include "pinhost/commands/card_flow.h"

#include <chrono>
#include <filesystem>

#include "pinhost/card_file.h"
#include "pinhost/card_remover.h"
#include "pinhost/option_values.h"
#include "pinhost/text.h"

namespace pinhost {

void CardOptions::AddFileTo(CLI::App& command) {
    command.add_option("--card", strCardFile,
                       "file of the software card; made anew when there is none "
                       "(pinhost-card.json beside the program)");
}

void CardOptions::AddTo(CLI::App& command) {
    AddFileTo(command);
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

SoftwareCard CardOptions::Load() {
    strCardFile =
        strCardFile.empty() ? OwnFolder() + "\\pinhost-card.json" : AbsolutePath(strCardFile);
    const std::filesystem::path file = PathFromAnsi(strCardFile);
    std::error_code error;
    const bool isNew = !std::filesystem::exists(file, error);
    SoftwareCard card = ReadCard(file);
    if (isNew && bBlank) {
        card.Reset();
    }
    dwMin = dwMin.value_or(card.policy.dwMinPinLength);
    dwMax = dwMax.value_or(card.policy.dwMaxPinLength);
    if (*dwMin > *dwMax) {
        throw UsageError("the shortest PIN (--min) is longer than the longest (--max)");
    }
    if (strReader.empty()) {
        strReader = AnsiFromUtf8(card.strReader);
    }
    // A card that cannot be written would give tries for nothing: this is found out before the
    // user is asked.
    Save(card);
    return card;
}

void CardOptions::Save(const SoftwareCard& card) const {
    WriteCard(PathFromAnsi(strCardFile), card);
}

void Tell(Outcome& outcome, ExitCode code, const char* pszResult, const std::string& strText) {
    outcome.code = code;
    outcome.strText = strText;
    outcome.json["result"] = pszResult;
}

void TellRefusal(Outcome& outcome, Verdict verdict, const SoftwareCard& card) {
    const std::string tries = std::to_string(card.nTriesLeft);
    if (verdict == Verdict::Blocked) {
        Tell(outcome, ExitCode::NotAccepted, "blocked", "Wrong PIN. The card is blocked.");
    } else {
        Tell(outcome, ExitCode::NotAccepted, "wrong", "Wrong PIN. Tries left: " + tries + ".");
    }
}

void TellCodeRefusal(Outcome& outcome, Verdict verdict, const SoftwareCard& card) {
    const std::string tries = std::to_string(card.nUnlocksLeft);
    if (verdict == Verdict::Blocked) {
        Tell(outcome, ExitCode::NotAccepted, "blocked",
             "Wrong unlock code. The unlock code is blocked.");
    } else {
        Tell(outcome, ExitCode::NotAccepted, "wrong",
             "Wrong unlock code. Tries left: " + tries + ".");
    }
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
    SoftwareCard card = options.Load();
    Outcome outcome;
    outcome.json["reader"] = Utf8FromAnsi(options.strReader);
    flow(card, outcome);
    outcome.json["triesLeft"] = card.nTriesLeft;
    return outcome;
}

Outcome RunOnUsableCard(CardOptions& options, const CardFlow& flow) {
    return RunOnCard(options, [&](SoftwareCard& card, Outcome& outcome) {
        outcome.json["lastTry"] = card.IsLastTry();
        if (!card.IsInitialized()) {
            TellNoPinYet(outcome);
        } else if (card.IsBlocked()) {
            Tell(outcome, ExitCode::NotAccepted, "blocked", "The card is blocked.");
        } else {
            flow(card, outcome);
        }
    });
}

Asked AskUser(const CardOptions& options, const UserPlan& plan, const std::function<bool()>& ask) {
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
    asked.bCardRemoved = remover && remover->Finish();
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
