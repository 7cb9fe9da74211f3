#include <dlgfw/time.h>

CTime CTime::GetCurrentTime() noexcept {
    return {_time64(nullptr)};
}

CString CTime::Format(LPCSTR pszFormat) const {
    constexpr int maxLength = 1024;
    struct tm fields = {};
    CString text;
    if (pszFormat == nullptr || _localtime64_s(&fields, &m_time) != 0) {
        return text;
    }
    const size_t length =
        std::strftime(text.GetBuffer(maxLength), maxLength + 1, pszFormat, &fields);
    text.ReleaseBuffer(static_cast<int>(length));
    return text;
}
