#include "dialogs/base/caps_lock_balloon.h"

#include <algorithm>

#include "platform/resolution.h"

namespace mvp {

namespace {

// In pixels of 96 dpi: how far the balloon's tip reaches into the edit, above and below.
constexpr int kOverlapAbove = 4;
constexpr int kOverlapBelow = 8;
// Nearer to the screen's top than this the balloon would be cut off.
constexpr int kSmallestTop = 55;

// Virtual-key codes, which are fixed by the system.
constexpr unsigned kKeyBackspace = 0x08;
constexpr unsigned kKeyTab = 0x09;
constexpr unsigned kKeyShift = 0x10;
constexpr unsigned kKeyCapsLock = 0x14;

// The system's number of its platform NT.
constexpr unsigned long kPlatformNt = 2;

}  // namespace

bool LacksCapsLockWarning(unsigned long nPlatform, unsigned long nMajor, unsigned long nMinor) {
    return nPlatform == kPlatformNt && nMajor == 5 && nMinor == 0;
}

BalloonPlace PlaceBalloon(const BalloonAnchor& edit, const BalloonSize& balloon, int nScreenWidth,
                          int nDpi) {
    int top = edit.nTop - balloon.nHeight + PixelsAt(nDpi, kOverlapAbove);
    if (top < PixelsAt(nDpi, kSmallestTop)) {
        top = edit.nBottom - PixelsAt(nDpi, kOverlapBelow);
    }
    // The left edge has the last word: a balloon wider than the screen loses its right end.
    const int left = std::max(0, std::min(edit.nLeft, nScreenWidth - balloon.nWidth));
    return {left, top};
}

BalloonAction BalloonActionForKey(unsigned nKey) {
    switch (nKey) {
        case kKeyCapsLock:
            return BalloonAction::Check;
        case kKeyBackspace:
        case kKeyTab:
        case kKeyShift:
            return BalloonAction::Leave;
        default:
            return BalloonAction::Hide;
    }
}

}  // namespace mvp
