// Where the chunks of the busy bar stand: a train of equal chunks that runs from the left edge of
// the bar to the right, leaves it and starts again. Pixels, in the bar's client coordinates.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace mvp {

inline constexpr std::uint32_t kProgressMaxBlocks = 20;
inline constexpr int kProgressLargestGap = 64;
inline constexpr int kProgressChunkGap = 2;  // at 96 dpi

// The part of the bar inside its border, in which chunks are visible, and how far apart they are,
// up to kProgressLargestGap.
struct ProgressContent {
    int nLeft = 0;
    int nRight = 0;
    int nChunkGap = kProgressChunkGap;
};

struct ProgressChunk {
    int nLeft = 0;
    int nRight = 0;
};

class ProgressTrain {
public:
    // The visible chunks, from the head backwards; none is empty.
    std::span<const ProgressChunk> Chunks() const noexcept { return {m_chunks.data(), m_nCount}; }
    // True when the last chunk has left the bar, so that the position starts again at 0.
    bool HasLeft() const noexcept { return m_bHasLeft; }

private:
    friend ProgressTrain PlaceProgressTrain(const ProgressContent& content, int nChunkWidth,
                                            std::int32_t nPosition, std::uint32_t nBlocks) noexcept;

    std::array<ProgressChunk, kProgressMaxBlocks> m_chunks{};
    std::size_t m_nCount = 0;
    bool m_bHasLeft = false;
};

// The train after `nPosition` ticks. With a content or a chunk without width there is no chunk, and
// the train never leaves; a negative position counts as 0, more than kProgressMaxBlocks blocks as
// that many.
ProgressTrain PlaceProgressTrain(const ProgressContent& content, int nChunkWidth,
                                 std::int32_t nPosition, std::uint32_t nBlocks) noexcept;

// The width of a chunk where no theme gives one.
int ClassicChunkWidth(int nContentHeight) noexcept;

}  // namespace mvp
