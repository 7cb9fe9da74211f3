#include "dialogs/base/key_origin.h"

namespace mvp {

namespace {

// Virtual-key codes, which are fixed by the system.
constexpr unsigned kKeyBackspace = 0x08;
constexpr unsigned kKeyShift = 0x10;
constexpr unsigned kKeyControl = 0x11;
constexpr unsigned kKeyAlt = 0x12;
constexpr unsigned kKeyInsert = 0x2D;
constexpr unsigned kKeyDelete = 0x2E;

// A dead key that does not go with the next one gives a character of its own before that
// one's.
constexpr int kCharactersOfKey = 2;

// Alone they give no character, and they are held down for long.
bool IsModifier(unsigned nKey) {
    return nKey == kKeyShift || nKey == kKeyControl || nKey == kKeyAlt;
}

// Whether the key may change the text by itself, with some modifier or without. The other keys do
// so by the character that they bring.
bool KeyChangesText(unsigned nKey) {
    return nKey == kKeyBackspace || nKey == kKeyInsert || nKey == kKeyDelete || nKey == 'V' ||
           nKey == 'X' || nKey == 'Z';
}

bool CharacterChangesText(unsigned nCharacter) {
    switch (nCharacter) {
        case 0x01:  // Ctrl+A, which selects
        case 0x03:  // Ctrl+C
        case '\t':
        case '\n':  // Ctrl+Enter
        case '\r':
        case 0x1B:  // Esc
            return false;
        default:
            return true;
    }
}

bool IsPersons(const KeyMessage& message) {
    // The system's own are those of the touch keyboard.
    return !message.bSent &&
           (message.origin == KeyOrigin::Hardware || message.origin == KeyOrigin::System);
}

}  // namespace

bool KeyJudge::IsInjected(const KeyMessage& message) {
    const bool persons = IsPersons(message);
    switch (message.kind) {
        case KeyMessage::Kind::Down:
            m_nGranted = persons && !IsModifier(message.nCode) ? kCharactersOfKey : 0;
            return !persons && KeyChangesText(message.nCode);
        case KeyMessage::Kind::Up:
            // Releasing Alt brings the character whose number was typed meanwhile.
            m_nGranted = persons && message.nCode == kKeyAlt ? 1 : 0;
            return false;
        case KeyMessage::Kind::Character:
            return !TakeGrant(message) && CharacterChangesText(message.nCode);
    }
    return false;
}

// Whether the character is the person's; it then counts as one that his key has brought.
bool KeyJudge::TakeGrant(const KeyMessage& message) {
    const bool granted =
        m_nGranted > 0 && !message.bSent && message.origin == KeyOrigin::Unavailable;
    if (!granted && !IsPersons(message)) {
        return false;
    }
    m_nGranted -= m_nGranted > 0 ? 1 : 0;
    return true;
}

}  // namespace mvp
