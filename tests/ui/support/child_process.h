// Runs a program, such as a disabled test of the calling one, in a process of its own: for failures
// that would end this one, and where another process is needed.
#pragma once

#include <windows.h>

#include <string>

#include "platform/handle.h"

namespace mvp::test {

struct ChildResult {
    DWORD dwExitCode = 0;
    std::string strOutput;
};

class ChildProcess {
public:
    // Starts the command line.
    explicit ChildProcess(std::string strCommand);

    HANDLE Process() const { return m_process.get(); }
    // A conversation with a program that reads its standard input, which ends with this object.
    void Write(const std::string& str);
    std::string ReadUntil(char chEnd);
    ChildResult Wait();

private:
    // False at the end.
    bool ReadPart(std::string& str);

    KernelHandle m_input;
    KernelHandle m_output;
    KernelHandle m_process;
};

class DisabledTest : public ChildProcess {
public:
    explicit DisabledTest(const std::string& strName);
};

// The folder of the calling program, with the separator behind it.
std::string OwnFolder();

inline ChildResult RunDisabledTest(const std::string& strName) {
    return DisabledTest(strName).Wait();
}

}  // namespace mvp::test
