// What the Caps-Lock warning decides: whether the system gives one, where the library's own balloon
// stands, and what a key does to it.
#pragma once

namespace mvp {

// Whether the password edits of this system show no warning of their own; the numbers are the
// system's, as GetVersionEx gives them.
bool LacksCapsLockWarning(unsigned long nPlatform, unsigned long nMajor, unsigned long nMinor);

// Screen coordinates in pixels.
struct BalloonAnchor {
    int nLeft;
    int nTop;
    int nBottom;
};
struct BalloonSize {
    int nWidth;
    int nHeight;
};
struct BalloonPlace {
    int nLeft;
    int nTop;
};

// Where the balloon of an edit stands on a screen of `nDpi`: above it, its tip reaching four pixels
// of 96 dpi into it; below it where there is no room above; never beyond the left or right edge of
// the screen.
BalloonPlace PlaceBalloon(const BalloonAnchor& edit, const BalloonSize& balloon, int nScreenWidth,
                          int nDpi);

enum class BalloonAction {
    Leave,  // the balloon stays as it is
    Check,  // Caps Lock itself changed: show or hide by its state
    Hide,   // the user types on: the warning has been read
};

// What releasing the key with virtual-key code `nKey` does to the balloon.
BalloonAction BalloonActionForKey(unsigned nKey);

}  // namespace mvp
