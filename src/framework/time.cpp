#include <dlgfw/time.h>

namespace {

constexpr int g_nMaxDateLength = 1024;

template <class BreakDown>
CString FormatTime(LPCSTR pszFormat, BreakDown breakDown) {
    struct tm fields = {};
    CString strText;
    if (pszFormat == nullptr || breakDown(&fields) == nullptr)
        return strText;
    const size_t nLength = std::strftime(strText.GetBuffer(g_nMaxDateLength), g_nMaxDateLength + 1,
                                         pszFormat, &fields);
    strText.ReleaseBuffer(static_cast<int>(nLength));
    return strText;
}

// One field of the local date, with the offset it is counted from.
int Field(const CTime& time, int tm::*pField, int nOffset) {
    struct tm fields = {};
    return time.GetLocalTm(&fields) == nullptr ? 0 : fields.*pField + nOffset;
}

__time64_t MakeTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int nDST) {
    struct tm fields = {};
    fields.tm_year = nYear - 1900;
    fields.tm_mon = nMonth - 1;
    fields.tm_mday = nDay;
    fields.tm_hour = nHour;
    fields.tm_min = nMin;
    fields.tm_sec = nSec;
    fields.tm_isdst = nDST;
    return _mktime64(&fields);
}

}  // namespace

CTimeSpan::CTimeSpan(LONG lDays, int nHours, int nMins, int nSecs) noexcept
    : m_span(nSecs + 60LL * (nMins + 60LL * (nHours + 24LL * lDays))) {}

CTime::CTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int nDST)
    : m_time(MakeTime(nYear, nMonth, nDay, nHour, nMin, nSec, nDST)) {}

CTime::CTime(const SYSTEMTIME& systemTime, int nDST)
    : CTime(systemTime.wYear, systemTime.wMonth, systemTime.wDay, systemTime.wHour,
            systemTime.wMinute, systemTime.wSecond, nDST) {}

CTime CTime::GetCurrentTime() noexcept {
    return {_time64(nullptr)};
}

struct tm* CTime::GetLocalTm(struct tm* ptm) const {
    struct tm fields = {};
    if (ptm == nullptr || m_time < 0 || _localtime64_s(&fields, &m_time) != 0)
        return nullptr;
    *ptm = fields;
    return ptm;
}

struct tm* CTime::GetGmtTm(struct tm* ptm) const {
    struct tm fields = {};
    if (ptm == nullptr || m_time < 0 || _gmtime64_s(&fields, &m_time) != 0)
        return nullptr;
    *ptm = fields;
    return ptm;
}

int CTime::GetYear() const {
    return Field(*this, &tm::tm_year, 1900);
}
int CTime::GetMonth() const {
    return Field(*this, &tm::tm_mon, 1);
}
int CTime::GetDay() const {
    return Field(*this, &tm::tm_mday, 0);
}
int CTime::GetHour() const {
    return Field(*this, &tm::tm_hour, 0);
}
int CTime::GetMinute() const {
    return Field(*this, &tm::tm_min, 0);
}
int CTime::GetSecond() const {
    return Field(*this, &tm::tm_sec, 0);
}
int CTime::GetDayOfWeek() const {
    return Field(*this, &tm::tm_wday, 1);
}

CString CTime::Format(LPCSTR pszFormat) const {
    return FormatTime(pszFormat, [this](struct tm* ptm) { return GetLocalTm(ptm); });
}

CString CTime::FormatGmt(LPCSTR pszFormat) const {
    return FormatTime(pszFormat, [this](struct tm* ptm) { return GetGmtTm(ptm); });
}

CTime& CTime::operator+=(CTimeSpan span) noexcept {
    m_time += span.GetTimeSpan();
    return *this;
}

CTime& CTime::operator-=(CTimeSpan span) noexcept {
    m_time -= span.GetTimeSpan();
    return *this;
}
