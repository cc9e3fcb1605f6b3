// Sizes of the scratch memory of a projection.
#include "render/ProjectionJob.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;

TEST(SkipTableBytes, CountsCodesAndBoundsOfBlocksWithABorder) {
    // 64 voxels are 32 blocks and 2 border blocks a side; rows have 34 + 18 + 16 bytes, rounded up to vectors.
    EXPECT_EQ(render::SkipTableBytes({nullptr, 64, 64, 64}), 2u * (80 * 34 * 34) + 128);
}

// The table of this thin volume would have 4,312,013,312 bytes.
TEST(SkipTableBytes, DoesNotWrap) {
    const std::size_t bytes = render::SkipTableBytes({nullptr, 1, 13400, 13400});
    EXPECT_EQ(bytes, sizeof(std::size_t) == 4 ? SIZE_MAX : static_cast<std::size_t>(4'312'013'312));
}

} // namespace
