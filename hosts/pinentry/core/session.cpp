#include "pinentry/core/session.h"

#include <algorithm>
#include <array>
#include <utility>

#include "pinentry/core/escaping.h"
#include "pinentry/core/words.h"

namespace pinentry {
namespace {

// Names and flags of the protocol are the same in either case.
bool SameWord(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        const auto upper = [](char ch) {
            return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch;
        };
        return upper(x) == upper(y);
    });
}

// What a line is in the answer to an inquiry.
enum class ReplyPart { More, End, Canceled, TooLong, NoReply, ClientGone };

ReplyPart TakeReply(const InputLine& line, std::string& strEscaped) {
    const std::string_view text = line.Text();
    if (text.substr(0, 2) == "D ") {
        strEscaped.append(text.substr(2));
    }
    if (line.bTooLong || strEscaped.size() > LineReader::kMaxLine) {
        return ReplyPart::TooLong;
    }
    if (text == "END" || text == "CAN") {
        return text == "END" ? ReplyPart::End : ReplyPart::Canceled;
    }
    const bool isPart = text.empty() || text.front() == '#' || text.substr(0, 2) == "D ";
    return isPart ? ReplyPart::More : ReplyPart::NoReply;
}

// An end that is told of is one whose text cannot be read.
ErrorCode ErrorOf(ReplyPart part) {
    switch (part) {
        case ReplyPart::Canceled:
            return ErrorCode::InquiryCanceled;
        case ReplyPart::TooLong:
            return ErrorCode::LineTooLong;
        case ReplyPart::NoReply:
            return ErrorCode::UnexpectedCommand;
        default:
            return ErrorCode::InvalidValue;
    }
}

std::string OrDash(const std::string& str) {
    return str.empty() ? "-" : str;
}

}  // namespace

// What a request does: a text it sets, or a function.
struct Session::Command {
    const char* pszName;
    std::string RequestTexts::*pText;
    bool (Session::*pFunction)(std::string_view);
};

const Session::Command* Session::Find(std::string_view name) {
    static constexpr std::array kCommands{
        Command{"SETDESC", &RequestTexts::strDescription, nullptr},
        Command{"SETPROMPT", &RequestTexts::strPrompt, nullptr},
        Command{"SETTITLE", &RequestTexts::strTitle, nullptr},
        Command{"SETOK", &RequestTexts::strOk, nullptr},
        Command{"SETCANCEL", &RequestTexts::strCancel, nullptr},
        Command{"SETNOTOK", &RequestTexts::strNotOk, nullptr},
        Command{"SETERROR", &RequestTexts::strError, nullptr},
        Command{"SETQUALITYBAR_TT", &RequestTexts::strQualityTip, nullptr},
        Command{"SETTIMEOUT", nullptr, &Session::OnSetTimeout},
        Command{"SETREPEAT", nullptr, &Session::OnSetRepeat},
        Command{"SETREPEATERROR", nullptr, &Session::OnAccepted},
        Command{"SETREPEATOK", nullptr, &Session::OnAccepted},
        Command{"SETQUALITYBAR", nullptr, &Session::OnSetQualityBar},
        Command{"SETGENPIN", nullptr, &Session::OnAccepted},
        Command{"SETGENPIN_TT", nullptr, &Session::OnAccepted},
        Command{"SETKEYINFO", nullptr, &Session::OnAccepted},
        Command{"CLEARPASSPHRASE", nullptr, &Session::OnAccepted},
        Command{"GETPIN", nullptr, &Session::OnGetPin},
        Command{"CONFIRM", nullptr, &Session::OnConfirm},
        Command{"MESSAGE", nullptr, &Session::OnMessage},
        Command{"GETINFO", nullptr, &Session::OnGetInfo},
        Command{"OPTION", nullptr, &Session::OnOption},
        Command{"RESET", nullptr, &Session::OnReset},
        Command{"NOP", nullptr, &Session::OnAccepted},
        Command{"HELP", nullptr, &Session::OnHelp},
        Command{"BYE", nullptr, &Session::OnBye},
    };
    if (name.empty()) {
        return kCommands.data();
    }
    const auto* it = std::find_if(kCommands.begin(), kCommands.end(), [=](const Command& command) {
        return SameWord(command.pszName, name);
    });
    return it != kCommands.end() ? it : nullptr;
}

Session::Session(Channel& channel, UserInterface& user, const CodePage& codePage,
                 ProcessInfo process, ConnectionOptions options, std::uint32_t nTimeout)
    : m_channel(channel),
      m_user(user),
      m_codePage(codePage),
      m_process(std::move(process)),
      m_responses(channel),
      m_options(std::move(options)),
      m_nTimeout(nTimeout) {
    m_settings.nTimeout = nTimeout;
}

