// Any bytes from a client of pinentry: each request gets one answer, and every line is one. What a
// client sends in a transcript is taken as what it sends.
#include <string>

#include "fuzz_target.h"
#include "pinentry/checked_session.h"

void Fuzz(std::string_view data) {
    constexpr std::string_view kClient = "\nC: ";
    std::string bytes(data);
    for (std::size_t at = 0; (at = bytes.find(kClient, at)) != std::string::npos; ++at) {
        bytes.erase(at + 1, kClient.size() - 1);
    }
    FUZZ_CHECK(pinentry::FaultOfSession(bytes).empty());
}
