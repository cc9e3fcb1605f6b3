#include "primitives/Buffers.h"

#include "support/Refusals.h"
#include "support/SpecialValues.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kLargestInt;

bool IsAligned(const void* start) { return reinterpret_cast<std::uintptr_t>(start) % 32 == 0; }

template <class Allocate>
std::int32_t StepOf(Allocate allocate, std::int32_t width) {
    std::int32_t step = -1;
    auto* image = allocate(width, 2, &step);
    EXPECT_NE(image, nullptr);
    EXPECT_TRUE(IsAligned(image));
    ImageFree(image);
    return step;
}

TEST(Buffers, RowStepsAreMultiplesOf32Bytes) {
    EXPECT_EQ(StepOf(ImageMalloc8uC1, 1), 32);
    EXPECT_EQ(StepOf(ImageMalloc8uC1, 32), 32);
    EXPECT_EQ(StepOf(ImageMalloc8uC1, 33), 64);
    EXPECT_EQ(StepOf(ImageMalloc8uC3, 10), 32);
    EXPECT_EQ(StepOf(ImageMalloc8uC3, 11), 64);
    EXPECT_EQ(StepOf(ImageMalloc32fC1, 8), 32);
    EXPECT_EQ(StepOf(ImageMalloc32fC1, 9), 64);
    EXPECT_EQ(StepOf(ImageMalloc32fC3, 3), 64);
    EXPECT_EQ(StepOf(ImageMalloc32fC3, 8), 96);
}

TEST(Buffers, HoldStepTimesHeightBytesFromAnAlignedStart) {
    for (std::int32_t height = 1; height < 40; ++height) {
        std::int32_t step = 0;
        float* image = ImageMalloc32fC3(7, height, &step);

        ASSERT_NE(image, nullptr);
        EXPECT_TRUE(IsAligned(image));
        std::memset(image, 0xA5, static_cast<std::size_t>(step) * static_cast<std::size_t>(height));

        ImageFree(image);
    }
}

TEST(Buffers, VectorsHoldTheirFloatsFromAnAlignedStart) {
    for (std::int32_t length = 1; length < 70; ++length) {
        float* vector = VecMalloc32f(length);

        ASSERT_NE(vector, nullptr);
        EXPECT_TRUE(IsAligned(vector));
        std::memset(vector, 0x5A, static_cast<std::size_t>(length) * sizeof(float));

        VecFree(vector);
    }
}

TEST(Buffers, VectorsBelowOneFloatAreNull) {
    EXPECT_EQ(VecMalloc32f(0), nullptr);
    EXPECT_EQ(VecMalloc32f(-5), nullptr);
    EXPECT_EQ(VecMalloc32f(-kLargestInt - 1), nullptr);
}

TEST(Buffers, ImagesBelowOnePixelAreNullWithStepZero) {
    const std::int32_t kSizes[][2] = {{0, 4}, {4, 0}, {-1, 4}, {4, -1}, {-kLargestInt - 1, -kLargestInt - 1}};
    for (const auto& [width, height] : kSizes) {
        std::int32_t steps[4] = {9, 9, 9, 9};

        EXPECT_EQ(ImageMalloc8uC1(width, height, &steps[0]), nullptr);
        EXPECT_EQ(ImageMalloc8uC3(width, height, &steps[1]), nullptr);
        EXPECT_EQ(ImageMalloc32fC1(width, height, &steps[2]), nullptr);
        EXPECT_EQ(ImageMalloc32fC3(width, height, &steps[3]), nullptr);

        for (const std::int32_t step : steps)
            EXPECT_EQ(step, 0);
    }
}

TEST(Buffers, NeedSomewhereToPutTheStep) {
    EXPECT_EQ(ImageMalloc8uC1(4, 4, nullptr), nullptr);
    EXPECT_EQ(ImageMalloc8uC3(4, 4, nullptr), nullptr);
    EXPECT_EQ(ImageMalloc32fC1(4, 4, nullptr), nullptr);
    EXPECT_EQ(ImageMalloc32fC3(0, 0, nullptr), nullptr);
}

// 2^30 floats, and the smallest products of step and height that no 32-bit count holds.
TEST(Buffers, SizesBeyond32BitsAreNullWithStepZero) {
    std::int32_t steps[7] = {9, 9, 9, 9, 9, 9, 9};
    const std::int64_t before = test::OutstandingInTotal();

    EXPECT_EQ(VecMalloc32f(1 << 30), nullptr);
    EXPECT_EQ(VecMalloc32f(kLargestInt), nullptr);
    EXPECT_EQ(ImageMalloc8uC1(kLargestInt, 1, &steps[0]), nullptr); // its step would be 2^31
    EXPECT_EQ(ImageMalloc8uC3(kLargestInt, 1, &steps[1]), nullptr);
    EXPECT_EQ(ImageMalloc32fC1(1 << 29, 1, &steps[2]), nullptr);
    EXPECT_EQ(ImageMalloc32fC3(178956971, 1, &steps[3]), nullptr);
    EXPECT_EQ(ImageMalloc8uC1(65536, 65536, &steps[4]), nullptr);
    EXPECT_EQ(ImageMalloc32fC3(65536, 65536, &steps[5]), nullptr);
    EXPECT_EQ(ImageMalloc32fC3(kLargestInt, kLargestInt, &steps[6]), nullptr);

    for (const std::int32_t step : steps)
        EXPECT_EQ(step, 0);
    EXPECT_EQ(test::OutstandingInTotal(), before);
}

// 134217727 rows of 32 bytes are 2^32 - 32, to which the room for the alignment is added.
TEST(Buffers, TheRoomForAlignmentCountsInTheSize) {
    std::int32_t step = 9;

    EXPECT_EQ(ImageMalloc8uC1(32, 134217727, &step), nullptr);

    EXPECT_EQ(step, 0);
}

TEST(Buffers, ReleasingNullDoesNothing) {
    VecFree(nullptr);
    ImageFree(nullptr);
}

TEST(Buffers, WithoutMemoryAreNullWithStepZero) {
    test::ForEveryRefusal([](bool refused) {
        std::int32_t step = 9;
        std::uint8_t* image = ImageMalloc8uC3(5, 5, &step);
        EXPECT_EQ(image == nullptr, refused);
        EXPECT_EQ(step, refused ? 0 : 32);
        ImageFree(image);
    });
    test::ForEveryRefusal([](bool refused) {
        float* vector = VecMalloc32f(5);
        EXPECT_EQ(vector == nullptr, refused);
        VecFree(vector);
    });
}

} // namespace
