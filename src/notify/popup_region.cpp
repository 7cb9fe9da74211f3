#include "notify/popup_region.h"

#include <cstring>
#include <span>
#include <vector>

#include "notify/transparent_runs.h"
#include "platform/barrier.h"
#include "platform/bitmap_pixels.h"

namespace mvp {
namespace {

static_assert(sizeof(RunRect) == sizeof(RECT));

Region MakeRegion(std::span<const RunRect> runs) {
    RGNDATAHEADER header{};
    header.dwSize = sizeof header;
    header.iType = RDH_RECTANGLES;
    header.nCount = static_cast<DWORD>(runs.size());
    header.nRgnSize = static_cast<DWORD>(runs.size_bytes());
    std::vector<BYTE> data(sizeof header + runs.size_bytes());
    std::memcpy(data.data(), &header, sizeof header);
    std::memcpy(data.data() + sizeof header, runs.data(), runs.size_bytes());
    return Region(ExtCreateRegion(nullptr, static_cast<DWORD>(data.size()),
                                  reinterpret_cast<const RGNDATA*>(data.data())));
}

Region JoinRuns(RunReader& reader) {
    Region all(CreateRectRgn(0, 0, 0, 0));
    for (auto runs = reader.Next(); !runs.empty(); runs = reader.Next()) {
        const Region part = MakeRegion(runs);
        if (CombineRgn(all.get(), all.get(), part.get(), RGN_OR) == ERROR) {
            return {};
        }
    }
    return all;
}

std::size_t BytesOf(WORD nWidth, WORD nHeight) {
    return std::size_t{nWidth} * nHeight * 3;
}

}  // namespace

Pixels Get24BitPixels(HBITMAP hBitmap, WORD& nWidth, WORD& nHeight) noexcept {
    BITMAP bitmap{};
    if (GetObjectA(hBitmap, sizeof bitmap, &bitmap) != sizeof bitmap) {
        return nullptr;
    }
    nWidth = static_cast<WORD>(bitmap.bmWidth & 0xFFFC);
    nHeight = static_cast<WORD>(bitmap.bmHeight);
    if (nWidth == 0 || nHeight == 0) {
        return nullptr;
    }
    Pixels pixels(static_cast<BYTE*>(HeapAlloc(GetProcessHeap(), 0, BytesOf(nWidth, nHeight))));
    if (pixels == nullptr ||
        !ReadBitmapPixels(hBitmap, TopDownPixels(nWidth, nHeight, 24), pixels.get())) {
        return nullptr;
    }
    return pixels;
}

Region RegionOfPixels(const BYTE* pPixels, WORD nWidth, WORD nHeight, BYTE nRed, BYTE nGreen,
                      BYTE nBlue) noexcept {
    if (pPixels == nullptr) {
        return {};
    }
    return Guarded(
        Region(),
        [&] {
            RunReader reader({pPixels, BytesOf(nWidth, nHeight)}, nWidth, nHeight,
                             {nRed, nGreen, nBlue});
            return JoinRuns(reader);
        },
        [] {});
}

Region GenerateRegion(HBITMAP hBitmap, BYTE nRed, BYTE nGreen, BYTE nBlue) noexcept {
    WORD width = 0;
    WORD height = 0;
    const Pixels pixels = Get24BitPixels(hBitmap, width, height);
    return RegionOfPixels(pixels.get(), width, height, nRed, nGreen, nBlue);
}

}  // namespace mvp
