// Images narrower or lower than the 4 x 4 rays of a packet, and rows of voxels shorter than the 16 that are
// reduced together.
#include "render/KernelDifferential.h"

namespace {

using namespace z3d;
using namespace z3d::test;

class SmallOutputs : public KernelDifferential {
protected:
    // `along` on each axis in turn, seen along it from both ends.
    static void ExpectAlike(int across, int down, int along, std::uint32_t seed) {
        const std::array<VolumeSize, 3> sizes = {Size(along, across, down), Size(across, along, down),
                                                 Size(across, down, along)};
        for (int axis = 0; axis < 3; ++axis) {
            RandomSource random(seed);
            const ComparedVolume compared(RandomVolume(random, sizes[static_cast<std::size_t>(axis)]));
            for (const bool isBackwards : {false, true}) {
                const Rotation view = Rounded(LookingAlong(axis, isBackwards));
                ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), view)));
            }
        }
    }
};

TEST_P(SmallOutputs, OfOneToFivePixelsASide) {
    std::uint32_t seed = 0;
    for (int across = 1; across <= 5; ++across) {
        for (int down = 1; down <= 5; ++down) {
            for (const int along : {1, 2, 16, 33}) {
                ++seed;
                ASSERT_NO_FATAL_FAILURE(ExpectAlike(across, down, along, seed)) << "seed " << seed;
            }
        }
    }
}

// Turned a little, so that packets rather than rows are walked, and the outermost rays miss.
TEST_P(SmallOutputs, OfOneToSixPixelsASideTilted) {
    RandomSource random(1);
    for (int index = 0; index < 120; ++index) {
        const VolumeSize size = Size(random.Between(1, 5), random.Between(1, 5), random.Between(1, 34));
        const ComparedVolume compared(RandomVolume(random, size));
        const DoubleMatrix tilt = AboutAxis(random.Below(3), SmallAngle(random.Within(-4.0, 4.0)));
        const DoubleMatrix turned = Product(AboutAxis(2, Quarters(random.Below(4))), tilt);
        ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), Rounded(turned)))) << "index " << index;
    }
}

// Turned about x alone, columns of pixels are columns of voxels.
TEST_P(SmallOutputs, RowsShorterThanAPacketOrALittleLonger) {
    RandomSource random(2);
    for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 18, 31, 32, 33}) {
        const ComparedVolume compared(
            RandomVolume(random, Size(width, random.Between(1, 9), random.Between(1, 18))));
        for (const double degrees : {0.0, 0.5, -20.0, 90.0}) {
            const Angle angle = degrees == 90.0 ? Quarters(1) : SmallAngle(degrees);
            reference::Request request = ViewOf(compared.Plain(), Rounded(AboutAxis(0, angle)));
            ASSERT_TRUE(compared.IsRenderedAlike(request));
            const int first = random.Between(1, width);
            CropAxis(request, 0, first, random.Between(first, width));
            ASSERT_TRUE(compared.IsRenderedAlike(request));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, SmallOutputs, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
