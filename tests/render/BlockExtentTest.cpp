// Sizes of the table of bounds.
#include "render/tables/BlockExtent.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;

std::size_t TableBytes(const render::VoxelGrid& grid) { return render::BlockExtent(grid).TableBytes(grid); }

TEST(TableBytes, CountsCodesAndBoundsOfBlocksWithABorder) {
    // 64 voxels are 16 blocks and 2 border blocks a side. Six layers of codes, whose rows have 18 + 10 + 16 bytes,
    // rounded up to vectors, and 18 layers of bounds in rows of 32.
    EXPECT_EQ(TableBytes({nullptr, 64, 64, 64}), 6u * 48 * 18 + 18 * 32 * 18 + 128);
}

TEST(TableBytes, CountsFewerLayersOfCodesForAFlatVolume) {
    EXPECT_EQ(TableBytes({nullptr, 64, 64, 6}), 3u * 48 * 18 + 3 * 32 * 18 + 128);
}

// The table of this thin volume would have 1,573,088 bytes for 65,535 voxels.
TEST(TableBytes, CannotBeHadForTablesLargerThanTheVolumeTwice) {
    EXPECT_EQ(TableBytes({nullptr, 1, 65535, 1}), render::BlockExtent::kNeverFits);
    EXPECT_LT(TableBytes({nullptr, 1, 1, 1}), 65536u);
}

TEST(TableBytes, DoesNotWrap) {
    const std::uint64_t bytes = TableBytes({nullptr, 65535, 65535, 40});
    EXPECT_EQ(bytes, sizeof(std::size_t) == 4 ? std::uint64_t{render::BlockExtent::kNeverFits}
                                              : std::uint64_t{4'838'425'088});
}

} // namespace
