// CPopupAlert: what the administrator says of it.
#include <array>
#include <string_view>

#include "mvpingui/popup_alert.h"
#include "notify/href_pattern.h"
#include "notify/notice_text.h"
#include "resources/resource_numbers.h"
#include "services/log.h"
#include "services/registry_value.h"
#include "services/resource_module.h"
#include "settings/settings.h"

namespace {

// What is set of a notice that an administrator may write.
struct NoticeNames {
    mvp::NumberSetting enable;
    mvp::NumberSetting duration;
    mvp::TextSetting message;
};
constexpr NoticeNames kNoReader{mvp::settings::kNoReaderEnable, mvp::settings::kNoReaderDuration,
                                mvp::settings::kNoReaderMessage};
constexpr NoticeNames kCardAlert{mvp::settings::kCardPresenceEnable,
                                 mvp::settings::kCardPresenceDuration,
                                 mvp::settings::kCardPresenceMessage};

// Tells of a value that is there and cannot be used.
bool IsUsable(const mvp::RegistryRead& read, const mvp::SettingName& setting) {
    if (read.failed == mvp::RegistryStep::CheckType) {
        mvp::LogIgnoredSetting(setting, "of another type");
    } else if (read.error == ERROR_MORE_DATA) {
        mvp::LogIgnoredSetting(setting, "too long");
    }
    return static_cast<bool>(read);
}

std::optional<std::uint32_t> ReadNumber(const mvp::NumberSetting& setting) {
    DWORD value = 0;
    const mvp::RegistryRead read =
        mvp::ReadRegistry(mvp::ValueOf(setting), &value, sizeof value, REG_DWORD);
    return IsUsable(read, setting) ? std::optional<std::uint32_t>(value) : std::nullopt;
}

using MessageBuffer = std::array<char, mvp::kNoticeMessageMax>;

std::optional<std::string_view> ReadMessage(const mvp::TextSetting& setting,
                                            MessageBuffer& buffer) {
    const mvp::RegistryRead read =
        mvp::ReadRegistry(mvp::ValueOf(setting), buffer.data(), mvp::kNoticeMessageMax, REG_SZ);
    return IsUsable(read, setting)
               ? std::optional<std::string_view>(std::in_place, buffer.data(), read.size)
               : std::nullopt;
}

}  // namespace

bool CPopupAlert::GetRegistryParameters(CString& csText, DWORD* pdwDuration, int iWndType) {
    const mvp::LogScope scope("CPopupAlert::GetRegistryParameters");
    if (iWndType == DIALOG_POPUP_CARD_OTP) {
        if (pdwDuration == nullptr) {
            return false;
        }
        const mvp::NoticeSettings settings{.passwordTimeout =
                                               ReadNumber(mvp::settings::kOtpTimeout)};
        *pdwDuration = mvp::ReadNotice(iWndType, settings, mvp::MatchesHref).nStay;
        return true;
    }

    const NoticeNames& names = iWndType == DIALOG_POPUP_CARD_ALERT ? kCardAlert : kNoReader;
    MessageBuffer buffer{};
    mvp::NoticeSettings settings{.enable =
                                     ReadNumber(names.enable).value_or(names.enable.nDefault)};
    if (settings.enable != 0) {
        settings.duration = ReadNumber(names.duration);
        settings.message = ReadMessage(names.message, buffer);
    }
    const mvp::NoticeParameters notice = mvp::ReadNotice(iWndType, settings, mvp::MatchesHref);
    if (settings.duration && pdwDuration != nullptr) {
        *pdwDuration = notice.nStay;
    }
    if (notice.text == mvp::NoticeParameters::Text::Message) {
        csText = notice.strMessage.c_str();
    } else if (notice.text == mvp::NoticeParameters::Text::Default) {
        TakeDefaultMessage(csText, iWndType);
    }
    vklogLog(g_szLogTag, kLogInfo, "CPopupAlert::GetRegistryParameters: returning csText = %s",
             static_cast<LPCSTR>(csText));
    return notice.bShown;
}

void CPopupAlert::TakeDefaultMessage(CString& csText, int iWndType) {
    vklogLog(g_szLogTag, kLogInfo,
             "CPopupAlert::GetRegistryParameters: Security pattern matched !");
    csText.Empty();
    if (iWndType == DIALOG_POPUP_CARD_ALERT) {
        vklogLog(g_szLogTag, kLogInfo,
                 "CPopupAlert::GetRegistryParameters: Displaying default message "
                 "DIALOG_POPUP_CARD_ALERT");
        mvp::LoadResourceString(IDS_POPUP_CARD_ALERT, csText);
    } else {
        vklogLog(g_szLogTag, kLogInfo,
                 "CPopupAlert::GetRegistryParameters: Displaying default message "
                 "DIALOG_POPUP_NO_READER");
        mvp::LoadResourceString(IDS_POPUP_NO_READER, csText);
    }
}
