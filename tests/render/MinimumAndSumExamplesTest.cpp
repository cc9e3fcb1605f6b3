#include "render/RenderExamples.h"

#include "support/SpecialValues.h"

namespace {

using namespace z3d;
using namespace z3d::test;

constexpr float kMinimumSentinel = 3.4028234663852886e38f;

TEST_P(RenderExamples, MinimumOfZerosIsZeroWhereTheRayMeetsTheBox) {
    const reference::Volume volume = GreyVolume(3, 1, 2, {0, 0, 0, 0, 0, 0});

    const reference::Projection projection =
        Render(volume, WithCropX(PlainRequest(volume, RenderModeMinimum), 1, 2));

    EXPECT_TRUE(HasGreyPixels(projection, {0, 0, kMinimumSentinel}));
}

TEST_P(RenderExamples, MinimumOutsideTheWindowKeepsTheSentinel) {
    const reference::Volume volume = GreyColumn({0, 0});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMinimum), 1, 255)),
                              {kMinimumSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMinimum), kNaN, 255)),
                              {kMinimumSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMinimum), 0, kNaN)),
                              {kMinimumSentinel}));
}

TEST_P(RenderExamples, MinimumIncludesBothEndsOfTheWindow) {
    const reference::Volume volume = GreyVolume(2, 1, 2, {9, 21, 10, 20});

    EXPECT_TRUE(
        HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMinimum), 10, 20)), {10, 20}));
}

TEST_P(RenderExamples, MinimumStopsAtTheEndOfTheRange) {
    // Slices 1 and 2 only: the smaller value behind them is not sampled.
    const reference::Volume volume = GreyColumn({1, 7, 6, 2, 1});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithCropZ(PlainRequest(volume, RenderModeMinimum), 3, 3)), {6}));
}

TEST_P(RenderExamples, MinimumInColourIsTakenPerChannel) {
    const reference::Volume volume = ColourColumn({{200, 10, 10}, {10, 200, 10}});

    EXPECT_TRUE(HasPixels(Render(volume, PlainRequest(volume, RenderModeMinimum)), {10, 10, 10}));
}

TEST_P(RenderExamples, MinimumInColourTestsTheWindowOnTheSum) {
    const reference::Volume volume = ColourColumn({{200, 10, 10}, {10, 200, 11}});

    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMinimum), 0, 220)),
                          {200, 10, 10}));
    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMinimum), 222, 765)),
                          {kMinimumSentinel, kMinimumSentinel, kMinimumSentinel}));
}

TEST_P(RenderExamples, SumAddsTheVoxelsInsideTheWindow) {
    const reference::Volume volume = GreyColumn({1, 2, 3, 4});

    EXPECT_TRUE(HasGreyPixels(Render(volume, PlainRequest(volume, RenderModeSum)), {10}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeSum), 2, 3)), {5}));
    EXPECT_TRUE(
        HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeSum), 5, 9)), {kSentinel}));
    EXPECT_TRUE(
        HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeSum), 3, 2)), {kSentinel}));
}

TEST_P(RenderExamples, SumOfZerosIsZero) {
    const reference::Volume grey = GreyColumn({0, 0, 0});
    const reference::Volume colour = ColourColumn({{0, 0, 9}, {0, 0, 9}});

    EXPECT_TRUE(HasGreyPixels(Render(grey, PlainRequest(grey, RenderModeSum)), {0}));
    EXPECT_TRUE(HasPixels(Render(colour, PlainRequest(colour, RenderModeSum)), {0, 0, 18}));
}

TEST_P(RenderExamples, SumIsNeitherAveragedNorScaled) {
    const reference::Volume volume = ConstantVolume({1, 1, 200}, 255);

    EXPECT_TRUE(HasGreyPixels(Render(volume, PlainRequest(volume, RenderModeSum)), {51000}));
}

TEST_P(RenderExamples, SumInColourTestsTheWindowOnTheSum) {
    const reference::Volume volume = ColourColumn({{1, 2, 3}, {10, 20, 30}, {100, 200, 255}});

    EXPECT_TRUE(HasPixels(Render(volume, PlainRequest(volume, RenderModeSum)), {111, 222, 288}));
    EXPECT_TRUE(
        HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeSum), 6, 60)), {11, 22, 33}));
    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeSum), 7, 59)),
                          {kSentinel, kSentinel, kSentinel}));
}

TEST_P(RenderExamples, SumOfANaNWindowIsEmpty) {
    const reference::Volume volume = GreyColumn({1, 2});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeSum), kNaN, kNaN)),
                              {kSentinel}));
}

} // namespace
