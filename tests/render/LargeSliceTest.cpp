// Volumes that no 32-bit process holds: slices of more than 2 GiB, most of them more than 4 GiB together, seen edge-on.
// Nearly all of their memory is zeroes that are never written. What lies far inside is seen as in a volume of just
// these voxels.
#include "reference/ReferenceRenderer.h"
#include "support/HostVolume.h"
#include "support/LongTests.h"
#include "support/OnEachInstructionSet.h"
#include "support/ProductRenderer.h"
#include "support/RandomSource.h"
#include "support/RenderModes.h"

#include "frame/Volume3D.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;

// A strip of a large volume: `kept` columns (rays along y) or rows (rays along x) from `first` on.
struct Strip {
    int width, height, depth;
    int bytesPerVoxel;
    int along; // the axis of the rays
    int first, kept;
};

constexpr int kKept = 100;
// Sides beyond 2^15, slices beyond 2^31 bytes; crop boxes reach the 32767th voxel.
constexpr Strip kStrips[] = {
    {32000, 30000, 3, 3, 1, 31900, kKept},
    {32000, 30000, 3, 3, 0, 29900, kKept},
    {65534, 21000, 3, 3, 0, 20900, kKept},
    {20000, 65534, 3, 3, 1, 19900, kKept},
    {65534, 40000, 3, 1, 1, 32600, kKept},
    {65534, 40000, 3, 1, 0, 32600, kKept},
    // Two slices that begin within 4 GiB, but do not end there; and one, all within reach of 32-bit offsets.
    {32000, 30000, 2, 3, 0, 29900, kKept},
    {32000, 30000, 1, 3, 0, 29900, kKept},
};
constexpr std::uint64_t kGibibytesWanted = 12; // tables and scores are written

struct Marker {
    int x, y, z;
    std::array<std::uint8_t, 3> value;
};

// What programs can have without others losing theirs. 0 where the system does not say.
std::uint64_t GibibytesHere() {
    std::ifstream system("/proc/meminfo");
    std::uint64_t kibibytes = 0;
    for (std::string word; system >> word;) {
        if (word == "MemAvailable:") system >> kibibytes;
    }
    return kibibytes >> 20;
}

// Scattered over the part of the strip that crop boxes can name, on the middle slice and beside it. The first has a line
// of sight of its own.
std::vector<Marker> Markers(const Strip& strip) {
    RandomSource random(11);
    const int length = strip.along == 0 ? strip.width : strip.height;
    const int reach = length < 32767 ? length : 32767;
    std::vector<Marker> markers;
    for (int number = 0; number < 4000; ++number) {
        const int across = number == 0 ? 50 : random.Below(kKept);
        const int deep = number == 0 ? reach - 2 : random.Below(reach);
        if (number > 0 && across > 46 && across < 54) continue;
        Marker marker = {
            across, deep, number == 0 ? strip.depth / 2 : random.Below(strip.depth), {200, 100, 50}};
        if (strip.along == 0) std::swap(marker.x, marker.y);
        if (number > 0) {
            for (std::uint8_t& byte : marker.value)
                byte = static_cast<std::uint8_t>(random.Between(1, 255));
        }
        markers.push_back(marker);
    }
    return markers;
}

// Moved by where the strip begins.
void SetMarkers(::Volume3D* volume, const Strip& strip, int first) {
    std::uint8_t*** slices = frame::GlobalLock3D(volume);
    ASSERT_NE(slices, nullptr);
    const auto bytes = static_cast<std::size_t>(strip.bytesPerVoxel);
    for (const Marker& marker : Markers(strip)) {
        const int x = marker.x + (strip.along == 1 ? first : 0);
        const int y = marker.y + (strip.along == 0 ? first : 0);
        std::memcpy(slices[marker.z][y] + static_cast<std::size_t>(x) * bytes, marker.value.data(), bytes);
    }
    frame::GlobalUnlock3D(volume);
}

// The picture's rows are slices, the first one at the bottom; its columns the axis across the rays.
reference::Request EdgeOn(const Strip& strip, int first, RenderMode mode) {
    reference::Request request = {};
    request.rotation[strip.along == 1 ? 0 : 1] = 1;
    request.rotation[5] = 1;
    request.rotation[strip.along == 1 ? 7 : 6] = 1;
    request.mode = static_cast<std::int16_t>(mode);
    const auto low = static_cast<std::int16_t>(first + 1);
    const auto high = static_cast<std::int16_t>(first + strip.kept);
    request.x0 = strip.along == 1 ? low : std::int16_t{1};
    request.x1 = strip.along == 1 ? high : std::int16_t{32767};
    request.y0 = strip.along == 0 ? low : std::int16_t{1};
    request.y1 = strip.along == 0 ? high : std::int16_t{32767};
    request.z0 = 1;
    request.z1 = static_cast<std::int16_t>(strip.depth);
    request.low = 0.5f;
    request.high = 766;
    return request;
}

