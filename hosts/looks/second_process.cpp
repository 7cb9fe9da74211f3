#include "looks/second_process.h"

#include <stdexcept>
#include <utility>

namespace looks {

namespace {

constexpr DWORD kPatienceMs = 60'000;

struct Pipe {
    mvp::FileHandle read;
    mvp::FileHandle write;
};

Pipe MakePipe() {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    Pipe pipe;
    if (!CreatePipe(pipe.read.put(), pipe.write.put(), &inherited, 0)) {
        throw std::runtime_error("there is no pipe to a second process");
    }
    return pipe;
}

// It lies beside this program.
std::string ListenerCommand() {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, sizeof path);
    const std::string own = path;
    return '"' + own.substr(0, own.rfind('\\') + 1) + "listener.exe\" " +
           std::to_string(GetCurrentProcessId());
}

void DispatchMessages() {
    MSG message{};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message != WM_TIMER || message.hwnd != nullptr) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
}

}  // namespace

SecondProcess::SecondProcess() {
    Pipe orders = MakePipe();
    Pipe answers = MakePipe();
    SetHandleInformation(orders.write.get(), HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(answers.read.get(), HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = orders.read.get();
    startup.hStdOutput = answers.write.get();
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process{};
    std::string command = ListenerCommand();
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &process)) {
        throw std::runtime_error("the listener does not start");
    }
    CloseHandle(process.hThread);
    m_process.reset(process.hProcess);
    m_input = std::move(orders.write);
    m_output = std::move(answers.read);
    ReadLine();
}

nlohmann::ordered_json SecondProcess::Order(const std::string& strOrder) {
    const std::string line = strOrder + '\n';
    DWORD written = 0;
    WriteFile(m_input.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    return nlohmann::ordered_json::parse(ReadLine());
}

std::string SecondProcess::ReadLine() {
    constexpr DWORD kPauseMs = 1;
    const DWORD start = GetTickCount();
    std::string line;
    while (line.empty() || line.back() != '\n') {
        DWORD there = 0;
        if (!PeekNamedPipe(m_output.get(), nullptr, 0, nullptr, &there, nullptr) ||
            GetTickCount() - start > kPatienceMs) {
            throw std::runtime_error("the listener does not answer");
        }
        if (there == 0) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, kPauseMs, QS_ALLINPUT);
            DispatchMessages();
            continue;
        }
        const std::size_t before = line.size();
        line.resize(before + there);
        ReadFile(m_output.get(), line.data() + before, there, &there, nullptr);
        line.resize(before + there);
    }
    return line;
}

}  // namespace looks
