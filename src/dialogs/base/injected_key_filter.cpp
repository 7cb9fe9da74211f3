#include "dialogs/base/injected_key_filter.h"

#include <optional>

#include "dialogs/base/injected_key_notice.h"
#include "platform/system_library.h"
#include "services/log.h"
#include "services/registry_value.h"
#include "settings/settings.h"

namespace mvp {

namespace {

constexpr NumberSetting kSetting = settings::kInjectedKeys;
constexpr InjectedKeys kDefault = InjectedKeysOf(kSetting.nDefault).value();
constexpr char kAllowed[] = "only a REG_DWORD of 0 (accept), 1 (warn) or 2 (refuse) is allowed";

using Kind = KeyMessage::Kind;

// Nothing for a message that brings no key and no text. WM_DEADCHAR and WM_SYSCHAR are among them:
// an edit does nothing with them.
std::optional<Kind> KindOf(UINT message, WPARAM wParam) {
    switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            return Kind::Down;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            return Kind::Up;
        case WM_UNICHAR:
            if (wParam == UNICODE_NOCHAR) {
                return std::nullopt;  // the question whether the window takes the message
            }
            return Kind::Character;
        case WM_CHAR:
        case WM_IME_CHAR:
            return Kind::Character;
        default:
            return std::nullopt;
    }
}

}  // namespace

InjectedKeys ReadInjectedKeys() noexcept {
    DWORD value = 0;
    const RegistryRead read = ReadRegistry(ValueOf(kSetting), &value, sizeof value, REG_DWORD);
    if (read.failed == RegistryStep::OpenKey || read.error == ERROR_FILE_NOT_FOUND) {
        return kDefault;
    }
    const std::optional<InjectedKeys> policy = InjectedKeysOf(value);
    if (!read || read.size != sizeof value || !policy) {
        LogIgnoredSetting(kSetting, kAllowed);
        return kDefault;
    }
    return *policy;
}

void InjectedKeyFilter::Bind() noexcept {
    *this = {};
    m_policy = ReadInjectedKeys();
    m_pGetSource = FindFunction<SourceFunction>(GetModuleHandleA("user32.dll"),
                                                "GetCurrentInputMessageSource");
}

KeyOrigin InjectedKeyFilter::Origin() const noexcept {
    MessageSource source{};
    return m_pGetSource(&source) ? static_cast<KeyOrigin>(source.originId) : KeyOrigin::Unavailable;
}

bool InjectedKeyFilter::Refuses(HWND hEdit, UINT message, WPARAM wParam, bool bSent) noexcept {
    if (m_policy == InjectedKeys::Accept || m_pGetSource == nullptr) {
        return false;
    }
    const std::optional<Kind> kind = KindOf(message, wParam);
    if (!kind || !m_judge.IsInjected({*kind, static_cast<unsigned>(wParam), Origin(), bSent})) {
        return false;
    }
    const bool refused = m_policy == InjectedKeys::Refuse;
    if (!m_bTold) {
        m_bTold = true;
        vklogLog(g_szLogTag, kLogInfo, "%s",
                 refused ? "InjectedKeyFilter: what a program types is refused"
                         : "InjectedKeyFilter: a program types, and the user is told");
        ShowInjectedKeyNotice(hEdit, m_policy);
    }
    return refused;
}

}  // namespace mvp
