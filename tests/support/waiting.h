// Waiting for a condition: nothing in a test waits without a deadline.
#pragma once

#include "common/wait_for.h"

namespace mvp::test {

using mvp::WaitFor;

}  // namespace mvp::test
