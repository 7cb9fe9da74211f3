// What the commands share that show the user a dialog of the card: which card it is, what the
// command line leaves open, and the words for what came of it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "pinhost/automatic_user.h"
#include "pinhost/card.h"
#include "pinhost/command.h"
#include "pinhost/file_card.h"

namespace pinhost {

// The options --card, --reader, --min, --max, --remove-card-after and --transport-pin.
struct CardOptions {
    bool bBlank = false;    // a card that is made anew is not initialized
    std::string strReader;  // ANSI
    std::string strCard;    // a file, or pcsc[:READER]
    std::string strTransportPin;
    std::optional<std::uint32_t> dwMin;
    std::optional<std::uint32_t> dwMax;
    std::optional<std::uint32_t> dwRemoveAfter;  // milliseconds

    // --card, --reader and --remove-card-after; the others, each alone.
    void AddTo(CLI::App& command);
    void AddLengthsTo(CLI::App& command);
    void AddFileTo(CLI::App& command);
    void AddTransportPinTo(CLI::App& command);

    // Whether --card means one of the system's smart-card service.
    bool IsPiv() const;

    // Throws UsageError when `bAsked` of a PIV card. `pszWhat` ends "a PIV card has no".
    void RefuseOnPiv(bool bAsked, const char* pszWhat) const;

    // Throws UsageError when a PIV card is to be initialized or reset without --transport-pin.
    void NeedTransportPin() const;

    // The card, and from it what the command line leaves open. Throws UsageError, CardError or
    // CardFileError.
    std::unique_ptr<ICard> Load();

    // Of a software card alone.
    std::unique_ptr<FileCard> LoadSoftware();

private:
    std::unique_ptr<ICard> LoadPiv();
};

void Tell(Outcome& outcome, ExitCode code, const char* pszResult, const std::string& strText);

// For every verdict but the accepting one, for which each command has words of its own.
void TellRefusal(Outcome& outcome, Verdict verdict, ICard& card);
void TellCodeRefusal(Outcome& outcome, Verdict verdict, const ICard& card);

// The unlock code's tries, null where the card does not tell.
void TellUnlocksLeft(Outcome& outcome, const ICard& card);

// For a dialog that ended without what it was opened for.
void TellNotDone(Outcome& outcome, bool bCardRemoved, const char* pszCancelled);
inline void TellNoPin(Outcome& outcome, bool bCardRemoved) {
    TellNotDone(outcome, bCardRemoved, "No PIN was entered.");
}

using CardFlow = std::function<void(ICard& card, Outcome& outcome)>;

// Runs `flow` on the card and tells its tries afterwards. A card that goes meanwhile is an outcome.
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
Asked AskUser(const CardOptions& options, const UserPlan& plan, ICard& card,
              const std::function<bool()>& ask);

void TellRemark(Outcome& outcome, const std::string& strRemark);

}  // namespace pinhost
