#include "pinentry/core/responses.h"

#include <string>

#include "pinentry/core/escaping.h"

namespace pinentry {
namespace {

constexpr std::size_t kMaxLine = 1000;  // without the line's end

Secret Begun(std::string_view text) {
    Secret line;
    line.reserve(kMaxLine + 1);
    line.insert(line.end(), text.begin(), text.end());
    return line;
}

std::string InquiryOf(std::string_view keyword) {
    return std::string("INQUIRE ").append(keyword).append(" ");
}

}  // namespace

bool Responses::Line(std::string_view word, std::string_view rest) {
    Secret line = Begun(word);
    if (!rest.empty()) {
        line.push_back(' ');
        AppendEscaped({rest.data(), rest.size()}, 0, kMaxLine - line.size(), line);
    }
    line.push_back('\n');
    return m_channel.Write(line);
}

bool Responses::Ok(std::string_view comment) {
    return Line("OK", comment);
}

bool Responses::Error(ErrorCode code) {
    return Line("ERR " + std::to_string(LineNumber(code)), NameOf(code));
}

bool Responses::Status(std::string_view status) {
    return Line("S", status);
}

bool Responses::Comment(std::string_view comment) {
    return Line("#", comment);
}

bool Responses::Data(std::span<const char> data) {
    std::size_t sent = 0;
    while (sent < data.size()) {
        Secret line = Begun("D ");
        sent = AppendEscaped(data, sent, kMaxLine - line.size(), line);
        line.push_back('\n');
        if (!m_channel.Write(line)) {
            return false;
        }
    }
    return true;
}

bool Responses::HasRoomFor(std::string_view keyword, std::span<const char> value) {
    Secret escaped;
    escaped.reserve(kMaxLine);
    return AppendEscaped(value, 0, kMaxLine - InquiryOf(keyword).size(), escaped,
                         Escapes::Inquiry) == value.size();
}

bool Responses::Inquire(std::string_view keyword, std::span<const char> value) {
    Secret line = Begun(InquiryOf(keyword));
    AppendEscaped(value, 0, kMaxLine - line.size(), line, Escapes::Inquiry);
    line.push_back('\n');
    return m_channel.Write(line);
}

}  // namespace pinentry
