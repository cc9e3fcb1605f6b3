// Where voxels appear in pictures, and which of them take part: what the header says about it.
#include "exports/Library.h"
#include "exports/Picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <set>

namespace {

using namespace z3d::test;

struct Voxel {
    int x, y, z;
};

void FillOne(Volume3D* volume, const Voxel& bright, int value = 200) {
    Fill(volume, [&](int x, int y, int z, int) {
        return x == bright.x && y == bright.y && z == bright.z ? value : 0;
    });
}

// The header's example.
TEST(PictureGeometry, ColumnsCountFromTheCentreToTheRightAndRowsDownwards) {
    const ExportedVolume volume(5, 4, 3, 1);
    FillOne(volume.Get(), {4, 0, 1});

    const Picture straight = TakePicture(volume.Get(), {});
    EXPECT_EQ(*straight.At(4, 3), 200);

    const Picture turned = TakePicture(volume.Get(), {.rotation = RotationOf(0, 0, 90)});
    EXPECT_EQ(turned.width, 4);
    EXPECT_EQ(turned.height, 5);
    EXPECT_EQ(*turned.At(3, 0), 200);
}

// (W - 1) / 2 + R (v - (N - 1) / 2): a sample is at most half a voxel from it in each direction of the volume.
TEST(PictureGeometry, VoxelsAppearWhereTheRotationTakesThem) {
    const ExportedVolume volume(9, 7, 5, 1);
    const View view = {.rotation = RotationOf(20, -35, 50)};
    for (const Voxel voxel : {Voxel{8, 6, 4}, {0, 6, 0}, {4, 3, 2}, {1, 5, 3}, {7, 0, 4}}) {
        FillOne(volume.Get(), voxel);
        const Picture picture = TakePicture(volume.Get(), view);
        const double centred[3] = {voxel.x - 4.0, voxel.y - 3.0, voxel.z - 2.0};
        double place[2];
        for (int axis = 0; axis < 2; ++axis) {
            const float* row = &view.rotation[static_cast<std::size_t>(3 * axis)];
            place[axis] = row[0] * centred[0] + row[1] * centred[1] + row[2] * centred[2];
        }
        for (int row = 0; row < picture.height; ++row) {
            for (int column = 0; column < picture.width; ++column) {
                if (*picture.At(column, row) <= 0) continue;
                const double right = column - (picture.width - 1) / 2.0 - place[0];
                const double down = row - (picture.height - 1) / 2.0 + place[1];
                EXPECT_LT(std::hypot(right, down), std::sqrt(0.75) + 0.02) << column << ", " << row;
            }
        }
    }
}

// How many columns and rows hold something, from the first to the last.
struct Extent {
    int columns, rows;
    bool operator==(const Extent&) const = default;
};

Extent ExtentSeen(Volume3D* volume, const View& view) {
    const Picture picture = TakePicture(volume, view);
    std::set<int> columns, rows;
    for (int row = 0; row < picture.height; ++row) {
        for (int column = 0; column < picture.width; ++column) {
            if (*picture.At(column, row) == kNothing) continue;
            columns.insert(column);
            rows.insert(row);
        }
    }
    return {static_cast<int>(columns.size()), static_cast<int>(rows.size())};
}

// A box of 9 x 9 x 5 voxels, seen from the front and from two sides.
TEST(PictureGeometry, VoxelsCountAsCubes) {
    const ExportedVolume volume(15, 15, 15, 1);
    Fill(volume.Get(), [](int x, int y, int z, int) {
        return std::abs(x - 7) <= 4 && std::abs(y - 7) <= 4 && std::abs(z - 7) <= 2 ? 200 : 0;
    });

    EXPECT_EQ(ExtentSeen(volume.Get(), {.low = 1}), (Extent{9, 9}));
    EXPECT_EQ(ExtentSeen(volume.Get(), {.rotation = RotationOf(90, 0, 0), .low = 1}), (Extent{9, 5}));
    EXPECT_EQ(ExtentSeen(volume.Get(), {.rotation = RotationOf(0, 90, 0), .low = 1}), (Extent{5, 9}));
}

// A ball whose slices are twice as far apart as its columns and rows is half as deep, until the host has resampled it.
TEST(PictureGeometry, AScanOfAnotherSpacingIsOutOfShapeUntilItIsResampled) {
    const ExportedVolume scan(21, 21, 11, 1);
    const ExportedVolume resampled(21, 21, 21, 1);
    const auto ball = [](int x, int y, int z) { return x * x + y * y + z * z <= 64 ? 200 : 0; };
    Fill(scan.Get(), [&](int x, int y, int z, int) { return ball(x - 10, y - 10, 2 * (z - 5)); });
    Fill(resampled.Get(), [&](int x, int y, int z, int) { return ball(x - 10, y - 10, z - 10); });
    const View fromBelow = {.rotation = RotationOf(90, 0, 0), .low = 1};

    EXPECT_EQ(ExtentSeen(scan.Get(), fromBelow), (Extent{17, 9}));
    EXPECT_EQ(ExtentSeen(resampled.Get(), fromBelow), (Extent{17, 17}));
}

// With x to the right and y up, z of a right-handed system would point at the viewer; slices go away instead.
TEST(PictureGeometry, TheFirstSliceIsNearest) {
    const ExportedVolume volume(3, 3, 4, 1);
    Fill(volume.Get(), [](int, int, int z, int) { return 10 * z + 10; });

    EXPECT_EQ(*TakePicture(volume.Get(), {.mode = RenderModeFirstHit}).At(1, 1), 10);
}

// What the header advises against the mirrored look of a right-handed scan.
TEST(PictureGeometry, ANegatedFirstRowMirrorsThePicture) {
    const ExportedVolume volume(6, 5, 4, 1);
    View view;
    const Picture picture = TakePicture(volume.Get(), view);
    view.rotation[0] = -1;
    const Picture mirrored = TakePicture(volume.Get(), view);

    ASSERT_EQ(mirrored.width, picture.width);
    for (int row = 0; row < picture.height; ++row) {
        for (int column = 0; column < picture.width; ++column)
            EXPECT_EQ(*mirrored.At(column, row), *picture.At(picture.width - 1 - column, row));
    }
}

TEST(PictureGeometry, PixelsHoldRedGreenAndBlueInThisOrder) {
    const ExportedVolume volume(3, 3, 3, 3);
    Fill(volume.Get(), [](int, int, int, int channel) { return 50 * (channel + 1); });

    for (const short mode :
         {RenderModeMaximum, RenderModeMinimum, RenderModeSum, RenderModeBlend, RenderModeFirstHit}) {
        const Picture picture = TakePicture(volume.Get(), {.mode = mode});
        const float* pixel = picture.At(1, 1);
        EXPECT_LT(pixel[0], pixel[1]);
        EXPECT_FLOAT_EQ(pixel[2], 3 * pixel[0]);
    }
}

// Slices of 10, 20, 30 ... and a crop box of slice 3 alone, counted from 1: rays begin half a voxel before it.
TEST(PictureGeometry, ACropBoxOfOneSliceLetsItsNeighboursTakePart) {
    const ExportedVolume volume(3, 3, 5, 1);
    Fill(volume.Get(), [](int, int, int z, int) { return 10 * z + 10; });
    View view = {.crop = {1, 3, 1, 3, 3, 3}};

    view.mode = RenderModeMaximum;
    EXPECT_EQ(*TakePicture(volume.Get(), view).At(1, 1), 40) << "one sample beyond the crop box";
    view.mode = RenderModeMinimum;
    EXPECT_EQ(*TakePicture(volume.Get(), view).At(1, 1), 20);
    view.mode = RenderModeSum;
    EXPECT_EQ(*TakePicture(volume.Get(), view).At(1, 1), 50);
}

// In colour the maximum ends where the other modes do.
TEST(PictureGeometry, OnlyTheGreyMaximumLooksBeyondTheCropBox) {
    const ExportedVolume grey(3, 3, 5, 1);
    const ExportedVolume colour(3, 3, 5, 3);
    for (Volume3D* volume : {grey.Get(), colour.Get()})
        Fill(volume, [](int, int, int z, int) { return 10 * z + 10; });
    const View view = {.crop = {1, 3, 1, 3, 2, 3}};

    EXPECT_EQ(*TakePicture(grey.Get(), view).At(1, 1), 40);
    EXPECT_EQ(*TakePicture(colour.Get(), view).At(1, 1), 30);
}

// One voxel in a cube of 32; 64 views. Samples are a voxel apart along rays a voxel apart: some pass it by.
TEST(PictureGeometry, ObliqueViewsCanMissASingleVoxel) {
    const ExportedVolume volume(32, 32, 32, 1);
    FillOne(volume.Get(), {9, 20, 13});
    int missed = 0;
    int seen = 0;
    for (int step = 0; step < 64; ++step) {
        const Picture picture = TakePicture(
            volume.Get(), {.rotation = RotationOf(static_cast<float>(step) * 1.3f, 37, 11), .low = 200});
        const bool isSeen = std::any_of(picture.floats.begin(), picture.floats.end(),
                                        [](float value) { return value == 200; });
        (isSeen ? seen : missed) += 1;
    }
    EXPECT_GT(missed, 0);
    EXPECT_GT(seen, 32);
}

// Widths of 65536 + 1: the host receives 1, and the block has every pixel.
TEST(PictureGeometry, SizesAbove65535Wrap) {
    const ExportedVolume volume(2, 1, 1, 1);
    const Picture picture = TakePicture(volume.Get(), {.rotation = {65536, 0, 0, 0, 1, 0, 0, 0, 1},
                                                       .wrappedBytes = 65537u * 3 * sizeof(float)});

    EXPECT_EQ(picture.width, 1);
    EXPECT_EQ(picture.floats.size(), 65537u * 3);
}

} // namespace
