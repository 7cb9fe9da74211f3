#include "dialogs/card/help_desk.h"

#include <array>

#include "services/log.h"
#include "services/registry_value.h"

namespace mvp {
namespace {

constexpr char kGlobalConfigKey[] = R"(software\Quillon\Veskara\GlobalConfig)";
constexpr char kContactTel[] = "ContactTel";
constexpr DWORD kNumberCapacity = 512;

}  // namespace

CString HelpDeskNumber() {
    // One byte more than is offered: a value that fills the buffer may come without a terminator.
    std::array<char, kNumberCapacity + 1> buffer{};
    const RegistryRead read =
        ReadRegistry({kGlobalConfigKey, kContactTel}, buffer.data(), kNumberCapacity);
    if (!read) {
        if (read.failed != RegistryStep::OpenKey && read.error != ERROR_FILE_NOT_FOUND) {
            LogIgnoredSetting(kGlobalConfigKey, kContactTel,
                              read.error == ERROR_MORE_DATA ? "the value is longer than 512 bytes"
                                                            : "the value cannot be read");
        }
        return {};
    }
    if (read.type != REG_SZ && read.type != REG_EXPAND_SZ) {
        LogIgnoredSetting(kGlobalConfigKey, kContactTel, "the value is not a text");
        return {};
    }
    CString number(buffer.data());
    return number.GetLength() > 1 ? number : CString();
}

}  // namespace mvp
