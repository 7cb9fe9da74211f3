#include "pinhost/commands/card_flow.h"

#include "pinhost/card_file.h"
#include "pinhost/text.h"

namespace pinhost {

void CardOptions::AddTo(CLI::App& command) {
    command.add_option("--card", strCardFile,
                       "file of the software card; made anew when there is none "
                       "(pinhost-card.json beside the program)");
    command.add_option("--reader", strReader, "name of the reader (the card's own)");
    command.add_option("--min", dwMin, "shortest PIN in bytes (the card's own rule)");
    command.add_option("--max", dwMax, "longest PIN in bytes (the card's own rule)");
    command
        .add_option("--remove-card-after", dwRemoveAfter,
                    "pull the card this many milliseconds after the dialog has opened")
        ->type_name("MS");
}

SoftwareCard CardOptions::Load() {
    strCardFile =
        strCardFile.empty() ? OwnFolder() + "\\pinhost-card.json" : AbsolutePath(strCardFile);
    SoftwareCard card = ReadCard(PathFromAnsi(strCardFile));
    dwMin = dwMin.value_or(card.policy.dwMinPinLength);
    dwMax = dwMax.value_or(card.policy.dwMaxPinLength);
    if (*dwMin > *dwMax)
        throw UsageError("the shortest PIN (--min) is longer than the longest (--max)");
    if (strReader.empty())
        strReader = AnsiFromUtf8(card.strReader);
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
    const std::string strTries = std::to_string(card.nTriesLeft);
    if (verdict == Verdict::kBlocked)
        Tell(outcome, ExitCode::kNotAccepted, "blocked", "Wrong PIN. The card is blocked.");
    else
        Tell(outcome, ExitCode::kNotAccepted, "wrong", "Wrong PIN. Tries left: " + strTries + ".");
}

void TellNoPin(Outcome& outcome, bool bCardRemoved) {
    if (bCardRemoved)
        Tell(outcome, ExitCode::kNotAccepted, "removed", "The card was removed.");
    else
        Tell(outcome, ExitCode::kNotAccepted, "cancelled", "No PIN was entered.");
}

void TellRemark(Outcome& outcome, const AutomaticUser& user) {
    if (user.Remark().empty())
        return;
    outcome.json["remark"] = user.Remark();
    outcome.strText.append(" (").append(user.Remark()).append(")");
}

}  // namespace pinhost
