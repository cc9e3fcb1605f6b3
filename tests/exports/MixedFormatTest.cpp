// Slices of another format than the first: the first one's decides how all are read, each from its first byte.
#include "exports/Library.h"
#include "exports/Picture.h"
#include "support/RenderModes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace z3d::test;

// A volume whose slices from the second on have `bytesPerVoxel`, with the given volume's bytes at their front.
class MixedVolume {
public:
    MixedVolume(Volume3D* source, unsigned int bytesPerVoxel)
        : volume_(TheLibrary().GlobalAlloc3D(source->width, source->height, source->depth,
                                             source->slices[0]->bytesPerPixel)) {
        const std::size_t bytes =
            std::size_t{source->width} * source->height * source->slices[0]->bytesPerPixel;
        for (unsigned int z = 1; z < source->depth; ++z) {
            TheLibrary().GlobalFree2D(volume_->slices[z]);
            volume_->slices[z] = TheLibrary().GlobalAlloc2D(source->width, source->height, bytesPerVoxel);
        }
        unsigned char*** from = TheLibrary().GlobalLock3D(source);
        unsigned char*** to = TheLibrary().GlobalLock3D(volume_);
        for (unsigned int z = 0; z < source->depth; ++z)
            std::memcpy(to[z][0], from[z][0], bytes);
        TheLibrary().GlobalUnlock3D(source);
        TheLibrary().GlobalUnlock3D(volume_);
    }
    ~MixedVolume() { TheLibrary().GlobalFree3D(volume_); }
    MixedVolume(const MixedVolume&) = delete;
    MixedVolume& operator=(const MixedVolume&) = delete;

    Volume3D* Get() const { return volume_; }

private:
    Volume3D* volume_;
};

void ExpectSamePictures(unsigned int first, unsigned int others) {
    const ExportedVolume uniform(7, 6, 5, first);
    const MixedVolume mixed(uniform.Get(), others);
    for (const RenderMode mode : kRenderModes) {
        const View view = {
            .mode = static_cast<short>(mode), .rotation = RotationOf(20, 30, 40), .high = 700, .extra = 0.5f};
        const Picture expected = TakePicture(uniform.Get(), view);
        const Picture picture = TakePicture(mixed.Get(), view);
        ASSERT_TRUE(picture.isRendered) << "mode " << mode;
        EXPECT_TRUE(picture.floats == expected.floats) << "mode " << mode;
    }
}

TEST(MixedFormats, GreyReadsTheFirstBytesOfLargerSlices) {
    ExpectSamePictures(1, 3);
    ExpectSamePictures(1, 4);
    ExpectSamePictures(2, 3);
}

TEST(MixedFormats, ColourReadsTheFirstBytesOfLargerSlices) { ExpectSamePictures(3, 4); }

// A grey voxel is one byte, wherever the first slice has bytes to spare.
TEST(MixedFormats, GreyReadsSmallerSlicesThatHaveAByteForEachVoxel) {
    const ExportedVolume volume(7, 6, 5, 1);
    const Picture expected = TakePicture(volume.Get(), {});
    Image2D* first = volume->slices[0];
    Image2D* wide = TheLibrary().GlobalAlloc2D(7, 6, 4);
    std::memcpy(TheLibrary().GlobalLock2D(wide)[0], TheLibrary().GlobalLock2D(first)[0], 42);
    TheLibrary().GlobalUnlock2D(first);
    TheLibrary().GlobalUnlock2D(wide);
    volume->slices[0] = wide;

    EXPECT_TRUE(TakePicture(volume.Get(), {}).floats == expected.floats);

    volume->slices[0] = first;
    TheLibrary().GlobalFree2D(wide);
}

} // namespace
