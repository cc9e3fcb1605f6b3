// Pictures on a screen of 8 bits: the conversions that the header suggests, and the display range of GetRGBImage.
#include "exports/ImageCall.h"
#include "exports/Library.h"
#include "exports/Picture.h"

#include "support/RenderModes.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace z3d::test;

using Bytes = std::vector<std::uint8_t>;
using Floats = std::vector<float>;

enum class Suggestion { AsItIs, Times255, ByTheLargest };

struct Conversion {
    short mode;
    float extra;
    unsigned int bytesPerVoxel;
    Suggestion suggestion;
};

constexpr Conversion kConversions[] = {
    {RenderModeMaximum, 0, 1, Suggestion::AsItIs},
    {RenderModeMaximum, 0, 3, Suggestion::AsItIs},
    {RenderModeMinimum, 0, 1, Suggestion::AsItIs},
    {RenderModeMinimum, 0, 3, Suggestion::AsItIs},
    {RenderModeSum, 0, 1, Suggestion::ByTheLargest},
    {RenderModeSum, 0, 3, Suggestion::ByTheLargest},
    {RenderModeSurface, 0, 1, Suggestion::Times255},
    {RenderModeSurface, 0, 3, Suggestion::ByTheLargest},
    {RenderModeSurface, 1, 1, Suggestion::ByTheLargest},
    {RenderModeSurface, 1, 3, Suggestion::ByTheLargest},
    {RenderModeBlend, 0, 1, Suggestion::AsItIs},
    {RenderModeBlend, 0, 3, Suggestion::AsItIs},
    {RenderModeContrast, 0, 1, Suggestion::ByTheLargest},
    {RenderModeContrast, 0, 3, Suggestion::ByTheLargest},
    {RenderModeFirstHit, 0, 1, Suggestion::AsItIs},
    {RenderModeFirstHit, 0, 3, Suggestion::AsItIs},
};
static_assert(HaveEveryMode(kConversions));

// Without the marks of empty pixels, which are the background.
Floats Values(const Picture& picture) {
    Floats values;
    std::copy_if(picture.floats.begin(), picture.floats.end(), std::back_inserter(values),
                 [](float value) { return value != kNothing && value != -kNothing; });
    return values;
}

// Rounded, and held to nothing: what does not fit a byte is seen.
std::vector<long> NumbersOf(const Picture& picture, Suggestion suggestion) {
    const Floats values = Values(picture);
    const double largest = values.empty() ? 0 : *std::max_element(values.begin(), values.end());
    double factor = 1;
    if (suggestion == Suggestion::Times255) factor = 255;
    if (suggestion == Suggestion::ByTheLargest) factor = 255 / largest;
    std::vector<long> numbers;
    std::transform(values.begin(), values.end(), std::back_inserter(numbers),
                   [factor](float value) { return std::lround(value * factor); });
    return numbers;
}

class PictureBytes : public ::testing::TestWithParam<Conversion> {};

TEST_P(PictureBytes, NeedNotBeCutOff) {
    const Conversion& row = GetParam();
    const ExportedVolume volume(9, 9, 9, row.bytesPerVoxel);
    for (const float angle : {0.0f, 17.0f, 90.0f}) {
        const Picture picture = TakePicture(volume.Get(), {.mode = row.mode,
                                                           .rotation = RotationOf(angle, 2 * angle, -angle),
                                                           .high = 700,
                                                           .extra = row.extra});
        const std::vector<long> numbers = NumbersOf(picture, row.suggestion);
        ASSERT_FALSE(numbers.empty());
        EXPECT_GE(*std::min_element(numbers.begin(), numbers.end()), 0);
        EXPECT_LE(*std::max_element(numbers.begin(), numbers.end()), 255);
    }
}

// A white cube of 3 x 3 x 3 in the middle of black, in a window that holds white alone.
TEST_P(PictureBytes, ShowAWhiteCubeAsWhite) {
    const Conversion& row = GetParam();
    const ExportedVolume volume(9, 9, 9, row.bytesPerVoxel);
    Fill(volume.Get(), [](int x, int y, int z, int) {
        return std::max({std::abs(x - 4), std::abs(y - 4), std::abs(z - 4)}) <= 1 ? 255 : 0;
    });
    const float low =
        row.mode == RenderModeContrast ? -1.0f : 100.0f; // contrast is with what is in the window
    const Picture picture =
        TakePicture(volume.Get(), {.mode = row.mode, .high = 1000, .low = low, .extra = row.extra});

    const std::vector<long> numbers = NumbersOf(picture, row.suggestion);
    ASSERT_FALSE(numbers.empty());
    EXPECT_EQ(*std::max_element(numbers.begin(), numbers.end()), 255);
}

INSTANTIATE_TEST_SUITE_P(Modes, PictureBytes, ::testing::ValuesIn(kConversions), [](const auto& row) {
    return "Mode" + std::to_string(row.param.mode) + (row.param.extra == 1 ? "Layers" : "")
           + (row.param.bytesPerVoxel == 3 ? "Colour" : "Grey");
});

// A volume from up to three files of 3 x 3 x 3 samples, each sample in all of its slice's row, with its display range.
struct LoadedVolume {
    Volume3D* volume;
    float outMax, outMin;

    explicit LoadedVolume(ImageCall call) : volume(call.Run()), outMax(call.outMax), outMin(call.outMin) {}
    ~LoadedVolume() { TheLibrary().Free3DData(volume); }
    LoadedVolume(const LoadedVolume&) = delete;
    LoadedVolume& operator=(const LoadedVolume&) = delete;
};

constexpr std::uint32_t kSide = 3;

