// A command of the host: one user-interface flow of the library, with its options and its result.
//
// A new command is a file in commands/, a function in commands/commands.h, and its line in main.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include <CLI/App.hpp>
#include <nlohmann/json.hpp>

namespace pinhost {

// What the process ends with.
enum class ExitCode {
    Accepted = 0,     // accepted, confirmed, shown
    NotAccepted = 1,  // wrong, blocked, cancelled, refused
    Usage = 2,        // the command line is wrong
    Environment = 3,  // a library, a file, the display: the flow could not be run
    Crashed = 4,
};

// The command line asks for what does not fit together.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the flow needs is missing or failed. Texts of errors and outcomes are UTF-8.
class EnvironmentError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Options that every command has.
struct HostOptions {
    std::string strLanguage;  // empty: the one beside the program
    std::string strLogFile;   // empty: no log
    bool bLogDetail = false;
};

// What came of a command, for people and for programs. docs/pinhost.md lists the words of "result".
struct Outcome {
    ExitCode code = ExitCode::Accepted;
    std::string strText;
    nlohmann::ordered_json json;
};

class Command {
public:
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    // Adds the command and its options, which the parser then fills in.
    virtual CLI::App* AddTo(CLI::App& app) = 0;

    // Runs the flow on the calling thread, which becomes the library's user-interface thread.
    // Throws UsageError or EnvironmentError.
    virtual Outcome Run(const HostOptions& options) = 0;
};

}  // namespace pinhost
