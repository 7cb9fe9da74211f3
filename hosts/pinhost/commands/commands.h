// The commands, each in a file of its own.
#pragma once

#include <memory>

#include "pinhost/command.h"

namespace pinhost {

std::unique_ptr<Command> MakeErrorTextCommand();
std::unique_ptr<Command> MakeLastTryCommand();
std::unique_ptr<Command> MakeGetPinCommand();
std::unique_ptr<Command> MakeChangePinCommand();
std::unique_ptr<Command> MakeRichTextCommand();

}  // namespace pinhost
