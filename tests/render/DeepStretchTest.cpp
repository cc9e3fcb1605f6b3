// Deep volumes. The slices that a stretch of sixteen rays meets are found together where they are few, one by one where
// they are many: there are 32 of them at most in the first case.
#include "render/KernelDifferential.h"

namespace {

using namespace z3d;
using namespace z3d::test;

class DeepStretches : public KernelDifferential {
protected:
    // Every depth up to 70, few voxels in a slice, and sometimes a window that leaves some colours out.
    static void Compare(int depth, float step, RandomSource& random) {
        const VolumeSize size = Size(random.Between(1, 9), random.Between(1, 9), depth);
        const ComparedVolume compared(RandomVolume(random, size));
        Rotation rotation = RandomRotation(random, RotationKind::Uniform);
        for (std::size_t element = 6; element < 9; ++element)
            rotation[element] *= step;
        const int largest = BytesPerVoxel() == 3 ? 765 : 255;
        reference::Request request = ViewOf(compared.Plain(), rotation);
        if (random.Chance(2)) request.low = static_cast<float>(random.Below(largest));
        if (random.Chance(3)) request.high = static_cast<float>(random.Below(largest));
        ASSERT_TRUE(compared.IsRenderedAlike(request)) << "depth " << depth << ", step " << step;
    }
};

TEST_P(DeepStretches, OfRotations) {
    RandomSource random(1);
    for (int depth = 1; depth <= 70; ++depth)
        ASSERT_NO_FATAL_FAILURE(Compare(depth, 1, random));
}

// A step crosses up to three slices.
TEST_P(DeepStretches, OfMatricesThatSkipSlices) {
    RandomSource random(2);
    for (int depth = 1; depth <= 70; ++depth)
        ASSERT_NO_FATAL_FAILURE(Compare(depth, 3, random));
}

INSTANTIATE_TEST_SUITE_P(AllKernels, DeepStretches, ::testing::ValuesIn(AllKernels()),
                         [](const auto& kernel) { return std::string(kernel.param.name); });

} // namespace
