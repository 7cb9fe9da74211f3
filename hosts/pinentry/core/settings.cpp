#include "pinentry/core/settings.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "pinentry/core/escaping.h"

namespace pinentry {
namespace {

// Options that change nothing here: what they ask for the system or the library does its own way.
constexpr std::array kAccepted{
    "grab",
    "no-grab",
    "debug-wait",
    "lc-ctype",
    "owner",
    "touch-file",
    "ttyalert",
    "default-yes",
    "default-no",
    "default-pwmngr",
    "default-cf-visi",
    "default-tt-visi",
    "default-tt-hide",
    "default-capshint",
    "allow-external-password-cache",
    "allow-emacs-prompt",
    "formatted-passphrase",
    "formatted-passphrase-hint",
};

struct TextOption {
    const char* pszName;
    std::string ConnectionOptions::*pText;
};

// Texts that are shown come escaped; the others are names.
constexpr std::array kShownTexts{
    TextOption{"default-ok", &ConnectionOptions::strDefaultOk},
    TextOption{"default-cancel", &ConnectionOptions::strDefaultCancel},
    TextOption{"default-prompt", &ConnectionOptions::strDefaultPrompt},
    TextOption{"constraints-hint-short", &ConnectionOptions::strConstraintsHint},
    TextOption{"constraints-hint-long", &ConnectionOptions::strConstraintsLongHint},
    TextOption{"constraints-error-title", &ConnectionOptions::strConstraintsErrorTitle},
    TextOption{"display", &ConnectionOptions::strDisplay},
    TextOption{"ttyname", &ConnectionOptions::strTtyName},
    TextOption{"ttytype", &ConnectionOptions::strTtyType},
};

constexpr std::string_view kSpaces = " \t";

std::string_view WithoutLeadingSpaces(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kSpaces), text.size()));
    return text;
}

// Two letters at the front of a locale's name, such as de_DE.UTF-8.
std::string LanguageOf(std::string_view locale) {
    const auto isLetter = [](char ch) { return ch >= 'a' && ch <= 'z'; };
    const bool named = locale.size() >= 2 && isLetter(locale[0]) && isLetter(locale[1]) &&
                       (locale.size() == 2 || !isLetter(locale[2]));
    return named ? std::string(locale.substr(0, 2)) : "";
}

// Line feeds are kept; other control characters would be drawn as anything.
std::string Shown(std::string text) {
    std::erase(text, '\r');
    std::replace_if(
        text.begin(), text.end(),
        [](char ch) { return (ch >= '\0' && ch < ' ' && ch != '\n') || ch == '\x7F'; }, ' ');
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

bool IsOneCharacter(std::string_view text) {
    const auto begins = [](char ch) { return (static_cast<unsigned char>(ch) & 0xC0U) != 0x80U; };
    return IsUtf8(text) && Shown(std::string(text)) == text &&
           std::count_if(text.begin(), text.end(), begins) == 1;
}

std::string OneLine(const std::string& strText) {
    std::string line = Shown(strText);
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

// One line. The first "_" marks the access key, two stand for one.
std::string Label(const std::string& strText) {
    std::string label;
    bool hasKey = false;
    const std::string shown = OneLine(strText);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const char ch = shown[i];
        const bool isMark = ch == '_' && i + 1 < shown.size();
        if (isMark && shown[i + 1] != '_' && !hasKey) {
            label.push_back('&');
            hasKey = true;
            continue;
        }
        label.append(ch == '&' ? "&&" : std::string(1, ch));
        i += isMark && shown[i + 1] == '_' ? 1U : 0U;
    }
    return label;
}

const std::string& FirstSet(const std::string& str, const std::string& strElse) {
    return str.empty() ? strElse : str;
}

std::string Paragraphs(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts) {
        if (!part.empty()) {
            text.append(text.empty() ? "" : "\n\n").append(part);
        }
    }
    return text;
}

void FillWindow(const RequestSettings& settings, const ConnectionOptions& options, Window& window) {
    const RequestTexts& texts = settings.texts;
    window.strTitle = OneLine(texts.strTitle);
    // What was wrong is what the user has to see first.
    window.strText = Paragraphs({Shown(texts.strError), Shown(texts.strDescription)});
    window.strOk = Label(FirstSet(texts.strOk, options.strDefaultOk));
    window.strCancel = Label(FirstSet(texts.strCancel, options.strDefaultCancel));
    window.nParent = options.nParent;
    window.nTimeout = settings.nTimeout;
    window.strLanguage = options.strLanguage;
}

}  // namespace

