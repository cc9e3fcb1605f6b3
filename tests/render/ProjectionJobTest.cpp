// Sizes of the scratch memory of a projection.
#include "render/ProjectionJob.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;

TEST(SkipTableBytes, CountsCodesAndBoundsOfBlocksWithABorder) {
    // 64 voxels are 32 blocks and 2 border blocks a side. Twelve layers of codes, whose rows have 34 + 18 + 16 bytes,
    // rounded up to vectors, and 34 layers of bounds in rows of 48.
    EXPECT_EQ(render::SkipTableBytes({nullptr, 64, 64, 64}), 12u * 80 * 34 + 34 * 48 * 34 + 128);
}

TEST(SkipTableBytes, CountsFewerLayersOfCodesForAFlatVolume) {
    EXPECT_EQ(render::SkipTableBytes({nullptr, 64, 64, 6}), 5u * 80 * 34 + 5 * 48 * 34 + 128);
}

// The bounds of this thin volume would have 718,668,864 bytes for 179,560,000 voxels.
TEST(SkipTableBytes, CannotBeHadForTablesLargerThanTheVolumeTwice) {
    EXPECT_EQ(render::SkipTableBytes({nullptr, 1, 13400, 13400}), SIZE_MAX);
    EXPECT_LT(render::SkipTableBytes({nullptr, 1, 1, 1}), 65536u);
}

TEST(SkipTableBytes, DoesNotWrap) {
    const std::uint64_t bytes = render::SkipTableBytes({nullptr, 65535, 65535, 40});
    EXPECT_EQ(bytes, sizeof(std::size_t) == 4 ? std::uint64_t{SIZE_MAX} : std::uint64_t{36'538'745'888});
}

// A band is 32 rows, with two numbers per ray.
TEST(Scratch, IsForTheRaysOfOneBand) {
    EXPECT_EQ(render::RowScratchInts(100), 64u * 116);
    EXPECT_EQ(render::StripScratchBytes(100), 64u * 100);
}

// In 32 bits 64 * 2^26 would be nothing at all, and the output itself can be had: a row of 805 million bytes.
TEST(Scratch, DoesNotWrap) {
    EXPECT_EQ(render::RowScratchInts(33'554'415), 64u * 33'554'431);
    for (const std::int32_t width : {33'554'416, 1 << 26, INT32_MAX}) {
        EXPECT_EQ(render::RowScratchInts(width), SIZE_MAX);
        EXPECT_EQ(render::StripScratchBytes(width), SIZE_MAX);
    }
}

} // namespace
