// The product's renderer against the plain form, bit for bit, over random volumes and requests.
#include "render/KernelDifferential.h"
#include "support/RenderModes.h"

#include <algorithm>
#include <tuple>

namespace {

using namespace z3d;
using namespace z3d::test;

constexpr int kVolumesPerCase = 60;
constexpr int kRequestsPerVolume = 8;

// Mode and bytes per voxel.
class Differential : public ::testing::TestWithParam<std::tuple<RenderMode, int>> {
protected:
    static RenderMode Mode() { return std::get<0>(GetParam()); }
    static int BytesPerVoxel() { return std::get<1>(GetParam()); }

    static void Compare(reference::Volume volume, RandomSource& random, int requests) {
        const ComparedVolume compared(std::move(volume));
        for (int index = 0; index < requests; ++index) {
            const reference::Request request = RandomRequest(random, compared.Plain(), Mode());
            ASSERT_TRUE(compared.IsRenderedAlike(request)) << "request " << index;
        }
    }
};

TEST_P(Differential, SmallVolumes) {
    for (std::uint32_t seed = 1; seed <= kVolumesPerCase; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        RandomSource random(seed);
        const VolumeSize size = RandomSize(random, 20, BytesPerVoxel());
        ASSERT_NO_FATAL_FAILURE(Compare(RandomVolume(random, size), random, kRequestsPerVolume));
    }
}

TEST_P(Differential, ThinVolumes) {
    for (std::uint32_t seed = 1; seed <= kVolumesPerCase; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        RandomSource random(1000 + seed);
        VolumeSize size = RandomSize(random, 12, BytesPerVoxel());
        // Each side of 1, 2 and 3 voxels in turn, alone and together with a second one.
        const int side = 1 + static_cast<int>(seed % 3);
        if (seed % 2 == 0) size.depth = side;
        if (seed % 5 < 2) size.width = side;
        if (seed % 7 < 3) size.height = side;
        ASSERT_NO_FATAL_FAILURE(Compare(RandomVolume(random, size), random, kRequestsPerVolume));
    }
}

TEST_P(Differential, VolumesLongOnOneAxis) {
    for (std::uint32_t seed = 1; seed <= 9; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        RandomSource random(2000 + seed);
        VolumeSize size = RandomSize(random, 4, BytesPerVoxel());
        int* const sides[] = {&size.width, &size.height, &size.depth};
        *sides[seed % 3] = 300;
        ASSERT_NO_FATAL_FAILURE(Compare(RandomVolume(random, size), random, 2));
    }
}

// Long enough for many stretches per ray, empty enough for most of them to be passed over.
TEST_P(Differential, SparseVolumesOfManyBlocks) {
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        RandomSource random(3000 + seed);
        VolumeSize size = {random.Between(1, 75), random.Between(1, 75), random.Between(1, 75),
                           BytesPerVoxel()};
        reference::Volume volume = EmptyVolume(size);
        const int brightVoxels = random.Between(1, 40);
        for (int voxel = 0; voxel < brightVoxels; ++voxel) {
            // Half of them on a face, an edge or a corner of a block or of the volume.
            const auto place = [&](int side) {
                const int index = random.Below(side);
                return random.Chance(2) ? index : std::min(side - 1, (index + 1) / 16 * 16);
            };
            VoxelByte(volume, place(size.width), place(size.height), place(size.depth),
                      random.Below(BytesPerVoxel())) = static_cast<std::uint8_t>(random.Between(1, 255));
        }
        ASSERT_NO_FATAL_FAILURE(Compare(std::move(volume), random, 4));
    }
}

// Hosts may pass matrices whose row 2 is longer than 1: samples are then more than a voxel apart. On an axis of
// one voxel the length does not even show in the size.
TEST_P(Differential, StepsLongerThanAVoxel) {
    for (const float length : {1.02f, 1.04f, 2.0f, 18.0f, 40.0f, 1000.0f, 1e9f, 1e30f}) {
        for (int axis = 0; axis < 3; ++axis) {
            SCOPED_TRACE(::testing::Message() << "length " << length << " along axis " << axis);
            RandomSource random(4000);
            VolumeSize size = {3, 3, 3, BytesPerVoxel()};
            int* const sides[] = {&size.width, &size.height, &size.depth};
            if (length > 1000) *sides[axis] = 1;
            const ComparedVolume compared(RandomVolume(random, size));
            reference::Request request = PlainRequest(compared.Plain(), Mode());
            request.rotation[static_cast<std::size_t>(6 + axis)] = length;
            ASSERT_TRUE(compared.IsRenderedAlike(request));
        }
    }
}

// Turns about x take whole rows of voxels: several blocks of columns and strips of rows, and the last ones short.
TEST_P(Differential, TurnsAboutXAtEveryWidth) {
    constexpr Rotation kTurns[] = {
        kIdentity, {1, 0, 0, 0, 0, -1, 0, 1, 0}, {1, 0, 0, 0, 0.8f, 0.6f, 0, -0.6f, 0.8f}};
    for (const int width : {1, 2, 15, 16, 17, 33, 64, 127, 129, 256, 257, 300, 530}) {
        SCOPED_TRACE(::testing::Message() << "width " << width);
        RandomSource random(static_cast<std::uint32_t>(5000 + width));
        const int height = random.Between(1, 40);
        const int depth = random.Between(1, 20);
        const ComparedVolume compared(RandomVolume(random, {width, height, depth, BytesPerVoxel()}));
        for (const Rotation& turn : kTurns) {
            reference::Request request = RandomRequest(random, compared.Plain(), Mode());
            request.rotation = turn;
            ASSERT_TRUE(compared.IsRenderedAlike(request));
        }
    }
}

// The brightest rays there are, longer than what sums of 16 bits can hold.
TEST_P(Differential, WhiteVolumesOfManyStretches) {
    const ComparedVolume compared(ConstantVolume({3, 2, 700, BytesPerVoxel()}, 255));
    reference::Request request = PlainRequest(compared.Plain(), Mode());
    ASSERT_TRUE(compared.IsRenderedAlike(request)) << "by rows";
    request.rotation[1] = 1e-6f; // not a turn about x
    ASSERT_TRUE(compared.IsRenderedAlike(request)) << "by packets";
}

INSTANTIATE_TEST_SUITE_P(AllModes, Differential,
                         ::testing::Combine(::testing::ValuesIn(kRenderModes),
                                            ::testing::Values(1, 2, 3, 4)));

} // namespace
