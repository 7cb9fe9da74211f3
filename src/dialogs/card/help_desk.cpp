#include "dialogs/card/help_desk.h"

#include <array>

#include "services/log.h"
#include "services/registry_value.h"
#include "settings/settings.h"

namespace mvp {
namespace {

constexpr TextSetting kNumber = settings::kContactTel;

}  // namespace

CString HelpDeskNumber() {
    // One byte more than is offered: a value that fills the buffer may come without a terminator.
    std::array<char, kNumber.nCapacity + 1> buffer{};
    const RegistryRead read = ReadRegistry(ValueOf(kNumber), buffer.data(), kNumber.nCapacity);
    if (!read) {
        if (read.failed != RegistryStep::OpenKey && read.error != ERROR_FILE_NOT_FOUND) {
            LogIgnoredSetting(kNumber, read.error == ERROR_MORE_DATA
                                           ? "the value is longer than 512 bytes"
                                           : "the value cannot be read");
        }
        return {};
    }
    if (read.type != REG_SZ && read.type != REG_EXPAND_SZ) {
        LogIgnoredSetting(kNumber, "the value is not a text");
        return {};
    }
    CString number(buffer.data());
    return number.GetLength() > 1 ? number : CString();
}

}  // namespace mvp
