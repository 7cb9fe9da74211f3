// The commands, each in a file of its own.
#pragma once

#include <memory>

#include "pinhost/command.h"

namespace pinhost {

std::unique_ptr<Command> MakeErrorTextCommand();
std::unique_ptr<Command> MakeLastTryCommand();
std::unique_ptr<Command> MakeGetPinCommand();
std::unique_ptr<Command> MakeChangePinCommand();
std::unique_ptr<Command> MakeUnlockCommand();
std::unique_ptr<Command> MakeHelpDeskCommand();
std::unique_ptr<Command> MakeInitPinCommand();
std::unique_ptr<Command> MakeResetCommand();
std::unique_ptr<Command> MakeShowCodeCommand();
std::unique_ptr<Command> MakeCardLockedCommand();
std::unique_ptr<Command> MakeCardToolCommand();
std::unique_ptr<Command> MakePopupCommand();
std::unique_ptr<Command> MakeExpiryCommand();
std::unique_ptr<Command> MakeAboutCommand();
std::unique_ptr<Command> MakeRichTextCommand();
std::unique_ptr<Command> MakeSettingsCommand();

}  // namespace pinhost
