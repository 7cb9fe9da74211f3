// The lines that go back to the client. Each is sent at once and whole; what held a PIN is
// overwritten after it.
#pragma once

#include <span>
#include <string_view>

#include "pinentry/core/channel.h"
#include "pinentry/core/errors.h"

namespace pinentry {

class Responses {
public:
    explicit Responses(Channel& channel) : m_channel(channel) {}

    // All return false when the client has gone.
    bool Ok(std::string_view comment = {});
    bool Error(ErrorCode code);
    bool Status(std::string_view status);
    bool Comment(std::string_view comment);
    // As many lines as are needed; none for no data.
    bool Data(std::span<const char> data);

    // Whether an inquiry with this value has room in one line.
    static bool HasRoomFor(std::string_view keyword, std::span<const char> value);
    bool Inquire(std::string_view keyword, std::span<const char> value);

private:
    bool Line(std::string_view word, std::string_view rest);

    Channel& m_channel;
};

}  // namespace pinentry
