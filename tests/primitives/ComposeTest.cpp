#include "primitives/Compose.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"
#include "support/GuardedBytes.h"
#include "support/OnEachInstructionSet.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::GuardedBytes;
using test::GuardedEnd;

using Bytes = std::vector<std::uint8_t>;

class Compose : public test::OnEachInstructionSet {};

SumRange SumsOf(const Bytes& pixels) {
    SumRange sums;
    for (std::size_t i = 0; i < pixels.size(); i += 3) {
        const std::int32_t sum = pixels[i] + pixels[i + 1] + pixels[i + 2];
        sums.min = std::min(sums.min, sum);
        sums.max = std::max(sums.max, sum);
    }
    return sums;
}

// The bytes of interleaved samples, one primitive after the other.
Bytes PlainPixels(const Bytes& samples, ByteRange range) {
    const auto width = static_cast<std::int32_t>(samples.size() / 3);
    std::vector<float> values(samples.size());
    Bytes pixels(samples.size());
    reference::Scale8u32fC3(samples.data(), 3 * width, values.data(), 12 * width, width, 1, range.min,
                            range.max);
    reference::Convert32f8uC3(values.data(), 12 * width, pixels.data(), 3 * width, width, 1, 1);
    return pixels;
}

TEST_P(Compose, TakesThreeBytesInTurn) {
    const std::uint8_t red[] = {1, 2};
    const std::uint8_t blue[] = {200, 255};
    std::uint8_t pixels[6];

    const SumRange sums = Compose8uP3C3({red, nullptr, blue}, pixels, 2, {0, 255});

    EXPECT_EQ(Bytes(pixels, pixels + 6), (Bytes{1, 0, 200, 2, 0, 255}));
    EXPECT_EQ(sums.min, 201);
    EXPECT_EQ(sums.max, 257);
}

// 0 stands for 10 and 255 for 20: 127 for 14.98, 128 for 15.02.
TEST_P(Compose, MapsBytesToTheRangeTheyStandFor) {
    const std::uint8_t red[] = {0, 127, 255};
    std::uint8_t pixels[9];

    Compose8uP3C3({red, red, nullptr}, pixels, 3, {10, 20});

    EXPECT_EQ(Bytes(pixels, pixels + 9), (Bytes{10, 10, 10, 15, 15, 10, 20, 20, 10}));
}

TEST_P(Compose, MapsFloatsFromTheirRange) {
    const float red[] = {-1, 0, 0.5f, 1};
    const float blue[] = {2, 0.25f, 0, std::numeric_limits<float>::quiet_NaN()};
    std::uint8_t pixels[12];

    const SumRange sums = Compose32f8uP3C3({red, nullptr, blue}, pixels, 4, 0, 1);

    // 127.5 and 63.75.
    EXPECT_EQ(Bytes(pixels, pixels + 12), (Bytes{0, 0, 255, 0, 0, 64, 128, 0, 0, 255, 0, 0}));
    EXPECT_EQ(sums.min, 64);
    EXPECT_EQ(sums.max, 255);
}

TEST_P(Compose, OfNoPixelsHasNoSums) {
    const std::uint8_t* const none[3] = {};

    const SumRange sums = Compose8uP3C3(none, nullptr, 0, {0, 255});

    EXPECT_EQ(sums.min, 765);
    EXPECT_EQ(sums.max, 0);
}

// All 32,640 ranges of two different bytes, and all 256 bytes in each.
TEST_P(Compose, IsThePlainFormForEveryByteInEveryRange) {
    Bytes samples(3 * 256);
    Bytes plane(256);
    for (std::size_t i = 0; i < 256; ++i) {
        plane[i] = static_cast<std::uint8_t>(i);
        std::memset(&samples[3 * i], static_cast<int>(i), 3);
    }
    for (int min = 0; min < 255; ++min) {
        for (int max = min + 1; max < 256; ++max) {
            const ByteRange range = {static_cast<std::uint8_t>(min), static_cast<std::uint8_t>(max)};
            Bytes pixels(samples.size());
            const SumRange sums =
                Compose8uP3C3({plane.data(), plane.data(), plane.data()}, pixels.data(), 256, range);

            ASSERT_EQ(pixels, PlainPixels(samples, range)) << min << " to " << max;
            ASSERT_EQ(sums.min, 3 * min);
            ASSERT_EQ(sums.max, 3 * max);
        }
    }
}

