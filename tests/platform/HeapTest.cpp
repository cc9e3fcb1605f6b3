#include "platform/Heap.h"

#include "support/Refusals.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

using namespace z3d::platform;
namespace test = z3d::test;

struct alignas(8) Pair {
    std::uint32_t first;
    std::uint32_t second;
};

TEST(Heap, ZeroBytesAreABlockOfTheirOwn) {
    void* a = HeapAllocate(0);
    void* b = HeapAllocate(0);

    EXPECT_NE(a, nullptr);
    EXPECT_NE(b, nullptr);
    EXPECT_NE(a, b);

    HeapFree(a);
    HeapFree(b);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Heap, BlocksAreWritableToTheLastByteAndAligned) {
    for (const std::size_t bytes : {1u, 8u, 100u, 65537u}) {
        void* memory = HeapAllocate(bytes);
        std::memset(memory, 0xAB, bytes);

        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignof(double), 0u);

        HeapFree(memory);
    }
}

// The allocators of sanitizers end the program at such a request unless told not to.
#if !defined(__SANITIZE_ADDRESS__)
TEST(Heap, AnImpossibleSizeGivesNull) {
    test::RefuseNothing();
    volatile std::size_t bytes = SIZE_MAX / 2;

    EXPECT_EQ(HeapAllocate(bytes), nullptr);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}
#endif

TEST(Heap, FreeTakesNull) {
    HeapFree(nullptr);

    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Heap, IsRefusedOnDemand) {
    test::RefuseRequest(1);
    void* first = HeapAllocate(8);

    EXPECT_NE(first, nullptr);
    EXPECT_EQ(HeapAllocate(8), nullptr);

    HeapFree(first);
    test::RefuseNothing();
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(HeapArray, ReleasesAtTheEndOfItsScope) {
    {
        HeapArray<Pair> array(3);
        ASSERT_TRUE(array);
        array[2] = {1, 2};
        EXPECT_EQ(array.Get()[2].second, 2u);
        EXPECT_EQ(test::Outstanding(Resource::Heap), 1);
    }
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(HeapArray, OfNoElementsIsThere) {
    const HeapArray<Pair> array(0);

    EXPECT_TRUE(array);
}

TEST(HeapArray, IsEmptyByDefaultAndWhenRefused) {
    const HeapArray<Pair> nothing;
    EXPECT_FALSE(nothing);

    test::RefuseRequest(0);
    const HeapArray<Pair> refused(3);
    EXPECT_FALSE(refused);
    test::RefuseNothing();
}

// 2^32 / 8 (or 2^64 / 8) pairs are 0 bytes modulo the size of the address space.
TEST(HeapArray, IsEmptyWhenTheByteCountOverflows) {
    test::RefuseNothing();

    const HeapArray<Pair> array(SIZE_MAX / 8 + 1);

    EXPECT_FALSE(array);
    EXPECT_EQ(test::RequestsSeen(), 0) << "nothing was asked for";
}

TEST(HeapArray, MovesItsElements) {
    HeapArray<Pair> source(1);
    source[0] = {3, 4};

    HeapArray<Pair> target(std::move(source));
    EXPECT_EQ(target[0].first, 3u);
    HeapArray<Pair> assigned(1);
    assigned = std::move(target);
    EXPECT_EQ(assigned[0].second, 4u);
    EXPECT_EQ(test::Outstanding(Resource::Heap), 2)
        << "the assigned array's own block waits in the other one";
}

} // namespace
