// What another thread, or another process, can try on an edit to learn what was typed there.
//
//     const Loot loot = Doors()[3].open(hEdit);
//
// A door tells everything that it got; whether a secret is in it is for the caller to judge. It
// gives up after seconds when the edit's thread does not answer, and may leave the edit changed.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace mvp::spy {

// One thing that was got: a letter for its kind, and its bytes.
//   t  text, or memory that may hold some, in characters of 8 or of 16 bits
//   c  one character, the first of the text
//   w  widths of the characters, a byte each
//   p  a picture's fingerprint
//   i  anything: that it was got at all is too much
using Loot = std::vector<std::string>;

enum class DoorKind : unsigned char {
    Plain,
    // Not for a second process: it has no address there for what is needed; or its message can end
    // the asked thread on the system that the tests run on, whatever the answer.
    Inside,
    Keys,     // the edit needs the focus, and its dialog the foreground
    Change,   // the text must be the same afterwards
    Undo,     // tried after all of the text was deleted, which must not come back
    Picture,  // compared with another text's
};

// Controls of the system that a door is tried on first, to see that it is one.
enum StockControl : char {
    Password = 'P',
    NoPassword = 'E',  // an edit without ES_PASSWORD
    ManyLines = 'M',   // such a one with ES_MULTILINE
    Rich = 'R',        // a rich edit with ES_PASSWORD
    NoControl = '-',
};

struct Door {
    int nRow;  // a number that it shares with doors of the same sort
    const char* pszName;
    Loot (*open)(HWND hEdit);
    // The first control that gives its text to a second process, and to a second thread.
    const char* pszStock;
    DoorKind kind = DoorKind::Plain;
    int nTimes = 1;  // to be tried, each time another one
};

std::span<const Door> Doors();

// Sends a message; 0 when it is not answered.
inline LRESULT Ask(HWND hWnd, UINT message, WPARAM wParam = 0, LPARAM lParam = 0,
                   bool bWide = false) {
    DWORD_PTR result = 0;
    (bWide ? SendMessageTimeoutW : SendMessageTimeoutA)(hWnd, message, wParam, lParam,
                                                        SMTO_ABORTIFHUNG, 3000, &result);
    return static_cast<LRESULT>(result);
}
inline LRESULT Ask(HWND hWnd, UINT message, WPARAM wParam, const void* pParameter,
                   bool bWide = false) {
    return Ask(hWnd, message, wParam, reinterpret_cast<LPARAM>(pParameter), bWide);
}

// What Change doors put in the place of the text.
inline constexpr char kPlanted[] = "4711";

}  // namespace mvp::spy
