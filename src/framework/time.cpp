#include <dlgfw/time.h>

CTime CTime::GetCurrentTime() noexcept {
    return {_time64(nullptr)};
}

CString CTime::Format(LPCSTR pszFormat) const {
    constexpr int nMaxLength = 1024;
    struct tm fields = {};
    CString strText;
    if (pszFormat == nullptr || _localtime64_s(&fields, &m_time) != 0)
        return strText;
    const size_t nLength =
        std::strftime(strText.GetBuffer(nMaxLength), nMaxLength + 1, pszFormat, &fields);
    strText.ReleaseBuffer(static_cast<int>(nLength));
    return strText;
}
