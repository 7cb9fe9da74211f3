// What the commands share that ask the user for a PIN of the software card: its file, what the
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
    std::string strReader;  // ANSI
    std::string strCardFile;
    std::optional<std::uint32_t> dwMin;
    std::optional<std::uint32_t> dwMax;
    std::optional<std::uint32_t> dwRemoveAfter;  // milliseconds

    void AddTo(CLI::App& command);

    // The card, a new one when there is none, and from it what the command line leaves open.
    SoftwareCard Load();
    void Save(const SoftwareCard& card) const;
};

void Tell(Outcome& outcome, ExitCode code, const char* pszResult, const std::string& strText);

// For every verdict but the accepting one, for which each command has words of its own.
void TellRefusal(Outcome& outcome, Verdict verdict, const SoftwareCard& card);

// For a dialog that ended without a PIN.
void TellNoPin(Outcome& outcome, bool bCardRemoved);

// Runs `flow` on the card, unless it is blocked, and tells the card's state before and after.
Outcome RunOnCard(CardOptions& options,
                  const std::function<void(SoftwareCard& card, Outcome& outcome)>& flow);

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
