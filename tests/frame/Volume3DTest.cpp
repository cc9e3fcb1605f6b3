#include "frame/Volume3D.h"

#include "frame/Image2D.h"
#include "platform/GlobalMemory.h"
#include "support/Refusals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

using namespace z3d;
using platform::Resource;

// Volumes freed at the end of their test, which must leave nothing behind.
class Volume3DTest : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(test::OutstandingInTotal(), outstandingBefore_); }

private:
    std::int64_t outstandingBefore_ = test::OutstandingInTotal();
};

TEST_F(Volume3DTest, KeepsTheLow16BitsOfTheThreeSizes) {
    Volume3D* volume = frame::GlobalAlloc3D(0x10004, 0xABCD0003, 0x80000002, 3);

    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->width, 4);
    EXPECT_EQ(volume->height, 3);
    EXPECT_EQ(volume->depth, 2);
    EXPECT_EQ(volume->sliceRows, nullptr);

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, SlicesAreUnlockedImagesOfItsSize) {
    Volume3D* volume = frame::GlobalAlloc3D(0x10004, 3, 2, 3);

    for (int z = 0; z < 2; ++z) {
        EXPECT_EQ(volume->slices[z]->width, 4);
        EXPECT_EQ(volume->slices[z]->height, 3);
        EXPECT_EQ(volume->slices[z]->bytesPerPixel, 3u);
        EXPECT_EQ(volume->slices[z]->rows, nullptr);
    }
    EXPECT_NE(volume->slices[0], volume->slices[1]);

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, ZeroBytesPerPixelTakesNoPixelMemory) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 100, 0);

    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->depth, 100);
    EXPECT_EQ(std::count(volume->slices, volume->slices + 100, nullptr), 100);
    EXPECT_EQ(test::Outstanding(Resource::Block), 0);

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, DepthZeroHasTablesOfNoEntries) {
    for (const std::uint32_t depth : {0u, 0x10000u}) {
        Volume3D* volume = frame::GlobalAlloc3D(4, 3, depth, 1);
        ASSERT_NE(volume, nullptr);
        EXPECT_EQ(volume->depth, 0);
        EXPECT_NE(volume->slices, nullptr);

        EXPECT_NE(frame::GlobalLock3D(volume), nullptr);
        EXPECT_NE(volume->sliceRows, nullptr);
        EXPECT_EQ(frame::GlobalUnlock3D(volume), 1);
        EXPECT_EQ(volume->sliceRows, nullptr);

        frame::GlobalFree3D(volume);
    }
}

TEST_F(Volume3DTest, LockGivesTheRowTablesOfItsSlices) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 2, 3);

    std::uint8_t*** slices = frame::GlobalLock3D(volume);
    EXPECT_EQ(slices, volume->sliceRows);
    for (int z = 0; z < 2; ++z)
        EXPECT_EQ(slices[z], volume->slices[z]->rows);
    slices[1][2][3 * 3 + 2] = 7; // the last byte of the last voxel
    EXPECT_EQ(slices[1][0][4 * 3 * 3 - 1], 7);

    EXPECT_EQ(frame::GlobalUnlock3D(volume), 0);
    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, LockingTwiceLocksOnce) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 2, 1);

    std::uint8_t*** slices = frame::GlobalLock3D(volume);
    EXPECT_EQ(frame::GlobalLock3D(volume), slices);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 2);

    EXPECT_EQ(frame::GlobalUnlock3D(volume), 0);
    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(volume->slices[0]->rows, nullptr);
    EXPECT_EQ(volume->slices[1]->rows, nullptr);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 0);
    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, UnlockingAnUnlockedVolumeGives1AndLeavesItsSlicesAlone) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 2, 1);
    std::uint8_t** rows = frame::GlobalLock2D(volume->slices[1]);

    EXPECT_EQ(frame::GlobalUnlock3D(volume), 1);
    EXPECT_EQ(volume->slices[1]->rows, rows);

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, ASliceLockedBeforeKeepsItsTableAndIsUnlockedWithTheVolume) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 2, 1);
    std::uint8_t** rows = frame::GlobalLock2D(volume->slices[1]);

    EXPECT_EQ(frame::GlobalLock3D(volume)[1], rows);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 2);
    EXPECT_EQ(frame::GlobalUnlock3D(volume), 0);
    EXPECT_EQ(volume->slices[1]->rows, nullptr);

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, ASliceUnlockedInBetweenCountsAsUnlocked) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 1, 1);
    frame::GlobalLock3D(volume);
    frame::GlobalUnlock2D(volume->slices[0]);

    EXPECT_EQ(frame::GlobalUnlock3D(volume), 0);

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, UnlockGives1OnlyWhenEverySliceKeepsALock) {
    for (const int hostLocks : {1, 2, 3}) {
        Volume3D* volume = frame::GlobalAlloc3D(4, 3, 3, 1);
        frame::GlobalLock3D(volume);
        for (int z = 0; z < hostLocks; ++z)
            platform::BlockLock(volume->slices[z]->mem);

        EXPECT_EQ(frame::GlobalUnlock3D(volume), hostLocks == 3 ? 1 : 0);
        for (int z = 0; z < 3; ++z)
            EXPECT_EQ(volume->slices[z]->rows, nullptr);

        for (int z = 0; z < hostLocks; ++z)
            platform::BlockUnlock(volume->slices[z]->mem);
        frame::GlobalFree3D(volume);
    }
}

