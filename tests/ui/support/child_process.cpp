#include "child_process.h"

#include <array>
#include <stdexcept>

namespace mvp::test {

namespace {

std::string OwnProgram() {
    std::array<char, MAX_PATH> program = {};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    return program.data();
}

}  // namespace

std::string OwnFolder() {
    const std::string program = OwnProgram();
    return program.substr(0, program.rfind('\\') + 1);
}

DisabledTest::DisabledTest(const std::string& strName)
    : ChildProcess("\"" + OwnProgram() +
                   "\" --gtest_also_run_disabled_tests --gtest_filter=" + strName) {}

ChildProcess::ChildProcess(std::string strCommand) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    KernelHandle writing;
    CreatePipe(m_output.put(), writing.put(), &inherited, 0);
    SetHandleInformation(m_output.get(), HANDLE_FLAG_INHERIT, 0);
    KernelHandle reading;
    CreatePipe(reading.put(), m_input.put(), &inherited, 0);
    SetHandleInformation(m_input.get(), HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = reading.get();
    startup.hStdOutput = writing.get();
    startup.hStdError = writing.get();
    PROCESS_INFORMATION info = {};
    if (!CreateProcessA(nullptr, strCommand.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &info)) {
        throw std::runtime_error("the program could not be started");
    }
    m_process.reset(info.hProcess);
    const KernelHandle thread(info.hThread);
}

bool ChildProcess::ReadPart(std::string& str) {
    std::array<char, 4096> part = {};
    DWORD read = 0;
    const bool more = ReadFile(m_output.get(), part.data(), part.size(), &read, nullptr) != FALSE;
    str.append(part.data(), read);
    return more;
}

void ChildProcess::Write(const std::string& str) {
    DWORD written = 0;
    WriteFile(m_input.get(), str.data(), static_cast<DWORD>(str.size()), &written, nullptr);
}

std::string ChildProcess::ReadUntil(char chEnd) {
    std::string text;
    while ((text.empty() || text.back() != chEnd) && ReadPart(text)) {
    }
    return text;
}

ChildResult ChildProcess::Wait() {
    ChildResult result;
    m_input.reset();
    while (ReadPart(result.strOutput)) {
    }
    WaitForSingleObject(m_process.get(), INFINITE);
    GetExitCodeProcess(m_process.get(), &result.dwExitCode);
    return result;
}

}  // namespace mvp::test