// Planes and pixels begin, or end, beside memory that cannot be accessed. Some planes are missing, some the same.
template <class Sample, class MakeSample, class Work>
void WithGuardedPlanes(test::Random& random, std::size_t count, MakeSample makeSample, Work work) {
    for (const GuardedEnd end : {GuardedEnd::First, GuardedEnd::Last}) {
        const GuardedBytes memory[3] = {
            {count * sizeof(Sample), end}, {count * sizeof(Sample), end}, {count * sizeof(Sample), end}};
        const Sample* planes[3] = {};
        std::vector<Sample> samples(3 * count);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            if (random.OneIn(4)) continue;
            planes[channel] = memory[channel].As<Sample>();
            for (std::size_t i = 0; i < count; ++i) {
                memory[channel].As<Sample>()[i] = makeSample();
                samples[3 * i + channel] = planes[channel][i];
            }
        }
        const GuardedBytes pixels(3 * count, end);
        work(planes, pixels.As<std::uint8_t>(), samples);
    }
}

void ExpectPixels(const std::uint8_t* pixels, const SumRange& sums, const Bytes& plain) {
    const SumRange plainSums = SumsOf(plain);
    ASSERT_TRUE(test::SameBytes(plain, {pixels, plain.size()}));
    ASSERT_EQ(sums.min, plainSums.min);
    ASSERT_EQ(sums.max, plainSums.max);
}

TEST_P(Compose, IsThePlainFormForBytesOfAnyCount) {
    for (std::size_t count = 1; count <= 200; ++count) {
        SCOPED_TRACE(count);
        test::Random random(static_cast<std::uint32_t>(count));
        const int min = random.Between(0, 254);
        const ByteRange range = {static_cast<std::uint8_t>(min),
                                 static_cast<std::uint8_t>(random.Between(min + 1, 255))};
        WithGuardedPlanes<std::uint8_t>(
            random, count, [&] { return static_cast<std::uint8_t>(random.Bits()); },
            [&](const std::uint8_t* const(&planes)[3], std::uint8_t* pixels, const Bytes& samples) {
                const SumRange sums = Compose8uP3C3(planes, pixels, count, range);
                ExpectPixels(pixels, sums, PlainPixels(samples, range));
            });
        if (HasFatalFailure()) return;
    }
}

// Ends that are finite: the display range, any range, neighbours, and the widest.
void MakeFloatRange(test::Random& random, float& min, float& max) {
    const auto finite = [&] {
        const float value = test::FloatOf(test::AnyFloatBits(random));
        return value - value == 0.0f ? value : 1.0f;
    };
    const float kMins[] = {0.0f, -40.0f, finite(), std::numeric_limits<float>::lowest()};
    min = random.OneOf(kMins);
    const float kMaxes[] = {255.0f, min + 100.0f, finite(), std::numeric_limits<float>::max(),
                            std::nextafter(min, std::numeric_limits<float>::max())};
    max = random.OneOf(kMaxes);
    if (min > max) std::swap(min, max);
    if (min == max) max = std::nextafter(min, std::numeric_limits<float>::max());
}

TEST_P(Compose, IsThePlainFormForFloatsOfAnyKind) {
    for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
        SCOPED_TRACE(seed);
        test::Random random(seed);
        const auto count = static_cast<std::size_t>(random.Between(1, 100));
        const auto width = static_cast<std::int32_t>(count);
        float min = 0;
        float max = 0;
        MakeFloatRange(random, min, max);
        const auto sample = [&] {
            const float kNear[] = {min, max, std::nextafter(min, max), std::nextafter(max, min)};
            if (random.OneIn(4)) return random.OneOf(kNear);
            if (random.OneIn(2)) return test::FloatOf(test::AnyFloatBits(random));
            return static_cast<float>(min + (static_cast<double>(max) - min) * random.Fraction());
        };
        WithGuardedPlanes<float>(
            random, count, sample,
            [&](const float* const(&planes)[3], std::uint8_t* pixels, const std::vector<float>& samples) {
                const SumRange sums = Compose32f8uP3C3(planes, pixels, count, min, max);
                Bytes plain(3 * count);
                reference::Scale32f8uC3(samples.data(), 12 * width, plain.data(), 3 * width, width, 1, min,
                                        max);
                ExpectPixels(pixels, sums, plain);
            });
        if (HasFatalFailure()) return;
    }
}

Z3D_ON_EACH_INSTRUCTION_SET(Compose);

} // namespace
