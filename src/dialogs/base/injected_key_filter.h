// Keeps keys that a program sends from an edit, or warns of them, as the configuration says.
//
// Screen readers, keyboards on the screen and password managers type for people, so such keys are
// taken unless an administrator wants otherwise. It is no door that a program could not open: one
// that runs as the user can do more than send keys.
#pragma once

#include <windows.h>

#include "dialogs/base/key_origin.h"

namespace mvp {

// Reads the setting. One that is there and means nothing is logged, and counts as Accept.
InjectedKeys ReadInjectedKeys() noexcept;

class InjectedKeyFilter {
public:
    // Reads the setting for an edit that is bound to its window, and forgets what was before.
    void Bind() noexcept;

    // Whether the edit is to do nothing with the message, which another thread has sent or not.
    // Every message of the edit may be shown to it, and all that carry keys must be, before the
    // edit handles them and on its own thread. The first key of a program is told of in the dialog
    // around the edit.
    bool Refuses(HWND hEdit, UINT message, WPARAM wParam, bool bSent) noexcept;

private:
    // INPUT_MESSAGE_SOURCE, which not all headers have.
    struct MessageSource {
        DWORD deviceType;
        DWORD originId;
    };
    using SourceFunction = BOOL(WINAPI*)(MessageSource*);

    KeyOrigin Origin() const noexcept;

    InjectedKeys m_policy = InjectedKeys::Accept;
    // Null where the system does not know: every key is a person's then.
    SourceFunction m_pGetSource = nullptr;
    KeyJudge m_judge;
    bool m_bTold = false;
};

}  // namespace mvp
