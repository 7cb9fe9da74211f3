// What the Caps-Lock warning decides: where its balloon stands, and what a key does to it.
#pragma once

namespace mvp {

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

// Where the balloon of an edit stands: above it, its tip reaching four pixels into it; below it
// where there is no room above; never beyond the left or right edge of the screen.
BalloonPlace PlaceBalloon(const BalloonAnchor& edit, const BalloonSize& balloon, int nScreenWidth);

enum class BalloonAction {
    Leave,  // the balloon stays as it is
    Check,  // Caps Lock itself changed: show or hide by its state
    Hide,   // the user types on: the warning has been read
};

// What releasing the key with virtual-key code `nKey` does to the balloon.
BalloonAction BalloonActionForKey(unsigned nKey);

}  // namespace mvp
