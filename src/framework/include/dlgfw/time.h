// CTime: a moment in seconds since 1970-01-01 00:00 UTC, 64 bits wide.
//
//     const CTime now = CTime::GetCurrentTime();
//     strDate = now.Format("%m/%d/%y");
#pragma once

#include <ctime>

#include <dlgfw/string.h>

// The operating system's macro of this name is an obsolete spelling of GetTickCount.
#undef GetCurrentTime

class DLGFW_API CTime {
public:
    CTime() noexcept = default;
    CTime(__time64_t time) noexcept : m_time(time) {}

    static CTime GetCurrentTime() noexcept;

    __time64_t GetTime() const noexcept { return m_time; }

    // strftime in local time; empty when the moment has no calendar date.
    CString Format(LPCSTR pszFormat) const;

private:
    __time64_t m_time = 0;
};

inline bool operator==(CTime a, CTime b) noexcept {
    return a.GetTime() == b.GetTime();
}
inline bool operator!=(CTime a, CTime b) noexcept {
    return a.GetTime() != b.GetTime();
}
inline bool operator<(CTime a, CTime b) noexcept {
    return a.GetTime() < b.GetTime();
}
inline bool operator>(CTime a, CTime b) noexcept {
    return a.GetTime() > b.GetTime();
}
inline bool operator<=(CTime a, CTime b) noexcept {
    return a.GetTime() <= b.GetTime();
}
inline bool operator>=(CTime a, CTime b) noexcept {
    return a.GetTime() >= b.GetTime();
}
