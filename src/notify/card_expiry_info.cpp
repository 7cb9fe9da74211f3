#include <memory>

#include "mvpingui/card_expiry.h"
#include "notify/card_expiry_rules.h"
#include "platform/barrier.h"
#include "services/log.h"

namespace {

// A copy for a caller, or an empty text.
CString CopyOf(const CString& strText, const char* pszFunction) {
    CString copy;
    mvp::Guarded([&] { copy = strText; }, mvp::LogException(pszFunction));
    return copy;
}

}  // namespace

VKCertificateExpiryNotificationInfo::VKCertificateExpiryNotificationInfo(
    const char* pszFriendlyName, __time64_t time)
    : m_strFriendlyName(pszFriendlyName), m_timeExpiry(time) {
    const mvp::LogScope scope(
        "VKCertificateExpiryNotificationInfo::VKCertificateExpiryNotificationInfo");
}

VKCertificateExpiryNotificationInfo::VKCertificateExpiryNotificationInfo(
    const VKCertificateExpiryNotificationInfo& other)
    : m_strFriendlyName(other.m_strFriendlyName), m_timeExpiry(other.m_timeExpiry) {
    const mvp::LogScope scope(
        "VKCertificateExpiryNotificationInfo::VKCertificateExpiryNotificationInfo");
}

VKCertificateExpiryNotificationInfo& VKCertificateExpiryNotificationInfo::operator=(
    const VKCertificateExpiryNotificationInfo& other) {
    const mvp::LogScope scope("VKCertificateExpiryNotificationInfo::operator=");
    if (this != &other) {
        m_strFriendlyName = other.m_strFriendlyName;
        m_timeExpiry = other.m_timeExpiry;
    }
    return *this;
}

VKCertificateExpiryNotificationInfo::~VKCertificateExpiryNotificationInfo() {
    const mvp::LogScope scope(
        "VKCertificateExpiryNotificationInfo::~VKCertificateExpiryNotificationInfo");
}

CString VKCertificateExpiryNotificationInfo::GetFriendlyName() const {
    constexpr char kName[] = "VKCertificateExpiryNotificationInfo::GetFriendlyName";
    const mvp::LogScope scope(kName);
    return CopyOf(m_strFriendlyName, kName);
}

const CTime& VKCertificateExpiryNotificationInfo::GetCertificateExpiryDate() const {
    const mvp::LogScope scope("VKCertificateExpiryNotificationInfo::GetCertificateExpiryDate");
    return m_timeExpiry;
}

VKExpiryNotificationInfo::VKExpiryNotificationInfo(const char* pszReader, HANDLE hCancelEvent)
    : m_strReader(pszReader), m_hCancelEvent(hCancelEvent) {
    const mvp::LogScope scope("VKExpiryNotificationInfo::VKExpiryNotificationInfo");
}

VKExpiryNotificationInfo::~VKExpiryNotificationInfo() {
    const mvp::LogScope scope("VKExpiryNotificationInfo::~VKExpiryNotificationInfo");
    for (INT_PTR i = 0; i < m_certificates.GetSize(); ++i) {
        delete static_cast<VKCertificateExpiryNotificationInfo*>(m_certificates[i]);
    }
    m_certificates.RemoveAll();
}

void VKExpiryNotificationInfo::SetNbDaysForNotificationDelay(int nDays) {
    const mvp::LogScope scope("VKExpiryNotificationInfo::SetNbDaysForNotificationDelay");
    m_nDays = nDays;
}

int VKExpiryNotificationInfo::GetNbDaysForNotificationDelay() const {
    const mvp::LogScope scope("VKExpiryNotificationInfo::GetNbDaysForNotificationDelay");
    return m_nDays;
}

void VKExpiryNotificationInfo::SetMustDisplayCardExpiry(int nMustDisplay, __time64_t time) {
    const mvp::LogScope scope("VKExpiryNotificationInfo::SetMustDisplayCardExpiry");
    m_nMustDisplayCardExpiry = nMustDisplay;
    m_timeCardExpiry = time;
}

int VKExpiryNotificationInfo::MustDisplayCardExpiry(CTime& timeExpiry) const {
    const mvp::LogScope scope("VKExpiryNotificationInfo::MustDisplayCardExpiry");
    timeExpiry = m_timeCardExpiry;
    return m_nMustDisplayCardExpiry;
}

HANDLE VKExpiryNotificationInfo::GetCancelEvent() const {
    const mvp::LogScope scope("VKExpiryNotificationInfo::GetCancelEvent");
    return m_hCancelEvent;
}

CString VKExpiryNotificationInfo::GetReaderName() const {
    constexpr char kName[] = "VKExpiryNotificationInfo::GetReaderName";
    const mvp::LogScope scope(kName);
    return CopyOf(m_strReader, kName);
}

void VKExpiryNotificationInfo::AddCertificateExpiryNotificationInfo(const char* pszFriendlyName,
                                                                    __time64_t time) {
    constexpr char kName[] = "VKExpiryNotificationInfo::AddCertificateExpiryNotificationInfo";
    const mvp::LogScope scope(kName);
    mvp::Guarded(
        [&] {
            auto entry =
                std::make_unique<VKCertificateExpiryNotificationInfo>(pszFriendlyName, time);
            const auto count = static_cast<int>(m_certificates.GetSize());
            // By the members: the functions would log each comparison.
            const int place = mvp::PlaceOfExpiry(count, time, [this](int nIndex) {
                return static_cast<VKCertificateExpiryNotificationInfo*>(m_certificates[nIndex])
                    ->m_timeExpiry.GetTime();
            });
            m_certificates.InsertAt(place, entry.get());
            static_cast<void>(entry.release());  // the array's now
        },
        mvp::LogException(kName));
}

int VKExpiryNotificationInfo::GetNbCertExpiryNotificationInfo() const {
    const mvp::LogScope scope("VKExpiryNotificationInfo::GetNbCertExpiryNotificationInfo");
    return static_cast<int>(m_certificates.GetSize());
}

VKCertificateExpiryNotificationInfo* VKExpiryNotificationInfo::GetCertificateExpiryNotificationInfo(
    int nIndex) const {
    const mvp::LogScope scope("VKExpiryNotificationInfo::GetCertificateExpiryNotificationInfo");
    return nIndex >= 0 && nIndex < m_certificates.GetSize()
               ? static_cast<VKCertificateExpiryNotificationInfo*>(m_certificates[nIndex])
               : nullptr;
}
