// Sizes of the table of bounds.
#include "render/tables/BlockExtent.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;

std::size_t TableBytes(const render::VoxelGrid& grid) { return render::BlockExtent(grid).TableBytes(grid); }

TEST(TableBytes, CountsCodesAndBoundsOfBlocksWithABorder) {
    // 64 voxels are 32 blocks and 2 border blocks a side. Twelve layers of codes, whose rows have 34 + 18 + 16 bytes,
    // rounded up to vectors, and 34 layers of bounds in rows of 48.
    EXPECT_EQ(TableBytes({nullptr, 64, 64, 64}), 12u * 80 * 34 + 34 * 48 * 34 + 128);
}

TEST(TableBytes, CountsFewerLayersOfCodesForAFlatVolume) {
    EXPECT_EQ(TableBytes({nullptr, 64, 64, 6}), 5u * 80 * 34 + 5 * 48 * 34 + 128);
}

// The bounds of this thin volume would have 718,668,864 bytes for 179,560,000 voxels.
TEST(TableBytes, CannotBeHadForTablesLargerThanTheVolumeTwice) {
    EXPECT_EQ(TableBytes({nullptr, 1, 13400, 13400}), SIZE_MAX);
    EXPECT_LT(TableBytes({nullptr, 1, 1, 1}), 65536u);
}

TEST(TableBytes, DoesNotWrap) {
    const std::uint64_t bytes = TableBytes({nullptr, 65535, 65535, 40});
    EXPECT_EQ(bytes, sizeof(std::size_t) == 4 ? std::uint64_t{SIZE_MAX} : std::uint64_t{36'538'745'888});
}

} // namespace
