#include "services/card_removed_message.h"

namespace mvp {

const UINT g_nCardRemovedMessage = RegisterWindowMessageA("VKCardRemovedEvent");

}  // namespace mvp
