// Local contrast where a neighbour lies a rounding away from the border between two voxels: one output column is as
// long as from a voxel to just before, or behind, that border.
#include "render/KernelDifferential.h"

#include <cmath>

namespace {

using namespace z3d;
using namespace z3d::test;

class NeighbourTies : public KernelDifferential {
protected:
    // In the middle column of the output, coordinates along the axis are whole numbers.
    static void ExpectAlikeAlong(std::size_t axis, int side) {
        VolumeSize size = Size(3, 3, 3);
        int* const sides[] = {&size.width, &size.height, &size.depth};
        *sides[axis] = side;
        const ComparedVolume compared(NoiseVolume(size, static_cast<std::uint32_t>(side)));
        for (const float border : {0.51f, -0.49f}) {
            for (const float toward : {border, 0.0f, border * 2}) {
                Rotation rotation = kIdentity;
                rotation[axis] = std::nextafter(border, toward);
                ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), rotation)));
            }
        }
    }
};

TEST_P(NeighbourTies, AlongX) {
    for (const int side : {21, 201, 401, 1001, 2001, 4001, 16001})
        ASSERT_NO_FATAL_FAILURE(ExpectAlikeAlong(0, side)) << "side " << side;
}

TEST_P(NeighbourTies, AlongY) {
    for (const int side : {21, 201, 401})
        ASSERT_NO_FATAL_FAILURE(ExpectAlikeAlong(1, side)) << "side " << side;
}

TEST_P(NeighbourTies, AlongZ) {
    for (const int side : {21, 201, 401})
        ASSERT_NO_FATAL_FAILURE(ExpectAlikeAlong(2, side)) << "side " << side;
}

INSTANTIATE_TEST_SUITE_P(Contrasts, NeighbourTies,
                         ::testing::Values(KernelCase{"ContrastGrey", RenderModeContrast, 0, 1},
                                           KernelCase{"ContrastRgb", RenderModeContrast, 0, 3}),
                         ::testing::PrintToStringParamName());

} // namespace
