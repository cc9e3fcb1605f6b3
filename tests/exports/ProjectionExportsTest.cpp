// Projections through the DLL: the block that the host receives, argument slots, sizes.
#include "exports/ExportedVolume.h"
#include "exports/ForeignHost.h"
#include "exports/Library.h"
#include "support/RenderModes.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using namespace z3d::test;

constexpr float kNoContribution = -3.4028234663852886e38f;

TEST(ProjectionExports, PixelsAreABlockLockedOnceOfTheExactSize) {
    const ExportedVolume volume(13, 11, 9, 1);

    const Projection projection = RenderMaximum(volume.Get(), kOblique);
    ASSERT_NE(projection.pixels, nullptr);
    const HGLOBAL block = GlobalHandle(projection.pixels);
    ASSERT_NE(block, nullptr);
    EXPECT_NE(block, static_cast<void*>(projection.pixels)) << "a fixed block is its own handle";
    EXPECT_EQ(GlobalFlags(block), 1u) << "one lock, not discardable";
    EXPECT_EQ(GlobalSize(block), ProjectionBytes(projection.width, projection.height));

    EXPECT_TRUE(ReleaseProjection(projection.pixels));
}

TEST(ProjectionExports, FirstRowOfTheArrayIsTheLastRowOfTheVolume) {
    const ExportedVolume volume(4, 3, 2, 1);
    unsigned char*** slices = TheLibrary().GlobalLock3D(volume.Get());
    std::memset(slices[0][0], 0, 12);
    std::memset(slices[1][0], 0, 12);
    slices[1][2][1] = 200;
    TheLibrary().GlobalUnlock3D(volume.Get());

    const Projection projection = RenderMaximum(volume.Get(), kNotTurned);
    EXPECT_EQ(projection.width, 4);
    EXPECT_EQ(projection.height, 3);
    EXPECT_EQ(projection.pixels[3 * 1], 200.0f);
    EXPECT_EQ(projection.pixels[3 * 1 + 2], 200.0f);
    EXPECT_EQ(projection.pixels[3 * 9], 0.0f);

    EXPECT_TRUE(ReleaseProjection(projection.pixels));
}

TEST(ProjectionExports, SizesAreTheOnesThatGetRotDimGives) {
    const ExportedVolume volume(13, 11, 9, 1);
    unsigned short width = 0;
    unsigned short height = 0;

    TheLibrary().GetRotDim(volume.Get(), kOblique, 3, 4, 3, 4, 3, 4, &width, &height, 0);
    const Projection projection = RenderMaximum(volume.Get(), kOblique);

    EXPECT_EQ(projection.width, width);
    EXPECT_EQ(projection.height, height);
    EXPECT_TRUE(ReleaseProjection(projection.pixels));
}

// A host that passes 16-bit arguments leaves what it likes in the upper halves of their slots.
TEST(ProjectionExports, UpperHalvesOf16BitSlotsAreIgnored) {
    const ExportedVolume volume(6, 5, 4, 1);
    ForeignHost host(kPlainHost);
    std::vector<std::vector<unsigned char>> images;

    for (const std::uint32_t upper : {0u, 0xFFFF0000u, 0x7FFF0000u, 0x00010000u}) {
        unsigned short size[2] = {};
        auto* pixels = host.CallForPointer<float>("GetRotProjection", volume.Get(), kOblique, upper | 0,
                                                  upper | 2, upper | 6, upper | 1, upper | 4, upper | 2,
                                                  upper | 4, 200.0f, 50.0f, 0.0f, &size[0], &size[1], 0);
        ASSERT_NE(pixels, nullptr);
        const auto* bytes = reinterpret_cast<const unsigned char*>(pixels);
        images.emplace_back(bytes, bytes + ProjectionBytes(size[0], size[1]));
        EXPECT_TRUE(ReleaseProjection(pixels));
    }

    for (const auto& image : images)
        EXPECT_TRUE(image == images[0]);
}

TEST(ProjectionExports, UpperHalvesOfSizeQueriesAreIgnored) {
    const ExportedVolume volume(6, 5, 4, 1);
    ForeignHost host(kPlainHost);
    unsigned short size[2] = {};

    host.Call("GetRotDim", volume.Get(), kNotTurned, 0xABCD0001u, 0xABCD0006u, 0x80000001u, 0x80000005u,
              0xFFFF0001u, 0xFFFF0004u, &size[0], &size[1], -1);

    EXPECT_EQ(size[0], 6);
    EXPECT_EQ(size[1], 5);
}

TEST(ProjectionExports, UnknownModesStoreTheSizeAndGiveNull) {
    const ExportedVolume volume(6, 5, 4, 1);
    for (const short mode : kUnknownModes) {
        unsigned short size[2] = {};

        EXPECT_EQ(TheLibrary().GetRotProjection(volume.Get(), kNotTurned, mode, 1, 6, 1, 5, 1, 4, 255, 0, 0,
                                                &size[0], &size[1], 0),
                  nullptr);
        EXPECT_EQ(size[0], 6);
        EXPECT_EQ(size[1], 5);
    }
}

// Crop bounds count from 1 and are inclusive; the swapped box is the same; what is outside holds the sentinel.
TEST(ProjectionExports, CropBoundsAreOneBasedAndMayBeSwapped) {
    const ExportedVolume volume(9, 9, 9, 1);
    for (const bool swapped : {false, true}) {
        unsigned short size[2] = {};
        float* pixels = swapped
                            ? TheLibrary().GetRotProjection(volume.Get(), kNotTurned, RenderModeMaximum, 7, 3,
                                                            9, 1, 9, 1, 255, 0, 0, &size[0], &size[1], 0)
                            : TheLibrary().GetRotProjection(volume.Get(), kNotTurned, RenderModeMaximum, 3, 7,
                                                            1, 9, 1, 9, 255, 0, 0, &size[0], &size[1], 0);
        ASSERT_NE(pixels, nullptr);
        EXPECT_EQ(pixels[3 * 1], kNoContribution);
        EXPECT_GE(pixels[3 * 2], 0.0f);
        EXPECT_GE(pixels[3 * 6], 0.0f);
        EXPECT_EQ(pixels[3 * 7], kNoContribution);
        EXPECT_TRUE(ReleaseProjection(pixels));
    }
}

TEST(ProjectionExports, LeaveTheVolumeUnlockedWhoeverLockedIt) {
    const ExportedVolume volume(4, 3, 2, 1);
    TheLibrary().GlobalLock3D(volume.Get());

    EXPECT_TRUE(ReleaseProjection(RenderMaximum(volume.Get(), kNotTurned).pixels));

    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(TheLibrary().GlobalUnlock3D(volume.Get()), 1);
}

TEST(ProjectionExports, SizeQueriesAndUnknownModesLeaveTheLockAlone) {
    const ExportedVolume volume(4, 3, 2, 1);
    unsigned char*** slices = TheLibrary().GlobalLock3D(volume.Get());
    unsigned short size[2] = {};

    TheLibrary().GetRotDim(volume.Get(), kNotTurned, 1, 4, 1, 3, 1, 2, &size[0], &size[1], 0);
    TheLibrary().GetRotProjection(volume.Get(), kNotTurned, kUnknownModes[0], 1, 4, 1, 3, 1, 2, 255, 0, 0,
                                  &size[0], &size[1], 0);

    EXPECT_EQ(volume->sliceRows, slices);
    EXPECT_EQ(slices[1], volume->slices[1]->rows);
}

} // namespace
