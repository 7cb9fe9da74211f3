// What the program was started with.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "pinentry/core/settings.h"

namespace pinentry {

struct CommandLine {
    ConnectionOptions options;
    std::uint32_t nTimeout = 0;            // of every window until the client sets one
    std::string strLogFile;                // of the suite's log; empty: none
    std::optional<std::string> strPrompt;  // asks for this alone and speaks no protocol
    bool bVersion = false;
};

// The arguments without the program's name, UTF-8. None: they cannot be understood; `strFault` says
// why.
std::optional<CommandLine> ParseCommandLine(const std::vector<std::string>& arguments,
                                            std::string& strFault);

}  // namespace pinentry
