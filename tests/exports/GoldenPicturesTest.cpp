// The golden pictures through the library as hosts load it: the same figures from every build of it.
#include "exports/Picture.h"
#include "support/GoldenRows.h"

#include <gtest/gtest.h>

#include <bit>

namespace {

using namespace z3d;
using namespace z3d::test;

TEST(GoldenPictures, AreWhatAHostReceives) {
    int number = 0;
    for (const GoldenRow& row : AllRows()) {
        const reference::Volume plain = VolumeOf(row);
        const ExportedVolume volume(static_cast<unsigned>(plain.width), static_cast<unsigned>(plain.height),
                                    static_cast<unsigned>(plain.depth),
                                    static_cast<unsigned>(plain.bytesPerVoxel));
        std::size_t next = 0;
        Fill(volume.Get(), [&](int, int, int, int) { return plain.voxels[next++]; });
        const reference::Request request = RequestOf(row);

        Picture picture = TakePicture(
            volume.Get(), {request.mode,
                           request.rotation,
                           {request.x0, request.x1, request.y0, request.y1, request.z0, request.z1},
                           request.high,
                           request.low,
                           std::bit_cast<float>(request.extraBits)});

        ++number;
        EXPECT_EQ(picture.width, row.width) << "row " << number;
        EXPECT_EQ(picture.height, row.height) << "row " << number;
        EXPECT_EQ(DigestOf({picture.width, picture.height, 0, picture.isRendered, std::move(picture.floats)}),
                  row.digest)
            << "row " << number;
    }
    EXPECT_GT(number, 60);
}

} // namespace
