// The text of a secret, as UTF-16, in pages of memory that hold nothing else.
//
// The pages are locked, so that they are not written to the page file, and left out of error
// reports where the system can. Whatever is no longer part of the text is zero. The size of the
// pages tells nothing of a text of ordinary length. When the library is detached, at the end of the
// process among others, every store that is still there is wiped: nobody destroys the dialogs then.
//
// Pages that cannot be locked are used all the same, which the log tells. Not movable; used by the
// thread that made it.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string_view>

#include "platform/handle.h"

namespace mvp {

struct SecretPagesTraits {
    using Handle = wchar_t*;
    static Handle None() noexcept { return nullptr; }
    // Overwrites them first.
    static void Close(Handle handle) noexcept;
};
using SecretPages = UniqueHandle<SecretPagesTraits>;

class SecretStore {
public:
    SecretStore() noexcept;
    SecretStore(const SecretStore&) = delete;
    SecretStore& operator=(const SecretStore&) = delete;
    ~SecretStore();

    // Makes room for nLength characters. False when there is no memory: the text is as it was.
    bool Reserve(std::size_t nLength) noexcept;

    // Replaces nRemoved characters at nFrom by nInserted that are the caller's to write, at what is
    // returned; there must be room for them. What lies beyond the text is not removed.
    wchar_t* Replace(std::size_t nFrom, std::size_t nRemoved, std::size_t nInserted) noexcept;

    // Takes over a text of the ANSI code page. False when there is no memory: the text is empty.
    bool Assign(std::string_view text) noexcept;

    void Clear() noexcept { Replace(0, m_nLength, 0); }

    // Valid until the text changes.
    std::wstring_view View() const noexcept { return {m_pages.get(), m_nLength}; }

private:
    friend class LiveStores;

    SecretPages m_pages;
    std::size_t m_nCapacity = 0;
    std::size_t m_nLength = 0;
    SecretStore* m_pNext = nullptr;  // of all stores
};

// How many UTF-16 characters a text of the ANSI code page has, and how many bytes they have there.
std::size_t WideLength(std::string_view text) noexcept;
std::size_t NarrowLength(std::wstring_view text) noexcept;

// Writes the characters to `pTarget`, as many as fit wholly into nRoom bytes, without a terminator.
// Returns the number of bytes. Leaves no other copy.
std::size_t CopyNarrow(std::wstring_view text, char* pTarget, std::size_t nRoom) noexcept;

}  // namespace mvp
