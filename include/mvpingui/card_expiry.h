/* What the expiry notice tells its user: a card and certificates on it that have expired or are
 * about to. A host fills a VKExpiryNotificationInfo and hands it to DisplayCardExpiryNotification
 * (mvpingui.h), which shows it.
 *
 *     VKExpiryNotificationInfo info("Reader A", hCancel);
 *     info.SetNbDaysForNotificationDelay(14);
 *     info.SetMustDisplayCardExpiry(1, cardExpiry);
 *     info.AddCertificateExpiryNotificationInfo("E-mail signature", certificateExpiry);
 *     const int32_t days = DisplayCardExpiryNotification(hParent, &info);
 *
 * Texts are copied; a null one counts as empty. Times are seconds since 1970-01-01 00:00 UTC. The
 * classes hold no lock: an object is used by one thread at a time. No member lets an exception out,
 * constructors and the assignment apart, which throw std::bad_alloc when memory is short. */
#pragma once

#include <dlgfw/ptr_array.h>
#include <dlgfw/string.h>
#include <dlgfw/time.h>
#include <mvpingui/export.h>

/* One certificate. */
class MVPINGUI_API VKCertificateExpiryNotificationInfo {
public:
    /* pszFriendlyName  what its user knows it by */
    VKCertificateExpiryNotificationInfo(const char* pszFriendlyName, __time64_t time);
    VKCertificateExpiryNotificationInfo(const VKCertificateExpiryNotificationInfo& other);
    VKCertificateExpiryNotificationInfo& operator=(
        const VKCertificateExpiryNotificationInfo& other);
    ~VKCertificateExpiryNotificationInfo();

    /* Empty when memory is short. */
    CString GetFriendlyName() const;
    const CTime& GetCertificateExpiryDate() const;

private:
    friend class VKExpiryNotificationInfo; /* sorts by the moment */

    CString m_strFriendlyName;
    CTime m_timeExpiry;
};

/* All that one notice tells. It owns its certificates. */
class MVPINGUI_API VKExpiryNotificationInfo {
public:
    /* pszReader     the reader that holds the card
     * hCancelEvent  closes the notice when it is signalled, as Cancel does; not owned, and to be
     *               kept until the notice has ended. Null: nothing but its user closes the notice
     */
    VKExpiryNotificationInfo(const char* pszReader, HANDLE hCancelEvent);
    VKExpiryNotificationInfo(const VKExpiryNotificationInfo&) = delete;
    VKExpiryNotificationInfo& operator=(const VKExpiryNotificationInfo&) = delete;
    ~VKExpiryNotificationInfo();

    /* How many days before the expiry the user is reminded, as it is now; -1 until it is set. */
    void SetNbDaysForNotificationDelay(int nDays);
    int GetNbDaysForNotificationDelay() const;

    /* nMustDisplay  nonzero: the notice tells of the card, too, which expires at `time` */
    void SetMustDisplayCardExpiry(int nMustDisplay, __time64_t time);
    /* Returns nMustDisplay, and gives the card's expiry. */
    int MustDisplayCardExpiry(CTime& timeExpiry) const;

    HANDLE GetCancelEvent() const;
    /* Empty when memory is short. */
    CString GetReaderName() const;

    /* Keeps the certificates sorted by their expiry, a new one before those of the same moment.
     * When memory is short it is not added, which the log tells. */
    void AddCertificateExpiryNotificationInfo(const char* pszFriendlyName, __time64_t time);
    int GetNbCertExpiryNotificationInfo() const;
    /* The certificate stays the object's; null for an index that is none. */
    VKCertificateExpiryNotificationInfo* GetCertificateExpiryNotificationInfo(int nIndex) const;

private:
    int m_nMustDisplayCardExpiry = 0;
    CTime m_timeCardExpiry;
    CPtrArray m_certificates; /* of owned VKCertificateExpiryNotificationInfo, sorted */
    CString m_strReader;
    HANDLE m_hCancelEvent; /* not owned */
    int m_nDays = -1;
};
