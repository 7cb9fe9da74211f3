// What the commands share that show the user a dialog of the software card: its file, what the
// command line leaves open, and the words for what came of it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "pinhost/automatic_user.h"
#include "pinhost/command.h"
#include "pinhost/software_card.h"

namespace pinhost {

// The options --card, --reader, --min, --max and --remove-card-after.
struct CardOptions {
    bool bBlank = false;    // a card that is made anew is not initialized
    std::string strReader;  // ANSI
    std::string strCardFile;
    std::optional<std::uint32_t> dwMin;
    std::optional<std::uint32_t> dwMax;
    std::optional<std::uint32_t> dwRemoveAfter;  // milliseconds

    // All but the lengths; those alone; the file alone.
    void AddTo(CLI::App& command);
    void AddLengthsTo(CLI::App& command);
    void AddFileTo(CLI::App& command);

    // The card, a new one when there is none, and from it what the command line leaves open.
    SoftwareCard Load();
    void Save(const SoftwareCard& card) const;
};

void Tell(Outcome& outcome, ExitCode code, const char* pszResult, const std::string& strText);

// For every verdict but the accepting one, for which each command has words of its own.
void TellRefusal(Outcome& outcome, Verdict verdict, const SoftwareCard& card);
void TellCodeRefusal(Outcome& outcome, Verdict verdict, const SoftwareCard& card);

// For a dialog that ended without what it was opened for.
void TellNotDone(Outcome& outcome, bool bCardRemoved, const char* pszCancelled);
inline void TellNoPin(Outcome& outcome, bool bCardRemoved) {
    TellNotDone(outcome, bCardRemoved, "No PIN was entered.");
}

using CardFlow = std::function<void(SoftwareCard& card, Outcome& outcome)>;

// Runs `flow` on the card and tells its tries afterwards.
Outcome RunOnCard(CardOptions& options, const CardFlow& flow);

// The same for what needs the card's PIN: not without one, nor when it is blocked.
Outcome RunOnUsableCard(CardOptions& options, const CardFlow& flow);

void TellNoPinYet(Outcome& outcome);

struct Asked {
    bool bConfirmed = false;
    bool bCardRemoved = false;
    std::string strRemark;  // what the automatic user could not do; empty: nothing
};

// Runs `ask`, which calls the library and returns whether the user has confirmed, while the plan's
// user serves the dialog and the card is pulled when the options say so.
Asked AskUser(const CardOptions& options, const UserPlan& plan, const std::function<bool()>& ask);

void TellRemark(Outcome& outcome, const std::string& strRemark);

}  // namespace pinhost
