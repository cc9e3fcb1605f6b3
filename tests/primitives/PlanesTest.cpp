#include "primitives/Planes.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"
#include "support/SpecialValues.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kLargestInt;

TEST(Planes, InterleavesThreeConstantsAcrossEveryRow) {
    const std::vector<std::uint8_t> ones(50, 1), twos(50, 2), threes(50, 3);
    const std::uint8_t* planes[] = {ones.data(), twos.data(), threes.data()};
    std::vector<std::uint8_t> image(2 * 80, 9);

    EXPECT_EQ(CopyPlanes8uP3C3(planes, 25, image.data(), 80, 25, 2), StatusNoError);

    for (std::size_t i = 0; i < image.size(); ++i)
        EXPECT_EQ(image[i], i % 80 < 75 ? i % 80 % 3 + 1 : 9) << i;
}

TEST(Planes, KeepsTheOrderOfPixelsAndChannels) {
    const std::uint8_t red[] = {10, 11, 12, 13}, green[] = {20, 21, 22, 23}, blue[] = {30, 31, 32, 33};
    const std::uint8_t* planes[] = {red, green, blue};
    std::vector<std::uint8_t> image(12);

    EXPECT_EQ(CopyPlanes8uP3C3(planes, 2, image.data(), 6, 2, 2), StatusNoError);

    EXPECT_EQ(image, (std::vector<std::uint8_t>{10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33}));
}

// Overlapping rows: the second row starts one pixel after the first and wins.
TEST(Planes, LaterRowsWinWhereRowsOverlap) {
    const std::uint8_t red[] = {1, 2, 3, 4}, green[] = {5, 6, 7, 8}, blue[] = {9, 10, 11, 12};
    const std::uint8_t* planes[] = {red, green, blue};
    std::vector<std::uint8_t> image(9);

    EXPECT_EQ(CopyPlanes8uP3C3(planes, 2, image.data(), 3, 2, 2), StatusNoError);

    EXPECT_EQ(image, (std::vector<std::uint8_t>{1, 5, 9, 3, 7, 11, 4, 8, 12}));
}

TEST(Planes, MovesFloatsOfEveryKindUnchanged) {
    // Bits, not floats: a signalling NaN is quieted wherever 32-bit code returns it.
    const std::uint32_t bits[] = {0x7F800001, 0x80000000, 0x3FC00000};
    const auto* values = reinterpret_cast<const float*>(bits);
    const float* planes[] = {values, values + 1, values + 2};
    std::uint32_t pixel[3] = {};

    EXPECT_EQ(CopyPlanes32fP3C3(planes, 4, reinterpret_cast<float*>(pixel), 12, 1, 1), StatusNoError);

    EXPECT_EQ(pixel[0], 0x7F800001u);
    EXPECT_EQ(pixel[1], 0x80000000u);
    EXPECT_EQ(pixel[2], 0x3FC00000u);
}

template <class T, class Copy>
void ExpectCopyChecksInOrder(Copy copy) {
    const T plane = 1;
    T pixel[3] = {7, 7, 7};
    const T* planes[] = {&plane, &plane, &plane};
    EXPECT_EQ(copy(static_cast<const T**>(nullptr), 0, pixel, 0, 0, 0), StatusNullPointer);
    EXPECT_EQ(copy(planes, 0, static_cast<T*>(nullptr), 0, 0, 0), StatusNullPointer);
    for (int c = 0; c < 3; ++c) {
        const T* missing[] = {&plane, &plane, &plane};
        missing[c] = nullptr;
        EXPECT_EQ(copy(missing, 0, pixel, 0, 0, 0), StatusNullPointer);
    }
    EXPECT_EQ(copy(planes, 0, pixel, 0, 0, 1), StatusSizeError);
    EXPECT_EQ(copy(planes, 0, pixel, 0, 1, 0), StatusSizeError);
    EXPECT_EQ(copy(planes, 0, pixel, 1, 1, 1), StatusStepError);
    EXPECT_EQ(copy(planes, 1, pixel, 0, 1, 1), StatusStepError);
    EXPECT_EQ(copy(planes, 1, pixel, 0, kLargestInt, 1), StatusStepError);
    EXPECT_EQ(copy(planes, 1, pixel, 1, kLargestInt, 1), StatusSizeError); // a row beyond 4 GiB
    for (const T sample : pixel)
        EXPECT_EQ(sample, 7);
}

TEST(Planes, CheckPointersThenSizeThenSteps) {
    ExpectCopyChecksInOrder<std::uint8_t>(CopyPlanes8uP3C3);
    ExpectCopyChecksInOrder<float>(CopyPlanes32fP3C3);
}

// Dense regions are one case in a few of these by the choice of steps.
template <class T, class Copy, class PlainCopy>
void ExpectThePlainForm(std::uint32_t seed, Copy copy, PlainCopy plainCopy) {
    test::Random random(seed);
    const std::int32_t width = random.Length();
    const std::int32_t height = random.Between(1, 5);
    const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(T);
    test::Region red(random, rowBytes, height);
    test::Region green = red, blue = red;
    for (std::uint8_t& byte : green.bytes)
        byte = static_cast<std::uint8_t>(random.Bits());
    for (std::uint8_t& byte : blue.bytes)
        byte = static_cast<std::uint8_t>(random.Bits());
    const T* planes[] = {reinterpret_cast<const T*>(red.Bytes()), reinterpret_cast<const T*>(green.Bytes()),
                         reinterpret_cast<const T*>(blue.Bytes())};
    test::Region expected(random, 3 * rowBytes, height);
    test::Region actual = expected;

    plainCopy(planes, red.step, reinterpret_cast<T*>(expected.Bytes()), expected.step, width, height);
    ASSERT_EQ(copy(planes, red.step, reinterpret_cast<T*>(actual.Bytes()), actual.step, width, height),
              StatusNoError);

    ASSERT_TRUE(test::SameRegion(expected, actual)) << "seed " << seed;
}

TEST(Planes, OfBytesAreThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 3000 && !HasFatalFailure(); ++seed)
        ExpectThePlainForm<std::uint8_t>(seed, CopyPlanes8uP3C3, reference::CopyPlanes8uP3C3);
}

TEST(Planes, OfFloatsAreThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 3000 && !HasFatalFailure(); ++seed)
        ExpectThePlainForm<float>(seed, CopyPlanes32fP3C3, reference::CopyPlanes32fP3C3);
}

} // namespace
