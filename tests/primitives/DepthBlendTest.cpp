#include "primitives/DepthBlend.h"

#include "reference/PlainPrimitives.h"
#include "support/GuardedBytes.h"
#include "support/OnEachInstructionSet.h"
#include "support/RandomSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <ios>
#include <limits>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;
using primitives::DepthBlend;

class DepthBlendTest : public OnEachInstructionSet {};
Z3D_ON_EACH_INSTRUCTION_SET(DepthBlendTest);

constexpr primitives::ValueRange kUnbounded = {FLT_MAX, -FLT_MAX};
constexpr primitives::ValueRange kBytes = {255, 0};

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

double PlainBlend(const DepthBlend& blend, double a, double b) {
    return reference::BlendDepth(blend.t, blend.bounds.min, blend.bounds.max, a, b);
}

TEST_P(DepthBlendTest, WeighsTheTwoSlices) {
    EXPECT_EQ(Blend({0.25, kUnbounded}, std::vector<float>{8, -2}, {16, 2}), (std::vector<float>{10, -1}));
    EXPECT_EQ(Blend({0.5, kBytes}, std::vector<std::uint8_t>{10, 255}, {20, 255}),
              (std::vector<std::uint8_t>{15, 255}));
}

// 127 * 0.1 + 128 * 0.9 is 127.9.
TEST_P(DepthBlendTest, TruncatesBytes) {
    EXPECT_EQ(Blend({0.9, kBytes}, std::vector<std::uint8_t>{127}, {128}), (std::vector<std::uint8_t>{127}));
}

TEST_P(DepthBlendTest, BoundsWhatIsExtrapolated) {
    EXPECT_EQ(Blend({-0.25, {100, 50}}, std::vector<float>{90, 60, 70}, {50, 100, 70}),
              (std::vector<float>{100, 50, 70}));
    EXPECT_EQ(Blend({1.25, {100, 50}}, std::vector<std::uint8_t>{90, 60, 70}, {50, 100, 70}),
              (std::vector<std::uint8_t>{50, 100, 70}));
}

TEST_P(DepthBlendTest, KeepsWhatIsNotANumber) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> result = Blend({0.5, {1, 0}}, std::vector<float>{nan, 1}, {1, nan});

    EXPECT_TRUE(std::isnan(result[0]));
    EXPECT_TRUE(std::isnan(result[1]));
}

// 3 * 0.7 + 3 * 0.3 is a rounding below 3: the sum is literal, even for equal samples.
TEST_P(DepthBlendTest, AddsTheWeightedSamplesEvenWhenTheyAreEqual) {
    EXPECT_EQ(Blend({0.3, kBytes}, std::vector<std::uint8_t>{3}, {3}), (std::vector<std::uint8_t>{2}));
}

TEST_P(DepthBlendTest, SaturatesBytesToAnyBounds) {
    const primitives::ValueRange inverted; // the start of a range
    const std::vector<std::uint8_t> any = {0, 100, 255};

    EXPECT_EQ(Blend({1000.0, kUnbounded}, any, {255, 0, 0}), (std::vector<std::uint8_t>{255, 0, 0}));
    EXPECT_EQ(Blend({0.5, inverted}, any, any), (std::vector<std::uint8_t>{0, 0, 0}));
}

