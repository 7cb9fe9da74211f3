// What the core asks the user through.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "pinhost/secret.h"

namespace pinentry {

using pinhost::Secret;

enum class Answer {
    Confirmed,
    NotConfirmed,  // by the button that says no
    Canceled,
    Closed,  // by the window's close button
    TimedOut,
    ClientGone,    // while the window was open
    NotShown,      // no display, or the library or its texts are missing
    NoPlaceForIt,  // the PIN has more characters than are taken
};

// What every window has. Empty texts: the window's own. In labels "&" stands before the access key.
struct Window {
    std::string strTitle;
    std::string strText;
    std::string strOk;
    std::string strCancel;
    std::uint64_t nParent = 0;   // the client's window to stand over; 0: none
    std::uint32_t nTimeout = 0;  // seconds after which nobody is waited for any more; 0: never
    std::string strLanguage;     // two letters; of the texts that the window has of its own
};

// Texts are in the code page of the library.
struct PinQuestion : Window {
    std::string strLabel;        // of the PIN's field
    std::string strRepeatLabel;  // of the field that repeats it
    std::string strRepeatError;  // said while the two differ
    std::string strRepeatOk;     // said when they have come to be the same
    std::string strMask;         // the character that is shown for each that is typed
};

// Texts are UTF-8.
struct Confirmation : Window {
    std::string strNotOk;     // empty: no such button
    bool bOneButton = false;  // OK alone
};

class UserInterface {
public:
    UserInterface() = default;
    UserInterface(const UserInterface&) = delete;
    UserInterface& operator=(const UserInterface&) = delete;
    virtual ~UserInterface() = default;

    // `pin` receives the PIN in the code page of the library when the answer is Confirmed.
    virtual Answer AskPin(const PinQuestion& question, Secret& pin) = 0;
    // The same for a PIN that is typed twice.
    virtual Answer AskNewPin(const PinQuestion& question, Secret& pin) = 0;
    virtual Answer Confirm(const Confirmation& confirmation) = 0;
};

// The code page of the library.
class CodePage {
public:
    CodePage() = default;
    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;
    virtual ~CodePage() = default;

    // False when a character has no place in it. `strUtf8` is UTF-8.
    virtual bool FromUtf8(const std::string& strUtf8, std::string& strText) const = 0;
    virtual bool ToUtf8(const Secret& text, Secret& utf8) const = 0;
};

}  // namespace pinentry
