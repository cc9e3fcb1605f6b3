// Volumes through the DLL: slices, locks, frees.
#include "exports/ExportedVolume.h"
#include "exports/HeapUse.h"
#include "exports/Library.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>

namespace {

using namespace z3d::test;

TEST(VolumeExports, KeepTheLow16BitsOfTheThreeSizes) {
    Volume3D* volume = TheLibrary().GlobalAlloc3D(0x10004, 0x20003, 0x30002, 3);

    EXPECT_EQ(volume->width, 4);
    EXPECT_EQ(volume->height, 3);
    EXPECT_EQ(volume->depth, 2);
    EXPECT_EQ(volume->sliceRows, nullptr);
    for (int z = 0; z < 2; ++z) {
        EXPECT_EQ(volume->slices[z]->width, 4);
        EXPECT_EQ(volume->slices[z]->height, 3);
        EXPECT_EQ(volume->slices[z]->bytesPerPixel, 3u);
        EXPECT_EQ(volume->slices[z]->rows, nullptr);
    }

    TheLibrary().GlobalFree3D(volume);
}

TEST(VolumeExports, MakeNoSlicesForZeroBytesPerPixel) {
    Volume3D* volume = TheLibrary().GlobalAlloc3D(4, 3, 20, 0);

    EXPECT_EQ(std::count(volume->slices, volume->slices + 20, nullptr), 20);
    EXPECT_EQ(TheLibrary().GlobalLock3D(volume), nullptr);
    EXPECT_EQ(volume->sliceRows, nullptr);

    TheLibrary().GlobalFree3D(volume);
}

TEST(VolumeExports, SlicesCanBeAttachedLater) {
    Volume3D* volume = TheLibrary().GlobalAlloc3D(4, 3, 2, 0);
    for (int z = 0; z < 2; ++z)
        volume->slices[z] = TheLibrary().GlobalAlloc2D(4, 3, 1);

    unsigned char*** slices = TheLibrary().GlobalLock3D(volume);
    ASSERT_NE(slices, nullptr);
    EXPECT_EQ(slices[1], volume->slices[1]->rows);

    TheLibrary().GlobalFree3D(volume);
}

TEST(VolumeExports, DepthZeroGivesATableOfNoEntries) {
    Volume3D* volume = TheLibrary().GlobalAlloc3D(4, 3, 0, 1);
    ASSERT_NE(volume, nullptr);
    EXPECT_NE(volume->slices, nullptr);

    EXPECT_NE(TheLibrary().GlobalLock3D(volume), nullptr);
    EXPECT_NE(volume->sliceRows, nullptr);
    EXPECT_EQ(TheLibrary().GlobalUnlock3D(volume), 1) << "no slice lost its last lock";
    EXPECT_EQ(volume->sliceRows, nullptr);

    TheLibrary().GlobalFree3D(volume);
}

TEST(VolumeExports, LockTwiceUnlockOnce) {
    const ExportedVolume volume(4, 3, 2, 1);

    unsigned char*** slices = TheLibrary().GlobalLock3D(volume.Get());
    EXPECT_EQ(TheLibrary().GlobalLock3D(volume.Get()), slices);
    EXPECT_EQ(volume->sliceRows, slices);
    EXPECT_EQ(LocksOn(volume->slices[1]), 1u);

    EXPECT_EQ(TheLibrary().GlobalUnlock3D(volume.Get()), 0);
    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(LocksOn(volume->slices[1]), 0u);
    EXPECT_EQ(volume->slices[1]->rows, nullptr);
    EXPECT_EQ(TheLibrary().GlobalUnlock3D(volume.Get()), 1);
}

TEST(VolumeExports, ALockedSliceKeepsItsTable) {
    const ExportedVolume volume(4, 3, 2, 1);
    unsigned char** rows = TheLibrary().GlobalLock2D(volume->slices[1]);

    EXPECT_EQ(TheLibrary().GlobalLock3D(volume.Get())[1], rows);
    EXPECT_EQ(LocksOn(volume->slices[1]), 1u);
}

TEST(VolumeExports, UnlockGives1WhenTheHostHoldsLocksOnEverySlice) {
    const ExportedVolume volume(4, 3, 2, 1);
    TheLibrary().GlobalLock3D(volume.Get());
    GlobalLock(volume->slices[0]->mem);
    GlobalLock(volume->slices[1]->mem);

    EXPECT_EQ(TheLibrary().GlobalUnlock3D(volume.Get()), 1);

    GlobalUnlock(volume->slices[0]->mem);
    GlobalUnlock(volume->slices[1]->mem);
}

TEST(VolumeExports, UnlockGives0WhenOneSliceLostItsLastLock) {
    const ExportedVolume volume(4, 3, 3, 1);
    TheLibrary().GlobalLock3D(volume.Get());
    GlobalLock(volume->slices[0]->mem);
    GlobalLock(volume->slices[2]->mem);

    EXPECT_EQ(TheLibrary().GlobalUnlock3D(volume.Get()), 0);
    EXPECT_EQ(volume->slices[2]->rows, nullptr);

    GlobalUnlock(volume->slices[0]->mem);
    GlobalUnlock(volume->slices[2]->mem);
}

TEST(VolumeExports, AFailedLockUnlocksTheSlicesBefore) {
    Volume3D* volume = TheLibrary().GlobalAlloc3D(4, 3, 3, 1);
    TheLibrary().GlobalFree2D(volume->slices[2]);
    volume->slices[2] = nullptr;

    EXPECT_EQ(TheLibrary().GlobalLock3D(volume), nullptr);
    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(volume->slices[0]->rows, nullptr);
    EXPECT_EQ(LocksOn(volume->slices[0]), 0u);
    EXPECT_EQ(LocksOn(volume->slices[1]), 0u);

    TheLibrary().GlobalFree3D(volume);
}

TEST(VolumeExports, FreesUnlockFirst) {
    for (const auto free : {TheLibrary().GlobalFree3D, TheLibrary().Free3DData}) {
        Volume3D* volume = TheLibrary().GlobalAlloc3D(4, 3, 2, 1);
        TheLibrary().GlobalLock3D(volume);
        const HGLOBAL block = volume->slices[1]->mem;

        free(volume);

        EXPECT_EQ(GlobalFlags(block), static_cast<UINT>(GMEM_INVALID_HANDLE));
    }
}

TEST(VolumeExports, TakeNull) {
    EXPECT_EQ(TheLibrary().GlobalLock3D(nullptr), nullptr);
    EXPECT_EQ(TheLibrary().GlobalUnlock3D(nullptr), 1);
    TheLibrary().GlobalFree3D(nullptr);
    TheLibrary().Free3DData(nullptr);
}

} // namespace
