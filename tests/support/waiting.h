// Deadlines for the tests' waits: nothing in a test waits without one.
#pragma once

#include <windows.h>

#include <chrono>
#include <stdexcept>
#include <string>

#include "common/wait_for.h"

namespace mvp::test {

// Why a driver gave up. Thrown and caught inside the driver's thread.
class DriverFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using mvp::WaitFor;

// For when a test cannot even be failed in good order: reports the reason as a failure of the test
// that is running and ends the process with exit code 3.
[[noreturn]] void EndTestProcess(const std::string& strReason);

inline std::string InMilliseconds(std::chrono::milliseconds duration) {
    return std::to_string(duration.count()) + " ms";
}

}  // namespace mvp::test
