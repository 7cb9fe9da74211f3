// The one table of everything that the library shows, and of the states that it can be in.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "looks/visitor.h"

namespace looks {

// A dialog's layout is the library's; a message box's is the system's, and a notice's its skin's.
enum class Kind { Dialog, MessageBox, Popup };

constexpr const char* NameOf(Kind kind) {
    switch (kind) {
        case Kind::Dialog:
            return "dialog";
        case Kind::MessageBox:
            return "message box";
        case Kind::Popup:
            return "notice";
    }
    return "";
}

struct Entry {
    std::string strName;
    std::function<void()> open;  // returns when it has been closed
    std::vector<State> states;
    Kind kind = Kind::Dialog;
};

inline constexpr char kReader[] = "Veskara Software Reader 0";
// The texts that come from outside, as long as they may be.
inline constexpr char kLongReader[] =
    "Veskara Software Reader with a long name that somebody has given it, in the second drawer "
    "0123456789";
static_assert(sizeof kLongReader - 1 == 100);

// A window that dialogs belong to, which does not stand in the middle of the screen.
class OwnerWindow {
public:
    OwnerWindow();
    OwnerWindow(const OwnerWindow&) = delete;
    OwnerWindow& operator=(const OwnerWindow&) = delete;
    ~OwnerWindow() { DestroyWindow(m_hWnd); }

    HWND Handle() const { return m_hWnd; }

private:
    HWND m_hWnd;
};

std::vector<Entry> PinDialogs();
std::vector<Entry> CardDialogs();
std::vector<Entry> Notices();
std::vector<Entry> AllDialogs();

// None of the library's.
Entry BrokenDialog();

}  // namespace looks
