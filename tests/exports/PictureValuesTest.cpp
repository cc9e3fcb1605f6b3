// What pixels hold, mode by mode: the table of values and of empty pixels in the header.
#include "exports/Library.h"
#include "exports/Picture.h"

#include "support/RenderModes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace {

using namespace z3d::test;

struct ValuesOfMode {
    short mode;
    float extra;
    int bytesPerVoxel;
    float empty;
    float smallest;
    float largest;
};

// Sums are of at most 17 samples of 255; layers of at most 9 entries that all weigh the same.
constexpr ValuesOfMode kTable[] = {
    {RenderModeMaximum, 0, 1, kNothing, 0, 255},
    {RenderModeMaximum, 0, 3, kNothing, 0, 255},
    {RenderModeMinimum, 0, 1, -kNothing, 0, 255},
    {RenderModeMinimum, 0, 3, -kNothing, 0, 255},
    {RenderModeSum, 0, 1, kNothing, 0, 17 * 255},
    {RenderModeSum, 0, 3, kNothing, 0, 17 * 255},
    {RenderModeSurface, 0, 1, 0, 0, 1},
    {RenderModeSurface, 0, 3, 0, 0, 1},
    {RenderModeSurface, 1, 1, 0, 0, 9},
    {RenderModeSurface, 1, 3, 0, 0, 9},
    {RenderModeBlend, 0.5f, 1, kNothing, 0, 255},
    {RenderModeBlend, 0.5f, 3, kNothing, 0, 255},
    {RenderModeContrast, 0, 1, kNothing, 0, 1020},
    {RenderModeContrast, 0, 3, kNothing, 0, 765},
    {RenderModeFirstHit, 0, 1, kNothing, 0, 255},
    {RenderModeFirstHit, 0, 3, kNothing, 0, 255},
};
static_assert(HaveEveryMode(kTable));

class PictureValues : public ::testing::TestWithParam<ValuesOfMode> {};

TEST_P(PictureValues, LieInTheRangeOfTheMode) {
    const ValuesOfMode& values = GetParam();
    const ExportedVolume volume(9, 9, 9, static_cast<unsigned int>(values.bytesPerVoxel));
    for (const float angle : {0.0f, 17.0f, 90.0f}) {
        const Picture picture = TakePicture(volume.Get(), {.mode = values.mode,
                                                           .rotation = RotationOf(angle, 2 * angle, -angle),
                                                           .high = 700,
                                                           .extra = values.extra});
        ASSERT_TRUE(picture.isRendered);
        for (const float value : picture.floats) {
            if (value == values.empty) continue;
            EXPECT_GE(value, values.smallest);
            EXPECT_LE(value, values.largest * 1.000001f);
        }
    }
}

TEST_P(PictureValues, AreTheEmptyOneWhereNothingContributes) {
    const ValuesOfMode& values = GetParam();
    const ExportedVolume volume(9, 9, 9, static_cast<unsigned int>(values.bytesPerVoxel));
    const Picture picture =
        TakePicture(volume.Get(), {.mode = values.mode, .high = 1000, .low = 900, .extra = values.extra});

    for (int row = 1; row < 8; ++row) {
        for (int column = 1; column < 8; ++column)
            EXPECT_EQ(*picture.At(column, row), values.empty);
    }
    // The border of contrast is 0, whatever is behind it.
    EXPECT_EQ(*picture.At(0, 4), values.mode == RenderModeContrast ? 0 : values.empty);
}

TEST_P(PictureValues, DependOnExtraInModes3And4Alone) {
    const ValuesOfMode& values = GetParam();
    const ExportedVolume volume(9, 9, 9, static_cast<unsigned int>(values.bytesPerVoxel));
    View view = {.mode = values.mode,
                 .rotation = RotationOf(10, 20, 30),
                 .high = 700,
                 .low = 100.0f * static_cast<float>(values.bytesPerVoxel), // so that there are several layers
                 .extra = 0.25f};
    const Picture picture = TakePicture(volume.Get(), view);
    view.extra = 0.75f;
    const Picture other = TakePicture(volume.Get(), view);

    const bool counts = values.mode == RenderModeSurface || values.mode == RenderModeBlend;
    EXPECT_EQ(picture.floats != other.floats, counts);
}

INSTANTIATE_TEST_SUITE_P(Modes, PictureValues, ::testing::ValuesIn(kTable), [](const auto& row) {
    return "Mode" + std::to_string(row.param.mode) + (row.param.extra == 1 ? "Layers" : "")
           + (row.param.bytesPerVoxel == 3 ? "Colour" : "Grey");
});

// 100 everywhere but for 40 at one voxel: beside it contrast is 60, elsewhere flat, and flat counts as empty.
TEST(PictureValuesOfContrast, AreEmptyWhereTheVolumeIsFlat) {
    const ExportedVolume volume(9, 9, 3, 1);
    Fill(volume.Get(), [](int x, int y, int, int) { return x == 4 && y == 4 ? 40 : 100; });
    const Picture picture = TakePicture(volume.Get(), {.mode = RenderModeContrast, .high = 255});

    EXPECT_EQ(*picture.At(4, 4), 4 * 60);
    EXPECT_EQ(*picture.At(3, 4), 60);
    EXPECT_EQ(*picture.At(2, 4), kNothing);
}

// 40 is a bound of the window: the voxel of 40 is not looked at, nor does it count as anyone's neighbour.
TEST(PictureValuesOfContrast, CountNeighboursStrictlyInsideTheWindowOnly) {
    const ExportedVolume volume(9, 9, 3, 1);
    Fill(volume.Get(), [](int x, int y, int, int) { return x == 4 && y == 4 ? 40 : 100; });
    const Picture picture = TakePicture(volume.Get(), {.mode = RenderModeContrast, .high = 255, .low = 40});

    EXPECT_EQ(*picture.At(4, 4), kNothing);
    EXPECT_EQ(*picture.At(3, 4), kNothing);
}

} // namespace
