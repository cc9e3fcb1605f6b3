#include "render/RenderExamples.h"

#include "support/SpecialValues.h"

namespace {

using namespace z3d;
using namespace z3d::test;

reference::Request Contrast(const reference::Volume& volume, float low, float high) {
    return WithWindow(PlainRequest(volume, RenderModeContrast), low, high);
}

// A picture of 3 x 3, of which only the middle is rendered.
std::vector<float> MiddleGrey(float value) { return {0, 0, 0, 0, value, 0, 0, 0, 0}; }

std::vector<float> MiddleColour(float first, float second, float third) {
    std::vector<float> pixels(27, 0.0f);
    pixels[12] = first;
    pixels[13] = second;
    pixels[14] = third;
    return pixels;
}

// Three equal slices of 3 x 3: 100 with 40 to its right, 100 to its left, 160 above and 250 below.
reference::Volume CrossVolume() {
    return GreyVolume(3, 3, 3, {0, 250, 0, 100, 100, 40, 0, 160, 0, //
                                0, 250, 0, 100, 100, 40, 0, 160, 0, //
                                0, 250, 0, 100, 100, 40, 0, 160, 0});
}

// Black, except for the middle voxel of each slice and the voxel to its right.
reference::Volume ColourPairs(std::initializer_list<std::array<int, 3>> middles,
                              const std::array<int, 3>& right) {
    reference::Volume volume = EmptyVolume({3, 3, static_cast<int>(middles.size()), 3});
    int z = 0;
    for (const std::array<int, 3>& middle : middles) {
        for (int channel = 0; channel < 3; ++channel) {
            const auto c = static_cast<std::size_t>(channel);
            VoxelByte(volume, 1, 1, z, channel) = static_cast<std::uint8_t>(middle[c]);
            VoxelByte(volume, 2, 1, z, channel) = static_cast<std::uint8_t>(right[c]);
        }
        ++z;
    }
    return volume;
}

TEST_P(RenderExamples, ContrastAddsTheDifferencesToNeighboursInsideTheWindow) {
    // 60 + 0 + 60; 250 is outside the window.
    const reference::Volume volume = CrossVolume();

    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 30, 200)), MiddleGrey(120)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 30, 251)), MiddleGrey(270)));
}

TEST_P(RenderExamples, ContrastWindowExcludesItsEnds) {
    const reference::Volume volume = CrossVolume();

    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 40, 200)), MiddleGrey(60)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 30, 160)), MiddleGrey(60)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 100, 200)), MiddleGrey(kSentinel)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 30, 100)), MiddleGrey(kSentinel)));
}

TEST_P(RenderExamples, ContrastKeepsTheLargestScoreOfTheRay) {
    reference::Volume volume = CrossVolume();
    VoxelByte(volume, 2, 1, 1) = 31;

    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 30, 200)), MiddleGrey(129)));
}

TEST_P(RenderExamples, ContrastOfAUniformVolumeIsEmptyInsideItsBorder) {
    const reference::Volume grey = ConstantVolume({3, 3, 3}, 100);
    const reference::Volume colour = ConstantVolume({3, 3, 3, 3}, 100);

    EXPECT_TRUE(HasGreyPixels(Render(grey, Contrast(grey, 0, 255)), MiddleGrey(kSentinel)));
    EXPECT_TRUE(
        HasPixels(Render(colour, Contrast(colour, 0, 765)), MiddleColour(kSentinel, kSentinel, kSentinel)));
}

TEST_P(RenderExamples, ContrastOfSmallPicturesIsZero) {
    for (const VolumeSize& size : {VolumeSize{2, 5, 3}, VolumeSize{5, 2, 3}, VolumeSize{1, 1, 1}}) {
        const reference::Volume volume = NoiseVolume(size, 1);
        const reference::Projection projection = Render(volume, Contrast(volume, -1, 256));

        EXPECT_TRUE(HasPixels(projection, std::vector<float>(projection.pixels.size(), 0.0f)));
        EXPECT_FALSE(projection.pixels.empty());
    }
}

