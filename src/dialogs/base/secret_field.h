// What CCapsLockSensitiveEdit does with the messages that concern its text.
//
// The system's control is given one mask for every character and left to do with the masks what it
// does with a text: it keeps the caret, the selection and the limit, and tells the parent what has
// happened. The characters themselves lie in a SecretStore, which follows the control.
//
// A message that asks for the text is answered to the window's own thread only, and not while that
// thread handles a message that another one sent: nobody can tell the two askers apart then. From
// outside no text is set either, nor by a posted WM_PASTE, which may come from anywhere. Undoing,
// copying and cutting do nothing. Only edits of one line are supported.
//
// The field belongs to its edit, and may be destroyed while one of its messages is being handled.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string_view>

#include <dlgfw/string.h>

#include "dialogs/base/injected_key_filter.h"
#include "dialogs/base/secret_store.h"
#include "dialogs/base/text_change.h"

class CCapsLockSensitiveEdit;

namespace mvp {

class SecretField {
public:
    explicit SecretField(CCapsLockSensitiveEdit& edit) noexcept : m_edit(edit) {}
    SecretField(const SecretField&) = delete;
    SecretField& operator=(const SecretField&) = delete;
    ~SecretField();

    // Takes over a window that is about to be bound: what it holds, and what the system offers for
    // it. May throw std::bad_alloc.
    void TakeOver(HWND hWnd);

    // Does what the message asks for, by the system's control or without it.
    LRESULT Process(UINT message, WPARAM wParam, LPARAM lParam);

    // False, with an empty text, from any thread but the window's. May throw std::bad_alloc.
    bool Read(CString& strSecret);

    // As WM_SETTEXT would, whoever asks for it. FALSE when there is no memory.
    LRESULT Write(std::string_view text);

    void Clear() noexcept { m_store.Clear(); }

    // Told of each message that the thread has taken from its queue for the edit, before it is
    // dispatched.
    void NoteQueued(const MSG& message) noexcept;

    // The first thing to be asked about a message: false when nothing is to be done with it,
    // because it is a program's key.
    bool Arrives(UINT message, WPARAM wParam, LPARAM lParam) noexcept;

    // The characters as they are now; valid until they change.
    std::wstring_view Text();

private:
    // A message that the control is at work on. Others may come in the course of it.
    struct Step {
        EditState before;
        std::wstring_view offered;
        Step* pOuter;
        bool bAhead = false;  // the store holds already what the control will be told
        bool bGone = false;   // the field was destroyed meanwhile
    };

    LRESULT System(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    bool HasStyle(DWORD dwStyle) const;
    char Mask() const;
    EditState State();
    LRESULT Run(UINT message, WPARAM wParam, LPARAM lParam, std::wstring_view offered = {});
    LRESULT RunStep(Step& step, UINT message, WPARAM wParam, LPARAM lParam);
    void Follow();
    void ApplyCase(wchar_t* pText, std::size_t nCount) const;
    static void TellOfNoMemory(HWND hEdit);

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnKeyDown(WPARAM wParam, LPARAM lParam);
    LRESULT OnCharacter(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnChar(char ch, LPARAM lParam);
    LRESULT OnCodePoint(WPARAM wParam, LPARAM lParam);
    LRESULT Insert(wchar_t ch, LPARAM lParam);
    LRESULT ReplaceSelection(WPARAM wParam, std::wstring_view text);
    LRESULT Paste();
    LRESULT ShowMenu(LPARAM lParam);
    LRESULT OnText(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT GiveText(WPARAM wParam, LPARAM lParam);
    LRESULT GiveLine(LPARAM lParam);

    CCapsLockSensitiveEdit& m_edit;
    SecretStore m_store;
    InjectedKeyFilter m_keys;
    Step* m_pStep = nullptr;
    char m_chLead = '\0';    // the first half of a double-byte character
    MSG m_queued{};          // taken from the queue and not yet dispatched
    bool m_bQueued = false;  // that is the message that arrived last
};

}  // namespace mvp
