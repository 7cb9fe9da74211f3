// The windows: PINs through the library's dialogs, questions through one of the program's own.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "pinentry/core/user_interface.h"
#include "pinhost/pin_library.h"

namespace pinentry {

class StdioChannel;

class LibraryInterface : public UserInterface {
public:
    // pChannel    whose client is watched while a window is open; null: none
    // strLogFile  of the suite's log; empty: none
    LibraryInterface(StdioChannel* pChannel, std::string strLogFile);

    Answer AskPin(const PinQuestion& question, Secret& pin) override;
    Answer AskNewPin(const PinQuestion& question, Secret& pin) override;
    Answer Confirm(const Confirmation& confirmation) override;

private:
    // Loads the library when it is first needed. Null: it cannot be had.
    const pinhost::PinLibrary* Library(const std::string& strLanguage);

    StdioChannel* m_pChannel;
    std::string m_strLogFile;
    mvp::ModuleHandle m_log;
    std::optional<pinhost::PinLibrary> m_library;
};

}  // namespace pinentry
