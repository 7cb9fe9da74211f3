#include "pinhost/ending.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "common/crash_exit.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

using Json = nlohmann::ordered_json;

bool g_bJson = false;
Json g_command;               // null until the command line has named one
std::string g_strCrashWords;  // what the crash handler prints

std::string Object(const Json& members) {
    Json json{{"command", g_command}};
    json.update(members);
    // A text that came from outside may be no UTF-8: its ending is told all the same.
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void PrepareForCrash() {
    mvp::EndWithCodeOnCrash(static_cast<unsigned>(ExitCode::Crashed));
    g_strCrashWords = Object({{"result", "crashed"}});
    mvp::EndWithCodeOnCrash(static_cast<unsigned>(ExitCode::Crashed), g_strCrashWords.c_str());
}

}  // namespace

void EndInJson() {
    g_bJson = true;
    PrepareForCrash();
}

void EndAs(const std::string& strCommand) {
    g_command = strCommand;
    if (g_bJson) {
        PrepareForCrash();
    }
}

ExitCode TellOutcome(const Outcome& outcome) {
    std::cout << (g_bJson ? Object(outcome.json) : outcome.strText) << std::endl;
    return outcome.code;
}

ExitCode TellFailure(ExitCode code, const std::string& strMessage) {
    std::cerr << "pinhost: " << strMessage << std::endl;
    if (g_bJson) {
        std::cout << Object({{"result", code == ExitCode::Usage ? "usage" : "failed"},
                             {"message", strMessage}})
                  << std::endl;
    }
    return code;
}

void EndNow(const char* pszMessage) noexcept {
    mvp::Guarded([=] { TellFailure(ExitCode::Environment, pszMessage); },
                 [=] { std::fprintf(stderr, "pinhost: %s\n", pszMessage); });
    // Nothing that runs at an orderly end could be relied on.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(ExitCode::Environment));
    std::abort();
}

}  // namespace pinhost
