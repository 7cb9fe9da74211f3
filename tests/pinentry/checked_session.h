// A session of any bytes, whose answers are held against what must hold for every session.
#pragma once

#include <string>
#include <string_view>

namespace pinentry {

// Serves a client that sends `bytes` and goes, and a user whose acts follow from them. What was
// against the rules; empty: nothing.
std::string FaultOfSession(std::string_view bytes);

}  // namespace pinentry
