// Whether what is typed comes from a person or from a program.
//
// The system says of a key message where it comes from, and says nothing of one that a program has
// posted or sent. Of the characters that it makes of a key it may say nothing either: they are
// taken for the person's whose key came right before.
#pragma once

#include <cstdint>
#include <optional>

namespace mvp {

// What is done with the keys of a program: the numbers of the configuration.
enum class InjectedKeys { Accept = 0, Warn = 1, Refuse = 2 };

// Nothing for a number that means nothing.
constexpr std::optional<InjectedKeys> InjectedKeysOf(std::uint32_t dwValue) {
    if (dwValue > static_cast<std::uint32_t>(InjectedKeys::Refuse)) {
        return std::nullopt;
    }
    return static_cast<InjectedKeys>(dwValue);
}

// The system's numbers.
enum class KeyOrigin { Unavailable = 0, Hardware = 1, Injected = 2, System = 4 };

struct KeyMessage {
    enum class Kind { Down, Up, Character };
    Kind kind;
    unsigned nCode;  // the virtual key, or the character
    KeyOrigin origin;
    bool bSent;  // by another thread: never the system's own doing
};

// Follows the key messages of one edit, in the order in which they come.
class KeyJudge {
public:
    // Whether a program is about to change the text, or to make the system change it. Keys that
    // lead from field to field, or choose a button, are never told of: programs that help people
    // who cannot use a keyboard send them.
    bool IsInjected(const KeyMessage& message);

private:
    bool TakeGrant(const KeyMessage& message);

    // How many characters of unknown origin the person's last key may still bring.
    int m_nGranted = 0;
};

}  // namespace mvp
