#include "render/RenderExamples.h"

#include "support/SpecialValues.h"

namespace {

using namespace z3d;
using namespace z3d::test;

// With this transparency a voxel of 16 (in colour 16 in each channel) is blended to exactly the initial value.
constexpr float kToInitialGrey = 0x1.fdfffcp127f;
constexpr float kToInitialColour = 0x1.fdfffep127f;

reference::Request Blend(const reference::Volume& volume, float transparency) {
    return WithExtra(PlainRequest(volume, RenderModeBlend), transparency);
}

TEST_P(RenderExamples, BlendOfOneSampleIsTheValueTimesItsWeight) {
    // 200 * 200 / 255 with the weight rounded; unrounded it would be 0x431CDCDD.
    const reference::Volume volume = GreyColumn({200});

    EXPECT_TRUE(HasGreyPixels(Render(volume, Blend(volume, 0.0f)), {156.86276245117188f})); // 0x431CDCDE
}

TEST_P(RenderExamples, BlendAppliesTheNearestSampleLast) {
    // 200 far and 100 near; the nearest slice is the first.
    const reference::Volume volume = GreyColumn({100, 200});

    EXPECT_TRUE(HasGreyPixels(Render(volume, Blend(volume, 0.0f)), {134.5636444091797f})); // 0x4306904B
}

TEST_P(RenderExamples, BlendOfAnOpaqueWhiteVoxelHidesWhatIsBehind) {
    const reference::Volume volume = GreyColumn({255, 200, 13});

    EXPECT_TRUE(HasGreyPixels(Render(volume, Blend(volume, 0.0f)), {255}));
}

TEST_P(RenderExamples, BlendTakesFullTransparencyAs95Percent) {
    // The substitute is a float; from the double 0.95 the first would be 12.75.
    const reference::Volume white = GreyColumn({255});
    const reference::Volume pair = GreyColumn({255, 200});

    EXPECT_TRUE(HasGreyPixels(Render(white, Blend(white, 1.0f)), {12.750003814697266f})); // 0x414C0004
    EXPECT_TRUE(HasGreyPixels(Render(white, Blend(white, 0.95f)), {12.750003814697266f}));
    EXPECT_TRUE(HasGreyPixels(Render(pair, Blend(pair, 1.0f)), {20.200986862182617f})); // 0x41A19B9F
}

TEST_P(RenderExamples, BlendUsesOtherTransparenciesUnchanged) {
    const reference::Volume bright = GreyColumn({200});
    const reference::Volume dim = GreyColumn({51});

    EXPECT_TRUE(HasGreyPixels(Render(bright, Blend(bright, 2.0f)), {-156.86276245117188f}));
    EXPECT_TRUE(HasGreyPixels(Render(dim, Blend(dim, -1.0f)), {20.400001525878906f})); // 0x41A33334
}

TEST_P(RenderExamples, BlendIncludesBothEndsOfItsWindow) {
    const reference::Volume volume = GreyVolume(4, 1, 1, {199, 200, 255, 0});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(Blend(volume, 0.0f), 200, 255)),
                              {kSentinel, 156.86276245117188f, 255, kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(Blend(volume, 0.0f), 0, 254)),
                              {155.2980499267578f, 156.86276245117188f, kSentinel, 0}));
}

TEST_P(RenderExamples, BlendOfAReversedWindowIsEmpty) {
    const reference::Volume volume = GreyColumn({200, 100});

    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(Blend(volume, 0.0f), 200, 100)), {kSentinel}));
}

TEST_P(RenderExamples, BlendSkipsNothingAtANaNBound) {
    const reference::Volume volume = GreyColumn({200});

    EXPECT_TRUE(
        HasGreyPixels(Render(volume, WithWindow(Blend(volume, 0.0f), kNaN, kNaN)), {156.86276245117188f}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(Blend(volume, 0.0f), kNaN, 199)), {kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(volume, WithWindow(Blend(volume, 0.0f), 201, kNaN)), {kSentinel}));
}

TEST_P(RenderExamples, BlendInColourSkipsNothingAtANaNBound) {
    const reference::Volume volume = ColourColumn({{255, 255, 255}});

    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(Blend(volume, 0.0f), kNaN, kNaN)), {255, 255, 255}));
    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(Blend(volume, 0.0f), kNaN, 764)),
                          {kSentinel, kSentinel, kSentinel}));
}

TEST_P(RenderExamples, BlendInColourUsesOneWeightForAllChannels) {
    const reference::Volume volume = ColourColumn({{0, 0, 255}, {100, 50, 0}});

    EXPECT_TRUE(
        HasPixels(Render(volume, Blend(volume, 0.0f)), {13.071895599365234f, 6.535947799682617f, 85.0f}));
}

TEST_P(RenderExamples, BlendInColourDoesNotRoundItsWeight) {
    // With the weight rounded all three would be one step larger.
    const reference::Volume volume = ColourColumn({{255, 200, 100}});

    EXPECT_TRUE(
        HasPixels(Render(volume, Blend(volume, 0.25f)), {138.75f, 108.82353210449219f, 54.411766052246094f}));
}

TEST_P(RenderExamples, BlendInColourTestsTheWindowOnTheSum) {
    const reference::Volume volume = ColourColumn({{255, 255, 255}});

    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(Blend(volume, 0.0f), 0, 255)),
                          {kSentinel, kSentinel, kSentinel}));
    EXPECT_TRUE(HasPixels(Render(volume, WithWindow(Blend(volume, 0.0f), 765, 765)), {255, 255, 255}));
    EXPECT_TRUE(HasPixels(Render(volume, Blend(volume, 1.0f)),
                          {12.750003814697266f, 12.750003814697266f, 12.750003814697266f}));
}

// The pixel holds the initial value again, so the next accepted voxel begins at 0, whatever it is.
TEST_P(RenderExamples, BlendBeginsAgainWhereItHasLedToTheInitialValue) {
    const reference::Volume one = GreyColumn({16});
    const reference::Volume two = GreyColumn({16, 16});
    const reference::Volume behindBlack = GreyColumn({0, 16});

    EXPECT_TRUE(HasGreyPixels(Render(one, Blend(one, kToInitialGrey)), {kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(two, Blend(two, kToInitialGrey)), {kSentinel}));
    EXPECT_TRUE(HasGreyPixels(Render(behindBlack, Blend(behindBlack, kToInitialGrey)), {0}));
}

TEST_P(RenderExamples, BlendInColourBeginsAgainWhereItHasLedToTheInitialValue) {
    const reference::Volume two = ColourColumn({{16, 16, 16}, {16, 16, 16}});
    const reference::Volume behindBlack = ColourColumn({{0, 0, 0}, {16, 16, 16}});

    EXPECT_TRUE(HasPixels(Render(two, Blend(two, kToInitialColour)), {kSentinel, kSentinel, kSentinel}));
    EXPECT_TRUE(HasPixels(Render(behindBlack, Blend(behindBlack, kToInitialColour)), {0, 0, 0}));
}

} // namespace
