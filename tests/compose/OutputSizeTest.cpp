#include "compose/OutputSize.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using z3d::volume::VolumeSize;

std::array<int, 3> Fitted(const VolumeSize& stored, int maxDiagonal) {
    const VolumeSize size = z3d::compose::OutputSize(stored, maxDiagonal);
    return {size.width, size.height, size.depth};
}

using Lengths = std::array<int, 3>;

TEST(OutputSize, ScalesALongerDiagonalDown) {
    EXPECT_EQ(Fitted({100, 100, 100}, 100), (Lengths{57, 57, 57}));
    EXPECT_EQ(Fitted({512, 512, 300}, 400), (Lengths{261, 261, 153}));
}

// 2, 3 and 6 have the diagonal 7.
TEST(OutputSize, KeepsWhatFits) {
    EXPECT_EQ(Fitted({2, 3, 6}, 7), (Lengths{2, 3, 6}));
    EXPECT_EQ(Fitted({2, 3, 6}, 32767), (Lengths{2, 3, 6}));
    EXPECT_EQ(Fitted({2, 3, 6}, 6), (Lengths{1, 2, 5}));
}

TEST(OutputSize, IsNeverBelowOne) {
    EXPECT_EQ(Fitted({1000, 1, 1}, 10), (Lengths{9, 1, 1}));
    EXPECT_EQ(Fitted({100, 100, 100}, 0), (Lengths{1, 1, 1}));
    EXPECT_EQ(Fitted({100, 100, 100}, -32768), (Lengths{1, 1, 1}));
}

// The diagonals are 579 and 210. In double the first would be 5 x 99 x 111 and the second end in 110.
TEST(OutputSize, IsComputedInExtendedPrecision) {
    EXPECT_EQ(Fitted({22, 386, 431}, 150), (Lengths{5, 100, 111}));
    EXPECT_EQ(Fitted({28, 140, 154}, 150), (Lengths{20, 100, 109}));
}

TEST(OutputSize, TakesAnyNumbers) {
    EXPECT_EQ(Fitted({0, 0, 0}, 10), (Lengths{1, 1, 1}));
    EXPECT_EQ(Fitted({0, 0, 0}, -1), (Lengths{1, 1, 1}));
    EXPECT_EQ(Fitted({-5, 10, 10}, 100), (Lengths{1, 10, 10}));
    EXPECT_EQ(Fitted({32767, 32767, 32767}, 32767), (Lengths{18918, 18918, 18918}));
    EXPECT_EQ(Fitted({-32768, -32768, -32768}, -32768), (Lengths{18918, 18918, 18918}));
}

} // namespace
