// Runs a disabled test of the calling program in a process of its own: for failures that would end
// this one, and where another process is needed.
#pragma once

#include <windows.h>

#include <string>

namespace mvp::test {

struct ChildResult {
    DWORD dwExitCode = 0;
    std::string strOutput;
};

ChildResult RunDisabledTest(const std::string& strName);

}  // namespace mvp::test
