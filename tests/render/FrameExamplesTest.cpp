// What all modes share: output size, order of pixels, crop box, depth range and nearest voxel.
#include "render/RenderExamples.h"

#include <limits>

namespace {

using namespace z3d;
using namespace z3d::test;

constexpr Rotation kQuarterAboutZ = {0, -1, 0, 1, 0, 0, 0, 0, 1};

constexpr Rotation Scaling(float x, float y, float z) { return {x, 0, 0, 0, y, 0, 0, 0, z}; }

void ExpectSize(const reference::Projection& projection, int width, int height, int depth) {
    EXPECT_EQ(projection.width, width);
    EXPECT_EQ(projection.height, height);
    EXPECT_EQ(projection.depth, depth);
}

TEST_P(RenderExamples, IdentityKeepsTheVolumesSize) {
    const reference::Volume volume = EmptyVolume({64, 48, 10});

    const reference::Projection projection = Render(volume, PlainRequest(volume, RenderModeMaximum));

    ExpectSize(projection, 64, 48, 10);
    EXPECT_EQ(projection.pixels.size(), 64u * 48u * 3u);
}

TEST_P(RenderExamples, QuarterTurnAboutZSwapsWidthAndHeight) {
    const reference::Volume volume = EmptyVolume({64, 48, 10});
    const float cosine = -4.371139e-08f;

    ExpectSize(Render(volume, PlainRequest(volume, RenderModeMaximum, kQuarterAboutZ)), 48, 64, 10);
    ExpectSize(
        Render(volume, PlainRequest(volume, RenderModeMaximum, {cosine, -1, 0, 1, cosine, 0, 0, 0, 1})), 48,
        64, 10);
}

TEST_P(RenderExamples, ExtentsAreTruncatedNotRounded) {
    const reference::Volume volume = EmptyVolume({4, 3, 2});

    // Extents 2.9999998, 2, 1 and then 1.5, 1, 0.5.
    ExpectSize(Render(volume, PlainRequest(volume, RenderModeMaximum, Scaling(0.99999994f, 1, 1))), 3, 3, 2);
    ExpectSize(Render(volume, PlainRequest(volume, RenderModeMaximum, Scaling(0.5f, 0.5f, 0.5f))), 2, 2, 1);
}

TEST_P(RenderExamples, TheCropBoxDoesNotChangeTheSize) {
    const reference::Volume volume = EmptyVolume({4, 3, 2});

    ExpectSize(Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), 2, 2)), 4, 3, 2);
}

TEST_P(RenderExamples, OneVoxelGivesOnePixel) {
    const reference::Volume volume = GreyColumn({77});

    const reference::Projection projection = Render(volume, PlainRequest(volume, RenderModeMaximum));

    ExpectSize(projection, 1, 1, 1);
    EXPECT_TRUE(HasGreyPixels(projection, {77}));
}

TEST_P(RenderExamples, UnknownModesGiveTheSizeAndNoPixels) {
    const reference::Volume volume = EmptyVolume({4, 3, 2});

    for (const int mode : {7, -1, 32767, -32768}) {
        const reference::Projection projection = Render(volume, PlainRequest(volume, mode));

        ExpectSize(projection, 4, 3, 2);
        EXPECT_FALSE(projection.rendered);
        EXPECT_TRUE(projection.pixels.empty());
    }
}

TEST_P(RenderExamples, RotationsThatAreNotFiniteOrTooLargeGiveNothing) {
    const reference::Volume volume = EmptyVolume({4, 3, 2});
    const float infinity = std::numeric_limits<float>::infinity();

    for (const float element : {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity, 3e9f, -1e30f}) {
        for (std::size_t i = 0; i < 9; i += 4) {
            Rotation rotation = kIdentity;
            rotation[i] = element;
            const reference::Projection projection =
                Render(volume, PlainRequest(volume, RenderModeMaximum, rotation));

            ExpectSize(projection, 0, 0, 0);
            EXPECT_FALSE(projection.rendered);
        }
    }
}

TEST_P(RenderExamples, PixelsOf4GiBAndMoreAreNotRendered) {
    const reference::Volume volume = EmptyVolume({2, 2, 1});

    const reference::Projection projection =
        Render(volume, PlainRequest(volume, RenderModeMaximum, Scaling(40000, 40000, 1)));

    ExpectSize(projection, 40001, 40001, 1);
    EXPECT_FALSE(projection.rendered);
}

TEST_P(RenderExamples, TheTopRowOfTheViewComesFirst) {
    const reference::Volume volume = GreyVolume(2, 3, 1, {10, 11, 20, 21, 30, 31});

    const reference::Projection projection = Render(volume, PlainRequest(volume, RenderModeMaximum));

    EXPECT_TRUE(HasGreyPixels(projection, {30, 31, 20, 21, 10, 11}));
}

