#include "pinentry/core/askpass.h"

#include "pinentry/core/escaping.h"
#include "pinentry/core/words.h"

namespace pinentry {
namespace {

int ExitCodeOf(Answer answer) {
    switch (answer) {
        case Answer::Confirmed:
            return kAskpassAnswered;
        case Answer::NotShown:
        case Answer::NoPlaceForIt:
            return kAskpassFailed;
        default:
            return kAskpassCanceled;
    }
}

int PrintSecret(const Secret& pin, const CodePage& codePage, Channel& output) {
    Secret line;
    if (!codePage.ToUtf8(pin, line)) {
        return kAskpassFailed;
    }
    Secret ended;
    ended.reserve(line.size() + 1);
    ended.assign(line.begin(), line.end());
    ended.push_back('\n');
    return output.Write(ended) ? kAskpassAnswered : kAskpassFailed;
}

int AskSecret(const RequestSettings& settings, const ConnectionOptions& options, Channel& output,
              UserInterface& user, const CodePage& codePage) {
    PinQuestion question;
    if (!MakePinQuestion(settings, options, codePage, question)) {
        return kAskpassFailed;
    }
    Secret pin;
    const Answer answer = user.AskPin(question, pin);
    return answer == Answer::Confirmed ? PrintSecret(pin, codePage, output) : ExitCodeOf(answer);
}

int AskYesNo(const Confirmation& confirmation, Channel& output, UserInterface& user) {
    const Answer answer = user.Confirm(confirmation);
    if (answer != Answer::Confirmed && answer != Answer::NotConfirmed) {
        return ExitCodeOf(answer);
    }
    const std::string_view line = answer == Answer::Confirmed ? "yes\n" : "no\n";
    return output.Write({line.data(), line.size()}) ? kAskpassAnswered : kAskpassFailed;
}

}  // namespace

AskpassKind KindOf(std::string_view prompt, std::string_view hint) {
    if (hint == "confirm") {
        return AskpassKind::Confirm;
    }
    if (hint == "none") {
        return AskpassKind::Message;
    }
    const bool isQuestion = prompt.find("(yes/no") != std::string_view::npos ||
                            prompt.find("'yes' or 'no'") != std::string_view::npos;
    return isQuestion ? AskpassKind::YesNo : AskpassKind::Typed;
}

int RunAskpass(const AskpassRequest& request, Channel& output, UserInterface& user,
               const CodePage& codePage) {
    if (!IsUtf8(request.strPrompt)) {
        return kAskpassFailed;
    }
    const Words& words = WordsOf(request.options.strLanguage);
    RequestSettings settings;
    settings.texts.strDescription = request.strPrompt;
    settings.texts.strPrompt = words.pszAnswer;
    settings.nTimeout = request.nTimeout;
    const AskpassKind kind = KindOf(request.strPrompt, request.strHint);
    if (kind == AskpassKind::Typed) {
        return AskSecret(settings, request.options, output, user, codePage);
    }
    if (kind != AskpassKind::Message) {
        settings.texts.strOk = words.pszYes;
    }
    if (kind == AskpassKind::YesNo) {
        settings.texts.strNotOk = words.pszNo;
    } else if (kind == AskpassKind::Confirm) {
        settings.texts.strCancel = words.pszNo;
    }
    const Confirmation confirmation =
        MakeConfirmation(settings, request.options, kind == AskpassKind::Message);
    return kind == AskpassKind::YesNo ? AskYesNo(confirmation, output, user)
                                      : ExitCodeOf(user.Confirm(confirmation));
}

}  // namespace pinentry
