#include "mvpingui/skin_layout.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "platform/resolution.h"

namespace mvp {
namespace {

// At 96 dpi.
constexpr int kLineHeight = 15;  // of a link, and of the progress bar
constexpr int kLineGap = 5;
constexpr int kTextLeft = 40;
constexpr int kTextTop = 13;
constexpr int kTextRightGap = 5;
constexpr int kTitleAboveLink = 21;
constexpr int kPasswordGap = 5;
constexpr int kBarMargin = 15;
constexpr int kBulletLeft = 20;
constexpr int kBulletInBand = 3;
constexpr int kBulletRise = 20;  // of the close link's, when the help link stands below

int Held(std::int64_t n) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(n, Limits::min(), Limits::max()));
}

int Moved(int n, int nBy) {
    return Held(std::int64_t{n} + nBy);
}

// By so many pixels of 96 dpi.
int MovedAt(int nDpi, int n, int nBy) {
    return Moved(n, PixelsAt(nDpi, nBy));
}

void MoveDown(SkinRect& rect, int nDpi, int nBy) {
    rect.nTop = MovedAt(nDpi, rect.nTop, nBy);
    rect.nBottom = MovedAt(nDpi, rect.nBottom, nBy);
}

// To the line below itself.
void MoveBelow(SkinRect& rect, int nDpi) {
    rect.nTop = MovedAt(nDpi, rect.nBottom, kLineGap);
    rect.nBottom = MovedAt(nDpi, rect.nTop, kLineHeight);
}

int BottomTop(int nHeight, int nDpi) {
    return MovedAt(nDpi, nHeight, -kBottomBandHeight);
}

int LinkTop(int nHeight, int nDpi) {
    return MovedAt(nDpi, BottomTop(nHeight, nDpi), -kLinkBandHeight);
}

SkinBands BandsOf(int nWidth, int nHeight, int nLinkBottom, int nDpi) {
    const int linkTop = LinkTop(nHeight, nDpi);
    return {{PixelsAt(nDpi, kTextLeft), PixelsAt(nDpi, kTextTop),
             MovedAt(nDpi, nWidth, -kTextRightGap), linkTop},
            {0, linkTop, nWidth, nLinkBottom},
            {0, BottomTop(nHeight, nDpi), nWidth, nHeight},
            nDpi};
}

}  // namespace

SkinBands BandsOfResourceSkin(int nWidth, int nHeight, int nDpi) noexcept {
    return BandsOf(nWidth, nHeight, MovedAt(nDpi, LinkTop(nHeight, nDpi), kLineHeight), nDpi);
}

SkinBands BandsOfFileSkin(int nWidth, int nHeight, int nDpi) noexcept {
    return BandsOf(nWidth, nHeight, BottomTop(nHeight, nDpi), nDpi);
}

NoticeControls PlaceControls(SkinBands& bands, bool bHelp) noexcept {
    NoticeControls controls;
    bands.text.nBottom = MovedAt(bands.nDpi, bands.text.nBottom, -kLineHeight);
    controls.message = bands.text;
    if (!bHelp) {
        MoveBelow(bands.link, bands.nDpi);
    }
    MoveDown(bands.link, bands.nDpi, -kLineHeight);
    controls.closeLink = bands.link;
    controls.title = bands.link;
    MoveDown(controls.title, bands.nDpi, -kTitleAboveLink);
    MoveBelow(bands.link, bands.nDpi);
    controls.helpLink = bands.link;
    return controls;
}

SkinRect PlacePassword(SkinBands& bands) noexcept {
    bands.text.nBottom = MovedAt(bands.nDpi, bands.text.nBottom, -kLineHeight);
    SkinRect password = bands.text;
    password.nBottom = MovedAt(bands.nDpi, password.nBottom, -kPasswordGap);
    return password;
}

SkinRect PlaceProgressBar(int nWidth, int nHeight, int nDpi) noexcept {
    const int top = nHeight / 3;
    return {PixelsAt(nDpi, kBarMargin), top, MovedAt(nDpi, nWidth, -kBarMargin),
            MovedAt(nDpi, top, kLineHeight)};
}

SkinBullets PlaceBullets(int nHeight, bool bLink, bool bHelp, int nDpi) noexcept {
    const SkinPoint lower = {PixelsAt(nDpi, kBulletLeft),
                             MovedAt(nDpi, LinkTop(nHeight, nDpi), kBulletInBand)};
    const SkinPoint upper = {lower.nX, MovedAt(nDpi, lower.nY, -kBulletRise)};
    SkinBullets bullets;
    if (bLink) {
        bullets.link = bHelp ? upper : lower;
    }
    if (bHelp) {
        bullets.help = lower;
    }
    return bullets;
}

}  // namespace mvp
