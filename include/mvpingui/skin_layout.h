// Where the parts of a notice stand on its skin. Pixels, in the window's client coordinates; right
// and bottom lie outside. Any sizes do: a coordinate that an int cannot hold stops at its limit.
// Every distance grows with nDpi, the window's resolution, as the skin itself does.
//
// The bands move for good while the controls are placed, as often as they are:
//
//     SkinBands bands = BandsOfResourceSkin(nWidth, nHeight, nDpi);
//     const NoticeControls controls = PlaceControls(bands, bHelp);
#pragma once

#include <optional>

namespace mvp {

struct SkinRect {
    int nLeft = 0;
    int nTop = 0;
    int nRight = 0;
    int nBottom = 0;
};

struct SkinPoint {
    int nX = 0;
    int nY = 0;
};

// At 96 dpi.
constexpr int kBottomBandHeight = 30;
constexpr int kLinkBandHeight = 48;

struct SkinBands {
    SkinRect text;
    SkinRect link;
    SkinRect bottom;
    int nDpi = 96;
};

// Of a skin from the resource module, whose links are one line of text high, and of one from a
// file.
SkinBands BandsOfResourceSkin(int nWidth, int nHeight, int nDpi) noexcept;
SkinBands BandsOfFileSkin(int nWidth, int nHeight, int nDpi) noexcept;

struct NoticeControls {
    SkinRect message;
    SkinRect title;
    SkinRect closeLink;
    SkinRect helpLink;
};

// bHelp: the help link is shown; without it the close link stands in its place.
NoticeControls PlaceControls(SkinBands& bands, bool bHelp) noexcept;

// The control of a password that takes the place of the message.
SkinRect PlacePassword(SkinBands& bands) noexcept;

SkinRect PlaceProgressBar(int nWidth, int nHeight, int nDpi) noexcept;

// The left top corners of the pictures beside the links, as far as they are drawn.
struct SkinBullets {
    std::optional<SkinPoint> link;
    std::optional<SkinPoint> help;
};

SkinBullets PlaceBullets(int nHeight, bool bLink, bool bHelp, int nDpi) noexcept;

}  // namespace mvp
