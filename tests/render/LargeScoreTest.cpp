// Local contrast where a few scores are too large for a byte, up to the largest there is: four differences of 255.
#include "render/KernelDifferential.h"

namespace {

using namespace z3d;
using namespace z3d::test;

// Nearly flat, with voxels that stick out, one in `every`.
reference::Volume SpikyVolume(RandomSource& random, const VolumeSize& size, int every) {
    reference::Volume volume = EmptyVolume(size);
    const bool isBlack = random.Chance(2);
    for (std::uint8_t& voxel : volume.voxels) {
        const int ground = isBlack ? 0 : random.Between(100, 110);
        voxel = static_cast<std::uint8_t>(random.Chance(every) ? random.Between(160, 255) : ground);
    }
    return volume;
}

void CompareSpikes(std::uint32_t seed, int side, int requests) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    RandomSource random(seed);
    constexpr int kEvery[] = {20, 70, 300, 3000};
    const VolumeSize size = RandomSize(random, side, 1);
    const ComparedVolume compared(SpikyVolume(random, size, kEvery[seed % 4]));
    for (int index = 0; index < requests; ++index) {
        const reference::Request request = RandomRequest(random, compared.Plain(), RenderModeContrast);
        ASSERT_TRUE(compared.IsRenderedAlike(request)) << "request " << index;
    }
}

TEST(LargeScores, AreExactInSmallVolumes) {
    for (std::uint32_t seed = 1; seed <= 60; ++seed)
        ASSERT_NO_FATAL_FAILURE(CompareSpikes(seed, 20, 8));
}

TEST(LargeScores, AreExactInLargerVolumes) {
    for (std::uint32_t seed = 100; seed < 116; ++seed)
        ASSERT_NO_FATAL_FAILURE(CompareSpikes(seed, 70, 3));
}

// The whole window, so that scores reach 1020.
TEST(LargeScores, AreExactFromEverySide) {
    RandomSource random(7);
    const ComparedVolume compared(SpikyVolume(random, {40, 50, 30, 1}, 300));
    for (int kind = 0; kind < kRotationKinds; ++kind) {
        const Rotation rotation = RandomRotation(random, static_cast<RotationKind>(kind));
        reference::Request request = PlainRequest(compared.Plain(), RenderModeContrast, rotation);
        request.low = -1;
        request.high = 256;
        ASSERT_TRUE(compared.IsRenderedAlike(request)) << "kind " << kind;
    }
}

} // namespace
