// The process's last words: a line for people or, with --json, one JSON object, whatever way it
// ends.
#pragma once

#include <string>

#include "pinhost/command.h"

namespace pinhost {

// From now on every ending, a crash included, prints a JSON object. Called before the command line
// is read, so that what is wrong with that is told likewise.
void EndInJson();

// The command that the object names.
void EndAs(const std::string& strCommand);

// Prints the outcome and returns its code.
ExitCode TellOutcome(const Outcome& outcome);

// Tells what went wrong (UTF-8) and returns `code`: kUsage or kEnvironment.
ExitCode TellFailure(ExitCode code, const std::string& strMessage);

// For a failure that nobody can be told of: ends the process with kEnvironment at once.
[[noreturn]] void EndNow(const char* pszMessage) noexcept;

}  // namespace pinhost
