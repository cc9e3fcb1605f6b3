#include "render/RenderExamples.h"

#include <limits>

namespace {

using namespace z3d;
using namespace z3d::test;

TEST_P(RenderExamples, FirstHitTakesTheNearestVoxelInsideTheWindow) {
    const reference::Volume volume = GreyVolume(2, 1, 3, {1, 50, 30, 40, 31, 41});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeFirstHit), 30, 40)),
                              {30, 40}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeFirstHit), 31, 39)),
                              {31, kSentinel}));
}

TEST_P(RenderExamples, FirstHitOfAFullWindowIsTheFirstVoxelOfTheBox) {
    const reference::Volume grey = GreyColumn({5, 6, 7});
    const reference::Volume colour = ColourColumn({{0, 0, 0}, {1, 2, 3}});

    EXPECT_TRUE(HasGreyPixels(Render(grey, PlainRequest(grey, RenderModeFirstHit)), {5}));
    EXPECT_TRUE(HasGreyPixels(Render(grey, WithCropZ(PlainRequest(grey, RenderModeFirstHit), 2, 3)), {6}));
    EXPECT_TRUE(HasPixels(Render(colour, PlainRequest(colour, RenderModeFirstHit)), {0, 0, 0}));
}

TEST_P(RenderExamples, FirstHitInColourTestsTheWindowOnTheSum) {
    const reference::Volume volume = ColourColumn({{255, 255, 255}, {7, 8, 9}, {9, 8, 7}});

    EXPECT_TRUE(
        HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeFirstHit), 0, 764)), {7, 8, 9}));
    EXPECT_TRUE(
        HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeFirstHit), 24, 24)), {7, 8, 9}));
    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeFirstHit), 25, 764)),
                          {kSentinel, kSentinel, kSentinel}));
}

TEST_P(RenderExamples, FirstHitOfReversedAndNaNWindowsIsEmpty) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const reference::Volume volume = GreyColumn({5, 6});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeFirstHit), 6, 5)),
                              {kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeFirstHit), nan, 9)),
                              {kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(PlainRequest(volume, RenderModeFirstHit), 0, nan)),
                              {kSentinel}));
}

} // namespace
