// Centre, output size and crop box of a projection.
#include "render/ProjectionRenderer.h"

#include "support/HostVolume.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace z3d;
using render::ClampCropInterval;
using render::CropBox;
using render::ProjectionRenderer;
using test::HostVolume;

constexpr float kIdentityRotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
// 90 degrees about z, as a host gets it from rounded cosines.
constexpr float kQuarterTurn[9] = {-4.371139e-08f, -1, 0, 1, -4.371139e-08f, 0, 0, 0, 1};

using Interval = std::array<float, 2>;

Interval Clamped(float low, float high, float halfExtent) {
    ClampCropInterval(low, high, halfExtent);
    return {low, high};
}

TEST(ProjectionRenderer, KeepsTheSizeUnderTheIdentity) {
    const HostVolume volume(64, 48, 10, 0);
    const ProjectionRenderer renderer(volume.Get(), kIdentityRotation, {0, 63, 0, 47, 0, 9}, 0);

    EXPECT_EQ(renderer.outputWidth, 64);
    EXPECT_EQ(renderer.outputHeight, 48);
    EXPECT_EQ(renderer.outputDepth, 10);
    EXPECT_EQ(renderer.outputHalfSize[0], 31.5f);
    EXPECT_EQ(renderer.outputHalfSize[1], 23.5f);
    EXPECT_EQ(renderer.outputHalfSize[2], 4.5f);
}

TEST(ProjectionRenderer, SwapsWidthAndHeightUnderAQuarterTurnAboutZ) {
    const HostVolume volume(64, 48, 10, 0);
    const ProjectionRenderer renderer(volume.Get(), kQuarterTurn, {0, 63, 0, 47, 0, 9}, 0);

    EXPECT_EQ(renderer.outputWidth, 48);
    EXPECT_EQ(renderer.outputHeight, 64);
    EXPECT_EQ(renderer.outputDepth, 10);
}

TEST(ProjectionRenderer, KeepsTheRotationAndItsTransposeTwice) {
    const float rotation[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const HostVolume volume(2, 2, 2, 0);
    const ProjectionRenderer renderer(volume.Get(), rotation, {0, 1, 0, 1, 0, 1}, 77);

    const float transpose[9] = {1, 4, 7, 2, 5, 8, 3, 6, 9};
    for (int element = 0; element < 9; ++element) {
        EXPECT_EQ(renderer.rotation[element], rotation[element]);
        EXPECT_EQ(renderer.rotation2[element], rotation[element]);
        EXPECT_EQ(renderer.inverseRotation[element], transpose[element]);
        EXPECT_EQ(renderer.inverseRotation2[element], transpose[element]);
    }
    EXPECT_EQ(renderer.reserved, 77);
}

TEST(ProjectionRenderer, GivesASingleVoxelASizeOfOneAndAnEmptyCropBox) {
    const HostVolume volume(1, 1, 1, 0);
    const ProjectionRenderer renderer(volume.Get(), kIdentityRotation, {0, 0, 0, 0, 0, 0}, 0);

    EXPECT_EQ(renderer.outputWidth, 1);
    EXPECT_EQ(renderer.outputHeight, 1);
    EXPECT_EQ(renderer.outputDepth, 1);
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(renderer.volumeCentre[axis], 0.0f);
        EXPECT_EQ(renderer.cropLow[axis], 0.0f);
        EXPECT_EQ(renderer.cropHigh[axis], 0.0f);
    }
}

TEST(ProjectionRenderer, StoresTheCropBoxAboutTheCentreInTheOrderZYX) {
    const HostVolume volume(64, 48, 10, 0);
    const ProjectionRenderer renderer(volume.Get(), kIdentityRotation, {10, 40, 5, 6, 2, 8}, 0);

    EXPECT_EQ(renderer.cropLow[0], -2.5f); // 2 - 4.5
    EXPECT_EQ(renderer.cropHigh[0], 3.5f);
    EXPECT_EQ(renderer.cropLow[1], -18.5f); // 5 - 23.5
    EXPECT_EQ(renderer.cropHigh[1], -17.5f);
    EXPECT_EQ(renderer.cropLow[2], -21.5f); // 10 - 31.5
    EXPECT_EQ(renderer.cropHigh[2], 8.5f);
}

TEST(ClampCropInterval, SwapsReversedEnds) {
    EXPECT_EQ(Clamped(8.5f, -21.5f, 31.5f), (Interval{-21.5f, 8.5f}));
}

TEST(ClampCropInterval, WidensASingleVoxelToOneVoxelLength) {
    EXPECT_EQ(Clamped(3, 3, 31.5f), (Interval{2.5f, 3.5f}));
    EXPECT_EQ(Clamped(3, 3.5f, 31.5f), (Interval{2.75f, 3.75f}));
}

TEST(ClampCropInterval, CutsOffWhatLiesBeyondTheVolume) {
    EXPECT_EQ(Clamped(-100, 20, 31.5f), (Interval{-31.5f, 28.5f})); // the middle, -40, moves to -31.5
    EXPECT_EQ(Clamped(-32.5f, 32.5f, 31.5f), (Interval{-31.5f, 31.5f}));
}

TEST(ClampCropInterval, MovesAnIntervalOutsideTheVolumeToItsFace) {
    EXPECT_EQ(Clamped(40, 42, 31.5f), (Interval{30.5f, 31.5f}));
    EXPECT_EQ(Clamped(-50, -50, 31.5f), (Interval{-31.5f, -31.0f}));
}

} // namespace
