// Makes lines of the bytes that a client sends, as they come.
//
//     LineReader reader;
//     reader.Feed(bytes, [](InputLine&& line) { ... });
//
// What was read is overwritten when it goes: a line may repeat a PIN.
#pragma once

#include <span>
#include <string_view>
#include <utility>

#include "pinhost/secret.h"

namespace pinentry {

using pinhost::Secret;

struct InputLine {
    Secret text;  // without its end
    bool bTooLong = false;

    std::string_view Text() const { return {text.data(), text.size()}; }
};

class LineReader {
public:
    // The protocol allows 1,000 bytes; clients that send a little more are still understood.
    static constexpr std::size_t kMaxLine = 2048;

    // Gives each line to `take` that the bytes complete. A line that is too long comes without its
    // text. What follows the last line's end waits for the next bytes.
    template <class Take>
    void Feed(std::span<const char> bytes, Take&& take) {
        for (const char ch : bytes) {
            if (ch == '\n') {
                take(End());
            } else if (m_line.bTooLong || m_line.text.size() == kMaxLine) {
                m_line.bTooLong = true;
            } else {
                Begin();
                m_line.text.push_back(ch);
            }
        }
    }

private:
    // In one piece, so that nothing is copied while the line grows.
    void Begin() {
        if (m_line.text.capacity() == 0) {
            m_line.text.reserve(kMaxLine);
        }
    }

    InputLine End() {
        InputLine line = std::exchange(m_line, {});
        if (line.bTooLong) {
            line.text.clear();
        } else if (!line.text.empty() && line.text.back() == '\r') {
            line.text.pop_back();
        }
        return line;
    }

    InputLine m_line;
};

}  // namespace pinentry
