#include "pinhost/piv_card.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
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

// What is sent of a text. Nothing when it would be cut or ends in padding: the card would take it
// for another one.
Apdu Padded(std::span<const char> text) {
    Apdu block;
    if (text.size() <= kReferenceLength &&
        std::find(text.begin(), text.end(), static_cast<char>(kPadding)) == text.end()) {
        block.reserve(kReferenceLength);
        block.assign(text.begin(), text.end());
        block.resize(text.empty() ? 0 : kReferenceLength, kPadding);
    }
    return block;
}

// -1: no hexadecimal digit.
int DigitValue(char ch) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const char upper = ch >= 'a' && ch <= 'f' ? static_cast<char>(ch - 'a' + 'A') : ch;
    const std::size_t value = kDigits.find(upper);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

// The dialogs take an unlock code as 16 hexadecimal digits, which stand for its 8 bytes; what is
// shorter is its text.
Apdu UnlockBlock(std::span<const char> code) {
    if (code.size() != 2 * kReferenceLength) {
        return Padded(code);
    }
    Apdu block;
    block.reserve(kReferenceLength);
    for (std::size_t i = 0; i < code.size(); i += 2) {
        const int high = DigitValue(code[i]);
        const int low = DigitValue(code[i + 1]);
        if (high < 0 || low < 0) {
            return {};
        }
        block.push_back(static_cast<unsigned char>(high * 16 + low));
    }
    return block;
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
    const Apdu data = Padded(pin);
    if (data.empty()) {
        return Verdict::Wrong;
    }
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
    return Replace(kChange, Padded(oldPin), newPin, tries);
}

Verdict PivCard::Unlock(std::span<const char> code, std::span<const char> newPin) {
    static constexpr Instruction kUnlock{0x2C, 0x00, kPin, "RESET RETRY COUNTER"};
    return Replace(kUnlock, UnlockBlock(code), newPin, m_unlocksLeft);
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

Verdict PivCard::Replace(const Instruction& instruction, const Apdu& proof,
                         std::span<const char> newPin, std::optional<std::uint32_t>& triesLeft) {
    const Apdu replacement = Padded(newPin);
    if (replacement.empty()) {
        return Verdict::Refused;
    }
    if (proof.empty()) {
        return Verdict::Wrong;
    }
    Apdu data;
    data.reserve(proof.size() + replacement.size());
    data.assign(proof.begin(), proof.end());
    data.insert(data.end(), replacement.begin(), replacement.end());
    Exchange exchange(*m_channel);
    Select();
    const Verdict verdict = Send(instruction, data).Judge(triesLeft);
    if (verdict == Verdict::Accepted) {
        exchange.ResetAtEnd();
    }
    return verdict;
}

}  // namespace pinhost
