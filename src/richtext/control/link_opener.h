// Opens the target of an href link: with the shell, or if that fails with the program that opens
// HTML files.
#pragma once

#include <string>

namespace mvp::richtext {

// The calls to the system, so that a test can record them instead.
class Shell {
public:
    Shell() = default;
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;
    virtual ~Shell() = default;

    // The verb "open", shown normally. Above 32 on success, like the system's own call.
    virtual long long Open(const std::string& strTarget) = 0;
    // The command that the file type ".htm" is opened with; empty when there is none.
    virtual std::string HtmlCommand() = 0;
    // False when it could not be started.
    virtual bool Start(const std::string& strCommandLine) = 0;
};

Shell& SystemShell();

// False when neither of them could.
bool OpenLinkTarget(Shell& shell, const std::string& strTarget);

}  // namespace mvp::richtext