void Session::Run() {
    m_bOver = !m_responses.Ok("Pleased to meet you");
    while (!m_bOver) {
        InputLine line;
        if (!m_channel.Read(line)) {
            return;
        }
        Handle(line);
    }
}

bool Session::Sent(bool bSent) {
    m_bOver = m_bOver || !bSent;
    return bSent;
}

bool Session::Fail(ErrorCode code) {
    return Sent(m_responses.Error(code));
}

bool Session::Handle(const InputLine& line) {
    if (line.bTooLong) {
        return Fail(ErrorCode::LineTooLong);
    }
    const std::string_view text = line.Text();
    // Comments and empty lines get no answer.
    return text.empty() || text.front() == '#' || Dispatch(text);
}

bool Session::Dispatch(std::string_view text) {
    constexpr std::string_view kSpaces = " \t";
    const std::size_t nameEnd = std::min(text.find_first_of(kSpaces), text.size());
    const std::string_view name = text.substr(0, nameEnd);
    const Command* command = name.empty() ? nullptr : Find(name);
    if (command == nullptr) {
        return Fail(ErrorCode::UnknownCommand);
    }
    text.remove_prefix(std::min(text.find_first_not_of(kSpaces, nameEnd), text.size()));
    return command->pText != nullptr ? SetText(*command, text) : (this->*command->pFunction)(text);
}

bool Session::SetText(const Command& command, std::string_view text) {
    return Unescape(text, m_settings.texts.*command.pText) ? Sent(m_responses.Ok())
                                                           : Fail(ErrorCode::InvalidValue);
}

bool Session::OnSetTimeout(std::string_view text) {
    const auto seconds = Number(text, kMaxTimeout);
    if (!seconds) {
        return Fail(ErrorCode::InvalidValue);
    }
    m_settings.nTimeout = static_cast<std::uint32_t>(*seconds);
    return Sent(m_responses.Ok());
}

bool Session::OnSetRepeat(std::string_view text) {
    if (!Unescape(text, m_settings.texts.strRepeat)) {
        return Fail(ErrorCode::InvalidValue);
    }
    m_settings.bRepeat = true;
    return Sent(m_responses.Ok());
}

bool Session::OnSetQualityBar(std::string_view /*text*/) {
    m_settings.bQuality = true;
    return Sent(m_responses.Ok());
}

bool Session::OnAccepted(std::string_view /*text*/) {
    return Sent(m_responses.Ok());
}

bool Session::OnOption(std::string_view text) {
    const auto error = m_options.Set(text);
    return error ? Fail(*error) : Sent(m_responses.Ok());
}

bool Session::OnReset(std::string_view /*text*/) {
    m_settings = {};
    m_settings.nTimeout = m_nTimeout;
    return Sent(m_responses.Ok());
}

bool Session::OnBye(std::string_view /*text*/) {
    m_bOver = true;
    return m_responses.Ok("closing connection");
}

bool Session::OnHelp(std::string_view text) {
    if (!text.empty() && Find(text) == nullptr) {
        return Fail(ErrorCode::UnknownCommand);
    }
    // The table's end is its last request.
    for (const Command* command = Find({});; ++command) {
        if ((text.empty() || SameWord(text, command->pszName)) &&
            !Sent(m_responses.Comment(command->pszName))) {
            return false;
        }
        if (SameWord(command->pszName, "BYE")) {
            return Sent(m_responses.Ok());
        }
    }
}

bool Session::OnGetInfo(std::string_view text) {
    std::string info;
    if (SameWord(text, "flavor")) {
        info = "mvpingui";
    } else if (SameWord(text, "version")) {
        info = m_process.strVersion;
    } else if (SameWord(text, "pid")) {
        info = std::to_string(m_process.nId);
    } else if (SameWord(text, "ttyinfo")) {
        info = OrDash(m_options.strTtyName) + " " + OrDash(m_options.strTtyType) + " " +
               OrDash(m_options.strDisplay);
    } else {
        return Fail(ErrorCode::Parameter);
    }
    return Sent(m_responses.Data(info)) && Sent(m_responses.Ok());
}

bool Session::RefuseFor(Answer answer) {
    switch (answer) {
        case Answer::NotConfirmed:
            return Fail(ErrorCode::NotConfirmed);
        case Answer::Closed:
            return Sent(m_responses.Status("BUTTON_INFO close")) && Fail(ErrorCode::Canceled);
        case Answer::TimedOut:
            return Fail(ErrorCode::Timeout);
        case Answer::ClientGone:
            m_bOver = true;
            return false;
        case Answer::NotShown:
            return Fail(ErrorCode::NoPinentry);
        case Answer::NoPlaceForIt:
            return Fail(ErrorCode::TooLarge);
        case Answer::Confirmed:
        case Answer::Canceled:
            break;
    }
    return Fail(ErrorCode::Canceled);
}