TEST_P(DepthBlendTest, IsThePlainFormOfFloats) {
    for (std::uint32_t seed = 1; seed <= 500; ++seed) {
        RandomSource random(seed);
        const DepthBlend blend = {
            random.Within(-0.6, 1.6),
            {static_cast<float>(random.Within(0, 60)), static_cast<float>(random.Within(-60, 0))}};
        std::vector<float> a(static_cast<std::size_t>(random.Between(0, 70)));
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

TEST_P(DepthBlendTest, IsThePlainFormOfBytes) {
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

// All pairs of bytes, and the plain result of each.
struct EveryPair {
    std::vector<std::uint8_t> a, b;

    EveryPair() {
        for (int pair = 0; pair < 65536; ++pair) {
            a.push_back(static_cast<std::uint8_t>(pair >> 8));
            b.push_back(static_cast<std::uint8_t>(pair));
        }
    }

    void ExpectThePlainForm(const DepthBlend& blend) const {
        const std::vector<std::uint8_t> result = Blend(blend, a, b);
        const std::vector<std::uint8_t> plain =
            reference::BlendDepth8u(blend.t, blend.bounds.min, blend.bounds.max, a, b);
        if (result == plain) return;
        const auto [got, wanted] = std::mismatch(result.begin(), result.end(), plain.begin());
        const auto pair = static_cast<std::size_t>(wanted - plain.begin());
        FAIL() << int{*got} << " instead of " << int{*wanted} << " of " << int{a[pair]} << ", "
               << int{b[pair]} << ", t " << std::hexfloat << blend.t;
    }
};

// The positions that stacks of these depths meet, first and last slices included.
TEST_P(DepthBlendTest, IsThePlainFormForEveryPairOfBytesInResampledStacks) {
    constexpr int kDepths[][2] = {{181, 134}, {181, 135}, {256, 171}, {4, 3},
                                  {3, 4},     {7, 5},     {128, 200}, {60, 118}};
    const EveryPair pairs;
    for (const auto& [from, to] : kDepths) {
        const double ratio = static_cast<double>(from) / to;
        for (int z = 0; z<to; z += to> 20 ? 7 : 1) {
            const double position = z * ratio + (ratio - 1.0) * 0.5;
            const double t = position - std::clamp(std::floor(position), 0.0, from - 1.0);
            ASSERT_NO_FATAL_FAILURE(pairs.ExpectThePlainForm({t, {255, 0}}));
        }
    }
}

// Where products with differences of bytes come close to integers, or are some, and where t ends the whole form.
TEST_P(DepthBlendTest, IsThePlainFormForEveryPairOfBytesAndAwkwardWeights) {
    const EveryPair pairs;
    for (std::uint32_t seed = 1; seed <= 120; ++seed) {
        RandomSource random(seed);
        const double quotient = static_cast<double>(random.Between(-300, 300)) / random.Between(1, 300);
        const double kOffsets[] = {0.0,     0x1p-53,  -0x1p-53,      0x1p-22,
                                   0x1p-23, -0x1p-24, 0x1p-13 / 255, 0x1p-20};
        const double kEnds[] = {0.9999,     -0.9999, std::nextafter(0.9999, 1.0), 1.0, -1.0, 0.0,
                                -0x1p-1074, 0x1p-30};
        const double t =
            random.Chance(6) ? kEnds[random.Below(8)] : std::fmod(quotient, 1.0) + kOffsets[random.Below(8)];
        const int high = random.Between(1, 255);
        const int low = random.Below(high + 1);
        const primitives::ValueRange kBounds[] = {{255, 0},
                                                  {static_cast<float>(high), static_cast<float>(low)},
                                                  {static_cast<float>(high) + 0.5f, static_cast<float>(low)},
                                                  {300, -20},
                                                  {static_cast<float>(low), static_cast<float>(high)}};
        ASSERT_NO_FATAL_FAILURE(pairs.ExpectThePlainForm({t, kBounds[random.Below(5)]})) << "seed " << seed;
    }
}

// Slices that begin, or end, beside memory that cannot be accessed.
TEST_P(DepthBlendTest, StaysWithinItsSlices) {
    for (const GuardedEnd end : {GuardedEnd::First, GuardedEnd::Last}) {
        for (std::size_t count = 1; count <= 140; ++count) {
            RandomSource random(static_cast<std::uint32_t>(count));
            const GuardedBytes a(4 * count, end), b(4 * count, end), result(4 * count, end);
            for (std::size_t i = 0; i < count; ++i) {
                a.As<float>()[i] = static_cast<float>(random.Within(-50, 50));
                b.As<float>()[i] = static_cast<float>(random.Within(-50, 50));
            }
            const DepthBlend floats = {0.3, kUnbounded};
            floats.Floats(a.As<float>(), b.As<float>(), result.As<float>(), count);
            for (std::size_t i = 0; i < count; ++i) {
                const double plain = PlainBlend(floats, a.As<float>()[i], b.As<float>()[i]);
                ASSERT_EQ(result.As<float>()[i], static_cast<float>(plain));
            }

            const GuardedBytes bytesA(count, end), bytesB(count, end), bytes(count, end);
            for (std::size_t i = 0; i < count; ++i) {
                bytesA.As<std::uint8_t>()[i] = static_cast<std::uint8_t>(random.Bits());
                bytesB.As<std::uint8_t>()[i] = static_cast<std::uint8_t>(random.Bits());
            }
            const DepthBlend blend = {0.25, kBytes};
            blend.Bytes(bytesA.As<std::uint8_t>(), bytesB.As<std::uint8_t>(), bytes.As<std::uint8_t>(),
                        count);
            for (std::size_t i = 0; i < count; ++i) {
                const double plain =
                    PlainBlend(blend, bytesA.As<std::uint8_t>()[i], bytesB.As<std::uint8_t>()[i]);
                ASSERT_EQ(bytes.As<std::uint8_t>()[i], static_cast<std::uint8_t>(plain));
            }
        }
    }
}

} // namespace
