#include "child_process.h"

#include <array>
#include <stdexcept>

namespace mvp::test {

DisabledTest::DisabledTest(const std::string& strName) {
    std::array<char, MAX_PATH> program = {};
    GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    std::string command = "\"";
    command.append(program.data()).append("\" --gtest_also_run_disabled_tests --gtest_filter=");
    command.append(strName);
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    KernelHandle writing;
    CreatePipe(m_output.put(), writing.put(), &inherited, 0);
    SetHandleInformation(m_output.get(), HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writing.get();
    startup.hStdError = writing.get();
    PROCESS_INFORMATION info = {};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &info)) {
        throw std::runtime_error("the test could not be started");
    }
    m_process.reset(info.hProcess);
    const KernelHandle thread(info.hThread);
}

ChildResult DisabledTest::Wait() {
    ChildResult result;
    std::array<char, 1024> part = {};
    for (DWORD read = 0; ReadFile(m_output.get(), part.data(), part.size(), &read, nullptr);) {
        result.strOutput.append(part.data(), read);
    }
    WaitForSingleObject(m_process.get(), INFINITE);
    GetExitCodeProcess(m_process.get(), &result.dwExitCode);
    return result;
}

}  // namespace mvp::test
