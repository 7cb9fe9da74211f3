#include "support/waiting.h"

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

namespace mvp::test {

void EndTestProcess(const std::string& strReason) {
    ADD_FAILURE() << strReason << "; the process is ended";
    std::fflush(nullptr);
    // Not exit(): it would wait for the very threads that hang.
    TerminateProcess(GetCurrentProcess(), 3);
    std::abort();
}

}  // namespace mvp::test
