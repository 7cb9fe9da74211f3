// Says in the client's words, in the rule line of the change-PIN dialog, whether the two entries
// are the same. Before the first change, and where the client has none, the line has its own.
#pragma once

#include <windows.h>

#include <string>

#include "pinentry/core/user_interface.h"

namespace pinentry {

// Outlives the dialog that it watches; on the dialog's thread.
class RepeatWords {
public:
    explicit RepeatWords(const PinQuestion& question) : m_question(question) {}

    // No other rule may be in force: the OK button is what tells of this one.
    void Watch(HWND hDialog, HWND hRules);

private:
    static LRESULT CALLBACK OnButton(HWND hOk, UINT nMessage, WPARAM wParam, LPARAM lParam,
                                     UINT_PTR nId, DWORD_PTR pWords);
    void Say(bool bSame) const;

    const PinQuestion& m_question;
    HWND m_hLine = nullptr;
    std::string m_strOwn;
};

}  // namespace pinentry
