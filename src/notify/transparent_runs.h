// The visible part of a picture with a transparent colour, as rectangles: runs of visible pixels,
// and rows with the same runs taken together. From the top down and from left to right, none
// touching the one beside it, as the system keeps its regions.
//
//     RunReader reader(pixels, nWidth, nHeight, {nRed, nGreen, nBlue});
//     for (auto runs = reader.Next(); !runs.empty(); runs = reader.Next()) { ... }
//
// A picture of any size takes the same memory: some rows of it at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace mvp {

// Pixels; right and bottom lie outside. The system's rectangle, field by field.
struct RunRect {
    std::int32_t nLeft = 0;
    std::int32_t nTop = 0;
    std::int32_t nRight = 0;
    std::int32_t nBottom = 0;
};

struct PixelColour {
    std::uint8_t nRed = 0;
    std::uint8_t nGreen = 0;
    std::uint8_t nBlue = 0;
};

class RunReader {
public:
    // From so many rectangles on, Next returns what it has at the end of a row. A system may join
    // the rectangles that it is given at a time one by one, each with all before it: few at a time
    // are joined faster than all at once.
    static constexpr std::size_t kRunsAtATime = 32;

    // The pixels lie row by row from the top with nothing between, each as blue, green, red, and
    // must outlive the reader. With fewer than the sides need there are no runs at all. Throws
    // std::bad_alloc.
    RunReader(std::span<const std::uint8_t> pixels, std::uint16_t nWidth, std::uint16_t nHeight,
              PixelColour transparent);

    // The next rectangles, good until the next call; empty at the end. Throws std::bad_alloc.
    std::span<const RunRect> Next();

private:
    struct Run {
        std::int32_t nLeft;
        std::int32_t nRight;
        bool operator==(const Run&) const = default;
    };
    void ReadRow(std::int32_t nRow, std::vector<Run>& runs) const;

    std::span<const std::uint8_t> m_pixels;
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    PixelColour m_transparent;
    std::int32_t m_nRow = 0;
    std::vector<Run> m_row;       // of m_nRow
    std::vector<Run> m_rowBelow;  // of the one below it
    std::vector<RunRect> m_runs;
};

}  // namespace mvp
