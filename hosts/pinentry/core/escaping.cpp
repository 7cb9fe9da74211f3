#include "pinentry/core/escaping.h"

#include <optional>

namespace pinentry {
namespace {

std::optional<unsigned> HexDigit(char ch) {
    if (ch >= '0' && ch <= '9') {
        return static_cast<unsigned>(ch - '0');
    }
    const auto letter = static_cast<char>(ch | 0x20);
    if (letter >= 'a' && letter <= 'f') {
        return static_cast<unsigned>(letter - 'a' + 10);
    }
    return std::nullopt;
}

std::optional<char> EscapedByte(std::string_view text, std::size_t nAt) {
    if (text[nAt] != '%' || text.size() - nAt < 3) {
        return std::nullopt;
    }
    const auto high = HexDigit(text[nAt + 1]);
    const auto low = HexDigit(text[nAt + 2]);
    if (!high || !low) {
        return std::nullopt;
    }
    return static_cast<char>(*high * 16 + *low);
}

// How a character that begins with this byte goes on.
struct Sequence {
    std::size_t nBytes;      // 0: none begins so
    unsigned char nMinNext;  // of the second byte
    unsigned char nMaxNext;
};

// The bounds of the second byte leave out what could be written shorter, surrogates, and what lies
// beyond the last character.
Sequence SequenceOf(unsigned char byte) {
    if (byte < 0x80) {
        return {1, 0, 0};
    }
    if (byte < 0xC2) {
        return {0, 0, 0};
    }
    if (byte < 0xE0) {
        return {2, 0x80, 0xBF};
    }
    if (byte < 0xF0) {
        return {3, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    }
    if (byte < 0xF5) {
        return {4, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
    }
    return {0, 0, 0};
}

bool IsWhole(std::string_view character, const Sequence& sequence) {
    for (std::size_t i = 1; i < character.size(); ++i) {
        const auto byte = static_cast<unsigned char>(character[i]);
        const unsigned min = i == 1 ? sequence.nMinNext : 0x80;
        const unsigned max = i == 1 ? sequence.nMaxNext : 0xBF;
        if (byte < min || byte > max) {
            return false;
        }
    }
    return true;
}

bool IsEscaped(char ch, Escapes escapes) {
    const bool isControl = ch >= '\0' && ch < ' ';
    return ch == '%' || ch == '\n' || ch == '\r' ||
           (escapes == Escapes::Inquiry && (isControl || ch == ' ' || ch == '+'));
}

}  // namespace

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const Sequence sequence = SequenceOf(static_cast<unsigned char>(text.front()));
        if (sequence.nBytes == 0 || sequence.nBytes > text.size() ||
            !IsWhole(text.substr(0, sequence.nBytes), sequence)) {
            return false;
        }
        text.remove_prefix(sequence.nBytes);
    }
    return true;
}

bool Unescape(std::string_view escaped, std::string& strText) {
    strText.clear();
    strText.reserve(escaped.size());
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        const auto byte = EscapedByte(escaped, i);
        strText.push_back(byte.value_or(escaped[i]));
        i += byte ? 2U : 0U;
    }
    if (strText.find('\0') != std::string::npos || !IsUtf8(strText)) {
        strText.clear();
        return false;
    }
    return true;
}

std::size_t AppendEscaped(std::span<const char> text, std::size_t nFrom, std::size_t nRoom,
                          Secret& escaped, Escapes escapes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (; nFrom < text.size(); ++nFrom) {
        const char ch = text[nFrom];
        const bool isEscaped = IsEscaped(ch, escapes);
        const std::size_t needed = isEscaped ? 3 : 1;
        if (needed > nRoom) {
            break;
        }
        nRoom -= needed;
        if (isEscaped) {
            const auto byte = static_cast<unsigned char>(ch);
            escaped.insert(escaped.end(), {'%', kDigits[byte >> 4], kDigits[byte & 15]});
        } else {
            escaped.push_back(ch);
        }
    }
    return nFrom;
}

}  // namespace pinentry
