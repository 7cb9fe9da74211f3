// Any bytes from a client of pinentry: each request gets one answer, and every line is one. Of a
// transcript's line what the client sends is taken.
#include <algorithm>
#include <string>

#include "fuzz_target.h"
#include "pinentry/checked_session.h"

void Fuzz(std::string_view data) {
    std::string bytes;
    while (!data.empty()) {
        std::string_view line = data.substr(0, data.find('\n'));
        data.remove_prefix(std::min(line.size() + 1, data.size()));
        line = line.substr(0, line.find(" | "));
        line.remove_prefix(line.substr(0, 3) == "C: " ? 3 : 0);
        bytes.append(line).append("\n");
    }
    FUZZ_CHECK(pinentry::FaultOfSession(bytes).empty());
}
