// popup TYPE: the notice that slides in, with a configuration of its own.
#include <windows.h>

#include <array>
#include <atomic>
#include <chrono>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <mvpingui/popup_alert.h>

#include "common/thread_windows.h"
#include "pinhost/card_remover.h"
#include "pinhost/commands/card_flow.h"
#include "pinhost/commands/commands.h"
#include "pinhost/flow_library.h"
#include "pinhost/option_values.h"
#include "pinhost/password_source.h"
#include "pinhost/pin_library.h"
#include "pinhost/popup_film.h"
#include "pinhost/popup_room.h"
#include "pinhost/popup_user.h"
#include "pinhost/text.h"
#include "resources/resource_numbers.h"
#include "settings/settings.h"

namespace pinhost {
namespace {

// What stands below the busy bar, in each language; first what other languages get.
constexpr std::pair<std::string_view, const char*> kWaiting[] = {
    {"en", "Your one-time password is being fetched."},
    {"de", "Ihr Einmalkennwort wird abgerufen."},
    {"es", "Se está obteniendo su contraseña de un solo uso."},
    {"fr", "Votre mot de passe à usage unique est en cours de réception."},
    {"it", "Recupero della password monouso in corso."},
};
constexpr char kPassword[] = "<center><font size=\"22pt\"><b>740 291</b></font></center>";

// The library's own text in the language whose folder is the current one; the library itself takes
// it only in place of one that it refuses.
std::string OwnText(UINT nId) {
    const mvp::ModuleHandle texts(
        LoadLibraryExA(AbsolutePath(R"(Resources\Localized\mvpinguirc.dll)").c_str(), nullptr,
                       LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    std::array<char, 260> text{};
    if (texts) {
        LoadStringA(texts.get(), nId, text.data(), static_cast<int>(text.size()));
    }
    return text.data();
}

std::string WaitingText(const std::string& strLanguage) {
    for (const auto& [language, text] : kWaiting) {
        if (language == strLanguage) {
            return AnsiFromUtf8(text);
        }
    }
    return AnsiFromUtf8(kWaiting[0].second);
}

// What the notice told, in the order in which it came.
struct Told {
    std::uint64_t nAfter = 0;  // milliseconds since it was shown
    UINT nMessage = 0;
    const char* pszTo = nullptr;
    std::optional<WPARAM> topic;
};

struct Showing {
    Showing(const PopupPlan& plan, const std::string& strFilm) : user(plan), film(strFilm) {}

    PopupUser user;
    PopupFilm film;
    std::atomic<HWND> hPopup = nullptr;
    std::uint64_t nBegin = 0;
    RECT workArea{};
    std::vector<Told> told;

    void Hear(UINT nMessage, const char* pszTo, std::optional<WPARAM> topic = {}) {
        told.push_back({GetTickCount64() - nBegin, nMessage, pszTo, topic});
    }
    static Showing& Of(void* pContext) { return *static_cast<Showing*>(pContext); }
    static void Shown(void* pContext, HWND hWnd) {
        Showing& showing = Of(pContext);
        showing.nBegin = GetTickCount64();
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &showing.workArea, 0);
        showing.user.Begin(hWnd);
        showing.film.Begin(hWnd);
        showing.hPopup = hWnd;
    }
    static void Closed(void* pContext) { Of(pContext).Hear(WM_POPUP_CLOSED, "thread"); }
};

class PopupCommand : public Command {
public:
    CLI::App* AddTo(CLI::App& app) override {
        CLI::App* command = app.add_subcommand("popup", "Show the notice that slides in");
        command->add_option("type", m_strType, "what it is about")
            ->required()
            ->check(OneOf({"no-reader", "card-alert", "otp"}))
            ->type_name("no-reader|card-alert|otp");
        AddConfigurationTo(*command);
        AddEventsTo(*command);
        AddPicturesTo(*command);
        return command;
    }

    Outcome Run(const HostOptions& options) override;

private:
    void AddConfigurationTo(CLI::App& command);
    void AddEventsTo(CLI::App& command);
    void AddPicturesTo(CLI::App& command);
    bool IsPassword() const { return m_strType == "otp"; }
    int Type() const;
    void Check() const;
    void Configure(OwnConfiguration& configuration) const;
    bool Show(Showing& showing);
    Outcome Report(Showing& showing, const PopupSight& sight, bool bShown, bool bRemoved) const;

    std::string m_strType;
    std::optional<std::string> m_strMessage;
    std::uint32_t m_dwStay = 5;
    bool m_bNoHelp = false;
    bool m_bDisabled = false;
    bool m_bBeep = false;
    std::string m_strReader = "Veskara Software Reader 0";
    std::string m_strPassword;
    std::uint32_t m_dwPasswordAfter = 3000;
    std::optional<std::uint32_t> m_dwRemoveAfter;
    std::string m_strTaskbar;
    std::string m_strFilm;
    PopupPlan m_plan;
};

void PopupCommand::AddConfigurationTo(CLI::App& command) {
    command.add_option("--message", m_strMessage,
                       "the configured rich text (the library's own); of otp: what stands below "
                       "the busy bar");
    command.add_option("--stay", m_dwStay, "seconds that it stays")
        ->check(AnyWholeNumber<std::uint32_t>())
        ->capture_default_str();
    command.add_flag("--no-help", m_bNoHelp, "no help is configured");
    command.add_flag("--disabled", m_bDisabled, "the configuration does not ask for the notice");
    command.add_flag("--beep", m_bBeep, "with a sound");
}

void PopupCommand::AddEventsTo(CLI::App& command) {
    const CLI::Validator number = AnyWholeNumber<std::uint32_t>();
    command.add_option("--reader", m_strReader, "name of the reader")->capture_default_str();
    command
        .add_option("--remove-card-after", m_dwRemoveAfter,
                    "pull the card this many milliseconds after the notice has come")
        ->check(number)
        ->type_name("MS");
    command.add_option("--otp", m_strPassword, "the one-time password, a rich text (740 291)");
    command.add_option("--otp-after", m_dwPasswordAfter, "milliseconds until it comes")
        ->check(number)
        ->type_name("MS")
        ->capture_default_str();
    command
        .add_option("--hover", m_plan.dwHover,
                    "keep the pointer over it for this many milliseconds")
        ->check(number)
        ->type_name("MS");
    command
        .add_option_function<std::string>(
            "--click",
            [this](const std::string& strLink) {
                m_plan.click = strLink == "help" ? PopupPlan::Click::Help : PopupPlan::Click::Close;
            },
            "click a link of it")
        ->check(OneOf({"close", "help"}))
        ->type_name("close|help");
}

void PopupCommand::AddPicturesTo(CLI::App& command) {
    command.add_option("--taskbar", m_strTaskbar, "let a taskbar stand at this side meanwhile")
        ->check(OneOf({"top", "left", "right", "bottom"}))
        ->type_name("top|left|right|bottom");
    command
        .add_option("--screenshot", m_plan.strScreenshot,
                    "save a picture of it in its place as this PNG file")
        ->type_name("FILE.png");
    command
        .add_option("--next-screenshot", m_plan.strNextScreenshot,
                    "save a picture with the one-time password as this PNG file")
        ->type_name("FILE.png");
    command
        .add_option("--film", m_strFilm,
                    "save pictures of its way, and all of them as strip.png, in this folder")
        ->type_name("FOLDER");
}

int PopupCommand::Type() const {
    if (IsPassword()) {
        return DIALOG_POPUP_CARD_OTP;
    }
    return m_strType == "no-reader" ? DIALOG_POPUP_NO_READER : DIALOG_POPUP_CARD_ALERT;
}

void PopupCommand::Check() const {
    if (IsPassword() && m_bDisabled) {
        throw UsageError("a one-time password cannot be --disabled");
    }
    if (!IsPassword() && !(m_strPassword.empty() && m_plan.strNextScreenshot.empty())) {
        throw UsageError("--otp and --next-screenshot are of a one-time password (otp)");
    }
}

void PopupCommand::Configure(OwnConfiguration& configuration) const {
    namespace settings = mvp::settings;
    const bool card = Type() == DIALOG_POPUP_CARD_ALERT;
    configuration.Set(card ? settings::kCardPresenceEnable : settings::kNoReaderEnable,
                      m_bDisabled ? 0 : 1);
    configuration.Set(card ? settings::kCardPresenceDuration : settings::kNoReaderDuration,
                      m_dwStay);
    configuration.Set(settings::kOtpTimeout, m_dwStay);
    configuration.Set(
        card ? settings::kCardPresenceMessage : settings::kNoReaderMessage,
        m_strMessage ? *m_strMessage : OwnText(card ? IDS_POPUP_CARD_ALERT : IDS_POPUP_NO_READER));
    configuration.Set(settings::kNotificationBeep, m_bBeep ? 1 : 0);
    if (!m_bNoHelp) {
        configuration.Set(settings::kHelpPath, "veskara.chm");
    }
}

Outcome PopupCommand::Run(const HostOptions& options) {
    Check();
    m_plan.strScreenshot = AbsolutePath(m_plan.strScreenshot);
    m_plan.strNextScreenshot = AbsolutePath(m_plan.strNextScreenshot);
    m_plan.bPassword = IsPassword();
    if (!m_strMessage && IsPassword()) {
        m_strMessage = WaitingText(options.strLanguage);
    }
    Showing showing(m_plan, AbsolutePath(m_strFilm));
    const PinLibrary library(options);
    OwnConfiguration configuration;
    Configure(configuration);
    std::optional<Taskbar> taskbar;
    if (!m_strTaskbar.empty()) {
        taskbar.emplace(m_strTaskbar);
    }
    std::optional<CardRemover> remover;
    if (m_dwRemoveAfter) {
        remover.emplace(m_strReader, std::chrono::milliseconds(*m_dwRemoveAfter),
                        [&] { return IsWindowVisible(showing.hPopup) != FALSE; });
    }
    const bool shown = Show(showing);
    const bool removed = remover && remover->Finish();
    const PopupSight sight = showing.user.Finish();
    // A missing reader has no card whose removal it could hear of.
    return Report(showing, sight, shown, removed && Type() != DIALOG_POPUP_NO_READER);
}

bool PopupCommand::Show(Showing& showing) {
    const FlowLibrary flows;
    std::optional<PasswordSource> source;
    PinHostPopup request{};
    request.nType = Type();
    request.pszReader = m_strReader.c_str();
    request.pszMessage = m_strMessage ? m_strMessage->c_str() : "";
    request.pContext = &showing;
    request.pfnShow = &Showing::Shown;
    request.pfnClosed = &Showing::Closed;
    if (IsPassword()) {
        source.emplace(m_strPassword.empty() ? kPassword : m_strPassword,
                       std::chrono::milliseconds(m_dwPasswordAfter));
        request.pfnFetchPassword = source->Routine();
    }
    const Listener parent("pinhost",
                          [&](UINT nMessage, WPARAM) { showing.Hear(nMessage, "window"); });
    const Listener service("vkcrdsub", [&](UINT nMessage, WPARAM topic) {
        showing.Hear(nMessage, "vkcrdsub", topic);
    });
    request.hParent = parent.Handle();
    const bool shown = flows.ShowPopup(&request) == MVPINGUI_OK;
    if (source && showing.hPopup != nullptr) {
        source->Started();
    }
    if (!request.bCreated) {
        throw EnvironmentError("the notice could not be created");
    }
    return shown;
}

// A line and an object for each.
void TellMessages(const Showing& showing, Outcome& outcome) {
    std::string lines;
    nlohmann::ordered_json messages = nlohmann::ordered_json::array();
    for (const Told& told : showing.told) {
        nlohmann::ordered_json one{
            {"after", told.nAfter}, {"message", told.nMessage}, {"to", told.pszTo}};
        lines.append(std::to_string(told.nAfter) + " ms: " + std::to_string(told.nMessage) +
                     " to " + told.pszTo);
        if (told.topic) {
            one["topic"] = *told.topic;
            lines.append(", topic " + std::to_string(*told.topic));
        }
        lines.append("\n");
        messages.push_back(one);
    }
    outcome.json["messages"] = messages;
    outcome.strText = lines + outcome.strText;
}

Outcome PopupCommand::Report(Showing& showing, const PopupSight& sight, bool bShown,
                             bool bRemoved) const {
    Outcome outcome;
    if (!bShown) {
        Tell(outcome, ExitCode::NotAccepted, "disabled",
             "The configuration says that the notice is not to be shown.");
        return outcome;
    }
    if (bRemoved) {
        TellNotDone(outcome, true, "");
    } else {
        Tell(outcome, ExitCode::Accepted, "shown", "The notice was shown and has closed.");
    }
    nlohmann::ordered_json& json = outcome.json;
    const auto edges = [](const RECT& rect) {
        return nlohmann::ordered_json{rect.left, rect.top, rect.right, rect.bottom};
    };
    json["workArea"] = edges(showing.workArea);
    if (sight.place) {
        json["place"] = edges(*sight.place);
        json["stoodAfter"] = sight.nStoodAfter;
    }
    if (sight.passwordText) {
        json["text"] = Utf8FromAnsi(*sight.passwordText);
        json["passwordAfter"] = sight.nPasswordAfter;
    }
    TellMessages(showing, outcome);
    if (!m_strFilm.empty()) {
        json["pictures"] = showing.film.Finish();
    }
    return outcome;
}

}  // namespace

std::unique_ptr<Command> MakePopupCommand() {
    return std::make_unique<PopupCommand>();
}

}  // namespace pinhost
