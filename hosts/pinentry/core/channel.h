// The way to the client and back.
#pragma once

#include <span>

#include "pinentry/core/line_reader.h"

namespace pinentry {

class Channel {
public:
    Channel() = default;
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    virtual ~Channel() = default;

    // Waits for the next line. False when the client has gone.
    virtual bool Read(InputLine& line) = 0;

    // Sends all of the bytes and keeps no copy. False when the client has gone.
    virtual bool Write(std::span<const char> bytes) = 0;
};

}  // namespace pinentry