TEST_P(RenderExamples, QuarterTurnAboutZTurnsViewXToMinusY) {
    // View x = -y, view y = x: the top row holds the last column, from the last voxel of it to the first.
    const reference::Volume volume = GreyVolume(3, 2, 1, {1, 2, 3, 4, 5, 6});

    const reference::Projection projection =
        Render(volume, PlainRequest(volume, RenderModeMaximum, kQuarterAboutZ));

    EXPECT_TRUE(HasGreyPixels(projection, {6, 3, 5, 2, 4, 1}));
}

TEST_P(RenderExamples, QuarterTurnAboutYLooksAlongMinusX) {
    // View x = z and view depth = -x, so the first hit is the last voxel of each row.
    const reference::Volume volume = GreyVolume(2, 1, 3, {1, 2, 3, 4, 5, 6});

    const reference::Projection projection =
        Render(volume, PlainRequest(volume, RenderModeFirstHit, kQuarterAboutY));

    ExpectSize(projection, 3, 1, 2);
    EXPECT_TRUE(HasGreyPixels(projection, {2, 4, 6}));
}

TEST_P(RenderExamples, RaysOutsideTheCropBoxKeepTheInitialValue) {
    // Columns at -1.5, -0.5, 0.5 and 1.5; the box is [-0.5, 0.5], both ends included.
    const reference::Volume volume = GreyVolume(4, 1, 1, {1, 2, 3, 4});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), 2, 3)),
                              {kSentinel, 2, 3, kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), 2, 2)),
                              {kSentinel, 2, kSentinel, kSentinel}));
}

TEST_P(RenderExamples, ReversedCropBoundsActAsIfSwapped) {
    const reference::Volume volume = RampVolume({64, 2, 1}, 0);

    const reference::Projection ordered =
        Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), 10, 40));
    const reference::Projection reversed =
        Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), 40, 10));

    ASSERT_FALSE(ordered.pixels.empty());
    EXPECT_EQ(ordered.pixels[8 * 3], kSentinel);
    EXPECT_EQ(ordered.pixels[9 * 3], 36.0f); // 9 * 255 / 63
    EXPECT_TRUE(HasPixels(reversed, ordered.pixels));
}

TEST_P(RenderExamples, CropBoundsBeyondTheVolumeAreClamped) {
    const reference::Volume volume = GreyVolume(4, 1, 1, {1, 2, 3, 4});

    EXPECT_TRUE(HasGreyPixels(
        Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), -32768, 32767)), {1, 2, 3, 4}));
}

TEST_P(RenderExamples, ACropBoxOutsideTheVolumeKeepsTheNearestBorder) {
    // The middle of the box moves to the border, half of its width stays inside.
    const reference::Volume volume = GreyVolume(4, 1, 1, {1, 2, 3, 4});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), 10, 10)),
                              {kSentinel, kSentinel, kSentinel, 4}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), 0, 0)),
                              {1, kSentinel, kSentinel, kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropX(PlainRequest(volume, RenderModeMaximum), 10, 13)),
                              {kSentinel, kSentinel, 3, 4}));
}

TEST_P(RenderExamples, ACropBoxOfOneSliceSamplesTheSliceBeforeIt) {
    // The depth range is 1.5 to 2.5, so slices 1 and 2 are sampled; the grey maximum adds slice 3.
    const reference::Volume colours = ColourColumn({{5, 0, 0}, {4, 0, 0}, {3, 0, 0}, {2, 0, 0}, {6, 0, 0}});
    const reference::Volume rising = GreyColumn({1, 2, 3, 4, 5});

    EXPECT_TRUE(
        HasPixels(Render(colours, WithCropZ(PlainRequest(colours, RenderModeMaximum), 3, 3)), {4, 0, 0}));
    EXPECT_TRUE(HasGreyPixels(Render(rising, WithCropZ(PlainRequest(rising, RenderModeMaximum), 3, 3)), {4}));
    EXPECT_TRUE(HasGreyPixels(Render(rising, WithCropZ(PlainRequest(rising, RenderModeMinimum), 3, 3)), {2}));
    EXPECT_TRUE(HasGreyPixels(Render(rising, WithCropZ(PlainRequest(rising, RenderModeSum), 3, 3)), {5}));
}

TEST_P(RenderExamples, ARayThatEndsOnAFaceHitsIt) {
    // Depth 3, so the ray reaches from -2 * 0.5 to 2 * 0.5: just onto the box of slices 2 to 4.
    const reference::Volume volume = GreyColumn({1, 2, 4, 8, 16});
    const reference::Request request = PlainRequest(volume, RenderModeSum, Scaling(1, 1, 0.5f));

    // Samples at 1.5 and 2.
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropZ(request, 2, 4)), {2 + 4}));
}

