// Long random sequences of locks and unlocks, of volume, slices and pixels, against a model of a few lines.
#include "frame/Image2D.h"
#include "frame/Volume3D.h"
#include "platform/GlobalMemory.h"
#include "support/RandomSource.h"
#include "support/Refusals.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>

namespace {

using namespace z3d;

constexpr std::size_t kDepth = 3;
constexpr int kSteps = 400;

// What every slice and the volume should be in.
struct Model {
    std::array<bool, kDepth> sliceHasTable = {};
    std::array<int, kDepth> blockLocks = {};
    std::array<int, kDepth> hostLocks = {};
    bool volumeHasTable = false;

    void LockSlice(std::size_t z) {
        if (sliceHasTable[z]) return;
        sliceHasTable[z] = true;
        ++blockLocks[z];
    }
    bool UnlockSliceLeavesLocks(std::size_t z) {
        if (!sliceHasTable[z]) return false;
        sliceHasTable[z] = false;
        return --blockLocks[z] != 0;
    }
    void LockVolume() {
        if (volumeHasTable) return;
        volumeHasTable = true;
        for (std::size_t z = 0; z < kDepth; ++z)
            LockSlice(z);
    }
    int UnlockVolume() {
        if (!volumeHasTable) return 1;
        volumeHasTable = false;
        int result = 1;
        for (std::size_t z = 0; z < kDepth; ++z) {
            if (!UnlockSliceLeavesLocks(z)) result = 0;
        }
        return result;
    }
};

// One random operation on the product and on the model, with the results compared.
void Step(test::RandomSource& random, Volume3D* volume, Model& model) {
    const auto z = static_cast<std::size_t>(random.Below(kDepth));
    Image2D* slice = volume->slices[z];
    switch (random.Below(6)) {
    case 0:
        model.LockVolume();
        EXPECT_NE(frame::GlobalLock3D(volume), nullptr);
        break;
    case 1:
        EXPECT_EQ(frame::GlobalUnlock3D(volume), model.UnlockVolume());
        break;
    case 2:
        model.LockSlice(z);
        EXPECT_NE(frame::GlobalLock2D(slice), nullptr);
        break;
    case 3:
        EXPECT_EQ(frame::GlobalUnlock2D(slice) != 0, model.UnlockSliceLeavesLocks(z));
        break;
    case 4:
        ++model.hostLocks[z];
        ++model.blockLocks[z];
        EXPECT_NE(platform::BlockLock(slice->mem), nullptr);
        break;
    default:
        if (model.hostLocks[z] == 0) break;
        --model.hostLocks[z];
        EXPECT_EQ(platform::BlockUnlock(slice->mem) != 0, --model.blockLocks[z] != 0);
    }
}

void ExpectState(const Volume3D* volume, const Model& model) {
    int blockLocks = 0;
    for (std::size_t z = 0; z < kDepth; ++z) {
        ASSERT_EQ(volume->slices[z]->rows != nullptr, model.sliceHasTable[z]) << z;
        blockLocks += model.blockLocks[z];
    }
    ASSERT_EQ(volume->sliceRows != nullptr, model.volumeHasTable);
    ASSERT_EQ(test::Outstanding(platform::Resource::BlockLock), blockLocks);
}

TEST(LockModel, HoldsForRandomSequences) {
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
        test::RandomSource random(seed);
        Volume3D* volume = frame::GlobalAlloc3D(2, 2, kDepth, 1);
        Model model;
        for (int step = 0; step < kSteps; ++step) {
            SCOPED_TRACE(::testing::Message() << "seed " << seed << ", step " << step);
            Step(random, volume, model);
            ExpectState(volume, model);
            if (HasFailure()) return;
        }
        for (std::size_t z = 0; z < kDepth; ++z) {
            while (model.hostLocks[z]-- > 0)
                platform::BlockUnlock(volume->slices[z]->mem);
        }
        frame::GlobalFree3D(volume);
        ASSERT_EQ(test::OutstandingInTotal(), 0) << "seed " << seed;
    }
}

} // namespace