void RequestSettings::ForgetWindow() {
    texts.strError.clear();
    texts.strRepeat.clear();
    texts.strRepeatError.clear();
    texts.strRepeatOk.clear();
    texts.strQualityTip.clear();
    bRepeat = false;
    bQuality = false;
}

std::optional<ErrorCode> ConnectionOptions::Set(std::string_view option) {
    option = WithoutLeadingSpaces(option);
    if (option.substr(0, 2) == "--") {
        option.remove_prefix(2);
    }
    const std::size_t nameEnd = std::min(option.find_first_of(" \t="), option.size());
    const std::string_view name = option.substr(0, nameEnd);
    if (name.empty() || name.front() == '-') {
        return ErrorCode::Syntax;
    }
    std::string_view value = WithoutLeadingSpaces(option.substr(nameEnd));
    if (!value.empty() && value.front() == '=') {
        value = WithoutLeadingSpaces(value.substr(1));
    }
    return SetValue(name, value);
}

std::optional<ErrorCode> ConnectionOptions::SetValue(std::string_view name,
                                                     std::string_view value) {
    for (const TextOption& text : kShownTexts) {
        if (name == text.pszName) {
            const bool taken = Unescape(value, this->*text.pText);
            return taken ? std::nullopt : std::optional(ErrorCode::InvalidValue);
        }
    }
    if (name == "lc-messages") {
        strLanguage = LanguageOf(value);
        return std::nullopt;
    }
    if (name == "invisible-char") {
        const bool taken = value.empty() || IsOneCharacter(value);
        strMask = taken ? value : "";
        return taken ? std::nullopt : std::optional(ErrorCode::InvalidValue);
    }
    if (name == "constraints-enforce") {
        bConstraints = true;
        return std::nullopt;
    }
    if (name == "parent-wid") {
        const auto number = Number(value, UINT64_MAX);
        nParent = number.value_or(0);
        return number ? std::nullopt : std::optional(ErrorCode::InvalidValue);
    }
    const bool accepted = std::find(kAccepted.begin(), kAccepted.end(), name) != kAccepted.end();
    return accepted ? std::nullopt : std::optional(ErrorCode::UnknownOption);
}

bool MakePinQuestion(const RequestSettings& settings, const ConnectionOptions& options,
                     const CodePage& codePage, PinQuestion& question) {
    FillWindow(settings, options, question);
    question.strMask = options.strMask;
    question.strLabel = Label(FirstSet(settings.texts.strPrompt, options.strDefaultPrompt));
    if (settings.bRepeat) {
        question.strRepeatLabel = Label(settings.texts.strRepeat);
        question.strRepeatError = OneLine(settings.texts.strRepeatError);
        question.strRepeatOk = OneLine(settings.texts.strRepeatOk);
        if (options.bConstraints) {
            question.strText = Paragraphs({question.strText, Shown(options.strConstraintsHint)});
        }
    }
    const auto convert = [&](std::string* pText) {
        const std::string utf8 = *pText;
        return codePage.FromUtf8(utf8, *pText);
    };
    // For these the dialog has something of its own: they are no reason not to ask.
    for (std::string* words :
         {&question.strRepeatError, &question.strRepeatOk, &question.strMask}) {
        if (!convert(words)) {
            words->clear();
        }
    }
    const std::array texts{&question.strTitle,  &question.strText,  &question.strOk,
                           &question.strCancel, &question.strLabel, &question.strRepeatLabel};
    return std::all_of(texts.begin(), texts.end(), convert);
}

Confirmation MakeConfirmation(const RequestSettings& settings, const ConnectionOptions& options,
                              bool bOneButton) {
    Confirmation confirmation;
    FillWindow(settings, options, confirmation);
    confirmation.bOneButton = bOneButton;
    if (bOneButton) {
        confirmation.strCancel.clear();
    } else {
        confirmation.strNotOk = Label(settings.texts.strNotOk);
    }
    return confirmation;
}

std::optional<std::uint64_t> Number(std::string_view text, std::uint64_t nMax) {
    if (text.empty()) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (const char ch : text) {
        const auto digit = static_cast<std::uint64_t>(ch - '0');
        if (ch < '0' || ch > '9' || number > (nMax - digit) / 10) {
            return std::nullopt;
        }
        number = number * 10 + digit;
    }
    return number;
}

}  // namespace pinentry
