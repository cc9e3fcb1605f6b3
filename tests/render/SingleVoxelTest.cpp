// One voxel that differs from all others, on the borders and corners of blocks, stretches and packets: a bound
// that is one block off, or a ray that is skipped wrongly, loses it.
#include "render/KernelDifferential.h"

#include <algorithm>

namespace {

using namespace z3d;
using namespace z3d::test;

class SingleVoxels : public KernelDifferential {
protected:
    struct Scene {
        Colour ground;
        Colour voxel;
    };

    // Indexes beside the borders of blocks of 2, packets of 4 and stretches of 16, and at both ends.
    static int BorderIndex(RandomSource& random, int side) {
        const int border = 1 << random.Between(1, 5);
        const int multiple = random.Between(0, side / border) * border + random.Between(-1, 1);
        return random.Chance(3) ? random.Below(2) * (side - 1) : std::clamp(multiple, 0, side - 1);
    }

    // Rays along the axis, exactly or nearly, or any view at all.
    static Rotation RandomView(RandomSource& random, int axis) {
        const DoubleMatrix along = LookingAlong(axis, random.Chance(2));
        if (random.Chance(3)) return Rounded(along);
        if (random.Chance(3)) return RandomRotation(random, RotationKind::Uniform);
        const double degrees = random.Within(-12.0, 12.0);
        return Rounded(Product(AboutAxis(random.Below(3), SmallAngle(degrees)), along));
    }

    static void ExpectAlike(const VolumeSize& size, int axis, const Scene& scene, int voxels,
                            std::uint32_t seed) {
        RandomSource random(seed);
        for (int index = 0; index < voxels; ++index) {
            reference::Volume volume = EmptyVolume(size);
            Fill(volume, scene.ground);
            SetVoxel(volume, BorderIndex(random, size.width), BorderIndex(random, size.height),
                     BorderIndex(random, size.depth), scene.voxel);
            const ComparedVolume compared(std::move(volume));
            const Rotation view = RandomView(random, axis);
            ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), view))) << "voxel " << index;
            // The window accepts nothing else.
            const auto value = static_cast<float>(ValueOf(scene.voxel));
            ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), view, value - 0.5f, value + 0.5f)))
                << "voxel " << index;
        }
    }
};

constexpr int kVoxelsPerAxis = 80;

TEST_P(SingleVoxels, BrightOnDark) {
    const Scene scene = {{0, 0, 0}, {200, 90, 130}};
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(70, 7, 6), 0, scene, kVoxelsPerAxis, 1));
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(6, 69, 7), 1, scene, kVoxelsPerAxis, 2));
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(7, 6, 68), 2, scene, kVoxelsPerAxis, 3));
}

TEST_P(SingleVoxels, DarkOnBright) {
    const Scene scene = {{180, 170, 190}, {20, 60, 10}};
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(67, 5, 6), 0, scene, kVoxelsPerAxis, 4));
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(5, 66, 7), 1, scene, kVoxelsPerAxis, 5));
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(6, 5, 65), 2, scene, kVoxelsPerAxis, 6));
}

// One step beside the ground: the smallest difference that a bound has to keep.
TEST_P(SingleVoxels, OneStepAboveAndBelowTheGround) {
    const Scene above = {{100, 100, 100}, {101, 100, 100}};
    const Scene below = {{100, 100, 100}, {99, 100, 100}};
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(35, 6, 7), 0, above, kVoxelsPerAxis, 7));
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(7, 6, 34), 2, below, kVoxelsPerAxis, 8));
}

// Many packets and stretches in every direction.
TEST_P(SingleVoxels, InCubes) {
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(34, 33, 35), 1, {{0, 0, 0}, {255, 254, 3}}, 8, 9));
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(33, 34, 32), 0, {{255, 250, 255}, {0, 1, 2}}, 8, 10));
}

INSTANTIATE_TEST_SUITE_P(AllKernels, SingleVoxels, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
