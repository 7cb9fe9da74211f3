#include "pinhost/card_file.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

namespace pinhost {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMaxFileSize = 16384;
constexpr std::size_t kMaxReaderLength = 127;
constexpr std::uint32_t kMaxTries = 255;

[[noreturn]] void Refuse(const char* pszField, const char* pszFault) {
    std::string text(1, '"');
    throw CardFileError(text.append(pszField).append("\" ").append(pszFault));
}

// Text holds PINs: the document is overwritten when it goes.
class Document {
public:
    explicit Document(Json json) : m_json(std::move(json)) {}
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document() {
        for (Json& value : m_json) {
            if (auto* text = value.get_ptr<std::string*>()) {
                Wipe(text->data(), text->size());
            }
        }
    }
    const Json& Root() const { return m_json; }

private:
    Json m_json;
};

const Json& Field(const Json& object, const char* pszField) {
    const auto it = object.find(pszField);
    if (it == object.end()) {
        Refuse(pszField, "is missing");
    }
    return *it;
}

const std::string& TextField(const Json& object, const char* pszField) {
    const Json& value = Field(object, pszField);
    if (!value.is_string()) {
        Refuse(pszField, "is not a text");
    }
    return value.get_ref<const std::string&>();
}

std::uint32_t NumberField(const Json& object, const char* pszField, std::uint32_t nMax) {
    const Json& value = Field(object, pszField);
    if (!value.is_number_unsigned()) {
        Refuse(pszField, "is not a whole number");
    }
    const auto number = value.get<std::uint64_t>();
    if (number > nMax) {
        Refuse(pszField, "is too large");
    }
    return static_cast<std::uint32_t>(number);
}

// A field that older files lack; it keeps its default then.
bool Has(const Json& object, const char* pszField) {
    return object.contains(pszField);
}

bool FlagField(const Json& object, const char* pszField) {
    const Json& value = Field(object, pszField);
    if (!value.is_boolean()) {
        Refuse(pszField, "is neither true nor false");
    }
    return value.get<bool>();
}

std::string ReaderField(const Json& object) {
    const std::string& reader = TextField(object, "reader");
    if (reader.size() > kMaxReaderLength) {
        Refuse("reader", "is too long");
    }
    if (std::any_of(reader.begin(), reader.end(),
                    [](char ch) { return static_cast<unsigned char>(ch) < 0x20; })) {
        Refuse("reader", "has control characters");
    }
    return reader;
}

// The text is valid UTF-8: the parser has seen to it.
Secret SecretField(const Json& object, const char* pszField) {
    const std::string& text = TextField(object, pszField);
    Secret secret;
    secret.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0xC4) {
            Refuse(pszField, "has a character beyond U+00FF");
        }
        if (byte < 0x80) {
            secret.push_back(text[i]);
        } else {
            secret.push_back(static_cast<char>(((byte & 0x03) << 6) |
                                               (static_cast<unsigned char>(text[++i]) & 0x3F)));
        }
    }
    if (secret.empty() || secret.size() > kMaxSecretLength) {
        Refuse(pszField, "is empty or too long");
    }
    return secret;
}

// What the card may be without: null stands for that.
Secret OptionalSecretField(const Json& object, const char* pszField) {
    return Field(object, pszField).is_null() ? Secret() : SecretField(object, pszField);
}

std::string ChallengeField(const Json& object) {
    const std::string& text = TextField(object, "challenge");
    const auto isDigit = [](char ch) {
        return (ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'F');
    };
    if (!std::all_of(text.begin(), text.end(), isDigit) ||
        (!text.empty() && text.size() != kChallengeDigits)) {
        Refuse("challenge", "is not 16 hexadecimal digits");
    }
    return text;
}

Json SecretText(const Secret& secret) {
    if (secret.empty()) {
        return nullptr;
    }
    std::string text;
    text.reserve(secret.size() * 2);
    for (const char ch : secret) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte >= 0x80) {
            text.push_back(static_cast<char>(0xC0 | (byte >> 6)));
        }
        text.push_back(byte < 0x80 ? ch : static_cast<char>(0x80 | (byte & 0x3F)));
    }
    return text;
}

CardPolicy PolicyField(const Json& object) {
    const Json& value = Field(object, "policy");
    if (!value.is_object()) {
        Refuse("policy", "is not an object");
    }
    constexpr auto kAny = std::numeric_limits<std::uint32_t>::max();
    CardPolicy policy;
    policy.dwMinPinLength = NumberField(value, "minLength", kAny);
    policy.dwMaxPinLength = NumberField(value, "maxLength", kAny);
    policy.bPreventAlphaPin = FlagField(value, "digitsOnly");
    policy.bPreventWeakPin = FlagField(value, "notWeak");
    policy.bPreventSamePin = FlagField(value, "notSame");
    if (Has(value, "forceChange")) {
        policy.bForceChangePin = FlagField(value, "forceChange");
    }
    if (policy.dwMinPinLength > policy.dwMaxPinLength) {
        Refuse("minLength", "is greater than \"maxLength\"");
    }
    return policy;
}

