// Images through the DLL: sizes, locks, frees.
#include "exports/HeapUse.h"
#include "exports/Library.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

using namespace z3d::test;

TEST(ImageExports, KeepTheLow16BitsOfWidthAndHeight) {
    Image2D* image = TheLibrary().GlobalAlloc2D(0x10003, 0xFFFF0002, 4);

    EXPECT_EQ(image->width, 3);
    EXPECT_EQ(image->height, 2);
    EXPECT_EQ(image->bytesPerPixel, 4u);
    EXPECT_EQ(GlobalSize(image->mem), 3u * 2 * 4);

    TheLibrary().GlobalFree2D(image);
}

TEST(ImageExports, MakeZeroedMovableBlocks) {
    Image2D* image = TheLibrary().GlobalAlloc2D(100, 100, 3);
    unsigned char** rows = TheLibrary().GlobalLock2D(image);

    EXPECT_TRUE(std::all_of(rows[0], rows[0] + 30000, [](unsigned char byte) { return byte == 0; }));
    EXPECT_EQ(GlobalHandle(rows[0]), image->mem);
    EXPECT_NE(static_cast<void*>(rows[0]), image->mem) << "a fixed block is its own handle";

    TheLibrary().GlobalFree2D(image);
}

TEST(ImageExports, LockTwiceUnlockOnce) {
    Image2D* image = TheLibrary().GlobalAlloc2D(4, 3, 1);

    unsigned char** rows = TheLibrary().GlobalLock2D(image);
    EXPECT_EQ(TheLibrary().GlobalLock2D(image), rows);
    EXPECT_EQ(LocksOn(image), 1u);
    EXPECT_EQ(image->rows, rows);

    EXPECT_EQ(TheLibrary().GlobalUnlock2D(image), 0);
    EXPECT_EQ(image->rows, nullptr);
    EXPECT_EQ(LocksOn(image), 0u);
    EXPECT_EQ(TheLibrary().GlobalUnlock2D(image), 0);
    TheLibrary().GlobalFree2D(image);
}

TEST(ImageExports, RowsFollowEachOtherWithoutPadding) {
    Image2D* image = TheLibrary().GlobalAlloc2D(5, 4, 3);
    unsigned char** rows = TheLibrary().GlobalLock2D(image);

    for (int y = 1; y < 4; ++y)
        EXPECT_EQ(rows[y] - rows[0], y * 15);

    TheLibrary().GlobalFree2D(image);
}

TEST(ImageExports, PixelsSurviveAnUnlock) {
    Image2D* image = TheLibrary().GlobalAlloc2D(2, 2, 1);
    TheLibrary().GlobalLock2D(image)[1][1] = 77;
    TheLibrary().GlobalUnlock2D(image);

    EXPECT_EQ(TheLibrary().GlobalLock2D(image)[1][1], 77);

    TheLibrary().GlobalFree2D(image);
}

TEST(ImageExports, UnlockPassesOnThatTheHostHoldsALock) {
    Image2D* image = TheLibrary().GlobalAlloc2D(4, 3, 1);
    GlobalLock(image->mem);
    TheLibrary().GlobalLock2D(image);

    EXPECT_NE(TheLibrary().GlobalUnlock2D(image), 0);
    EXPECT_EQ(image->rows, nullptr);
    EXPECT_EQ(LocksOn(image), 1u);

    GlobalUnlock(image->mem);
    TheLibrary().GlobalFree2D(image);
}

TEST(ImageExports, AnImageOfNoBytesCannotBeLocked) {
    for (const auto [width, height, bytes] : {std::array{0u, 3u, 1u}, {3u, 0u, 1u}, {3u, 3u, 0u}}) {
        Image2D* image = TheLibrary().GlobalAlloc2D(width, height, bytes);
        ASSERT_NE(image, nullptr);

        EXPECT_EQ(TheLibrary().GlobalLock2D(image), nullptr);

        TheLibrary().GlobalFree2D(image);
    }
}

TEST(ImageExports, AFailedLockLeavesATableOfNullRows) {
    Image2D* image = TheLibrary().GlobalAlloc2D(0, 3, 1);
    EXPECT_EQ(TheLibrary().GlobalLock2D(image), nullptr);

    unsigned char** rows = TheLibrary().GlobalLock2D(image);
    ASSERT_NE(rows, nullptr);
    EXPECT_EQ(std::count(rows, rows + 3, nullptr), 3);

    EXPECT_EQ(TheLibrary().GlobalUnlock2D(image), 0);
    EXPECT_EQ(image->rows, nullptr);
    TheLibrary().GlobalFree2D(image);
}

TEST(ImageExports, FreeUnlocksFirst) {
    Image2D* image = TheLibrary().GlobalAlloc2D(4, 3, 1);
    TheLibrary().GlobalLock2D(image);
    const HGLOBAL block = image->mem;

    TheLibrary().GlobalFree2D(image);

    EXPECT_EQ(GlobalFlags(block), static_cast<UINT>(GMEM_INVALID_HANDLE));
}

TEST(ImageExports, TakeNull) {
    EXPECT_EQ(TheLibrary().GlobalLock2D(nullptr), nullptr);
    EXPECT_EQ(TheLibrary().GlobalUnlock2D(nullptr), 0);
    TheLibrary().GlobalFree2D(nullptr);
}

// 32768 * 32768 * 4 bytes are 2^32: only the last row counts, and rows lie where they would without a wrap. An address of
// 32 bits wraps too.
TEST(ImageExports, AByteCountThatWrapsGivesTheWrappedBlock) {
    Image2D* image = TheLibrary().GlobalAlloc2D(32768, 32769, 4);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(GlobalSize(image->mem), 32768u * 4);

    unsigned char** rows = TheLibrary().GlobalLock2D(image);
    ASSERT_NE(rows, nullptr);
    const auto distance = static_cast<std::uintptr_t>(std::uint64_t{1} << 32);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(rows[32768]),
              reinterpret_cast<std::uintptr_t>(rows[0]) + distance);

    TheLibrary().GlobalFree2D(image);
}

} // namespace
