#include "primitives/Grey.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"
#include "support/SpecialValues.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kLargestInt;

constexpr float kThirds[3] = {1.0f / 3.0f, 1.0f / 3.0f, 1.0f / 3.0f};

std::int32_t Grey(std::uint8_t red, std::uint8_t green, std::uint8_t blue, const float* weights) {
    const std::uint8_t pixel[3] = {red, green, blue};
    std::uint8_t grey = 77;
    EXPECT_EQ(ColorToGray8uC3C1(pixel, 3, &grey, 1, 1, 1, weights), StatusNoError);
    return grey;
}

TEST(Grey, OfThirdsLosesOneLevel) {
    EXPECT_EQ(Grey(255, 255, 255, kThirds), 254);
    EXPECT_EQ(Grey(3, 0, 0, kThirds), 0);
    EXPECT_EQ(Grey(4, 0, 0, kThirds), 1);
    EXPECT_EQ(Grey(0, 4, 0, kThirds), 1);
    EXPECT_EQ(Grey(0, 0, 4, kThirds), 1);
}

TEST(Grey, HasWeightsOfItsOwn) {
    EXPECT_EQ(Grey(255, 255, 255, nullptr), 255);
    EXPECT_EQ(Grey(255, 0, 0, nullptr), 76);
    EXPECT_EQ(Grey(0, 255, 0, nullptr), 149);
    EXPECT_EQ(Grey(0, 0, 255, nullptr), 29);
}

// 4096 c + 0.5 is truncated toward zero: 1.5 gives 1, and -1.5 and -0.5 give -1 and 0.
TEST(Grey, RoundsWeightsToUnitsOf4096) {
    const float scale = 1.0f / 4096.0f;
    const float up[3] = {1.0f * scale, 0.49f * scale, 4095.5f * scale};
    const float down[3] = {-2.0f * scale, 0.0f, 1.0f};

    EXPECT_EQ(Grey(0, 0, 255, up), 255);  // 4096
    EXPECT_EQ(Grey(0, 255, 16, up), 16);  // 0 and 4096
    EXPECT_EQ(Grey(16, 0, 0, down), 255); // -1 * 16, shifted down: -1
    EXPECT_EQ(Grey(255, 0, 1, down), 0);  // 4096 - 255
}

// Sums keep the low byte after the shift, however large the weights are.
TEST(Grey, WrapsWhatLargeWeightsExceed) {
    const float two[3] = {2.0f, 0.0f, 0.0f};
    const float nine[3] = {9.0f, 0.0f, 0.0f};
    const float huge[3] = {1e38f, -1e38f, 1.0f};
    const float none[3] = {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN(),
                           1.0f};

    EXPECT_EQ(Grey(255, 0, 0, two), 254);
    EXPECT_EQ(Grey(255, 0, 0, nine), (255 * 9) % 256);
    EXPECT_EQ(Grey(255, 255, 7, huge), 7);
    EXPECT_EQ(Grey(255, 255, 7, none), 7);
}

TEST(Grey, ChecksPointersThenSizeThenSteps) {
    const std::uint8_t pixel[3] = {1, 1, 1};
    std::uint8_t grey = 7;

    EXPECT_EQ(ColorToGray8uC3C1(nullptr, 0, &grey, 0, 0, 0, nullptr), StatusNullPointer);
    EXPECT_EQ(ColorToGray8uC3C1(pixel, 0, nullptr, 0, 0, 0, nullptr), StatusNullPointer);
    EXPECT_EQ(ColorToGray8uC3C1(pixel, 0, &grey, 0, 0, 1, nullptr), StatusSizeError);
    EXPECT_EQ(ColorToGray8uC3C1(pixel, 0, &grey, 0, 1, 0, nullptr), StatusSizeError);
    EXPECT_EQ(ColorToGray8uC3C1(pixel, 0, &grey, 1, 1, 1, nullptr), StatusStepError);
    EXPECT_EQ(ColorToGray8uC3C1(pixel, 1, &grey, 0, kLargestInt, 1, nullptr), StatusStepError);
    EXPECT_EQ(ColorToGray8uC3C1(pixel, 1, &grey, 1, kLargestInt, 1, nullptr), StatusSizeError);

    EXPECT_EQ(grey, 7);
}

TEST(Grey, OfAllColoursIsThePlainForm) {
    std::vector<std::uint8_t> colours;
    for (int red = 0; red < 256; red += 3)
        for (int green = 0; green < 256; green += 5)
            for (int blue = 0; blue < 256; blue += 5)
                for (const int sample : {red, green, blue})
                    colours.push_back(static_cast<std::uint8_t>(sample));
    const auto pixels = static_cast<std::int32_t>(colours.size() / 3);
    std::vector<std::uint8_t> expected(colours.size() / 3), actual = expected;

    reference::ColorToGray8uC3C1(colours.data(), 3 * pixels, expected.data(), pixels, pixels, 1, kThirds);
    ColorToGray8uC3C1(colours.data(), 3 * pixels, actual.data(), pixels, pixels, 1, kThirds);

    EXPECT_TRUE(test::SameBytes(expected, actual));
}

TEST(Grey, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
        test::Random random(seed);
        const std::int32_t width = random.Length();
        const std::int32_t height = random.Between(1, 5);
        const std::uint32_t kMagnitudes[] = {1, 1, 7, 8, 9, 1000, 1000000};
        float weights[3];
        for (float& weight : weights)
            weight = static_cast<float>((random.Fraction() - 0.25) * random.OneOf(kMagnitudes));
        const float* chosen = random.OneIn(5) ? nullptr : weights;
        test::Region source(random, 3 * static_cast<std::size_t>(width), height);
        test::Region expected(random, static_cast<std::size_t>(width), height);
        test::Region actual = expected;

        reference::ColorToGray8uC3C1(source.Bytes(), source.step, expected.Bytes(), expected.step, width,
                                     height, chosen);
        ASSERT_EQ(ColorToGray8uC3C1(source.Bytes(), source.step, actual.Bytes(), actual.step, width, height,
                                    chosen),
                  StatusNoError);

        ASSERT_TRUE(test::SameRegion(expected, actual)) << "seed " << seed;
    }
}

} // namespace
