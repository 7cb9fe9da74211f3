// The entries of what expires, of the about box, and of the notices that slide in.
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include <dlgfw/dlgfw.h>
#include <mvpingui/card_expiry.h>
#include <mvpingui/mvpingui.h>
#include <mvpingui/popup_alert.h>

#include "common/thread_windows.h"
#include "looks/dialogs.h"
#include "pinhost/flows/popup_flow.h"
#include "pinhost/popup_room.h"
#include "resources/resource_numbers.h"
#include "settings/settings.h"

namespace looks {

namespace {

constexpr __time64_t kExpired = 1'735'603'200;   // 2024-12-31
constexpr __time64_t kExpiring = 2'209'075'200;  // 2040-01-02
constexpr __time64_t kYear = 31'557'600;

using Certificates = std::vector<std::pair<std::string, __time64_t>>;

const Certificates kTwo = {{"E-mail signature", kExpiring}, {"Sign-in", kExpiring + kYear}};

Certificates Many() {
    Certificates many;
    for (int i = 0; i < 12; ++i) {
        many.emplace_back("Archive of the year " + std::to_string(2031 + i), kExpiring + i * kYear);
    }
    return many;
}

// A card time of 0: nothing is told of the card.
std::function<void()> Expiry(__time64_t nCard, Certificates certificates, bool bOwner = false) {
    return [=] {
        std::optional<OwnerWindow> owner;
        if (bOwner) {
            owner.emplace();
        }
        VKExpiryNotificationInfo info(kReader, nullptr);
        info.SetNbDaysForNotificationDelay(14);
        info.SetMustDisplayCardExpiry(nCard != 0 ? 1 : 0, nCard);
        for (const auto& [name, time] : certificates) {
            info.AddCertificateExpiryNotificationInfo(name.c_str(), time);
        }
        DisplayCardExpiryNotification(owner ? owner->Handle() : nullptr, &info);
    };
}

void ExpiryWithLongSentence() {
    pinhost::OwnConfiguration configuration;
    configuration.Set(mvp::settings::kValiditySentence,
                      "Ask the staff of the card office on the ground floor for a new "
                      "card as long as the old one still works, and bring the old one "
                      "with you. They are there on working days from 8 to 18. What was "
                      "encrypted with the old card stays readable.");
    Expiry(kExpiring, kTwo)();
}

void Untick(HWND hWindow) {
    SendMessageA(mvp::FindControl(hWindow, IDC_CARD_EXPIRY_REMIND), BM_CLICK, 0, 0);
}

// Its password comes when a state says so.
DWORD WINAPI FetchNothing(void*) {
    return 0;
}

void BringPassword(HWND hWindow) {
    SendMessageA(hWindow, WM_POPUP_OTP_READY, 0,
                 reinterpret_cast<LPARAM>(
                     NewPopupText("<center><font size=\"22pt\"><b>740 291</b></font></center>")));
}

std::function<void()> Popup(int nType, bool bHelp, const char* pszMessage = "") {
    return [=] {
        pinhost::OwnConfiguration configuration;
        namespace settings = mvp::settings;
        for (const auto& enable : {settings::kNoReaderEnable, settings::kCardPresenceEnable}) {
            configuration.Set(enable, 1);
        }
        for (const auto& duration : {settings::kNoReaderDuration, settings::kCardPresenceDuration,
                                     settings::kOtpTimeout}) {
            configuration.Set(duration, 60);
        }
        for (const auto& message : {settings::kNoReaderMessage, settings::kCardPresenceMessage}) {
            // One with a link in it gives way to the library's own text.
            configuration.Set(message, *pszMessage != '\0' ? pszMessage : "<a href=\"\">");
        }
        configuration.Set(settings::kNotificationBeep, 0);
        if (bHelp) {
            configuration.Set(settings::kHelpPath, "veskara.chm");
        }
        PinHostPopup request{};
        request.nType = nType;
        request.pszReader = kReader;
        request.pszMessage = "Your one-time password is being fetched.";
        request.pfnFetchPassword = nType == DIALOG_POPUP_CARD_OTP ? &FetchNothing : nullptr;
        request.pfnShow = [](void*, HWND) {};
        request.pfnClosed = [](void*) {};
        pinhost::ShowPopup(request);
    };
}

}  // namespace

std::vector<Entry> Notices() {
    const std::string longName =
        "Certificate of a department whose name was made longer at every reorganisation, issued to "
        "a colleague with four given names by an authority that tells its whole address in the "
        "name of each certificate 0";
    const std::vector<State> shown = {{"shown", {}}};
    const std::vector<State> password = {{"busy", {}}, {"password", BringPassword}};
    const char* longMessage =
        "<b>No reader for smart cards is connected.</b> Plug the reader in and wait until its lamp "
        "is on. If it stays dark, try another socket of the computer, or borrow a reader at the "
        "card office.";
    return {
        {"expiry", Expiry(kExpiring, kTwo), {{"shown", {}}, {"not reminded", Untick}}},
        {"expiry-over-owner", Expiry(kExpiring, kTwo, true), shown},
        {"expiry-certificates", Expiry(0, kTwo), shown},
        {"expiry-many", Expiry(kExpiring, Many()), shown},
        {"expiry-long-name", Expiry(kExpiring, {{longName, kExpiring}}), shown},
        {"expiry-long-sentence", ExpiryWithLongSentence, shown},
        {"expiry-card", Expiry(kExpiring, {}), shown},
        {"expiry-expired", Expiry(kExpired, {{"E-mail signature", kExpired}}), shown},
        {"expiry-card-expired", Expiry(kExpired, {}), shown},
        {"about", [] { ShowAbout(0, nullptr, "PIN user interface"); }, shown},
        {"popup-no-reader", Popup(DIALOG_POPUP_NO_READER, true), shown, Kind::Popup},
        {"popup-no-reader-without-help", Popup(DIALOG_POPUP_NO_READER, false), shown, Kind::Popup},
        {"popup-no-reader-long", Popup(DIALOG_POPUP_NO_READER, true, longMessage), shown,
         Kind::Popup},
        {"popup-card-alert", Popup(DIALOG_POPUP_CARD_ALERT, true), shown, Kind::Popup},
        {"popup-otp", Popup(DIALOG_POPUP_CARD_OTP, true), password, Kind::Popup},
        {"popup-otp-without-help", Popup(DIALOG_POPUP_CARD_OTP, false), password, Kind::Popup},
    };
}

}  // namespace looks
