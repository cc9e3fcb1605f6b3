// What the generators promise to the tests that use them.
#include "support/ProceduralVolumes.h"
#include "support/RandomRequests.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace z3d;
using namespace z3d::test;

// Largest element of |R * transpose(R) - I|.
double OrthonormalityError(const Rotation& rotation) {
    double error = 0.0;
    for (std::size_t a = 0; a < 3; ++a) {
        for (std::size_t b = 0; b < 3; ++b) {
            double product = 0.0;
            for (std::size_t i = 0; i < 3; ++i) {
                product += static_cast<double>(rotation[3 * a + i]) * rotation[3 * b + i];
            }
            error = std::max(error, std::abs(product - (a == b ? 1.0 : 0.0)));
        }
    }
    return error;
}

double LargestError(RotationKind kind) {
    RandomSource random(11);
    double largest = 0.0;
    for (int i = 0; i < 200; ++i) {
        largest = std::max(largest, OrthonormalityError(RandomRotation(random, kind)));
    }
    return largest;
}

TEST(Generators, RotationsAreOrthonormalToTheirLastBits) {
    EXPECT_EQ(LargestError(RotationKind::Identity), 0.0);
    EXPECT_EQ(LargestError(RotationKind::ExactQuarterTurn), 0.0);
    for (const RotationKind kind : {RotationKind::RoundedQuarterTurn, RotationKind::EighthTurn,
                                    RotationKind::TinyAngle, RotationKind::OneAxis, RotationKind::Uniform}) {
        EXPECT_LT(LargestError(kind), 3e-7) << static_cast<int>(kind);
    }
}

TEST(Generators, OtherMatricesAreNotOrthonormal) {
    EXPECT_GT(LargestError(RotationKind::NearOrthonormal), 1e-3);
    EXPECT_GT(LargestError(RotationKind::Sheared), 0.5);
    EXPECT_EQ(LargestError(RotationKind::Degenerate), 1.0);
}

TEST(Generators, TinyAnglesAreNotTheIdentity) {
    RandomSource random(3);

    for (int i = 0; i < 100; ++i) {
        EXPECT_NE(RandomRotation(random, RotationKind::TinyAngle), kIdentity);
    }
}

TEST(Generators, UnusableRotationsAreRefused) {
    RandomSource random(4);
    const reference::Volume volume = EmptyVolume({2, 2, 2});

    for (int i = 0; i < 100; ++i) {
        const reference::Request request = PlainRequest(volume, RenderModeMaximum, UnusableRotation(random));
        EXPECT_EQ(reference::Render(volume, request).width, 0) << Describe(request);
    }
}

TEST(Generators, VolumesHaveTheirSizeInBytes) {
    RandomSource random(5);

    for (int i = 0; i < 200; ++i) {
        const VolumeSize size = RandomSize(random, 9, 1 + i % 4);
        const reference::Volume volume = RandomVolume(random, size);
        const int bytes = size.width * size.height * size.depth * size.bytesPerVoxel;
        EXPECT_EQ(volume.voxels.size(), static_cast<std::size_t>(bytes)) << Describe(volume);
    }
}

TEST(Generators, VolumesShowTheirPattern) {
    reference::Volume ramp = RampVolume({1, 1, 4, 3}, 2);
    reference::Volume step = StepVolume({8, 8, 8}, 3, 200);
    reference::Volume board = CheckerboardVolume({4, 4, 4}, 2);

    EXPECT_EQ(VoxelByte(ramp, 0, 0, 1, 0), 85);
    EXPECT_EQ(VoxelByte(ramp, 0, 0, 1, 1), 170);
    EXPECT_EQ(VoxelByte(ramp, 0, 0, 1, 2), 42);
    EXPECT_EQ(VoxelByte(step, 1, 4, 4), 3);
    EXPECT_EQ(VoxelByte(step, 2, 4, 5), 200);
    EXPECT_EQ(VoxelByte(board, 1, 1, 1), 0);
    EXPECT_EQ(VoxelByte(board, 2, 1, 1), 255);
}

TEST(Generators, BlobsAreSmooth) {
    reference::Volume volume = BlobVolume({24, 24, 24}, 6);
    int largestStep = 0;
    for (int x = 1; x < 24; ++x) {
        largestStep =
            std::max(largestStep, std::abs(VoxelByte(volume, x, 12, 12) - VoxelByte(volume, x - 1, 12, 12)));
    }

    EXPECT_GT(*std::max_element(volume.voxels.begin(), volume.voxels.end()), 100);
    EXPECT_LT(largestStep, 130);
}

} // namespace
