#include "mvpingui/skin_layout.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace mvp {
namespace {

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

void MoveDown(SkinRect& rect, int nBy) {
    rect.nTop = Moved(rect.nTop, nBy);
    rect.nBottom = Moved(rect.nBottom, nBy);
}

// To the line below itself.
void MoveBelow(SkinRect& rect) {
    rect.nTop = Moved(rect.nBottom, kLineGap);
    rect.nBottom = Moved(rect.nTop, kLineHeight);
}

int LinkTop(int nHeight) {
    return Moved(nHeight, -kBottomBandHeight - kLinkBandHeight);
}

SkinBands BandsOf(int nWidth, int nHeight, int nLinkBottom) {
    const int linkTop = LinkTop(nHeight);
    return {{kTextLeft, kTextTop, Moved(nWidth, -kTextRightGap), linkTop},
            {0, linkTop, nWidth, nLinkBottom},
            {0, Moved(nHeight, -kBottomBandHeight), nWidth, nHeight}};
}

}  // namespace

SkinBands BandsOfResourceSkin(int nWidth, int nHeight) noexcept {
    return BandsOf(nWidth, nHeight, Moved(LinkTop(nHeight), kLineHeight));
}

SkinBands BandsOfFileSkin(int nWidth, int nHeight) noexcept {
    return BandsOf(nWidth, nHeight, Moved(nHeight, -kBottomBandHeight));
}

NoticeControls PlaceControls(SkinBands& bands, bool bHelp) noexcept {
    NoticeControls controls;
    bands.text.nBottom = Moved(bands.text.nBottom, -kLineHeight);
    controls.message = bands.text;
    if (!bHelp) {
        MoveBelow(bands.link);
    }
    MoveDown(bands.link, -kLineHeight);
    controls.closeLink = bands.link;
    controls.title = bands.link;
    MoveDown(controls.title, -kTitleAboveLink);
    MoveBelow(bands.link);
    controls.helpLink = bands.link;
    return controls;
}

SkinRect PlacePassword(SkinBands& bands) noexcept {
    bands.text.nBottom = Moved(bands.text.nBottom, -kLineHeight);
    SkinRect password = bands.text;
    password.nBottom = Moved(password.nBottom, -kPasswordGap);
    return password;
}

SkinRect PlaceProgressBar(int nWidth, int nHeight) noexcept {
    const int top = nHeight / 3;
    return {kBarMargin, top, Moved(nWidth, -kBarMargin), Moved(top, kLineHeight)};
}

SkinBullets PlaceBullets(int nHeight, bool bLink, bool bHelp) noexcept {
    const SkinPoint lower = {kBulletLeft, Moved(LinkTop(nHeight), kBulletInBand)};
    const SkinPoint upper = {kBulletLeft, Moved(lower.nY, -kBulletRise)};
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
