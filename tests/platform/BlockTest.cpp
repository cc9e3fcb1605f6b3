// Blocks of global memory: the same on both sides of the door.
#include "platform/GlobalMemory.h"

#include "support/Refusals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

namespace {

using namespace z3d::platform;
namespace test = z3d::test;

TEST(Block, StartsAsZeroes) {
    for (const std::uint32_t bytes : {1u, 7u, 4096u, 1000003u}) {
        const BlockHandle block = BlockAllocate(bytes);
        const auto* pixels = static_cast<const unsigned char*>(BlockLock(block));

        ASSERT_NE(pixels, nullptr);
        EXPECT_EQ(std::count(pixels, pixels + bytes, 0), static_cast<std::ptrdiff_t>(bytes));

        BlockUnlock(block);
        BlockFree(block);
    }
}

TEST(Block, KeepsItsBytesBetweenLocks) {
    const BlockHandle block = BlockAllocate(100);
    static_cast<unsigned char*>(BlockLock(block))[99] = 5;
    BlockUnlock(block);

    EXPECT_EQ(static_cast<unsigned char*>(BlockLock(block))[99], 5);

    BlockUnlock(block);
    BlockFree(block);
}

TEST(Block, HasOneAddressUntilTheLastUnlock) {
    const BlockHandle block = BlockAllocate(100);
    void* address = BlockLock(block);

    for (int lock = 0; lock < 100; ++lock)
        EXPECT_EQ(BlockLock(block), address);
    for (int unlock = 0; unlock < 100; ++unlock)
        EXPECT_NE(BlockUnlock(block), 0);
    EXPECT_EQ(BlockFromAddress(address), block);
    EXPECT_EQ(BlockUnlock(block), 0);

    BlockFree(block);
}

TEST(Block, UnlockWithoutALockGives0AndCountsNothing) {
    const BlockHandle block = BlockAllocate(100);

    EXPECT_EQ(BlockUnlock(block), 0);
    EXPECT_EQ(BlockUnlock(block), 0);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 0);
    BlockLock(block);
    EXPECT_EQ(BlockUnlock(block), 0) << "the count had stayed at 0";

    BlockFree(block);
}

TEST(Block, OfNoBytesIsThereButCannotBeLocked) {
    const BlockHandle block = BlockAllocate(0);

    ASSERT_NE(block, nullptr);
    EXPECT_EQ(BlockLock(block), nullptr);
    EXPECT_EQ(BlockUnlock(block), 0);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 0);

    BlockFree(block);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Block, IsFoundByItsAddressAmongOthers) {
    std::vector<BlockHandle> blocks;
    std::set<void*> addresses;
    for (int index = 0; index < 20; ++index)
        blocks.push_back(BlockAllocate(64));

    for (const BlockHandle block : blocks) {
        void* address = BlockLock(block);
        EXPECT_EQ(BlockFromAddress(address), block);
        addresses.insert(address);
    }
    EXPECT_EQ(addresses.size(), blocks.size());

    for (const BlockHandle block : blocks) {
        BlockUnlock(block);
        BlockFree(block);
    }
}

TEST(Block, IsNotFoundByAForeignAddress) {
    int local = 0;

    EXPECT_EQ(BlockFromAddress(&local), nullptr);
    EXPECT_EQ(BlockFromAddress(nullptr), nullptr);
}

// Tests are to notice whoever relies on what happens to be there.
TEST(Block, UnsetIsNotZeroInTests) {
    const BlockHandle block = BlockAllocateUnset(100);
    ASSERT_NE(block, nullptr);

    const auto* bytes = static_cast<const unsigned char*>(BlockLock(block));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::count(bytes, bytes + 100, 0), 0);

    EXPECT_EQ(BlockUnlock(block), 0);
    BlockFree(block);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Block, UnsetOfNoBytesIsThereButCannotBeLocked) {
    const BlockHandle block = BlockAllocateUnset(0);
    ASSERT_NE(block, nullptr);

    EXPECT_EQ(BlockLock(block), nullptr);

    BlockFree(block);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Block, FreeTakesNull) {
    BlockFree(nullptr);

    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Block, IsRefusedOnDemand) {
    test::RefuseRequest(0);
    EXPECT_EQ(BlockAllocateUnset(100), nullptr);
    test::RefuseRequest(0);
    EXPECT_EQ(BlockAllocate(100), nullptr);
    const BlockHandle block = BlockAllocate(100);
    ASSERT_NE(block, nullptr);

    test::RefuseRequest(0);
    EXPECT_EQ(BlockLock(block), nullptr);
    EXPECT_NE(BlockLock(block), nullptr);
    EXPECT_EQ(test::RequestsSeen(), 2);

    EXPECT_EQ(BlockUnlock(block), 0) << "the refused lock was not counted";
    BlockFree(block);
    test::RefuseNothing();
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

} // namespace
