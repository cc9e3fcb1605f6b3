// Arguments that no sound host would pass: the documented failure, never a crash, and nothing left behind.
#include "exports/ExportedVolume.h"
#include "exports/Library.h"
#include "support/SpecialValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace {

using namespace z3d::test;

// Every test ends without an exception having been raised, and its volume unlocked.
class HostileProjection : public ::testing::Test {
protected:
    void TearDown() override {
        EXPECT_EQ(ExceptionsRaised(), raisedBefore_);
        EXPECT_EQ(volume_->sliceRows, nullptr);
    }

    // Renders the fixture's volume while it is locked by the host.
    Projection RenderLocked(const float* rotation) {
        TheLibrary().GlobalLock3D(volume_.Get());
        return RenderMaximum(volume_.Get(), rotation);
    }

    ExportedVolume volume_{6, 5, 4, 1};

private:
    int raisedBefore_ = ExceptionsRaised();
};

void ExpectNothing(const Projection& projection, int width, int height) {
    EXPECT_EQ(projection.pixels, nullptr);
    EXPECT_EQ(projection.width, width);
    EXPECT_EQ(projection.height, height);
}

TEST_F(HostileProjection, NullVolumeOrRotation) {
    ExpectNothing(RenderMaximum(nullptr, kNotTurned), 0, 0);
    ExpectNothing(RenderMaximum(nullptr, nullptr), 0, 0);
    ExpectNothing(RenderLocked(nullptr), 0, 0);
}

TEST_F(HostileProjection, NullSizePointers) {
    unsigned short size = 0;
    const auto render = [&](unsigned short* width, unsigned short* height) {
        return TheLibrary().GetRotProjection(volume_.Get(), kNotTurned, RenderModeMaximum, 1, 6, 1, 5, 1, 4,
                                             255, 0, 0, width, height, 0);
    };

    EXPECT_EQ(render(nullptr, nullptr), nullptr);
    EXPECT_EQ(render(&size, nullptr), nullptr);
    EXPECT_EQ(size, 6);
    EXPECT_EQ(render(nullptr, &size), nullptr);
    EXPECT_EQ(size, 5);
}

TEST_F(HostileProjection, SizeQueriesTakeNulls) {
    unsigned short size[2] = {7, 7};
    const auto query = [](Volume3D* volume, const float* rotation, unsigned short* width,
                          unsigned short* height) {
        TheLibrary().GetRotDim(volume, rotation, 1, 6, 1, 5, 1, 4, width, height, 0);
    };

    query(volume_.Get(), kNotTurned, nullptr, nullptr);
    query(volume_.Get(), kNotTurned, nullptr, &size[1]);
    EXPECT_EQ(size[1], 5);
    query(nullptr, kNotTurned, &size[0], &size[1]);
    EXPECT_EQ(size[0] + size[1], 0);
    size[0] = 7;
    query(volume_.Get(), nullptr, &size[0], nullptr);
    EXPECT_EQ(size[0], 0);
}

TEST_F(HostileProjection, RotationsThatAreNotFiniteOrTooLarge) {
    for (const float bad : {kNaN, kInfinity, -kInfinity, 1e30f, std::numeric_limits<float>::max()}) {
        for (int element = 0; element < 9; ++element) {
            float rotation[9];
            std::copy_n(kOblique, 9, rotation);
            rotation[element] = bad;
            unsigned short size[2] = {7, 7};

            ExpectNothing(RenderLocked(rotation), 0, 0);
            TheLibrary().GetRotDim(volume_.Get(), rotation, 1, 6, 1, 5, 1, 4, &size[0], &size[1], 0);
            EXPECT_EQ(size[0] + size[1], 0) << bad << " at " << element;
        }
    }
}

// Extents of 5 * 4000 and 4 * 5000: 20001 * 20001 * 12 bytes are more than 2^32.
TEST_F(HostileProjection, AnImageWhoseBytesDoNotFit32Bits) {
    const float rotation[9] = {4000, 0, 0, 0, 5000, 0, 0, 0, 1};

    ExpectNothing(RenderLocked(rotation), 20001, 20001);
}

// Width 5 * 20000 + 1 = 100001 is 34465 modulo 65536; 500001 pixels of 12 bytes are rendered.
TEST_F(HostileProjection, AWidthBeyond16BitsIsStoredWithItsLow16Bits) {
    const float rotation[9] = {20000, 0, 0, 0, 1, 0, 0, 0, 1};

    const Projection projection = RenderLocked(rotation);

    EXPECT_EQ(projection.width, 34465);
    EXPECT_EQ(projection.height, 5);
    ASSERT_NE(projection.pixels, nullptr);
    EXPECT_TRUE(IsBlockOf(projection.pixels, std::size_t{100001} * 5 * 12));
    EXPECT_TRUE(ReleaseProjection(projection.pixels));
}

TEST_F(HostileProjection, AMissingSlice) {
    for (int z = 0; z < 4; ++z) {
        Image2D* slice = volume_->slices[z];
        volume_->slices[z] = nullptr;

        ExpectNothing(RenderLocked(kNotTurned), 6, 5);
        EXPECT_EQ(volume_->slices[3 - z]->rows, nullptr);

        volume_->slices[z] = slice;
    }
}

