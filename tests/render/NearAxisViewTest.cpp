// Views beside the axis-aligned ones: rays that are just parallel to faces or just not, hits that lie on a face or
// one rounding off it, and rotations with exact zeros, of both signs.
#include "render/KernelDifferential.h"

#include <algorithm>

namespace {

using namespace z3d;
using namespace z3d::test;

class NearAxisViews : public KernelDifferential {
protected:
    static constexpr std::array<double, 8> kTilts = {1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 0.1, 1.0};

    // Views along each axis from both sides, and those turned about the ray by quarters.
    static std::vector<DoubleMatrix> AlignedViews() {
        std::vector<DoubleMatrix> views;
        for (int axis = 0; axis < 3; ++axis) {
            for (int side = 0; side < 2; ++side)
                views.push_back(Product(AboutAxis(2, Quarters(axis + side)), LookingAlong(axis, side == 1)));
        }
        return views;
    }

    // The whole volume, or a crop that begins and ends on voxels, as those of hosts do.
    static reference::Request RandomlyCropped(reference::Request request, const reference::Volume& volume,
                                              RandomSource& random) {
        if (random.Chance(2)) return request;
        const Crop crop =
            RandomCrop(random, random.Chance(3) ? CropKind::OneVoxel : CropKind::Inside, volume);
        CropTo(request, crop);
        return request;
    }
};

TEST_P(NearAxisViews, TiltedByAMillionthOfADegreeAndMore) {
    RandomSource random(1);
    const ComparedVolume compared(NoiseVolume(Size(13, 10, 12), 1));
    for (const DoubleMatrix& aligned : AlignedViews()) {
        for (const double degrees : kTilts) {
            for (int axis = 0; axis < 3; ++axis) {
                const DoubleMatrix tilt = AboutAxis(axis, SmallAngle(random.Chance(2) ? degrees : -degrees));
                const reference::Request request = ViewOf(compared.Plain(), Rounded(Product(tilt, aligned)));
                ASSERT_TRUE(compared.IsRenderedAlike(RandomlyCropped(request, compared.Plain(), random)));
            }
        }
    }
}

TEST_P(NearAxisViews, TiltedAboutTwoAxes) {
    RandomSource random(2);
    const ComparedVolume compared(NoiseVolume(Size(9, 16, 11), 2));
    const auto angle = [&] {
        const double degrees = kTilts[static_cast<std::size_t>(random.Below(8))];
        return SmallAngle(random.Chance(2) ? degrees : -degrees);
    };
    for (const DoubleMatrix& aligned : AlignedViews()) {
        for (int index = 0; index < 8; ++index) {
            const int axis = random.Below(3);
            const DoubleMatrix tilt = Product(AboutAxis(axis, angle()), AboutAxis((axis + 1) % 3, angle()));
            ASSERT_TRUE(compared.IsRenderedAlike(RandomlyCropped(
                ViewOf(compared.Plain(), Rounded(Product(tilt, aligned))), compared.Plain(), random)));
        }
    }
}

// Rays count as parallel to a face when they move less than 0.00001 along its axis, over twice the half depth and
// two voxels.
TEST_P(NearAxisViews, JustParallelAndJustNot) {
    const ComparedVolume compared(NoiseVolume(Size(11, 8, 10), 3));
    for (const DoubleMatrix& aligned : AlignedViews()) {
        const auto depth = [&](std::size_t axis) {
            const std::array<double, 3> extents = {10, 7, 9};
            return (aligned[6 + axis] < 0 ? -1 : 1) * aligned[6 + axis] * extents[axis];
        };
        const double across = 0.00001 / (depth(0) + depth(1) + depth(2) + 2);
        for (const double share : {0.9, 0.9999999, 1.0, 1.0000001, 1.1}) {
            for (int axis = 0; axis < 2; ++axis) {
                const DoubleMatrix tilt = AboutAxis(axis, FromHalfTangent(across * share / 2));
                ASSERT_TRUE(
                    compared.IsRenderedAlike(ViewOf(compared.Plain(), Rounded(Product(tilt, aligned)))));
            }
        }
    }
}

// Ties between voxels, and hits exactly on edges.
TEST_P(NearAxisViews, ExactEighthsAndThirds) {
    RandomSource random(4);
    const ComparedVolume compared(NoiseVolume(Size(14, 14, 13), 4));
    constexpr double kRoot = 0.7071067811865476;
    const std::array<Angle, 4> angles = {Angle{kRoot, kRoot}, Angle{-kRoot, kRoot}, Angle{0.6, 0.8},
                                         Angle{0.5, 0.8660254037844386}};
    for (const Angle& angle : angles) {
        for (int axis = 0; axis < 3; ++axis) {
            for (int second = 0; second < 3; ++second) {
                const DoubleMatrix turned = Product(AboutAxis(second, Quarters(1)), AboutAxis(axis, angle));
                ASSERT_TRUE(compared.IsRenderedAlike(
                    RandomlyCropped(ViewOf(compared.Plain(), Rounded(turned)), compared.Plain(), random)));
            }
        }
    }
}

// A zero with a sign takes the same ways as one without.
TEST_P(NearAxisViews, ZerosOfBothSigns) {
    RandomSource random(5);
    const ComparedVolume compared(NoiseVolume(Size(18, 9, 10), 5));
    for (int index = 0; index < 40; ++index) {
        Rotation rotation =
            RandomRotation(random, index % 2 == 0 ? RotationKind::ExactQuarterTurn : RotationKind::OneAxis);
        if (index % 5 == 0) rotation = Rounded(AboutAxis(0, SmallAngle(random.Within(-30.0, 30.0))));
        for (float& element : rotation) {
            if (element == 0) element = random.Chance(2) ? 0.0f : -0.0f;
        }
        ASSERT_TRUE(compared.IsRenderedAlike(
            RandomlyCropped(ViewOf(compared.Plain(), rotation), compared.Plain(), random)));
    }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, NearAxisViews, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
