#include "platform/GlobalMemory.h"

#include "support/Refusals.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d::platform;
using z3d::test::Outstanding;

TEST(GlobalMemory, CountsLocks) {
    const BlockHandle block = BlockAllocate(16);
    void* address = BlockLock(block);

    EXPECT_EQ(BlockLock(block), address);
    EXPECT_NE(BlockUnlock(block), 0);
    EXPECT_EQ(BlockUnlock(block), 0);

    BlockFree(block);
}

TEST(GlobalMemory, AnswersZeroToAnUnlockWithoutALock) {
    const std::int64_t locks = Outstanding(Resource::BlockLock);
    const BlockHandle block = BlockAllocate(16);

    EXPECT_EQ(BlockUnlock(block), 0);
    EXPECT_EQ(Outstanding(Resource::BlockLock), locks);

    BlockFree(block);
}

TEST(GlobalMemory, CannotLockABlockOfNoBytes) {
    const BlockHandle block = BlockAllocate(0);

    EXPECT_NE(block, nullptr);
    EXPECT_EQ(BlockLock(block), nullptr);

    BlockFree(block);
}

TEST(GlobalMemory, FindsTheBlockOfALockedAddress) {
    const BlockHandle other = BlockAllocate(16);
    const BlockHandle block = BlockAllocate(16);
    void* address = BlockLock(block);

    EXPECT_EQ(BlockFromAddress(address), block);

    BlockUnlock(block);
    BlockFree(block);
    BlockFree(other);
}

} // namespace
