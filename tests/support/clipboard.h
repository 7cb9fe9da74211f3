// Text on the system's clipboard.
#pragma once

#include <chrono>
#include <string_view>

namespace mvp::test {

// Throws DriverFailure when the clipboard stays taken by another program for `timeout`.
void SetClipboardText(std::string_view text, std::chrono::milliseconds timeout);

}  // namespace mvp::test
