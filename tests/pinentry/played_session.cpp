#include "pinentry/played_session.h"

#include <deque>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "pinentry/core/askpass.h"
#include "pinentry/core/command_line.h"
#include "pinentry/core/session.h"
#include "pinentry/western_code_page.h"

namespace pinentry {
namespace {

// Writes {A*9} out.
std::string Repeated(const std::string& strLine) {
    const auto open = strLine.find('{');
    const auto star = strLine.find('*', open);
    const auto close = strLine.find('}', star);
    if (open == std::string::npos || star == std::string::npos || close == std::string::npos) {
        return strLine;
    }
    std::string text = strLine.substr(0, open);
    for (int left = std::stoi(strLine.substr(star + 1)); left > 0; --left) {
        text += strLine.substr(open + 1, star - open - 1);
    }
    return text + Repeated(strLine.substr(close + 1));
}

std::string Bytes(const std::string& strLine) {
    std::string bytes;
    for (std::size_t i = 0; i < strLine.size(); ++i) {
        if (strLine.compare(i, 2, "\\x") == 0) {
            bytes.push_back(static_cast<char>(std::stoi(strLine.substr(i + 2, 2), nullptr, 16)));
            i += 3;
        } else {
            bytes.push_back(strLine[i]);
        }
    }
    return bytes;
}

std::string OneLine(const std::string& strText) {
    std::string line;
    for (const char ch : strText) {
        line += ch == '\n' ? std::string("\\n") : std::string(1, ch);
    }
    return line;
}

struct Script {
    std::vector<std::string> arguments;
    std::deque<std::string> client;  // with their letters
    std::deque<std::string> user;
};

class PlayedChannel : public Channel {
public:
    PlayedChannel(std::deque<std::string> client, std::string& strEvents)
        : m_client(std::move(client)), m_strEvents(strEvents) {}

    bool Read(InputLine& line) override {
        while (m_lines.empty()) {
            if (m_client.empty()) {
                return false;
            }
            m_strEvents += m_client.front() + "\n";
            const std::string bytes =
                Bytes(m_client.front().substr(3)) + (m_client.front()[0] == 'C' ? "\n" : "");
            m_client.pop_front();
            m_reader.Feed(bytes, [&](InputLine&& read) { m_lines.push_back(std::move(read)); });
        }
        line = std::move(m_lines.front());
        m_lines.pop_front();
        return true;
    }

    bool Write(std::span<const char> bytes) override {
        if (bytes.empty() || bytes.back() != '\n') {
            throw std::runtime_error("not a whole line");
        }
        m_strEvents += "S: " + std::string(bytes.begin(), bytes.end());
        return true;
    }

private:
    std::deque<std::string> m_client;
    std::string& m_strEvents;
    LineReader m_reader;
    std::deque<InputLine> m_lines;
};

class PlayedUser : public UserInterface {
public:
    PlayedUser(std::deque<std::string> acts, std::string& strEvents)
        : m_acts(std::move(acts)), m_strEvents(strEvents) {}

    Answer AskPin(const PinQuestion& question, Secret& pin) override {
        return Ask("PIN", question, pin);
    }
    Answer AskNewPin(const PinQuestion& question, Secret& pin) override {
        return Ask("new PIN", question, pin);
    }
    Answer Confirm(const Confirmation& confirmation) override {
        Show(confirmation.bOneButton ? "message" : "question", confirmation,
             {{"no", confirmation.strNotOk}}, [](const std::string& str) { return str; });
        Secret nothing;
        return Act(nothing);
    }

private:
    Answer Ask(const char* pszKind, const PinQuestion& question, Secret& pin) {
        Show(pszKind, question,
             {{"label", question.strLabel},
              {"repeat", question.strRepeatLabel},
              {"differ", question.strRepeatError},
              {"same", question.strRepeatOk},
              {"mask", question.strMask}},
             [](const std::string& str) {
                 Secret utf8;
                 WesternCodePage().ToUtf8(Secret(str.begin(), str.end()), utf8);
                 return std::string(utf8.begin(), utf8.end());
             });
        return Act(pin);
    }

