// What rendering and sizing do when they cannot: the failure result, the volume unlocked, nothing leaked.
#include "render/RotProjection.h"

#include "frame/Image2D.h"
#include "frame/Volume3D.h"
#include "platform/GlobalMemory.h"
#include "support/HostVolume.h"
#include "support/ProductRenderer.h"
#include "support/Refusals.h"
#include "support/RenderModes.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;

constexpr float kUnturned[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
constexpr render::CropBox kWhole = {0, 3, 0, 2, 0, 1};
constexpr render::RenderArguments kEverything = {255, 0, 0};

struct Size {
    std::uint16_t width = 0xAAAA;
    std::uint16_t height = 0xAAAA;
};

float* Render(::Volume3D* volume, Size& size, const float* rotation = kUnturned,
              std::int16_t mode = RenderModeMaximum) {
    return render::GetRotProjection(volume, rotation, mode, kWhole, kEverything, &size.width, &size.height,
                                    0);
}

void ExpectRefused(::Volume3D* volume, const float* rotation, Size expected) {
    for (const RenderMode mode : kRenderModes) {
        Size size;
        EXPECT_EQ(Render(volume, size, rotation, mode), nullptr) << "mode " << mode;
        EXPECT_EQ(size.width, expected.width);
        EXPECT_EQ(size.height, expected.height);
    }
}

TEST(RotProjection, StoresTheSizeAndReturnsNullForUnknownModes) {
    const HostVolume volume(4, 3, 2, 1);
    for (const short mode : kUnknownModes) {
        Size size;
        EXPECT_EQ(Render(volume.Get(), size, kUnturned, mode), nullptr);
        EXPECT_EQ(size.width, 4);
        EXPECT_EQ(size.height, 3);
    }
}

TEST(RotProjection, LeavesTheLockStateAloneForUnknownModesAndSizes) {
    const HostVolume volume(4, 3, 2, 1);
    frame::GlobalLock3D(volume.Get());

    Size size;
    Render(volume.Get(), size, kUnturned, kUnknownModes[0]);
    render::GetRotDim(volume.Get(), kUnturned, kWhole, &size.width, &size.height, 0);

    EXPECT_NE(volume->sliceRows, nullptr);
}

TEST(RotProjection, UnlocksAVolumeThatTheHostHadLocked) {
    const HostVolume volume(4, 3, 2, 1);
    frame::GlobalLock3D(volume.Get());

    Size size;
    float* pixels = Render(volume.Get(), size);

    EXPECT_NE(pixels, nullptr);
    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(volume->slices[0]->rows, nullptr);
    FreeProjection(pixels);
}

TEST(RotProjection, UnlocksTheVolumeAlsoWhenTheRotationIsNull) {
    const HostVolume volume(4, 3, 2, 1);
    frame::GlobalLock3D(volume.Get());

    Size size;
    EXPECT_EQ(Render(volume.Get(), size, nullptr), nullptr);

    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(size.width, 0);
    EXPECT_EQ(size.height, 0);
}

TEST(RotProjection, RefusesANullVolume) { ExpectRefused(nullptr, kUnturned, {0, 0}); }

TEST(RotProjection, RefusesANullSizePointerButStoresTheOther) {
    const HostVolume volume(4, 3, 2, 1);
    Size size;

    EXPECT_EQ(render::GetRotProjection(volume.Get(), kUnturned, RenderModeMaximum, kWhole, kEverything,
                                       nullptr, &size.height, 0),
              nullptr);
    EXPECT_EQ(render::GetRotProjection(volume.Get(), kUnturned, RenderModeMaximum, kWhole, kEverything,
                                       &size.width, nullptr, 0),
              nullptr);

    EXPECT_EQ(size.width, 4);
    EXPECT_EQ(size.height, 3);
}

TEST(RotProjection, RefusesARotationThatIsNotFinite) {
    const HostVolume volume(4, 3, 2, 1);
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                            -std::numeric_limits<float>::infinity(), 3e38f, 3e9f}) {
        for (int element = 0; element < 9; ++element) {
            float rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
            rotation[element] = bad;
            ExpectRefused(volume.Get(), rotation, {0, 0});

            Size size;
            render::GetRotDim(volume.Get(), rotation, kWhole, &size.width, &size.height, 0);
            EXPECT_EQ(size.width, 0);
            EXPECT_EQ(size.height, 0);
        }
    }
}

