#include "pinhost/piv_card.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace pinhost {
namespace {

constexpr std::size_t kReferenceLength = 8;  // of a PIN or unlock code as it is sent
constexpr unsigned char kPadding = 0xFF;
constexpr unsigned char kPin = 0x80;  // the application's PIN among its references

// The application's identifier without its version, so that a card selects the version it has.
constexpr std::array<unsigned char, 9> kApplication{0xA0, 0x00, 0x00, 0x03, 0x08,
                                                    0x00, 0x00, 0x10, 0x00};

namespace status {
constexpr unsigned kSuccess = 0x9000;
constexpr unsigned kMoreData = 0x6100;   // success, too; the lower byte counts what can be fetched
constexpr unsigned kTriesLeft = 0x63C0;  // the last digit counts them
constexpr unsigned kBlocked = 0x6983;
constexpr unsigned kIncorrectData = 0x6A80;  // a new PIN that breaks the card's rules
constexpr unsigned kNotFound = 0x6A82;
}  // namespace status

// A text that would be cut, or that ends in padding, is another one for the card.
bool CanBeSent(std::span<const char> text) {
    return !text.empty() && text.size() <= kReferenceLength &&
           std::find(text.begin(), text.end(), static_cast<char>(kPadding)) == text.end();
}

void AppendPadded(Apdu& data, std::span<const char> text) {
    data.insert(data.end(), text.begin(), text.end());
    data.insert(data.end(), kReferenceLength - text.size(), kPadding);
}

// One exchange that no other program's commands come into.
class Exchange {
public:
    explicit Exchange(IApduChannel& channel) : m_channel(channel) { m_channel.Begin(); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange() { m_channel.End(m_bReset); }

    void ResetAtEnd() noexcept { m_bReset = true; }

private:
    IApduChannel& m_channel;
    bool m_bReset = false;
};

}  // namespace

struct PivCard::Instruction {
    unsigned char code;
    unsigned char p1;
    unsigned char p2;
    const char* pszName;
};

struct PivCard::Answer {
    const Instruction& instruction;
    unsigned nStatus;

    bool IsSuccess() const noexcept {
        return nStatus == status::kSuccess || (nStatus & 0xFF00U) == status::kMoreData;
    }

    // Of a command that proves something; `triesLeft` is what the card tells of that.
    Verdict Judge(std::optional<std::uint32_t>& triesLeft) const {
        triesLeft.reset();
        if (IsSuccess()) {
            return Verdict::Accepted;
        }
        if ((nStatus & 0xFFF0U) == status::kTriesLeft) {
            triesLeft = nStatus & 0xFU;
            return *triesLeft == 0 ? Verdict::Blocked : Verdict::Wrong;
        }
        if (nStatus == status::kBlocked) {
            triesLeft = 0;
            return Verdict::Blocked;
        }
        if (nStatus == status::kIncorrectData) {
            return Verdict::Refused;
        }
        Fail();
    }

    [[noreturn]] void Fail() const {
        std::array<char, 96> text{};
        std::snprintf(text.data(), text.size(), "the card answered %s with status %04X",
                      instruction.pszName, nStatus);
        throw CardError(text.data());
    }
};

PivCard::PivCard(std::unique_ptr<IApduChannel> channel, Secret transportPin)
    : m_channel(std::move(channel)), m_transportPin(std::move(transportPin)) {}

CardPolicy PivCard::Policy() const {
    CardPolicy policy;
    policy.bPreventAlphaPin = true;
    policy.dwMinPinLength = 6;
    policy.dwMaxPinLength = kReferenceLength;
    return policy;
}

std::optional<std::uint32_t> PivCard::TriesLeft() {
    static constexpr Instruction kAsk{0x20, 0x00, kPin, "the question for its tries"};
    const Exchange exchange(*m_channel);
    Select();
    std::optional<std::uint32_t> tries;
    if (Send(kAsk, {}).Judge(tries) == Verdict::Refused) {
        throw CardError("the card does not tell its tries");
    }
    return tries;
}

Verdict PivCard::Verify(std::span<const char> pin) {
    static constexpr Instruction kVerify{0x20, 0x00, kPin, "VERIFY"};
    if (!CanBeSent(pin)) {
        return Verdict::Wrong;
    }
    Apdu data;
    data.reserve(kReferenceLength);
    AppendPadded(data, pin);
    Exchange exchange(*m_channel);
    Select();
    std::optional<std::uint32_t> tries;
    const Verdict verdict = Send(kVerify, data).Judge(tries);
    if (verdict == Verdict::Accepted) {
        exchange.ResetAtEnd();
    }
    // There is no new PIN that could be refused: this one cannot be the card's.
    return verdict == Verdict::Refused ? Verdict::Wrong : verdict;
}

Verdict PivCard::Change(std::span<const char> oldPin, std::span<const char> newPin) {
    static constexpr Instruction kChange{0x24, 0x00, kPin, "CHANGE REFERENCE DATA"};
    std::optional<std::uint32_t> tries;
    return Replace(kChange, oldPin, newPin, tries);
}

Verdict PivCard::Unlock(std::span<const char> code, std::span<const char> newPin) {
    static constexpr Instruction kUnlock{0x2C, 0x00, kPin, "RESET RETRY COUNTER"};
    return Replace(kUnlock, code, newPin, m_unlocksLeft);
}

Verdict PivCard::Initialize(std::span<const char> newPin, const FirstPinRules& /*rules*/) {
    return Change(m_transportPin, newPin);
}

Verdict PivCard::Reset(std::span<const char> proof, bool bByPin) {
    return bByPin ? Change(proof, m_transportPin) : Unlock(proof, m_transportPin);
}

void PivCard::Select() {
    static constexpr Instruction kSelect{0xA4, 0x04, 0x00, "SELECT"};
    const Answer answer = Send(kSelect, kApplication);
    if (answer.nStatus == status::kNotFound) {
        throw CardError("the card has no PIV application");
    }
    if (!answer.IsSuccess()) {
        answer.Fail();
    }
}

PivCard::Answer PivCard::Send(const Instruction& instruction, std::span<const unsigned char> data) {
    Apdu command{0x00, instruction.code, instruction.p1, instruction.p2};
    if (!data.empty()) {
        command.reserve(command.size() + 1 + data.size());
        command.push_back(static_cast<unsigned char>(data.size()));
        command.insert(command.end(), data.begin(), data.end());
    }
    const Apdu answer = m_channel->Transmit(command);
    if (answer.size() < 2) {
        throw CardError("the card answered without a status");
    }
    const auto word = std::span(answer).last<2>();
    return {instruction, static_cast<unsigned>(word[0]) << 8 | word[1]};
}

Verdict PivCard::Replace(const Instruction& instruction, std::span<const char> proof,
                         std::span<const char> newPin, std::optional<std::uint32_t>& triesLeft) {
    if (!CanBeSent(newPin)) {
        return Verdict::Refused;
    }
    if (!CanBeSent(proof)) {
        return Verdict::Wrong;
    }
    Apdu data;
    data.reserve(2 * kReferenceLength);
    AppendPadded(data, proof);
    AppendPadded(data, newPin);
    Exchange exchange(*m_channel);
    Select();
    const Verdict verdict = Send(instruction, data).Judge(triesLeft);
    if (verdict == Verdict::Accepted) {
        exchange.ResetAtEnd();
    }
    return verdict;
}

}  // namespace pinhost