TEST_P(RenderExamples, ContrastOfRaysThatMissTheBoxIsEmpty) {
    const reference::Volume volume = CrossVolume();

    EXPECT_TRUE(
        HasGreyPixels(Render(volume, WithCropX(Contrast(volume, 30, 200), 3, 3)), MiddleGrey(kSentinel)));
}

TEST_P(RenderExamples, ContrastOfThinVolumesIsAMaskOfTheWindow) {
    const reference::Volume volume = GreySlices(3, {100, 50});

    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 49, 51)), MiddleGrey(1)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 50, 100)), MiddleGrey(kSentinel)));
}

TEST_P(RenderExamples, ContrastOfThinColourVolumesIsTheFirstColourScaledToOne) {
    const reference::Volume volume = ColourSlices(3, {{100, 50, 50}, {50, 50, 100}});

    EXPECT_TRUE(HasPixels(Render(volume, Contrast(volume, 0, 765)), MiddleColour(0.5f, 0.25f, 0.25f)));
}

TEST_P(RenderExamples, ContrastInColourMeasuresTheRightNeighbourOnly) {
    // 200 - 30 = 170, in the proportions 2 : 1 : 1. The black neighbours count nothing.
    const reference::Volume volume = ColourPairs({{0, 0, 0}, {100, 50, 50}, {0, 0, 0}}, {10, 10, 10});

    EXPECT_TRUE(HasPixels(Render(volume, Contrast(volume, 0, 765)), MiddleColour(85, 42.5f, 42.5f)));
    EXPECT_TRUE(
        HasPixels(Render(volume, Contrast(volume, 30, 765)), MiddleColour(kSentinel, kSentinel, kSentinel)));
}

TEST_P(RenderExamples, ContrastInColourKeepsTheEarlierOfEqualScores) {
    const reference::Volume volume = ColourPairs({{0, 0, 0}, {100, 50, 50}, {50, 50, 100}}, {10, 10, 10});

    EXPECT_TRUE(HasPixels(Render(volume, Contrast(volume, 0, 765)), MiddleColour(85, 42.5f, 42.5f)));
}

TEST_P(RenderExamples, ContrastStartsFromTheVoxelInGreyAndFromThePositionInColour) {
    // Columns half a voxel apart; the middle one is at 2.5, which is voxel 2. To its right lies 2 + 0.5,
    // still voxel 2, in grey, and 2.5 + 0.5, voxel 3, in colour. To its left lies 2 - 0.5, voxel 1, in grey.
    reference::Volume grey = EmptyVolume({6, 3, 3});
    reference::Volume colour = EmptyVolume({6, 3, 3, 3});
    const std::array<int, 6> row = {10, 20, 40, 80, 160, 200};
    for (int voxel = 0; voxel < 54; ++voxel) {
        const auto value = static_cast<std::uint8_t>(row[static_cast<std::size_t>(voxel % 6)]);
        const auto index = static_cast<std::size_t>(voxel);
        grey.voxels[index] = value;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            colour.voxels[3 * index + channel] = value;
        }
    }
    reference::Request request = Contrast(grey, 0, 765);
    request.rotation[0] = 0.5f;

    EXPECT_TRUE(HasGreyPixels(Render(grey, request), MiddleGrey(20)));
    EXPECT_TRUE(HasPixels(Render(colour, request), MiddleColour(40, 40, 40)));
}

TEST_P(RenderExamples, ContrastOfBlackIsEmpty) {
    const reference::Volume volume = ColourSlices(3, {{0, 0, 0}, {0, 0, 0}});

    EXPECT_TRUE(
        HasPixels(Render(volume, Contrast(volume, -1, 765)), MiddleColour(kSentinel, kSentinel, kSentinel)));
}

TEST_P(RenderExamples, ContrastOfANaNWindowIsEmpty) {
    const reference::Volume volume = CrossVolume();

    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, kNaN, 200)), MiddleGrey(kSentinel)));
    EXPECT_TRUE(HasGreyPixels(Render(volume, Contrast(volume, 30, kNaN)), MiddleGrey(kSentinel)));
}

} // namespace