template <typename Sample>
std::vector<Sample> ThreeColumns(Sample left, Sample middle, Sample right) {
    std::vector<Sample> samples;
    for (std::uint32_t row = 0; row < kSide * kSide; ++row)
        samples.insert(samples.end(), {left, middle, right});
    return samples;
}

ImageCall CallFor(const char* red, const char* green, const char* blue, bool is8bit) {
    return {.red = red,
            .green = green,
            .blue = blue,
            .width = kSide,
            .height = kSide,
            .depth = kSide,
            .is8bit = is8bit};
}

// The middle row of the first hits, windowed as the header says; `parts` 3 where the range is of a colour's sum.
std::vector<long> WindowedRow(const LoadedVolume& loaded, float parts) {
    const Picture picture = TakePicture(loaded.volume, {.mode = RenderModeFirstHit});
    const float low = loaded.outMin / parts;
    const float high = loaded.outMax / parts;
    std::vector<long> row;
    for (int column = 0; column < picture.width; ++column)
        row.push_back(std::lround((*picture.At(column, 1) - low) * 255 / (high - low)));
    return row;
}

TEST(DisplayRange, ShowsAGreyFileFromBlackToWhite) {
    const TemporaryFile bytes(ThreeColumns<std::uint8_t>(10, 30, 60));
    const LoadedVolume grey(CallFor(bytes.Name(), bytes.Name(), bytes.Name(), true));
    EXPECT_EQ(WindowedRow(grey, 1), (std::vector<long>{0, 102, 255}));

    const TemporaryFile floats(ThreeColumns(-1000.0f, 0.0f, 1000.0f));
    const LoadedVolume mapped(CallFor(floats.Name(), floats.Name(), floats.Name(), false));
    EXPECT_EQ(WindowedRow(mapped, 1), (std::vector<long>{0, 128, 255}));
}

// 10, 40 and 70 in each channel are 12, 19 and 26: sums of 36, 57 and 78, so that the range is 33..78.
TEST(DisplayRange, IsDividedBy3ForAChannelOfAColour) {
    const TemporaryFile file(ThreeColumns<std::uint8_t>(10, 40, 70));
    ImageCall call = CallFor(file.Name(), file.Name(), file.Name(), true);
    call.keepChannelsApart = 1;
    const LoadedVolume colour(call);

    EXPECT_EQ(colour.outMin, 33);
    EXPECT_EQ(colour.outMax, 78);
    EXPECT_EQ(WindowedRow(colour, 3), (std::vector<long>{17, 136, 255}));
}

// How many pixels of the picture are empty.
std::size_t CountEmpty(const LoadedVolume& loaded, short mode, float margin) {
    const Picture picture = TakePicture(
        loaded.volume, {.mode = mode, .high = loaded.outMax + margin, .low = loaded.outMin - margin});
    return static_cast<std::size_t>(std::count(picture.floats.begin(), picture.floats.end(), kNothing));
}

TEST(DisplayRange, IsAWindowThatAcceptsEveryVoxel) {
    for (int seed = 0; seed < 32; ++seed) {
        const auto sample = [seed](int i) { return static_cast<std::uint8_t>(seed * 37 + i * 101); };
        const TemporaryFile bytes(ThreeColumns(sample(0), sample(1), sample(2)));
        const TemporaryFile others(ThreeColumns(sample(3), sample(4), sample(5)));
        const TemporaryFile floats(
            ThreeColumns(std::sin(1.0f * sample(0)), std::sin(1.0f * sample(1)), 3 + 1.0f * sample(2)));
        const LoadedVolume grey(CallFor(bytes.Name(), bytes.Name(), bytes.Name(), true));
        const LoadedVolume colour(CallFor(bytes.Name(), others.Name(), nullptr, true));
        const LoadedVolume mapped(CallFor(floats.Name(), floats.Name(), floats.Name(), false));

        EXPECT_EQ(CountEmpty(grey, RenderModeFirstHit, 0), 0u) << seed;
        EXPECT_EQ(CountEmpty(colour, RenderModeFirstHit, 0), 0u) << seed;
        EXPECT_EQ(CountEmpty(mapped, RenderModeFirstHit, 1), 0u) << seed << ": floats, one wider";
    }
}

// 300.7 is shown by its low 8 bits, which its own display range would not accept.
TEST(DisplayRange, OfAGreyFileOfASingleValueHasEqualEnds) {
    const TemporaryFile bytes(ThreeColumns<std::uint8_t>(50, 50, 50));
    const TemporaryFile floats(ThreeColumns(300.7f, 300.7f, 300.7f));
    const LoadedVolume grey(CallFor(bytes.Name(), bytes.Name(), bytes.Name(), true));
    const LoadedVolume low8Bits(CallFor(floats.Name(), floats.Name(), floats.Name(), false));

    for (const LoadedVolume* loaded : {&grey, &low8Bits}) {
        EXPECT_EQ(loaded->outMin, loaded->outMax);
        const Picture picture =
            TakePicture(loaded->volume, {.mode = RenderModeFirstHit, .high = 255, .low = 0});
        EXPECT_EQ(std::count(picture.floats.begin(), picture.floats.end(), kNothing), 0);
    }
    EXPECT_NE(CountEmpty(low8Bits, RenderModeFirstHit, 1), 0u);
}

// Both values are ends of the range, which these two modes exclude.
TEST(DisplayRange, IsTakenOneWiderForSurfacesAndContrast) {
    const TemporaryFile file(ThreeColumns<std::uint8_t>(40, 100, 40));
    const LoadedVolume grey(CallFor(file.Name(), file.Name(), file.Name(), true));

    EXPECT_EQ(CountEmpty(grey, RenderModeContrast, 0), 3u) << "the middle; the border is 0";
    EXPECT_EQ(CountEmpty(grey, RenderModeContrast, 1), 0u);
}

} // namespace
