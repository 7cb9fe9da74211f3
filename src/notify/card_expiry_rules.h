// What the expiry notice decides, without a window and without a clock of its own: in which order
// certificates stand, what has expired, how the form fits what it has to tell, and what the user's
// answer comes to.
#pragma once

#include <cstdint>
#include <span>

namespace mvp {

// A moment in seconds since 1970-01-01 00:00 UTC.
using Seconds = std::int64_t;

// Where a certificate that expires at `expiry` goes among `nCount` that are sorted: behind all that
// expire earlier, before those of the same moment. `expiryAt` gives the moment of an index.
template <class ExpiryAt>
int PlaceOfExpiry(int nCount, Seconds expiry, ExpiryAt&& expiryAt) {
    int earlier = 0;
    for (int i = 0; i < nCount; ++i) {
        earlier += expiryAt(i) < expiry ? 1 : 0;
    }
    return earlier;
}

constexpr bool IsSomethingToTell(bool bCard, int nCertificates) {
    return bCard || nCertificates >= 1;
}

// At its very moment a card has expired already, a certificate not yet.
constexpr bool HasCardExpired(Seconds expiry, Seconds now) {
    return expiry <= now;
}
constexpr bool HasCertificateExpired(Seconds expiry, Seconds now) {
    return expiry < now;
}

// Where the line about the card stands in the dialog's client area, in pixels; nDpi: of the dialog.
struct LinePlace {
    int nLeft;
    int nTop;
    int nWidth;
    int nHeight;
};
LinePlace CardLinePlace(int nDpi);

// One step on the form's way to what it shows: some controls are hidden, others move down by `dy`
// pixels, and the dialog grows by as much; a negative number is up, and shrinks it.
struct FormStep {
    std::span<const int> hidden;
    std::span<const int> moved;
    int dy;
};
// The line about the card comes in.
FormStep WithCardLine(int nDpi);
// There are no certificates: the list, so many pixels tall, goes with its label.
FormStep WithoutCertificates(int nListHeight, int nDpi);
// Something has expired, and there is nothing left to be reminded of. The reminder's controls reach
// from `nTop` to `nBottom`.
FormStep WithoutReminder(int nTop, int nBottom);

inline constexpr int kDelayUnchanged = -1;

// The decimal number that `pszText` begins with, 0 when it begins with none, and the nearest one
// that an int holds when it is larger.
int DaysIn(const char* pszText);

// What a notice that was confirmed with `pszText` in its edit comes to: a new number of days, or
// kDelayUnchanged.
int NewDelay(int nCurrent, const char* pszText);

}  // namespace mvp