const float* Pixel(const reference::Projection& picture, int column, int row) {
    return &picture.pixels[(static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.width)
                            + static_cast<std::size_t>(column))
                           * 3];
}

void ExpectTheFirstMarkerAlone(const reference::Projection& picture, const Strip& strip, RenderMode mode) {
    if (mode == RenderModeSurface || mode == RenderModeBlend || mode == RenderModeContrast) return;
    const float* pixel = Pixel(picture, strip.first + 50, strip.depth - 1 - strip.depth / 2);
    EXPECT_EQ(pixel[0], 200.0f);
    EXPECT_EQ(pixel[1], strip.bytesPerVoxel == 3 ? 100.0f : 200.0f);
    EXPECT_EQ(pixel[2], strip.bytesPerVoxel == 3 ? 50.0f : 200.0f);
}

class LargeSlices : public OnEachInstructionSet {
protected:
    void SetUp() override {
        if (sizeof(void*) < 8) GTEST_SKIP() << "no 32-bit process has the memory";
        if (!AreTestsLong()) GTEST_SKIP() << "one of the long tests";
        if (GibibytesHere() < kGibibytesWanted)
            GTEST_SKIP() << GibibytesHere() << " GiB of memory are free, " << kGibibytesWanted << " wanted";
        OnEachInstructionSet::SetUp();
    }

    static void ExpectSeenAsByItself(const Strip& strip) {
        // Sides of the same parity: centres are whole in both, or half.
        const HostVolume large(
            static_cast<std::uint32_t>(strip.width), static_cast<std::uint32_t>(strip.height),
            static_cast<std::uint32_t>(strip.depth), static_cast<std::uint32_t>(strip.bytesPerVoxel));
        const HostVolume small(static_cast<std::uint32_t>(strip.along == 1 ? strip.kept : strip.width),
                               static_cast<std::uint32_t>(strip.along == 0 ? strip.kept : strip.height),
                               static_cast<std::uint32_t>(strip.depth),
                               static_cast<std::uint32_t>(strip.bytesPerVoxel));
        SetMarkers(large.Get(), strip, strip.first);
        SetMarkers(small.Get(), strip, 0);
        for (const RenderMode mode : kRenderModes) {
            // Scores of all voxels take most of the time: one side will do.
            if (mode == RenderModeContrast && strip.bytesPerVoxel == 1 && strip.along == 0) continue;
            SCOPED_TRACE(::testing::Message() << "mode " << mode);
            const reference::Projection far = RenderProduct(large.Get(), EdgeOn(strip, strip.first, mode));
            const reference::Projection near = RenderProduct(small.Get(), EdgeOn(strip, 0, mode));
            ASSERT_TRUE(far.rendered);
            ASSERT_TRUE(near.rendered);
            ASSERT_EQ(far.height, strip.depth);
            ExpectTheFirstMarkerAlone(far, strip, mode);
            // What lies beside the strip are other neighbours, and the picture's border is no contrast's.
            for (int row = 0; row < far.height; ++row) {
                EXPECT_EQ(
                    std::memcmp(Pixel(far, strip.first + 3, row), Pixel(near, 3, row), (kKept - 6) * 12), 0)
                    << "row " << row;
            }
        }
    }
};
Z3D_ON_EACH_INSTRUCTION_SET(LargeSlices);

TEST_P(LargeSlices, AreSeenEdgeOnAsASmallVolumeOfTheSameVoxels) {
    for (const Strip& strip : kStrips) {
        SCOPED_TRACE(::testing::Message()
                     << strip.width << " x " << strip.height << " x " << strip.depth << ", "
                     << strip.bytesPerVoxel << " bytes per voxel, along " << strip.along);
        ASSERT_NO_FATAL_FAILURE(ExpectSeenAsByItself(strip));
    }
}

TEST_P(LargeSlices, SeenFromTheFrontAreRefusedWithTheirSize) {
    const HostVolume volume(32000, 30000, 2, 3);
    reference::Request request = EdgeOn(kStrips[0], 0, RenderModeMaximum);
    request.rotation = {1, 0, 0, 0, 1, 0, 0, 0, 1};

    const reference::Projection picture = RenderProduct(volume.Get(), request);

    EXPECT_FALSE(picture.rendered);
    EXPECT_EQ(picture.width, 32000);
    EXPECT_EQ(picture.height, 30000);
}

} // namespace
