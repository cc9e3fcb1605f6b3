#include "render/RenderExamples.h"

#include <limits>

namespace {

using namespace z3d;
using namespace z3d::test;

TEST_P(RenderExamples, MaximumKeepsTheLargerSlice) {
    const reference::Volume volume =
        GreyVolume(4, 3, 2, {1, 9, 3, 9, 5, 9, 7, 9, 9, 10, 9, 12, 9, 2, 9, 4, 9, 6, 9, 8, 9, 9, 11, 9});

    const reference::Projection projection = Render(volume, PlainRequest(volume, RenderModeMaximum));

    EXPECT_TRUE(HasGreyPixels(projection, {9, 10, 11, 12, 9, 9, 9, 9, 9, 9, 9, 9}));
}

TEST_P(RenderExamples, MaximumOutsideTheWindowKeepsTheSentinel) {
    const reference::Volume volume = GreyVolume(2, 1, 2, {9, 21, 0, 255});

    const reference::Projection projection =
        Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), 10, 20));

    EXPECT_TRUE(HasGreyPixels(projection, {kSentinel, kSentinel}));
}

TEST_P(RenderExamples, MaximumIncludesBothEndsOfTheWindow) {
    const reference::Volume volume = GreyVolume(2, 1, 2, {9, 10, 20, 21});

    const reference::Projection projection =
        Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), 10, 20));

    EXPECT_TRUE(HasGreyPixels(projection, {20, 10}));
}

TEST_P(RenderExamples, MaximumOfZerosIsZero) {
    const reference::Volume volume = GreyColumn({0, 0});

    EXPECT_TRUE(HasGreyPixels(Render(volume, PlainRequest(volume, RenderModeMaximum)), {0}));
}

TEST_P(RenderExamples, MaximumInColourIsTakenPerChannel) {
    const reference::Volume volume = ColourColumn({{200, 10, 10}, {10, 200, 10}});

    EXPECT_TRUE(HasPixels(Render(volume, PlainRequest(volume, RenderModeMaximum)), {200, 200, 10}));
}

TEST_P(RenderExamples, MaximumInColourTestsTheWindowOnTheSum) {
    const reference::Volume volume = ColourColumn({{200, 10, 10}, {10, 200, 11}});

    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), 0, 220)),
                          {200, 10, 10}));
    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), 221, 765)),
                          {10, 200, 11}));
    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), 0, 219)),
                          {kSentinel, kSentinel, kSentinel}));
}

TEST_P(RenderExamples, MaximumOfReversedAndNaNWindowsIsEmpty) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const reference::Volume volume = GreyColumn({5, 10});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), 20, 1)),
                              {kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), nan, 255)),
                              {kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), 0, nan)),
                              {kSentinel}));
}

TEST_P(RenderExamples, MaximumTakesInfiniteBoundsAsOrdinaryOnes) {
    const float infinity = std::numeric_limits<float>::infinity();
    const reference::Volume volume = GreyColumn({5, 10});

    EXPECT_TRUE(HasGreyPixels(
        Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), -infinity, infinity)), {10}));
    EXPECT_TRUE(
        HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeMaximum), infinity, infinity)),
                      {kSentinel}));
}

} // namespace
