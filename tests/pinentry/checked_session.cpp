#include "pinentry/checked_session.h"

#include <algorithm>
#include <deque>

#include "pinentry/core/escaping.h"
#include "pinentry/core/session.h"
#include "pinentry/western_code_page.h"

namespace pinentry {
namespace {

bool BeginsWith(std::string_view text, std::string_view with) {
    return text.substr(0, with.size()) == with;
}

class CheckedChannel : public Channel {
public:
    explicit CheckedChannel(std::string_view bytes) {
        // In pieces, as a pipe gives them.
        LineReader reader;
        for (std::size_t i = 0; i < bytes.size(); i += 7) {
            const std::string_view piece = bytes.substr(i, 7);
            reader.Feed({piece.data(), piece.size()},
                        [&](InputLine&& line) { m_lines.push_back(std::move(line)); });
        }
    }

    bool Read(InputLine& line) override {
        if (m_lines.empty()) {
            return false;
        }
        line = std::move(m_lines.front());
        m_lines.pop_front();
        Check(line.text.size() <= LineReader::kMaxLine, "a line came that is too long");
        Check(!line.bTooLong || line.text.empty(), "a part of a line came");
        const bool isRequest =
            !m_bInquiring && (line.bTooLong || (!line.text.empty() && line.text[0] != '#'));
        Check(!isRequest || m_nOpen == 0, "a request was read before the last one was answered");
        m_nOpen += isRequest ? 1 : 0;
        return true;
    }

    bool Write(std::span<const char> bytes) override {
        const std::string_view line(bytes.data(), bytes.size());
        Check(!line.empty() && line.find('\n') == line.size() - 1, "not one line went out");
        Check(line.size() <= 1001, "a line went out that is too long");
        const bool isEnd = BeginsWith(line, "OK") || BeginsWith(line, "ERR 8388");
        m_bInquiring = BeginsWith(line, "INQUIRE ");
        Check(isEnd || m_bInquiring || BeginsWith(line, "D ") || BeginsWith(line, "S ") ||
                  BeginsWith(line, "# "),
              "a line of no kind went out");
        if (isEnd) {
            --m_nOpen;
        }
        Check(m_nOpen >= 0, "a request was answered twice");
        return true;
    }

    void Check(bool bHolds, const char* pszElse) {
        if (!bHolds && m_strFault.empty()) {
            m_strFault = pszElse;
        }
    }
    std::string Fault() {
        Check(m_nOpen == 0 || m_bInquiring || m_bLeft, "a request was not answered");
        return m_strFault;
    }
    void Leave() { m_bLeft = true; }

private:
    std::deque<InputLine> m_lines;
    std::string m_strFault;
    int m_nOpen = 1;  // the greeting is an answer, too
    bool m_bInquiring = false;
    bool m_bLeft = false;
};

// Answers in turn what there is to answer, and looks at what is shown.
class CheckingUser : public UserInterface {
public:
    CheckingUser(CheckedChannel& channel, std::size_t nSeed) : m_channel(channel), m_nTurn(nSeed) {}

    Answer AskPin(const PinQuestion& question, Secret& pin) override {
        Look(question.strLabel);
        Look(question.strRepeatLabel);
        Look(question.strRepeatError);
        return Act(question, pin);
    }
    Answer AskNewPin(const PinQuestion& question, Secret& pin) override {
        return AskPin(question, pin);
    }
    Answer Confirm(const Confirmation& confirmation) override {
        Look(confirmation.strNotOk);
        m_channel.Check(IsUtf8(confirmation.strText), "a question is no UTF-8");
        Secret nothing;
        return Act(confirmation, nothing);
    }

private:
    void Look(const std::string& strLabel) {
        m_channel.Check(std::none_of(strLabel.begin(), strLabel.end(),
                                     [](char ch) { return ch >= '\0' && ch < ' '; }),
                        "a label holds control characters");
    }

    Answer Act(const Window& window, Secret& pin) {
        Look(window.strTitle);
        Look(window.strOk);
        Look(window.strCancel);
        m_channel.Check(window.nTimeout <= kMaxTimeout, "no timer takes that long");
        const std::size_t turn = m_nTurn++ % 11;
        pin.assign(turn * 180, turn % 2 == 0 ? '%' : '\xE4');
        const auto answer = static_cast<Answer>(turn);
        if (answer == Answer::ClientGone) {
            m_channel.Leave();
        }
        return answer <= Answer::NoPlaceForIt ? answer : Answer::Confirmed;
    }

    CheckedChannel& m_channel;
    std::size_t m_nTurn;
};

}  // namespace

std::string FaultOfSession(std::string_view bytes) {
    CheckedChannel channel(bytes);
    CheckingUser user(channel, bytes.size());
    const WesternCodePage codePage;
    Session(channel, user, codePage, {1, "1.0.0"}).Run();
    return channel.Fault();
}

}  // namespace pinentry
