#include "render/RenderExamples.h"

#include "support/SpecialValues.h"

#include <cmath>
#include <limits>

namespace {

using namespace z3d;
using namespace z3d::test;

reference::Request Surface(const reference::Volume& volume, float low, float high, float extra = 0.0f) {
    return WithExtra(WithWindow(PlainRequest(volume, RenderModeSurface), low, high), extra);
}

std::vector<float> AllPixels(std::size_t count, float value) { return std::vector<float>(count, value); }

std::vector<float> AllPixels(std::size_t count, const std::vector<float>& colour) {
    std::vector<float> pixels;
    for (std::size_t i = 0; i < count; ++i) {
        pixels.insert(pixels.end(), colour.begin(), colour.end());
    }
    return pixels;
}

// 100 in the middle, rising by these steps along x and z.
reference::Volume SlopedVolume(int alongX, int alongZ) {
    reference::Volume volume = EmptyVolume({3, 3, 3});
    for (int z = 0; z < 3; ++z) {
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 3; ++x) {
                const int value = 100 + (x - 1) * alongX + (z - 1) * alongZ;
                VoxelByte(volume, x, y, z) = static_cast<std::uint8_t>(value);
            }
        }
    }
    return volume;
}

// Three entries into the material, each with the gradient along the view.
reference::Volume ThreeLayers() { return GreySlices(3, {0, 200, 200, 0, 200, 200, 0, 200, 200, 0}); }

TEST_P(RenderExamples, SurfaceFacingTheViewIsFullyBright) {
    const reference::Volume volume = GreySlices(3, {0, 0, 0, 200, 200, 200});

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255)), AllPixels(9, 1.0f)));
}

TEST_P(RenderExamples, SurfaceSeenEdgeOnIsDark) {
    const reference::Volume volume = GreySlices(3, {0, 0, 0, 200, 200, 200});
    reference::Request request = Surface(volume, 100, 255);
    request.rotation = kQuarterAboutY;

    EXPECT_TRUE(HasGreyPixels(Render(volume, request), AllPixels(18, 0.0f)));
}

TEST_P(RenderExamples, FlatMaterialHasNoSurface) {
    const reference::Volume volume = ConstantVolume({4, 4, 4}, 200);

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255)), AllPixels(16, 0.0f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, 0.5f)), AllPixels(16, 0.0f)));
}

TEST_P(RenderExamples, ShadeIsTheCosineBetweenGradientAndView) {
    // Gradient (30, 0, 40): 4/5 along z, 3/5 along -x. Gradient (8, 0, 2): 2 / sqrt(68).
    const reference::Volume volume = SlopedVolume(15, 20);
    const reference::Volume steep = SlopedVolume(4, 1);
    reference::Request turned = Surface(volume, 0, 255);
    turned.rotation = kQuarterAboutY;

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 0, 255)), AllPixels(9, 0.8f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, turned), AllPixels(9, 0.6f)));
    EXPECT_TRUE(HasGreyPixels(Render(steep, Surface(steep, 0, 255)), AllPixels(9, 0.24253562092781067f)));
}

TEST_P(RenderExamples, SurfaceWindowExcludesItsEnds) {
    const reference::Volume volume = SlopedVolume(0, 20);

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 99, 101)), AllPixels(9, 1.0f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 101)), AllPixels(9, 0.0f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 99, 100)), AllPixels(9, 0.0f)));
}

TEST_P(RenderExamples, SurfaceOfANaNWindowIsEmptyAndOfAnInfiniteOneIsNot) {
    const reference::Volume volume = SlopedVolume(0, 20);

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, kNaN, 255)), AllPixels(9, 0.0f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 0, kNaN)), AllPixels(9, 0.0f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, -kInfinity, kInfinity)), AllPixels(9, 1.0f)));
}

TEST_P(RenderExamples, SurfaceVoxelsOnTheBorderAreNotLookedAt) {
    // All rays are clamped onto the middle voxel, which is outside the material.
    reference::Volume volume = ConstantVolume({3, 3, 3}, 200);
    VoxelByte(volume, 1, 1, 1) = 10;

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255)), AllPixels(9, 0.0f)));
}

TEST_P(RenderExamples, RaysThatMissTheBoxHaveNoSurface) {
    const reference::Volume volume = SlopedVolume(0, 20);

    EXPECT_TRUE(
        HasGreyPixels(Render(volume, WithCropX(Surface(volume, 0, 255), 1, 1)), {1, 0, 0, 1, 0, 0, 1, 0, 0}));
}

TEST_P(RenderExamples, FirstSurfaceInColourIsTheShareOfTheSum) {
    const reference::Volume volume = ColourSlices(3, {{0, 0, 0}, {100, 50, 50}, {100, 50, 50}, {0, 0, 0}});
    const reference::Volume uneven = ColourSlices(3, {{0, 0, 0}, {10, 20, 40}, {10, 20, 41}});

    EXPECT_TRUE(HasPixels(Render(volume, Surface(volume, 100, 765)), AllPixels(9, {0.5f, 0.25f, 0.25f})));
    EXPECT_TRUE(HasPixels(Render(volume, Surface(volume, 200, 765)), AllPixels(9, {0, 0, 0})));
    EXPECT_TRUE(HasPixels(Render(uneven, Surface(uneven, 0, 71)),
                          AllPixels(9, {0.1428571492433548f, 0.2857142984867096f, 0.5714285969734192f})));
}

