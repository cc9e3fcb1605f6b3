// Rays of exactly one sample: where a first sample is also the last one, and where the grey maximum's extra sample
// makes two of it.
#include "render/KernelDifferential.h"

#include "reference/ReferenceRay.h"

namespace {

using namespace z3d;
using namespace z3d::test;

// How many rays have exactly one sample: the tests make sure with it that their views are what they are meant to be.
int CountSingles(const reference::Volume& volume, const reference::Request& request) {
    int singles = 0;
    const auto frame = reference::BuildFrame(volume, request);
    for (int j = 0; j < frame->outputSize[1]; ++j) {
        for (int i = 0; i < frame->outputSize[0]; ++i) {
            const auto ray = reference::TraceRay(*frame, i, j);
            singles += ray && ray->lastDepth == ray->firstDepth;
        }
    }
    return singles;
}

class OneSampleRays : public KernelDifferential {
protected:
    static Rotation EighthTurn(int axis, int second) {
        constexpr Angle kEighth = {0.7071067811865476, 0.7071067811865476};
        const DoubleMatrix turned = AboutAxis(axis, kEighth);
        return Rounded(second < 0 ? turned : Product(AboutAxis(second, kEighth), turned));
    }
};

TEST_P(OneSampleRays, OneVoxelOfTheCrop) {
    RandomSource random(1);
    const ComparedVolume compared(NoiseVolume(Size(18, 17, 19), 1));
    int singles = 0;
    for (int index = 0; index < 60; ++index) {
        reference::Request request = ViewOf(
            compared.Plain(), RandomRotation(random, static_cast<RotationKind>(index % kRotationKinds)));
        const std::array<int, 3> sides = {18, 17, 19};
        for (int axis = 0; axis < 3; ++axis) {
            const int voxel = random.Between(1, sides[static_cast<std::size_t>(axis)]);
            CropAxis(request, axis, voxel, voxel);
        }
        ASSERT_TRUE(compared.IsRenderedAlike(request));
        singles += CountSingles(compared.Plain(), request);
    }
    EXPECT_GT(singles, 10);
}

TEST_P(OneSampleRays, OneSliceOfTheCropOnEachAxis) {
    RandomSource random(2);
    const ComparedVolume compared(NoiseVolume(Size(17, 18, 19), 2));
    int singles = 0;
    for (int index = 0; index < 90; ++index) {
        const int axis = index % 3;
        const DoubleMatrix along = LookingAlong(axis, random.Chance(2));
        const DoubleMatrix tilt = AboutAxis(random.Below(3), SmallAngle(random.Within(-3.0, 3.0)));
        reference::Request request =
            ViewOf(compared.Plain(), Rounded(random.Chance(3) ? along : Product(tilt, along)));
        const int slice = random.Between(1, 17);
        CropAxis(request, axis, slice, slice);
        ASSERT_TRUE(compared.IsRenderedAlike(request));
        singles += CountSingles(compared.Plain(), request);
    }
    EXPECT_GT(singles, 1000);
}

TEST_P(OneSampleRays, VolumesOfOneSlice) {
    RandomSource random(3);
    const std::array<VolumeSize, 6> sizes = {Size(1, 21, 18), Size(19, 1, 20), Size(21, 18, 1),
                                             Size(1, 1, 23),  Size(22, 1, 1),  Size(1, 1, 1)};
    int singles = 0;
    for (std::size_t index = 0; index < 60; ++index) {
        const ComparedVolume compared(NoiseVolume(sizes[index % sizes.size()], 3));
        const auto kind = static_cast<RotationKind>(random.Below(kRotationKinds));
        const reference::Request request = ViewOf(compared.Plain(), RandomRotation(random, kind));
        ASSERT_TRUE(compared.IsRenderedAlike(request));
        singles += CountSingles(compared.Plain(), request);
    }
    EXPECT_GT(singles, 1000);
}

// Turned by 45 degrees, the outermost rays touch edges and corners of the crop box.
TEST_P(OneSampleRays, GrazedEdgesAndCorners) {
    int singles = 0;
    for (const int side : {2, 3, 5, 16, 17}) {
        const ComparedVolume compared(NoiseVolume(Size(side, side, side), 4));
        for (int axis = 0; axis < 3; ++axis) {
            for (int second = -1; second < 3; ++second) {
                reference::Request request = ViewOf(compared.Plain(), EighthTurn(axis, second));
                ASSERT_TRUE(compared.IsRenderedAlike(request));
                singles += CountSingles(compared.Plain(), request);
                CropAxis(request, 1, 2, side - 1);
                ASSERT_TRUE(compared.IsRenderedAlike(request));
            }
        }
    }
    EXPECT_GT(singles, 40);
}

INSTANTIATE_TEST_SUITE_P(AllKernels, OneSampleRays, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