TEST(RotProjection, RefusesAnImageThatDoesNotFit32BitsButStoresItsSize) {
    // 19001 * 19001 * 12 bytes is more than 2^32.
    const HostVolume volume(20, 20, 1, 1);
    const float rotation[9] = {1000, 0, 0, 0, 1000, 0, 0, 0, 1};
    ExpectRefused(volume.Get(), rotation, {19001, 19001});
}

// 720000365 * 2135038741 pixels of 12 bytes are 2^64 + 133964 bytes: as a 64-bit number they would seem to fit.
TEST(RotProjection, RefusesAnImageWhoseBytesPass64Bits) {
    const HostVolume volume(2, 2, 1, 1);
    const float rotation[9] = {720000000, 364, 0, 2135038720, 20, 0, 0, 0, 1};
    ExpectRefused(volume.Get(), rotation,
                  {static_cast<std::uint16_t>(720000365), static_cast<std::uint16_t>(2135038741)});
}

TEST(RotProjection, ReportsTheLow16BitsOfAWideProjection) {
    // 100 * 999 + 1 = 99901 = 65536 + 34365 pixels.
    const HostVolume volume(1000, 1, 1, 1);
    const float rotation[9] = {100, 0, 0, 0, 1, 0, 0, 0, 1};
    Size size;

    float* pixels = Render(volume.Get(), size, rotation);

    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(size.width, 34365);
    EXPECT_EQ(pixels[3 * 99900], -3.4028234663852886e38f); // the array has the full width
    FreeProjection(pixels);
}

TEST(RotProjection, RefusesAMissingSlice) {
    const HostVolume volume(4, 3, 2, 1);
    for (std::size_t z = 0; z < 2; ++z) {
        ::Image2D* slice = volume->slices[z];
        volume->slices[z] = nullptr;
        ExpectRefused(volume.Get(), kUnturned, {4, 3});
        EXPECT_EQ(volume->sliceRows, nullptr);
        volume->slices[z] = slice;
    }
}

TEST(RotProjection, RefusesAVolumeWithoutSlices) {
    const HostVolume volume(4, 3, 2, 0);
    ExpectRefused(volume.Get(), kUnturned, {4, 3});
}

TEST(RotProjection, RefusesASliceOfAnotherSize) {
    const HostVolume volume(4, 3, 2, 1);
    ::Image2D* slice = volume->slices[1];
    for (::Image2D* other : {frame::GlobalAlloc2D(3, 3, 1), frame::GlobalAlloc2D(4, 2, 1)}) {
        volume->slices[1] = other;
        ExpectRefused(volume.Get(), kUnturned, {4, 3});
        frame::GlobalFree2D(other);
    }
    volume->slices[1] = slice;
}

// The first slice has 3 bytes per voxel, so colours are read, which the other one has too few bytes for.
TEST(RotProjection, RefusesASliceThatIsTooSmallForTheFirstOnesFormat) {
    for (const std::uint32_t bytes : {0u, 1u, 2u}) {
        const HostVolume volume(4, 3, 2, 3);
        frame::GlobalFree2D(volume->slices[1]);
        volume->slices[1] = frame::GlobalAlloc2D(4, 3, bytes);
        ExpectRefused(volume.Get(), kUnturned, {4, 3});
    }
}

TEST(RotProjection, RefusesAThirdRowLongerThan1024ButStoresItsSize) {
    const HostVolume volume(4, 3, 2, 1);
    const float longest[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1024.0001f};
    ExpectRefused(volume.Get(), longest, {4, 3});
    const float oblique[9] = {1, 0, 0, 0, 1, 0, 600, 600, 600};
    ExpectRefused(volume.Get(), oblique, {4, 3});
}

