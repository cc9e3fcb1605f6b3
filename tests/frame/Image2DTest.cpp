#include "frame/Image2D.h"

#include "platform/GlobalMemory.h"
#include "support/Refusals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace {

using namespace z3d;
using platform::Resource;

// An image freed at the end of its test, which must leave nothing behind.
class Image2DTest : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(test::OutstandingInTotal(), outstandingBefore_); }

private:
    std::int64_t outstandingBefore_ = test::OutstandingInTotal();
};

TEST_F(Image2DTest, KeepsTheLow16BitsOfWidthAndHeight) {
    Image2D* image = frame::GlobalAlloc2D(65536 + 3, 0x20002, 4);

    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->width, 3);
    EXPECT_EQ(image->height, 2);
    EXPECT_EQ(image->bytesPerPixel, 4u);
    EXPECT_EQ(image->rows, nullptr);

    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, SizeComesFromThe16BitDimensions) {
    // 0x10001 by 0x10001 is 1 by 1, not 2^32 pixels.
    Image2D* image = frame::GlobalAlloc2D(0x10001, 0x10001, 1);

    ASSERT_NE(image, nullptr);
    EXPECT_NE(frame::GlobalLock2D(image), nullptr);

    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, KeepsAnyBytesPerPixel) {
    for (const std::uint32_t bytes : {1u, 2u, 3u, 4u, 7u, 65536u}) {
        Image2D* image = frame::GlobalAlloc2D(2, 3, bytes);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->bytesPerPixel, bytes);

        std::uint8_t** rows = frame::GlobalLock2D(image);
        EXPECT_EQ(rows[2] - rows[0], static_cast<std::ptrdiff_t>(4 * bytes));
        rows[2][2 * bytes - 1] = 1; // the last byte of the block

        frame::GlobalFree2D(image);
    }
}

TEST_F(Image2DTest, PixelsStartAtZero) {
    Image2D* image = frame::GlobalAlloc2D(37, 11, 3);
    std::uint8_t** rows = frame::GlobalLock2D(image);

    EXPECT_EQ(std::count(rows[0], rows[0] + 37 * 11 * 3, 0), 37 * 11 * 3);

    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, RowsFollowEachOtherWithoutPadding) {
    Image2D* image = frame::GlobalAlloc2D(5, 4, 3);
    std::uint8_t** rows = frame::GlobalLock2D(image);

    EXPECT_EQ(rows[0], platform::BlockLock(image->mem));
    for (int y = 0; y < 4; ++y)
        EXPECT_EQ(rows[y], rows[0] + y * 15);

    platform::BlockUnlock(image->mem);
    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, TheLargestHeightGetsAllItsRows) {
    Image2D* image = frame::GlobalAlloc2D(1, 65535, 1);
    std::uint8_t** rows = frame::GlobalLock2D(image);

    EXPECT_EQ(rows[65534] - rows[0], 65534);
    rows[65534][0] = 1;

    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, PixelsOutliveTheLock) {
    Image2D* image = frame::GlobalAlloc2D(2, 2, 1);
    frame::GlobalLock2D(image)[1][0] = 42;
    frame::GlobalUnlock2D(image);

    EXPECT_EQ(frame::GlobalLock2D(image)[1][0], 42);

    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, LockingTwiceLocksOnce) {
    Image2D* image = frame::GlobalAlloc2D(4, 3, 1);

    std::uint8_t** rows = frame::GlobalLock2D(image);
    EXPECT_EQ(image->rows, rows);
    EXPECT_EQ(frame::GlobalLock2D(image), rows);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 1);

    EXPECT_EQ(frame::GlobalUnlock2D(image), 0);
    EXPECT_EQ(image->rows, nullptr);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 0);
    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, UnlockingAnUnlockedImageGives0AndTouchesNothing) {
    Image2D* image = frame::GlobalAlloc2D(4, 3, 1);
    platform::BlockLock(image->mem);

    EXPECT_EQ(frame::GlobalUnlock2D(image), 0);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 1) << "the lock is the host's";

    EXPECT_EQ(platform::BlockUnlock(image->mem), 0);
    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, UnlockGivesThePlatformsAnswer) {
    Image2D* image = frame::GlobalAlloc2D(4, 3, 1);
    frame::GlobalLock2D(image);
    platform::BlockLock(image->mem);

    EXPECT_NE(frame::GlobalUnlock2D(image), 0) << "the host's lock remains";
    EXPECT_EQ(image->rows, nullptr);

    EXPECT_EQ(platform::BlockUnlock(image->mem), 0);
    frame::GlobalFree2D(image);
}

TEST_F(Image2DTest, FreeTakesALockedImage) {
    Image2D* image = frame::GlobalAlloc2D(4, 3, 1);
    frame::GlobalLock2D(image);

    frame::GlobalFree2D(image);

    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 0);
}

TEST_F(Image2DTest, NullIsTaken) {
    EXPECT_EQ(frame::GlobalLock2D(nullptr), nullptr);
    EXPECT_EQ(frame::GlobalUnlock2D(nullptr), 0);
    frame::GlobalFree2D(nullptr);
}

TEST_F(Image2DTest, NoBytesCanBeAllocatedButNotLocked) {
    for (const auto [width, height, bytes] :
         {std::array{0u, 3u, 1u}, {3u, 0u, 1u}, {3u, 3u, 0u}, {0x10000u, 3u, 1u}, {0u, 0u, 0u}}) {
        Image2D* image = frame::GlobalAlloc2D(width, height, bytes);
        ASSERT_NE(image, nullptr);

        EXPECT_EQ(frame::GlobalLock2D(image), nullptr);
        EXPECT_NE(image->rows, nullptr) << "the table stays, also one of no rows";

        frame::GlobalFree2D(image);
    }
}

// The largest of all: 65535 * 65535 * (2^32 - 1) is -0xFFFE0001, that is 131071, modulo 2^32. Its rows lie
// anywhere; computing their addresses must be harmless.
TEST_F(Image2DTest, AByteCountThatWrapsIsAllocatedWrapped) {
    Image2D* image = frame::GlobalAlloc2D(65535, 65535, 0xFFFFFFFF);
    ASSERT_NE(image, nullptr);

    std::uint8_t** rows = frame::GlobalLock2D(image);
    ASSERT_NE(rows, nullptr);
    EXPECT_EQ(rows[0][131070], 0);

    frame::GlobalFree2D(image);
}

} // namespace
