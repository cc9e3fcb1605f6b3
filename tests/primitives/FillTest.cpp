#include "primitives/Fill.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;

TEST(Fill, WritesTheWidthOfEachRowOnly) {
    std::vector<std::uint8_t> image(120, 7);

    EXPECT_EQ(Set8uC1(9, image.data(), 40, 33, 3), StatusNoError);

    for (std::size_t i = 0; i < image.size(); ++i)
        EXPECT_EQ(image[i], i % 40 < 33 ? 9 : 7) << i;
}

TEST(Fill, ChecksPointerThenSizeThenStep) {
    std::uint8_t pixel = 7;

    EXPECT_EQ(Set8uC1(1, nullptr, 0, 0, 0), StatusNullPointer);
    EXPECT_EQ(Set8uC1(1, &pixel, 0, 0, 1), StatusSizeError);
    EXPECT_EQ(Set8uC1(1, &pixel, 0, 1, -1), StatusSizeError);
    EXPECT_EQ(Set8uC1(1, &pixel, 0, 1, 1), StatusStepError);
    EXPECT_EQ(Set8uC1(1, &pixel, -8, 1, 1), StatusStepError);

    EXPECT_EQ(pixel, 7);
}

TEST(Fill, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 500; ++seed) {
        test::Random random(seed);
        const std::int32_t width = random.Length();
        const std::int32_t height = random.Between(1, 6);
        test::Region expected(random, static_cast<std::size_t>(width), height);
        test::Region actual = expected;

        reference::Set8uC1(200, expected.Bytes(), expected.step, width, height);
        ASSERT_EQ(Set8uC1(200, actual.Bytes(), actual.step, width, height), StatusNoError);

        ASSERT_TRUE(test::SameRegion(expected, actual)) << "seed " << seed;
    }
}

} // namespace