    template <class ToUtf8>
    void Show(const char* pszKind, const Window& window,
              std::vector<std::pair<const char*, std::string>> parts, ToUtf8&& toUtf8) {
        const auto number = [](std::uint64_t n) { return n == 0 ? "" : std::to_string(n); };
        parts.insert(parts.begin(), {{"title", window.strTitle}, {"text", window.strText}});
        parts.insert(parts.end(), {{"ok", window.strOk},
                                   {"cancel", window.strCancel},
                                   {"parent", number(window.nParent)},
                                   {"seconds", number(window.nTimeout)},
                                   {"language", window.strLanguage}});
        m_strEvents += std::string("W: ") + pszKind;
        for (const auto& [name, text] : parts) {
            if (!text.empty()) {
                m_strEvents += std::string("; ") + name + ": " + OneLine(toUtf8(text));
            }
        }
        m_strEvents += "\n";
    }

    Answer Act(Secret& pin) {
        static const std::map<std::string, Answer> kAnswers{
            {"types", Answer::Confirmed},
            {"confirms", Answer::Confirmed},
            {"refuses", Answer::NotConfirmed},
            {"cancels", Answer::Canceled},
            {"closes", Answer::Closed},
            {"waits", Answer::TimedOut},
            {"is left", Answer::ClientGone},
            {"sees nothing", Answer::NotShown},
            {"types too much", Answer::NoPlaceForIt}};
        if (m_acts.empty()) {
            throw std::runtime_error("nobody is there to answer a window");
        }
        const std::string act = m_acts.front();
        m_acts.pop_front();
        m_strEvents += act + "\n";
        const std::string word = act.substr(3);
        if (word.rfind("types ", 0) == 0 && !kAnswers.contains(word)) {
            std::string text;
            WesternCodePage().FromUtf8(Bytes(word.substr(6)), text);
            pin.assign(text.begin(), text.end());
            return Answer::Confirmed;
        }
        return kAnswers.at(word);
    }

    std::deque<std::string> m_acts;
    std::string& m_strEvents;
};

Script Parse(const std::string& strTranscript) {
    Script script;
    std::istringstream lines(WithoutComments(strTranscript));
    for (std::string line; std::getline(lines, line);) {
        const std::string rest = line.substr(3);
        if (line[0] == 'L') {
            script.arguments.push_back(rest);
        } else if (line[0] == 'C' || line[0] == 'c') {
            script.client.push_back(line);
        } else if (line[0] == 'U') {
            script.user.push_back(line);
        }
    }
    return script;
}

}  // namespace

std::string WithoutComments(const std::string& strTranscript) {
    std::string text;
    std::istringstream lines(strTranscript);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        line = Repeated(line);
        for (std::size_t at = 0; (at = line.find(" | ", at)) != std::string::npos;) {
            line.replace(at, 3, "\n");
        }
        text += line + "\n";
    }
    return text;
}

std::string Play(const std::string& strTranscript) {
    const Script script = Parse(strTranscript);
    std::string events;
    // Of L lines one is the hint that a client leaves in the environment.
    std::vector<std::string> arguments;
    std::string hint;
    for (const std::string& argument : script.arguments) {
        events += "L: " + argument + "\n";
        if (argument.rfind("hint ", 0) == 0) {
            hint = argument.substr(5);
        } else {
            arguments.push_back(Bytes(argument));
        }
    }
    std::string fault;
    const auto line = ParseCommandLine(arguments, fault);
    if (!line) {
        return events + "X: 2 " + fault + "\n";
    }
    PlayedChannel channel(script.client, events);
    PlayedUser user(script.user, events);
    const WesternCodePage codePage;
    if (line->strPrompt) {
        const int code = RunAskpass({*line->strPrompt, hint, line->options, line->nTimeout},
                                    channel, user, codePage);
        return events + "X: " + std::to_string(code) + "\n";
    }
    Session(channel, user, codePage, {4711, "1.0.0"}, line->options, line->nTimeout).Run();
    const std::size_t greeting = events.find("S: OK Pleased to meet you\n");
    if (greeting == std::string::npos) {
        throw std::runtime_error("the client was not greeted");
    }
    return events.erase(greeting, events.find('\n', greeting) + 1 - greeting);
}

}  // namespace pinentry
