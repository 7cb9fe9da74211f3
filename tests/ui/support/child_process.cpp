#include "child_process.h"

#include <stdexcept>

#include "platform/handle.h"

namespace mvp::test {

ChildResult RunDisabledTest(const std::string& strName) {
    char text[1024] = {};
    GetModuleFileNameA(nullptr, text, sizeof text);
    std::string strCommand = '"' + std::string(text) + '"';
    strCommand += " --gtest_also_run_disabled_tests --gtest_filter=" + strName;
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    KernelHandle output;
    KernelHandle writing;
    CreatePipe(output.put(), writing.put(), &inherited, 0);
    SetHandleInformation(output.get(), HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = writing.get();
    PROCESS_INFORMATION info = {};
    if (!CreateProcessA(nullptr, strCommand.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &info))
        throw std::runtime_error("the test could not be started");
    const KernelHandle process(info.hProcess);
    const KernelHandle thread(info.hThread);
    writing.reset();
    ChildResult result;
    for (DWORD dwRead = 0; ReadFile(output.get(), text, sizeof text, &dwRead, nullptr);)
        result.strOutput.append(text, dwRead);
    WaitForSingleObject(process.get(), INFINITE);
    GetExitCodeProcess(process.get(), &result.dwExitCode);
    return result;
}

}  // namespace mvp::test