TEST_F(Volume3DTest, AMissingSliceFailsTheLockAndUnlocksTheSlicesBefore) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 4, 1);
    frame::GlobalFree2D(volume->slices[2]);
    volume->slices[2] = nullptr;
    std::uint8_t** lastRows = frame::GlobalLock2D(volume->slices[3]);

    EXPECT_EQ(frame::GlobalLock3D(volume), nullptr);
    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(volume->slices[0]->rows, nullptr);
    EXPECT_EQ(volume->slices[1]->rows, nullptr);
    EXPECT_EQ(volume->slices[3]->rows, lastRows) << "slices behind it were not reached";

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, AttachedSlicesBelongToIt) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 3, 0);
    volume->slices[0] = frame::GlobalAlloc2D(4, 3, 4);
    volume->slices[2] = frame::GlobalAlloc2D(4, 3, 4);
    EXPECT_EQ(frame::GlobalLock3D(volume), nullptr);
    volume->slices[1] = frame::GlobalAlloc2D(4, 3, 4);

    EXPECT_NE(frame::GlobalLock3D(volume), nullptr);

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, FreeSkipsMissingSlices) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 3, 1);
    frame::GlobalFree2D(volume->slices[1]);
    volume->slices[1] = nullptr;

    frame::GlobalFree3D(volume);
}

TEST_F(Volume3DTest, FreeTakesALockedVolumeAndLockedSlices) {
    Volume3D* locked = frame::GlobalAlloc3D(4, 3, 2, 1);
    Volume3D* lockedInPart = frame::GlobalAlloc3D(4, 3, 2, 1);
    frame::GlobalLock3D(locked);
    frame::GlobalLock2D(lockedInPart->slices[1]);

    frame::GlobalFree3D(locked);
    frame::GlobalFree3D(lockedInPart);
}

TEST_F(Volume3DTest, NullIsTaken) {
    EXPECT_EQ(frame::GlobalLock3D(nullptr), nullptr);
    EXPECT_EQ(frame::GlobalUnlock3D(nullptr), 1);
    frame::GlobalFree3D(nullptr);
}

TEST_F(Volume3DTest, SlicesOfNoBytesCannotBeLocked) {
    Volume3D* volume = frame::GlobalAlloc3D(0, 3, 2, 1);
    ASSERT_NE(volume, nullptr);
    EXPECT_NE(volume->slices[1], nullptr);

    EXPECT_EQ(frame::GlobalLock3D(volume), nullptr);

    frame::GlobalFree3D(volume);
}

} // namespace