// One number of tries and the most that there are; older files lack those of the unlock code.
void ReadTries(const Json& root, const char* pszLeft, const char* pszMost, std::uint32_t& nLeft,
               std::uint32_t& nMost) {
    nMost = NumberField(root, pszMost, kMaxTries);
    nLeft = NumberField(root, pszLeft, kMaxTries);
    if (nMost == 0) {
        Refuse(pszMost, "is 0");
    }
    if (nLeft > nMost) {
        const std::string fault = std::string("is greater than \"") + pszMost + '"';
        Refuse(pszLeft, fault.c_str());
    }
}

// What older files lack.
void ReadUnlocking(const Json& root, SoftwareCard& card) {
    if (Has(root, "unlocksLeft") || Has(root, "maxUnlocks")) {
        ReadTries(root, "unlocksLeft", "maxUnlocks", card.nUnlocksLeft, card.nMaxUnlocks);
    }
    if (Has(root, "unlockCodeSeen")) {
        card.bUnlockCodeSeen = FlagField(root, "unlockCodeSeen");
    }
    if (Has(root, "challengeKey")) {
        card.challengeKey = SecretField(root, "challengeKey");
    }
    if (Has(root, "challenge")) {
        card.strChallenge = ChallengeField(root);
    }
}

SoftwareCard CardOf(const Json& root) {
    if (!root.is_object()) {
        throw CardFileError("it is not a JSON object");
    }
    SoftwareCard card;
    card.strReader = ReaderField(root);
    card.pin = OptionalSecretField(root, "pin");
    card.unlockCode = OptionalSecretField(root, "unlockCode");
    ReadTries(root, "triesLeft", "maxTries", card.nTriesLeft, card.nMaxTries);
    ReadUnlocking(root, card);
    card.policy = PolicyField(root);
    return card;
}

[[noreturn]] void RefuseFile(const std::filesystem::path& file, const std::string& strFault) {
    const std::u8string fileName = file.u8string();
    throw CardFileError("card file " + std::string(fileName.begin(), fileName.end()) + ": " +
                        strFault);
}

// Without a buffer of its own, which nobody would overwrite.
template <class Stream>
Stream OpenUnbuffered(const std::filesystem::path& file, std::ios::openmode mode) {
    Stream stream;
    stream.rdbuf()->pubsetbuf(nullptr, 0);
    stream.open(file, mode | std::ios::binary);
    return stream;
}

// One byte more than allowed, for the parser to refuse.
Secret ReadAll(std::istream& stream) {
    Secret text(kMaxFileSize + 1);
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

}  // namespace

SoftwareCard ParseCard(std::string_view text) {
    if (text.size() > kMaxFileSize) {
        throw CardFileError("it is too large");
    }
    try {
        const Document document(Json::parse(text));
        return CardOf(document.Root());
    } catch (const Json::exception&) {
        // The parser's own text quotes what it read, which may be the PIN.
        throw CardFileError("it is not valid JSON");
    }
}

Secret FormatCard(const SoftwareCard& card) {
    const Document document(Json{
        {"reader", card.strReader},
        {"pin", SecretText(card.pin)},
        {"unlockCode", SecretText(card.unlockCode)},
        {"unlockCodeSeen", card.bUnlockCodeSeen},
        {"challengeKey", SecretText(card.challengeKey)},
        {"challenge", card.strChallenge},
        {"triesLeft", card.nTriesLeft},
        {"maxTries", card.nMaxTries},
        {"unlocksLeft", card.nUnlocksLeft},
        {"maxUnlocks", card.nMaxUnlocks},
        {"policy",
         {{"minLength", card.policy.dwMinPinLength},
          {"maxLength", card.policy.dwMaxPinLength},
          {"digitsOnly", card.policy.bPreventAlphaPin},
          {"notWeak", card.policy.bPreventWeakPin},
          {"notSame", card.policy.bPreventSamePin},
          {"forceChange", card.policy.bForceChangePin}}},
    });
    std::string content = document.Root().dump(2);
    content += '\n';
    Secret text(content.begin(), content.end());
    Wipe(content.data(), content.size());
    return text;
}

SoftwareCard ReadCard(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::exists(file, error) && !error) {
        return {};
    }
    auto stream = OpenUnbuffered<std::ifstream>(file, std::ios::in);
    if (!stream) {
        RefuseFile(file, "it cannot be opened");
    }
    const Secret text = ReadAll(stream);
    if (stream.bad() || (text.empty() && !stream.eof())) {
        RefuseFile(file, "it cannot be read");
    }
    try {
        return ParseCard({text.data(), text.size()});
    } catch (const CardFileError& fault) {
        RefuseFile(file, fault.what());
    }
}

void WriteCard(const std::filesystem::path& file, const SoftwareCard& card) {
    const Secret text = FormatCard(card);
    std::filesystem::path fresh = file;
    fresh += ".new";
    {
        auto stream = OpenUnbuffered<std::ofstream>(fresh, std::ios::out | std::ios::trunc);
        stream.write(text.data(), static_cast<std::streamsize>(text.size()));
        stream.close();
        if (!stream) {
            RefuseFile(file, "it cannot be written");
        }
    }
    std::error_code error;
    std::filesystem::rename(fresh, file, error);
    if (error) {
        std::error_code ignored;
        std::filesystem::remove(fresh, ignored);
        RefuseFile(file, "it cannot be replaced");
    }
}

}  // namespace pinhost
