#include "notify/progress_bar_geometry.h"

#include <algorithm>

namespace mvp {

ProgressTrain PlaceProgressTrain(const ProgressContent& content, int nChunkWidth,
                                 std::int32_t nPosition, std::uint32_t nBlocks) noexcept {
    ProgressTrain train;
    // 64 bits hold every product below: a width and a position have at most 32 bits each, their
    // product is divided by 100, and a step is less than that many times what it is counted in.
    const std::int64_t left = content.nLeft;
    const std::int64_t right = content.nRight;
    const std::int64_t chunk = nChunkWidth;
    const std::int64_t position = std::max(nPosition, 0);
    if (right <= left || chunk <= 0) {
        return train;
    }

    const std::int64_t step = chunk + std::clamp(content.nChunkGap, 0, kProgressLargestGap);
    const std::int64_t head = left + (right - left) / chunk * (position - 1) / 100 * step;
    const std::int64_t blocks = std::min(nBlocks, kProgressMaxBlocks);
    for (std::int64_t i = 0; i < blocks; ++i) {
        const std::int64_t x = head - i * step;
        if (x < left || x >= right) {
            continue;
        }
        train.m_chunks[train.m_nCount++] = {static_cast<int>(x),
                                            static_cast<int>(std::min(x + chunk, right))};
    }
    train.m_bHasLeft = blocks > 0 && head - (blocks - 1) * step > right;
    return train;
}

int ClassicChunkWidth(int nContentHeight) noexcept {
    return static_cast<int>(std::int64_t{nContentHeight} * 3 / 4);
}

}  // namespace mvp
