#include "notify/transparent_runs.h"

namespace mvp {
namespace {

constexpr std::size_t kPixelBytes = 3;  // blue, green, red

bool HasColour(const std::uint8_t* pPixel, PixelColour colour) {
    return pPixel[0] == colour.nBlue && pPixel[1] == colour.nGreen && pPixel[2] == colour.nRed;
}

}  // namespace

RunReader::RunReader(std::span<const std::uint8_t> pixels, std::uint16_t nWidth,
                     std::uint16_t nHeight, PixelColour transparent)
    : m_pixels(pixels), m_nWidth(nWidth), m_nHeight(nHeight), m_transparent(transparent) {
    if (pixels.size() < std::uint64_t{nWidth} * nHeight * kPixelBytes) {
        m_nHeight = 0;
    }
    if (m_nHeight > 0) {
        ReadRow(0, m_row);
    }
}

std::span<const RunRect> RunReader::Next() {
    m_runs.clear();
    while (m_nRow < m_nHeight && m_runs.size() < kRunsAtATime) {
        const std::int32_t top = m_nRow;
        while (++m_nRow < m_nHeight) {
            ReadRow(m_nRow, m_rowBelow);
            if (m_rowBelow != m_row) {
                break;
            }
        }
        for (const Run& run : m_row) {
            m_runs.push_back({run.nLeft, top, run.nRight, m_nRow});
        }
        m_row.swap(m_rowBelow);
    }
    return m_runs;
}

void RunReader::ReadRow(std::int32_t nRow, std::vector<Run>& runs) const {
    runs.clear();
    const std::size_t width = static_cast<std::size_t>(m_nWidth) * kPixelBytes;
    const std::uint8_t* const row = m_pixels.data() + static_cast<std::size_t>(nRow) * width;
    const std::uint8_t* const end = row + width;
    const std::uint8_t* pixel = row;
    // How far it is to a pixel that is visible, or is not.
    const auto skip = [&](bool bTransparent) {
        while (pixel != end && HasColour(pixel, m_transparent) == bTransparent) {
            pixel += kPixelBytes;
        }
        return static_cast<std::int32_t>((pixel - row) / static_cast<std::ptrdiff_t>(kPixelBytes));
    };
    for (std::int32_t left = skip(true); left < m_nWidth; left = skip(true)) {
        runs.push_back({left, skip(false)});
    }
}

}  // namespace mvp