TEST(RotProjection, RefusesASliceWhoseBytesDoNotFit32Bits) {
    const HostVolume volume(4096, 4096, 1, 0);
    // 4096 * 4096 * 257 wraps to 2^24 bytes: the block is smaller than its rows say.
    volume->slices[0] = frame::GlobalAlloc2D(4096, 4096, 257);
    ASSERT_NE(volume->slices[0], nullptr);
    ExpectRefused(volume.Get(), kUnturned, {4096, 4096});
}

TEST(RotProjection, RefusesAVolumeWithADimensionOf0) {
    for (const auto& [width, height, depth] : {std::array{0u, 3u, 2u}, {4u, 0u, 2u}, {4u, 3u, 0u}}) {
        const HostVolume volume(width, height, depth, 1);
        Size size;
        EXPECT_EQ(Render(volume.Get(), size), nullptr);
        EXPECT_EQ(volume->sliceRows, nullptr);
    }
}

TEST(RotProjection, RefusesARowTableThatAFailedLockLeftUnfilled) {
    const HostVolume volume(4, 3, 2, 1);
    RefuseRequest(1); // the table is granted, the lock is not
    EXPECT_EQ(frame::GlobalLock2D(volume->slices[1]), nullptr);
    RefuseNothing();
    ASSERT_NE(volume->slices[1]->rows, nullptr);

    Size size;
    EXPECT_EQ(Render(volume.Get(), size), nullptr);
    EXPECT_EQ(volume->sliceRows, nullptr);
}

// Tables that only speed a rendering up may be refused without harm.
TEST(RotProjection, EndsInNullOrInTheSameImageWhateverIsRefused) {
    for (const std::uint32_t bytesPerVoxel : {1u, 3u}) {
        for (const RenderMode mode : kRenderModes) {
            const HostVolume volume(9, 8, 7, bytesPerVoxel);
            std::vector<float> expected;
            ForEveryRefusal([&](bool refused) {
                Size size;
                float* pixels = Render(volume.Get(), size, kUnturned, mode);
                if (!refused) expected.assign(pixels, pixels + 9 * 8 * 3);
                if (pixels != nullptr) {
                    EXPECT_EQ(std::memcmp(pixels, expected.data(), 9 * 8 * 3 * sizeof(float)), 0);
                }
                EXPECT_EQ(volume->sliceRows, nullptr);
                if (pixels != nullptr) FreeProjection(pixels);
                // The slice whose lock was refused keeps its unfilled row table until it is unlocked.
                for (std::size_t z = 0; z < 7; ++z)
                    frame::GlobalUnlock2D(volume->slices[z]);
            });
        }
    }
}

TEST(RotDim, StoresNoSizeWhenMemoryIsShort) {
    const HostVolume volume(4, 3, 2, 1);
    Size size;

    RefuseRequest(0);
    render::GetRotDim(volume.Get(), kUnturned, kWhole, &size.width, &size.height, 0);
    RefuseNothing();

    EXPECT_EQ(size.width, 0);
    EXPECT_EQ(size.height, 0);
}

TEST(RotDim, SkipsNullSizePointers) {
    const HostVolume volume(4, 3, 2, 1);
    Size size;

    render::GetRotDim(volume.Get(), kUnturned, kWhole, nullptr, &size.height, 0);
    render::GetRotDim(volume.Get(), kUnturned, kWhole, &size.width, nullptr, 0);
    render::GetRotDim(nullptr, nullptr, kWhole, nullptr, nullptr, 0);

    EXPECT_EQ(size.width, 4);
    EXPECT_EQ(size.height, 3);
}

TEST(RotProjection, LeaksNothingOverManyRounds) {
    const HostVolume volume(4, 3, 2, 1);
    const std::int64_t before = OutstandingInTotal();

    for (std::size_t round = 0; round < 100'000; ++round) {
        Size size;
        FreeProjection(Render(volume.Get(), size, kUnturned, kRenderModes[round % kRenderModeCount]));
    }

    EXPECT_EQ(OutstandingInTotal(), before);
}

} // namespace
