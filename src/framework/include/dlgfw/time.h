// CTime: a moment in seconds since 1970-01-01 00:00 UTC, 64 bits wide; CTimeSpan: a difference.
//
//     const CTime now = CTime::GetCurrentTime();
//     strDate = now.Format("%m/%d/%y");
#pragma once

#include <ctime>

#include <dlgfw/string.h>

// The operating system's macro of this name is an obsolete spelling of GetTickCount.
#undef GetCurrentTime

class DLGFW_API CTimeSpan {
public:
    CTimeSpan() noexcept = default;
    CTimeSpan(__time64_t seconds) noexcept : m_span(seconds) {}
    CTimeSpan(LONG lDays, int nHours, int nMins, int nSecs) noexcept;

    LONGLONG GetDays() const noexcept { return m_span / 86400; }
    LONGLONG GetTotalHours() const noexcept { return m_span / 3600; }
    LONG GetHours() const noexcept { return static_cast<LONG>(m_span / 3600 % 24); }
    LONGLONG GetTotalMinutes() const noexcept { return m_span / 60; }
    LONG GetMinutes() const noexcept { return static_cast<LONG>(m_span / 60 % 60); }
    LONGLONG GetTotalSeconds() const noexcept { return m_span; }
    LONG GetSeconds() const noexcept { return static_cast<LONG>(m_span % 60); }
    __time64_t GetTimeSpan() const noexcept { return m_span; }

private:
    __time64_t m_span = 0;
};

class DLGFW_API CTime {
public:
    CTime() noexcept = default;
    CTime(__time64_t time) noexcept : m_time(time) {}
    // Local time; nDST as in struct tm.
    CTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int nDST = -1);
    explicit CTime(const SYSTEMTIME& systemTime, int nDST = -1);

    static CTime GetCurrentTime() noexcept;

    __time64_t GetTime() const noexcept { return m_time; }
    // Null, with *ptm untouched, when the moment has no calendar date here.
    struct tm* GetLocalTm(struct tm* ptm) const;
    struct tm* GetGmtTm(struct tm* ptm) const;

    // Local calendar fields; 0 when the moment has none.
    int GetYear() const;
    int GetMonth() const;  // 1 to 12
    int GetDay() const;    // 1 to 31
    int GetHour() const;   // 0 to 23
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const;  // 1 = Sunday

    // strftime in local time or in UTC; empty when the moment has no calendar date.
    CString Format(LPCSTR pszFormat) const;
    CString FormatGmt(LPCSTR pszFormat) const;

    CTime& operator+=(CTimeSpan span) noexcept;
    CTime& operator-=(CTimeSpan span) noexcept;

private:
    __time64_t m_time = 0;
};

inline CTimeSpan operator-(CTime a, CTime b) noexcept {
    return {a.GetTime() - b.GetTime()};
}
inline CTime operator+(CTime time, CTimeSpan span) noexcept {
    return time += span;
}
inline CTime operator-(CTime time, CTimeSpan span) noexcept {
    return time -= span;
}
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