TEST_P(RenderExamples, ThinGreySurfaceLooksAtTheFirstSampleOnly) {
    const reference::Volume behind = GreyColumn({0, 200});
    const reference::Volume front = GreyColumn({200, 0});

    EXPECT_TRUE(HasGreyPixels(Render(behind, Surface(behind, 100, 255)), {0}));
    EXPECT_TRUE(HasGreyPixels(Render(front, Surface(front, 100, 255)), {1}));
}

TEST_P(RenderExamples, ThinColourSurfaceWalksTheWholeRay) {
    const reference::Volume volume = ColourColumn({{0, 0, 0}, {100, 50, 50}});

    EXPECT_TRUE(HasPixels(Render(volume, Surface(volume, 100, 255)), {0.5f, 0.25f, 0.25f}));
}

TEST_P(RenderExamples, ThinVolumesSeeTheirBorder) {
    const reference::Volume volume = GreyVolume(2, 1, 1, {200, 10});

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255)), {1, 0}));
}

TEST_P(RenderExamples, EachFurtherLayerIsAttenuatedOnceMore) {
    const reference::Volume volume = ThreeLayers();

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, 0.5f)), AllPixels(9, 1.75f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, 1.0f)), AllPixels(9, 3.0f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, 2.0f)), AllPixels(9, 7.0f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, -1.0f)), AllPixels(9, 1.0f)));
}

TEST_P(RenderExamples, LayerWeightsAreRoundedAfterEachMultiplication) {
    // An unrounded weight would give 0x3FB43033.
    const reference::Volume volume = ThreeLayers();

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, 0.311f)),
                              AllPixels(9, 1.4077210426330566f))); // 0x3FB43034
}

TEST_P(RenderExamples, OneLayerCountsOnceHoweverThick) {
    const reference::Volume volume = GreySlices(3, {0, 200, 200, 200, 200, 0});

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, 0.5f)), AllPixels(9, 1.0f)));
}

TEST_P(RenderExamples, ZeroAndNaNAttenuationSelectTheFirstSurface) {
    const reference::Volume volume = ThreeLayers();

    for (const float extra : {0.0f, -0.0f, kNaN, -kNaN}) {
        EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, extra)), AllPixels(9, 1.0f)));
    }
}

TEST_P(RenderExamples, DenormalAttenuationSelectsLayers) {
    // The first layer is flat and has shade 0; the second has shade 1 and the weight `extra`.
    const float denormal = std::numeric_limits<float>::denorm_min();
    const reference::Volume volume = GreySlices(3, {200, 200, 200, 0, 200, 200, 0});

    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, 0.0f)), AllPixels(9, 0.0f)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Surface(volume, 100, 255, denormal)), AllPixels(9, denormal)));
}

TEST_P(RenderExamples, LayersInColourAddTheirShares) {
    const reference::Volume volume = ColourSlices(
        3, {{0, 0, 0}, {100, 50, 50}, {100, 50, 50}, {0, 0, 0}, {50, 50, 100}, {50, 50, 100}, {0, 0, 0}});

    EXPECT_TRUE(
        HasPixels(Render(volume, Surface(volume, 100, 765, 0.5f)), AllPixels(9, {0.625f, 0.375f, 0.5f})));
}

TEST_P(RenderExamples, LayersInColourRoundOnlyTheirSum) {
    // Rounding the second term before the addition would give 0x3F2BBBBC in the first channel.
    const reference::Volume volume = ColourSlices(
        3, {{0, 0, 0}, {70, 30, 20}, {70, 30, 20}, {0, 0, 0}, {70, 30, 20}, {70, 30, 20}, {0, 0, 0}});

    EXPECT_TRUE(HasPixels(
        Render(volume, Surface(volume, 100, 765, 0.15f)),
        AllPixels(9, {0.6708332896232605f, 0.2874999940395355f, 0.19166667759418488f}))); // 0x3F2BBBBB
}

TEST_P(RenderExamples, ThinLayersHaveShadeOne) {
    const reference::Volume grey = GreyColumn({0, 200});
    const reference::Volume colour = ColourColumn({{0, 0, 0}, {100, 50, 50}});

    EXPECT_TRUE(HasGreyPixels(Render(grey, Surface(grey, 100, 255, 0.5f)), {1}));
    EXPECT_TRUE(HasPixels(Render(colour, Surface(colour, 100, 255, 0.5f)), {0.5f, 0.25f, 0.25f}));
}

TEST_P(RenderExamples, BlackColourMaterialIsNoNumber) {
    const reference::Volume volume = ColourColumn({{0, 0, 0}});

    for (const float extra : {0.0f, 0.5f}) {
        const reference::Projection projection = Render(volume, Surface(volume, -1, 765, extra));
        ASSERT_EQ(projection.pixels.size(), 3u);
        for (const float value : projection.pixels) {
            EXPECT_TRUE(std::isnan(value));
        }
    }
}

TEST_P(RenderExamples, NarrowVolumesTakeTheirOnlyVoxelsAsNeighbours) {
    // One column: the gradient is along z alone.
    const reference::Volume column = GreyColumn({0, 200, 255});
    // Two columns: both rays are clamped onto the first, whose gradient points to the second.
    const reference::Volume pair = GreyVolume(2, 1, 3, {0, 0, 200, 0, 0, 0});
    reference::Request sideways = Surface(pair, 100, 255);
    sideways.rotation = kQuarterAboutY;

    EXPECT_TRUE(HasGreyPixels(Render(column, Surface(column, 100, 255)), {1}));
    EXPECT_TRUE(HasGreyPixels(Render(pair, Surface(pair, 100, 255)), {0, 0}));
    EXPECT_TRUE(HasGreyPixels(Render(pair, sideways), {1, 1, 1}));
}

} // namespace
