#include "volume/DepthBlend.h"

#include "support/RandomSource.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;
using volume::DepthBlend;

constexpr volume::ValueRange kUnbounded = {FLT_MAX, -FLT_MAX};
constexpr volume::ValueRange kBytes = {255, 0};

std::vector<float> Blend(const DepthBlend& blend, const std::vector<float>& a, const std::vector<float>& b) {
    std::vector<float> result(a.size(), -99.0f);
    blend.Floats(a.data(), b.data(), result.data(), a.size());
    return result;
}

std::vector<std::uint8_t> Blend(const DepthBlend& blend, const std::vector<std::uint8_t>& a,
                                const std::vector<std::uint8_t>& b) {
    std::vector<std::uint8_t> result(a.size(), 99);
    blend.Bytes(a.data(), b.data(), result.data(), a.size());
    return result;
}

// One sample in plain words.
double PlainBlend(const DepthBlend& blend, double a, double b) {
    double v = a * (1 - blend.t) + b * blend.t;
    if (v < blend.bounds.min) v = blend.bounds.min;
    if (v > blend.bounds.max) v = blend.bounds.max;
    return v;
}

TEST(DepthBlend, WeighsTheTwoSlices) {
    EXPECT_EQ(Blend({0.25, kUnbounded}, std::vector<float>{8, -2}, {16, 2}), (std::vector<float>{10, -1}));
    EXPECT_EQ(Blend({0.5, kBytes}, std::vector<std::uint8_t>{10, 255}, {20, 255}),
              (std::vector<std::uint8_t>{15, 255}));
}

// 127 * 0.1 + 128 * 0.9 is 127.9.
TEST(DepthBlend, TruncatesBytes) {
    EXPECT_EQ(Blend({0.9, kBytes}, std::vector<std::uint8_t>{127}, {128}), (std::vector<std::uint8_t>{127}));
}

TEST(DepthBlend, BoundsWhatIsExtrapolated) {
    EXPECT_EQ(Blend({-0.25, {100, 50}}, std::vector<float>{90, 60, 70}, {50, 100, 70}),
              (std::vector<float>{100, 50, 70}));
    EXPECT_EQ(Blend({1.25, {100, 50}}, std::vector<std::uint8_t>{90, 60, 70}, {50, 100, 70}),
              (std::vector<std::uint8_t>{50, 100, 70}));
}

TEST(DepthBlend, KeepsWhatIsNotANumber) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> result = Blend({0.5, {1, 0}}, std::vector<float>{nan, 1}, {1, nan});

    EXPECT_TRUE(std::isnan(result[0]));
    EXPECT_TRUE(std::isnan(result[1]));
}

// 3 * 0.7 + 3 * 0.3 is a rounding below 3: the sum is literal, even for equal samples.
TEST(DepthBlend, AddsTheWeightedSamplesEvenWhenTheyAreEqual) {
    EXPECT_EQ(Blend({0.3, kBytes}, std::vector<std::uint8_t>{3}, {3}), (std::vector<std::uint8_t>{2}));
}

TEST(DepthBlend, SaturatesBytesToAnyBounds) {
    const volume::ValueRange inverted; // the start of a range
    const std::vector<std::uint8_t> any = {0, 100, 255};

    EXPECT_EQ(Blend({1000.0, kUnbounded}, any, {255, 0, 0}), (std::vector<std::uint8_t>{255, 0, 0}));
    EXPECT_EQ(Blend({0.5, inverted}, any, any), (std::vector<std::uint8_t>{0, 0, 0}));
}

TEST(DepthBlend, IsThePlainFormOfFloats) {
    for (std::uint32_t seed = 1; seed <= 500; ++seed) {
        RandomSource random(seed);
        const DepthBlend blend = {
            random.Within(-0.6, 1.6),
            {static_cast<float>(random.Within(0, 60)), static_cast<float>(random.Within(-60, 0))}};
        std::vector<float> a(static_cast<std::size_t>(random.Between(0, 40)));
        std::vector<float> b(a.size());
        for (std::size_t i = 0; i < a.size(); ++i) {
            a[i] = random.Chance(9) ? -0.0f : static_cast<float>(random.Within(-50, 50));
            b[i] = random.Chance(9) ? std::numeric_limits<float>::infinity()
                                    : static_cast<float>(random.Within(-50, 50));
        }

        const std::vector<float> result = Blend(blend, a, b);

        for (std::size_t i = 0; i < a.size(); ++i) {
            const auto plain = static_cast<float>(PlainBlend(blend, a[i], b[i]));
            ASSERT_EQ(std::bit_cast<std::uint32_t>(result[i]), std::bit_cast<std::uint32_t>(plain))
                << "seed " << seed << ", sample " << i << ": " << a[i] << ", " << b[i] << ", t " << blend.t;
        }
    }
}

TEST(DepthBlend, IsThePlainFormOfBytes) {
    for (std::uint32_t seed = 1; seed <= 500; ++seed) {
        RandomSource random(seed);
        // Ratios of small numbers give products close to whole numbers.
        const double t = static_cast<double>(random.Between(-8, 24)) / random.Between(8, 16);
        const int high = random.Below(256);
        const DepthBlend blend = {t, {static_cast<float>(high), static_cast<float>(random.Between(0, high))}};
        std::vector<std::uint8_t> a(static_cast<std::size_t>(random.Between(0, 80)));
        std::vector<std::uint8_t> b(a.size());
        for (std::size_t i = 0; i < a.size(); ++i) {
            a[i] = static_cast<std::uint8_t>(random.Bits());
            b[i] = static_cast<std::uint8_t>(random.Bits());
        }

        const std::vector<std::uint8_t> result = Blend(blend, a, b);

        for (std::size_t i = 0; i < a.size(); ++i) {
            ASSERT_EQ(result[i], static_cast<std::uint8_t>(PlainBlend(blend, a[i], b[i])))
                << "seed " << seed << ", sample " << i << ": " << int{a[i]} << ", " << int{b[i]} << ", t "
                << t;
        }
    }
}

} // namespace
