#include "frame/LockedImage.h"

#include "frame/Owned.h"
#include "platform/GlobalMemory.h"
#include "support/Refusals.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace z3d;
using namespace z3d::test;
using frame::LockedImage;
using frame::OwnedImage;

TEST(LockedImage, GivesTheWholeBlockForItsScope) {
    const OwnedImage image(frame::GlobalAlloc2D(3, 2, 4));
    {
        const LockedImage locked(image.get());
        ASSERT_TRUE(locked);
        EXPECT_EQ(locked.Bytes(), platform::BlockLock(image->mem));
        platform::BlockUnlock(image->mem);
        EXPECT_EQ(locked.PixelCount(), 6u);
        EXPECT_EQ(locked.ByteCount(), 24u);
        EXPECT_EQ(locked.Floats()[5], 0.0f);
    }
    EXPECT_EQ(Outstanding(platform::Resource::BlockLock), 0);
}

TEST(LockedImage, LeavesOtherLocksAlone) {
    const OwnedImage image(frame::GlobalAlloc2D(3, 2, 1));
    std::uint8_t** rows = frame::GlobalLock2D(image.get());
    ASSERT_NE(rows, nullptr);
    {
        const LockedImage first(image.get());
        EXPECT_TRUE(LockedImage(image.get()));
        EXPECT_EQ(first.Bytes(), rows[0]);
    }
    EXPECT_EQ(image->rows, rows);
    EXPECT_EQ(Outstanding(platform::Resource::BlockLock), 1);
}

TEST(LockedImage, NeedsNoTableOfRows) {
    const OwnedImage image(frame::GlobalAlloc2D(3, 2, 1));
    const std::int64_t heap = Outstanding(platform::Resource::Heap);

    const LockedImage locked(image.get());

    EXPECT_EQ(Outstanding(platform::Resource::Heap), heap);
    EXPECT_EQ(image->rows, nullptr);
}

TEST(LockedImage, IsEmptyWithoutPixels) {
    for (const auto& size : {std::array{0u, 4u, 1u}, std::array{4u, 0u, 1u}, std::array{4u, 4u, 0u}}) {
        const OwnedImage image(frame::GlobalAlloc2D(size[0], size[1], size[2]));
        EXPECT_FALSE(LockedImage(image.get()));
    }
    EXPECT_FALSE(LockedImage(nullptr));
}

// 32768 * 131073 is 32768 more than 2^32: the block has 32768 bytes.
TEST(LockedImage, IsEmptyWhenTheByteCountWrapped) {
    const OwnedImage image(frame::GlobalAlloc2D(32768, 1, 131073));
    ASSERT_NE(image, nullptr);

    EXPECT_FALSE(LockedImage(image.get()));
}

TEST(LockedImage, IsEmptyAfterAFailedLockAndLeavesTheImageUnlocked) {
    ForEveryRefusal([](bool refused) {
        const OwnedImage image(frame::GlobalAlloc2D(3, 2, 1));
        if (!image) return;
        EXPECT_EQ(static_cast<bool>(LockedImage(image.get())), !refused);
        EXPECT_EQ(image->rows, nullptr);
    });
}

TEST(Volume3D, LosesASliceOnceItIsConsumed) {
    const frame::OwnedVolume volume(frame::GlobalAlloc3D(4, 4, 2, 1));
    const std::int64_t blocks = Outstanding(platform::Resource::Block);

    frame::FreeSlice(volume.get(), 0);
    frame::FreeSlice(volume.get(), 0);

    EXPECT_EQ(volume->slices[0], nullptr);
    EXPECT_NE(volume->slices[1], nullptr);
    EXPECT_EQ(Outstanding(platform::Resource::Block), blocks - 1);
}

} // namespace
