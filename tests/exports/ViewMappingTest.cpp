// Where a voxel is in the picture, as CONTRACT.md tells hosts that draw over pictures or pick voxels in them.
#include "exports/ExportedVolume.h"
#include "exports/Library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <iterator>
#include <vector>

namespace {

using namespace z3d::test;

constexpr int kWidth = 21;
constexpr int kHeight = 19;
constexpr int kDepth = 17;

struct Point {
    int x, y, z;
};

// One voxel of 255 in black.
void LightOneVoxel(Volume3D* volume, const Point& lit) {
    unsigned char*** slices = TheLibrary().GlobalLock3D(volume);
    for (int z = 0; z < kDepth; ++z) {
        std::memset(slices[z][0], 0, kWidth * kHeight);
    }
    slices[lit.z][lit.y][lit.x] = 255;
    TheLibrary().GlobalUnlock3D(volume);
}

// Along view axis 0 or 1, from the volume's centre.
double ViewCoordinate(const Point& voxel, int axis) {
    const float* row = kOblique + 3 * axis;
    return row[0] * (voxel.x - (kWidth - 1) / 2.0) + row[1] * (voxel.y - (kHeight - 1) / 2.0)
           + row[2] * (voxel.z - (kDepth - 1) / 2.0);
}

TEST(ViewMapping, AVoxelIsWithinAPixelOfItsPlace) {
    const ExportedVolume volume(kWidth, kHeight, kDepth, 1);
    for (const Point& voxel : {Point{10, 9, 8}, Point{2, 15, 4}, Point{18, 3, 12}, Point{5, 5, 14}}) {
        LightOneVoxel(volume.Get(), voxel);

        const Projection projection = RenderMaximum(volume.Get(), kOblique);

        const double column = (projection.width - 1) / 2.0 + ViewCoordinate(voxel, 0);
        const double row = (projection.height - 1) / 2.0 - ViewCoordinate(voxel, 1);
        int found = 0;
        for (int pixel = 0; pixel < projection.width * projection.height; ++pixel) {
            if (projection.pixels[3 * pixel] != 255.0f) continue;
            ++found;
            EXPECT_LT(std::fabs(pixel % projection.width - column), 1.0);
            EXPECT_LT(std::fabs(pixel / projection.width - row), 1.0);
        }
        EXPECT_GE(found, 1);
        EXPECT_TRUE(ReleaseProjection(projection.pixels));
    }
}

TEST(ViewMapping, ANegatedFirstRowMirrorsThePicture) {
    const ExportedVolume volume(kWidth, kHeight, kDepth, 1);
    std::vector<float> mirroring(std::begin(kOblique), std::end(kOblique));
    std::transform(mirroring.begin(), mirroring.begin() + 3, mirroring.begin(), std::negate<>());

    const Projection plain = RenderMaximum(volume.Get(), kOblique);
    const Projection mirrored = RenderMaximum(volume.Get(), mirroring.data());

    ASSERT_EQ(plain.width, mirrored.width);
    ASSERT_EQ(plain.height, mirrored.height);
    for (int y = 0; y < plain.height; ++y) {
        for (int x = 0; x < plain.width; ++x) {
            const int pixel = y * plain.width + x;
            const int opposite = y * plain.width + plain.width - 1 - x;
            ASSERT_EQ(plain.pixels[3 * pixel], mirrored.pixels[3 * opposite])
                << "column " << x << ", row " << y;
        }
    }
    EXPECT_TRUE(ReleaseProjection(plain.pixels));
    EXPECT_TRUE(ReleaseProjection(mirrored.pixels));
}

} // namespace