bool Session::OnGetPin(std::string_view /*text*/) {
    PinQuestion question;
    if (!MakePinQuestion(m_settings, m_options, m_codePage, question)) {
        return Fail(ErrorCode::LocaleProblem);
    }
    const bool sent = AskPin(question);
    m_settings.ForgetWindow();
    return sent;
}

Answer Session::AskOnce(const PinQuestion& question, Secret& pin) {
    Secret typed;
    const Answer answer =
        m_settings.bRepeat ? m_user.AskNewPin(question, typed) : m_user.AskPin(question, typed);
    if (answer == Answer::Confirmed && !m_codePage.ToUtf8(typed, pin)) {
        return Answer::NoPlaceForIt;
    }
    return answer;
}

bool Session::AskPin(PinQuestion& question) {
    for (;;) {
        Secret pin;
        const Answer answer = AskOnce(question, pin);
        if (answer != Answer::Confirmed) {
            return RefuseFor(answer);
        }
        if (!m_settings.bRepeat) {
            return Sent(m_responses.Data(pin)) && Sent(m_responses.Ok());
        }
        const std::optional<bool> taken = IsNewPinTaken(pin);
        if (!taken) {
            return false;
        }
        if (*taken) {
            return Sent(m_responses.Status("PIN_REPEATED")) && Sent(m_responses.Data(pin)) &&
                   Sent(m_responses.Ok());
        }
    }
}

std::optional<bool> Session::IsNewPinTaken(const Secret& pin) {
    const std::optional<bool> met = m_options.bConstraints ? MeetsConstraints(pin) : true;
    return met && *met && m_settings.bQuality ? IsGoodEnough(pin) : met;
}

// The client checks the PIN against its own rules, and says why where it takes it not.
std::optional<bool> Session::MeetsConstraints(const Secret& pin) {
    const std::optional<std::string> reason = Inquire("CHECKPIN", pin);
    if (!reason) {
        return std::nullopt;
    }
    if (!reason->empty()) {
        TellRefusal(m_options.strConstraintsErrorTitle, *reason);
    }
    return reason->empty();
}

// The library's dialog has rules in the place of a bar: only what the client calls worse than
// nothing is refused.
std::optional<bool> Session::IsGoodEnough(const Secret& pin) {
    const std::optional<std::string> percent = Inquire("QUALITY", pin);
    if (!percent) {
        return std::nullopt;
    }
    const bool refused = percent->substr(0, 1) == "-";
    if (refused) {
        const std::string& tip = m_settings.texts.strQualityTip;
        TellRefusal("", tip.empty() ? WordsOf(m_options.strLanguage).pszTooSimple : tip);
    }
    return !refused;
}

void Session::TellRefusal(const std::string& strTitle, const std::string& strText) {
    RequestSettings settings;
    settings.texts.strTitle = strTitle;
    settings.texts.strDescription = strText;
    settings.nTimeout = m_settings.nTimeout;
    // Read or not, the PIN is asked for again; a client that has gone is noticed there.
    m_user.Confirm(MakeConfirmation(settings, m_options, true));
}

// None when the request has been answered with an error, or the client has gone.
std::optional<std::string> Session::Inquire(std::string_view keyword, const Secret& pin) {
    if (!Responses::HasRoomFor(keyword, pin)) {
        Fail(ErrorCode::TooLarge);
        return std::nullopt;
    }
    std::string escaped;
    ReplyPart part =
        Sent(m_responses.Inquire(keyword, pin)) ? ReplyPart::More : ReplyPart::ClientGone;
    while (part == ReplyPart::More) {
        InputLine line;
        part = m_channel.Read(line) ? TakeReply(line, escaped) : ReplyPart::ClientGone;
    }
    std::string reply;
    if (part == ReplyPart::End && Unescape(escaped, reply)) {
        return reply;
    }
    if (part == ReplyPart::ClientGone) {
        m_bOver = true;
    } else {
        Fail(ErrorOf(part));
    }
    return std::nullopt;
}

bool Session::OnConfirm(std::string_view text) {
    if (!text.empty() && !SameWord(text, "--one-button")) {
        return Fail(ErrorCode::Parameter);
    }
    return ShowConfirmation(!text.empty());
}

bool Session::OnMessage(std::string_view /*text*/) {
    return ShowConfirmation(true);
}

bool Session::ShowConfirmation(bool bOneButton) {
    const Answer answer = m_user.Confirm(MakeConfirmation(m_settings, m_options, bOneButton));
    m_settings.ForgetWindow();
    // However a message is put away, it has been read.
    const bool read = bOneButton && (answer == Answer::Canceled || answer == Answer::Closed);
    return answer == Answer::Confirmed || read ? Sent(m_responses.Ok()) : RefuseFor(answer);
}

}  // namespace pinentry