TEST_P(RenderExamples, ARayThatMeetsNoFaceIsEmpty) {
    // The same ray ends inside the box of all slices.
    const reference::Volume volume = GreyColumn({1, 2, 4, 8, 16});
    const reference::Request request = PlainRequest(volume, RenderModeSum, Scaling(1, 1, 0.5f));

    EXPECT_TRUE(HasGreyPixels(Render(volume, request), {kSentinel}));
}

TEST_P(RenderExamples, RaysReachOneStepBeyondTheHalfDepth) {
    // Depth 5, so the ray reaches from -3 * 0.5: it starts inside the box [-2, 0] of slices 3 to 5 and meets
    // only its far face. One step further out it would meet the near one too and sample voxel 3 as well.
    const reference::Volume volume = GreyColumn({1, 2, 4, 8, 16, 32, 64, 128, 255});
    const reference::Request request = PlainRequest(volume, RenderModeSum, Scaling(1, 1, 0.5f));

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropZ(request, 3, 5)), {16}));
}

TEST_P(RenderExamples, FacesNearlyParallelToTheRayAreNotHit) {
    // Along a ray x changes by 4 slopes: less than 0.00001 in the first view, more in the second. The second
    // column enters the box [-0.5, 0.5] halfway, through its low side, and the third leaves it halfway,
    // through its high side. Where these faces do not count, each of the two rays has but one depth.
    const reference::Volume volume = GreyVolume(4, 1, 3, {0, 1, 10, 0, 0, 2, 20, 0, 0, 4, 40, 0});
    const auto view = [&volume](float slope) {
        return WithCropX(PlainRequest(volume, RenderModeSum, {1, 0, 0, 0, 1, 0, slope, 0, 1}), 2, 3);
    };

    EXPECT_TRUE(HasGreyPixels(Render(volume, view(0x1p-20f)), {kSentinel, 2, 10, kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, view(0x1p-16f)), {kSentinel, 1 + 2, 10 + 20, kSentinel}));
}

TEST_P(RenderExamples, HalfwayBetweenTwoVoxelsTheLowerOneIsTaken) {
    // Box [-0.5, 0.5] has depths 0.75 to 1.25: samples at 1.5 (voxel 1) and 2.
    const reference::Volume volume = GreyColumn({1, 2, 4, 8, 16});
    const reference::Request request = PlainRequest(volume, RenderModeSum, Scaling(1, 1, 0.5f));

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropZ(request, 3, 3)), {2 + 4}));
}

TEST_P(RenderExamples, TheNextVoxelBeginsAt51Hundredths) {
    // The top row is at x = 0.5 + slope: 0.50999999 and then 0.5101. With 0.49 as a float the first would
    // already be voxel 1.
    const reference::Volume volume = GreyVolume(2, 3, 1, {0, 0, 0, 0, 7, 8});
    const auto topRow = [&](float slope) {
        return Render(volume, PlainRequest(volume, RenderModeSum, {0, 0, 0, slope, 1, 0, 0, 0, 1}));
    };

    EXPECT_TRUE(HasGreyPixels(topRow(0.01f), {7, 0, 0}));
    EXPECT_TRUE(HasGreyPixels(topRow(0.0101f), {8, 0, 0}));
}

TEST_P(RenderExamples, AnAxisSeenEdgeOnIsOnePixelWide) {
    // A row of zeros in the rotation: all columns fall onto one pixel, which sees the centre, voxel 1.
    const reference::Volume volume = GreyVolume(3, 1, 1, {1, 2, 4});

    const reference::Projection projection =
        Render(volume, PlainRequest(volume, RenderModeSum, Scaling(0, 1, 1)));

    ExpectSize(projection, 1, 1, 1);
    EXPECT_TRUE(HasGreyPixels(projection, {2}));
}

TEST_P(RenderExamples, NoRotationAtAllIsEmpty) {
    const reference::Volume volume = ConstantVolume({3, 3, 3}, 9);

    const reference::Projection projection =
        Render(volume, PlainRequest(volume, RenderModeMaximum, Scaling(0, 0, 0)));

    ExpectSize(projection, 1, 1, 1);
    EXPECT_TRUE(HasGreyPixels(projection, {kSentinel}));
}

TEST_P(RenderExamples, VolumesThatAreNotColourAreReadAsBytes) {
    // Byte y * width + x of each slice, whatever the bytes per voxel: only the first quarter is seen here.
    for (const int bytesPerVoxel : {2, 4}) {
        reference::Volume volume = EmptyVolume({2, 2, 2, bytesPerVoxel});
        for (std::size_t byte = 0; byte < volume.voxels.size(); ++byte) {
            volume.voxels[byte] = static_cast<std::uint8_t>(byte);
        }
        const auto slice = static_cast<float>(4 * bytesPerVoxel);

        const reference::Projection projection = Render(volume, PlainRequest(volume, RenderModeMaximum));

        EXPECT_TRUE(HasGreyPixels(projection, {slice + 2, slice + 3, slice, slice + 1}));
    }
}

} // namespace