TEST_F(HostileProjection, ASliceOfAnotherSize) {
    for (const auto [width, height, bytes] :
         {std::array{5u, 5u, 1u}, {6u, 4u, 1u}, {7u, 5u, 1u}, {6u, 5u, 0u}}) {
        for (const int z : {0, 3}) {
            Image2D* slice = volume_->slices[z];
            volume_->slices[z] = TheLibrary().GlobalAlloc2D(width, height, bytes);

            ExpectNothing(RenderLocked(kNotTurned), 6, 5);

            TheLibrary().GlobalFree2D(volume_->slices[z]);
            volume_->slices[z] = slice;
        }
    }
}

// Colours are read where the first slice has 3 bytes per voxel; the others have just one.
TEST_F(HostileProjection, SlicesThatAreTooSmallForTheFirstOnesFormat) {
    Image2D* slice = volume_->slices[0];
    volume_->slices[0] = TheLibrary().GlobalAlloc2D(6, 5, 3);

    ExpectNothing(RenderLocked(kNotTurned), 6, 5);

    TheLibrary().GlobalFree2D(volume_->slices[0]);
    volume_->slices[0] = slice;
}

// Minutes to hours of samples, as of doubles that were passed as floats: refused at once, with the size.
TEST_F(HostileProjection, AThirdRowLongerThan1024) {
    for (const float length : {1024.0001f, 1e6f, 1e8f}) {
        const float rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, -length};
        ExpectNothing(RenderLocked(rotation), 6, 5);
    }
    const float rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1024};
    const Projection projection = RenderLocked(rotation);
    EXPECT_NE(projection.pixels, nullptr);
    EXPECT_TRUE(ReleaseProjection(projection.pixels));
}

// 2147483520 is the largest float below 2^31; an extent of 5 / 5 of it and 4 * 30 makes a size of 0x7FFFFFF9.
TEST_F(HostileProjection, ExtentsUpTo2147483647AreSizes) {
    const float rotation[9] = {429496704, 30, 0, 0, 1, 0, 0, 0, 1};
    unsigned short size[2] = {7, 7};

    TheLibrary().GetRotDim(volume_.Get(), rotation, 1, 6, 1, 5, 1, 4, &size[0], &size[1], 0);
    EXPECT_EQ(size[0], 0xFFF9);
    EXPECT_EQ(size[1], 5);
    ExpectNothing(RenderLocked(rotation), 0xFFF9, 5);
}

// Slices of no bytes: the first lock fails, and the second would give the table of null rows that it left.
TEST_F(HostileProjection, SlicesThatCannotBeLocked) {
    Volume3D* volume = TheLibrary().GlobalAlloc3D(3, 3, 2, 0);
    for (int z = 0; z < 2; ++z)
        volume->slices[z] = TheLibrary().GlobalAlloc2D(3, 3, 0);

    for (int attempt = 0; attempt < 3; ++attempt)
        ExpectNothing(RenderMaximum(volume, kNotTurned), 3, 3);
    EXPECT_EQ(volume->sliceRows, nullptr);

    TheLibrary().GlobalFree3D(volume);
}

TEST_F(HostileProjection, VolumesWithADimensionOfZero) {
    for (const auto [width, height, depth] :
         {std::array{0u, 3u, 3u}, {3u, 0u, 3u}, {3u, 3u, 0u}, {0u, 0u, 0u}}) {
        Volume3D* volume = TheLibrary().GlobalAlloc3D(width, height, depth, 1);

        EXPECT_EQ(RenderMaximum(volume, kOblique).pixels, nullptr);
        EXPECT_EQ(volume->sliceRows, nullptr);

        TheLibrary().GlobalFree3D(volume);
    }
}

// 32768 * 32769 * 4 bytes wrap to one row: the other rows lie outside their block.
TEST_F(HostileProjection, SlicesWhoseByteCountWrapped) {
    Volume3D* volume = TheLibrary().GlobalAlloc3D(32768, 32769, 1, 4);
    ASSERT_NE(volume, nullptr);
    const float small[9] = {0.0001f, 0, 0, 0, 0.0001f, 0, 0, 0, 1};

    ExpectNothing(RenderMaximum(volume, small), 4, 4);
    EXPECT_EQ(volume->sliceRows, nullptr);

    TheLibrary().GlobalFree3D(volume);
}

TEST_F(HostileProjection, WindowsThatAreNoWindows) {
    for (const auto [high, low] :
         {std::array{0.0f, 255.0f}, {kNaN, 0.0f}, {255.0f, kNaN}, {-kInfinity, kInfinity}}) {
        unsigned short size[2] = {};
        float* pixels = TheLibrary().GetRotProjection(volume_.Get(), kOblique, RenderModeMaximum, 1, 6, 1, 5,
                                                      1, 4, high, low, 0, &size[0], &size[1], 0);
        ASSERT_NE(pixels, nullptr);
        EXPECT_EQ(*std::max_element(pixels, pixels + 3 * size[0] * size[1]),
                  std::numeric_limits<float>::lowest());
        EXPECT_TRUE(ReleaseProjection(pixels));
    }
}

TEST_F(HostileProjection, CropBoundsFarOutside) {
    for (const auto [first, last] :
         {std::array<short, 2>{-32768, 32767}, {32767, 32767}, {-32768, -32768}, {0, 0}}) {
        unsigned short size[2] = {};
        float* pixels =
            TheLibrary().GetRotProjection(volume_.Get(), kOblique, RenderModeMaximum, first, last, first,
                                          last, first, last, 255, 0, 0, &size[0], &size[1], 0);
        EXPECT_NE(pixels, nullptr);
        EXPECT_TRUE(ReleaseProjection(pixels));
    }
}

} // namespace
