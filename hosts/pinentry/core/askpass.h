// A program that asks for one text and prints it, as clients without a key manager start it: the
// prompt is its argument, the answer goes to its standard output.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "pinentry/core/channel.h"
#include "pinentry/core/settings.h"
#include "pinentry/core/user_interface.h"

namespace pinentry {

enum class AskpassKind {
    Typed,    // prints what is typed
    YesNo,    // prints yes or no
    Confirm,  // prints nothing; the exit code is the answer
    Message,  // likewise, with one button
};

// strHint: "confirm" or "none", as a client gives it in its environment; anything else: by the
// prompt's words.
AskpassKind KindOf(std::string_view prompt, std::string_view hint);

// Exit codes.
constexpr int kAskpassAnswered = 0;
constexpr int kAskpassCanceled = 1;
constexpr int kAskpassFailed = 3;  // nothing could be shown, or the prompt is no text to show

struct AskpassRequest {
    std::string strPrompt;  // UTF-8
    std::string strHint;    // see KindOf
    ConnectionOptions options;
    std::uint32_t nTimeout = 0;  // seconds; 0: none
};

// Asks and prints. Returns the exit code.
int RunAskpass(const AskpassRequest& request, Channel& output, UserInterface& user,
               const CodePage& codePage);

}  // namespace pinentry
