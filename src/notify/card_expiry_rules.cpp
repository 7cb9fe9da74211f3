#include "notify/card_expiry_rules.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "platform/resolution.h"
#include "resources/resource_numbers.h"

namespace mvp {
namespace {

constexpr int kOk = 1;
constexpr int kCancel = 2;

constexpr int kCardLineHeight = 30;  // with the gap below it
constexpr int kListSurroundings = 20;

constexpr int kBelowCardLine[] = {IDC_CARD_EXPIRY_REMIND,
                                  IDC_CARD_EXPIRY_DAYS,
                                  IDC_CARD_EXPIRY_SPIN,
                                  kOk,
                                  kCancel,
                                  IDC_CARD_EXPIRY_LIST_LABEL,
                                  IDC_CARD_EXPIRY_LIST,
                                  IDC_CARD_EXPIRY_SEPARATOR,
                                  IDC_CARD_EXPIRY_DAYS_LABEL,
                                  IDC_CARD_EXPIRY_NEVER_AGAIN};

constexpr int kListAndLabel[] = {IDC_CARD_EXPIRY_LIST, IDC_CARD_EXPIRY_LIST_LABEL};
constexpr int kBelowList[] = {IDC_CARD_EXPIRY_REMIND,
                              IDC_CARD_EXPIRY_DAYS_LABEL,
                              IDC_CARD_EXPIRY_DAYS,
                              IDC_CARD_EXPIRY_SPIN,
                              kOk,
                              kCancel,
                              IDC_CARD_EXPIRY_SEPARATOR,
                              IDC_CARD_EXPIRY_NEVER_AGAIN};

constexpr int kReminderAndOk[] = {IDC_CARD_EXPIRY_DAYS,        IDC_CARD_EXPIRY_SPIN,
                                  IDC_CARD_EXPIRY_REMIND,      IDC_CARD_EXPIRY_DAYS_LABEL,
                                  IDC_CARD_EXPIRY_NEVER_AGAIN, kOk};
constexpr int kBelowReminder[] = {kOk, kCancel, IDC_CARD_EXPIRY_SEPARATOR};

}  // namespace

LinePlace CardLinePlace(int nDpi) {
    return {PixelsAt(nDpi, 12), PixelsAt(nDpi, 80), PixelsAt(nDpi, 350), PixelsAt(nDpi, 20)};
}

FormStep WithCardLine(int nDpi) {
    return {{}, kBelowCardLine, PixelsAt(nDpi, kCardLineHeight)};
}

FormStep WithoutCertificates(int nListHeight, int nDpi) {
    return {kListAndLabel, kBelowList, -(nListHeight + PixelsAt(nDpi, kListSurroundings))};
}

FormStep WithoutReminder(int nTop, int nBottom) {
    return {kReminderAndOk, kBelowReminder, nTop - nBottom};
}

int DaysIn(const char* pszText) {
    constexpr long long kLeast = std::numeric_limits<int>::min();
    constexpr long long kMost = std::numeric_limits<int>::max();
    constexpr int kDecimal = 10;
    return static_cast<int>(std::clamp(std::strtoll(pszText, nullptr, kDecimal), kLeast, kMost));
}

int NewDelay(int nCurrent, const char* pszText) {
    const int days = DaysIn(pszText);
    return days != nCurrent ? days : kDelayUnchanged;
}

}  // namespace mvp
