// Both resizes against their plain forms, bit for bit.
#include "primitives/Resize.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"
#include "support/GuardedBytes.h"
#include "support/OnEachInstructionSet.h"
#include "support/SpecialValues.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <type_traits>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kInfinity;
using test::kLargestInt;

class ResizeAgainstPlain : public test::OnEachInstructionSet {};
Z3D_ON_EACH_INSTRUCTION_SET(ResizeAgainstPlain);

struct Geometry {
    ImageSize from, to;
    ImageRect rectangle;
    double xFactor, yFactor;
    std::int32_t interpolation;
};

std::ostream& operator<<(std::ostream& out, const Geometry& g) {
    return out << g.from.width << "x" << g.from.height << " to " << g.to.width << "x" << g.to.height
               << ", rectangle " << g.rectangle.x << " " << g.rectangle.y << " " << g.rectangle.width << " "
               << g.rectangle.height << ", factors " << g.xFactor << " " << g.yFactor << ", interpolation "
               << g.interpolation;
}

// Finite values of a wide spread: what NaNs of different payloads would give is left to the processor.
void FillWithNumbers(test::Region& region, test::Random& random) {
    for (std::size_t at = region.first; at + 4 <= region.bytes.size(); at += 4) {
        std::uint32_t bits = random.Bits();
        if (random.OneIn(2)) bits = test::BitsOf(static_cast<float>(random.Fraction() * 300.0 - 20.0));
        if ((bits & 0x7F800000) == 0x7F800000) bits &= 0x8FFFFFFF;
        std::memcpy(region.bytes.data() + at, &bits, sizeof bits);
    }
}

template <class T>
void ExpectThePlainForm(const Geometry& g, std::uint32_t seed) {
    constexpr bool kIsFloat = std::is_same_v<T, float>;
    test::Random random(seed);
    test::Region source(random, static_cast<std::size_t>(g.from.width) * sizeof(T), g.from.height, sizeof(T));
    if (kIsFloat) FillWithNumbers(source, random);
    test::Region expected(random, static_cast<std::size_t>(g.to.width) * sizeof(T), g.to.height, sizeof(T));
    test::Region actual = expected;
    const auto call = [&](auto resize, test::Region& destination) {
        return resize(reinterpret_cast<const T*>(source.Bytes()), g.from, source.step, g.rectangle,
                      reinterpret_cast<T*>(destination.Bytes()), destination.step, g.to, g.xFactor, g.yFactor,
                      g.interpolation);
    };

    Status plain, product;
    if constexpr (kIsFloat) {
        plain = call(reference::Resize32fC1, expected);
        product = call(Resize32fC1, actual);
    } else {
        plain = call(reference::Resize8uC1, expected);
        product = call(Resize8uC1, actual);
    }

    ASSERT_EQ(product, plain) << g << " seed " << seed;
    ASSERT_TRUE(test::SameRegion(expected, actual)) << g << " seed " << seed;
}

Geometry SliceGeometry(ImageSize from, ImageSize to, std::int32_t origin) {
    return {from,
            to,
            {origin, origin, from.width, from.height},
            static_cast<double>(to.width) / from.width,
            static_cast<double>(to.height) / from.height,
            2};
}

// Every pair of these lengths, in width and in height, from the first pixel and from the second.
template <class T>
void ExpectThePlainFormOverSizePairs() {
    constexpr std::int32_t kLengths[] = {1, 2, 3, 4, 5, 8, 15, 16, 17, 31, 33, 64, 100, 255, 256, 257};
    std::uint32_t seed = 0;
    for (const std::int32_t from : kLengths)
        for (const std::int32_t to : kLengths)
            for (const std::int32_t origin : {0, 1}) {
                ExpectThePlainForm<T>(SliceGeometry({from, 5}, {to, 7}, origin), ++seed);
                ExpectThePlainForm<T>(SliceGeometry({6, from}, {5, to}, origin), ++seed);
                if (testing::Test::HasFatalFailure()) return;
            }
}

TEST_P(ResizeAgainstPlain, OfBytesOverSizePairs) { ExpectThePlainFormOverSizePairs<std::uint8_t>(); }
TEST_P(ResizeAgainstPlain, OfFloatsOverSizePairs) { ExpectThePlainFormOverSizePairs<float>(); }

// Sources and destinations that end with, or begin with, memory that cannot be accessed: every pair of widths.
template <class T>
void ExpectThePlainFormInGuardedMemory(test::GuardedEnd end) {
    const auto resize = [](auto function, const T* from, ImageSize size, T* to, ImageSize newSize) {
        const auto step = [](ImageSize image) { return image.width * static_cast<std::int32_t>(sizeof(T)); };
        return function(from, size, step(size), {1, 1, size.width, size.height}, to, step(newSize), newSize,
                        static_cast<double>(newSize.width) / size.width,
                        static_cast<double>(newSize.height) / size.height, 2);
    };
    for (std::int32_t from = 2; from <= 70; ++from) {
        for (std::int32_t to = 1; to <= 70; ++to) {
            const auto pixels = [](ImageSize size) {
                return static_cast<std::size_t>(size.width * size.height);
            };
            const ImageSize size = {from, 3};
            const ImageSize newSize = {to, 4};
            test::Random random(static_cast<std::uint32_t>(100 * from + to));
            const test::GuardedBytes source(pixels(size) * sizeof(T), end);
            for (std::size_t i = 0; i < pixels(size); ++i)
                source.As<T>()[i] = static_cast<T>(random.Between(0, 255));
            const test::GuardedBytes actual(pixels(newSize) * sizeof(T), end);
            std::vector<T> expected(pixels(newSize));

            if constexpr (std::is_same_v<T, float>) {
                resize(reference::Resize32fC1, source.As<T>(), size, expected.data(), newSize);
                resize(Resize32fC1, source.As<T>(), size, actual.As<T>(), newSize);
            } else {
                resize(reference::Resize8uC1, source.As<T>(), size, expected.data(), newSize);
                resize(Resize8uC1, source.As<T>(), size, actual.As<T>(), newSize);
            }

            ASSERT_TRUE(test::SameBytes(test::AsBytes(expected),
                                        {actual.As<std::uint8_t>(), expected.size() * sizeof(T)}))
                << from << " to " << to;
        }
    }
}

TEST_P(ResizeAgainstPlain, OfBytesBesideForbiddenMemory) {
    ExpectThePlainFormInGuardedMemory<std::uint8_t>(test::GuardedEnd::First);
    ExpectThePlainFormInGuardedMemory<std::uint8_t>(test::GuardedEnd::Last);
}

TEST_P(ResizeAgainstPlain, OfFloatsBesideForbiddenMemory) {
    ExpectThePlainFormInGuardedMemory<float>(test::GuardedEnd::First);
    ExpectThePlainFormInGuardedMemory<float>(test::GuardedEnd::Last);
}

// Rectangles anywhere, up to far larger than the source, and factors that belong to other sizes.
Geometry AnyGeometry(test::Random& random) {
    Geometry g{};
    g.from = {random.Length(), random.Between(1, 12)};
    g.to = {random.Length(), random.Between(1, 12)};
    const auto length = [&](std::int32_t source) {
        return random.OneIn(5) ? kLargestInt : random.Between(1, source + 3);
    };
    g.rectangle = {random.Between(0, g.from.width), random.Between(0, g.from.height), length(g.from.width),
                   length(g.from.height)};
    const auto factor = [&](double natural) {
        const double kFactors[] = {natural,
                                   natural,
                                   1.0,
                                   natural * 1.7,
                                   natural / 3,
                                   random.Fraction() * 4,
                                   1.99999995 / random.Between(1, 30),
                                   1e-310,
                                   1e18,
                                   std::numeric_limits<double>::infinity()};
        return random.OneOf(kFactors);
    };
    g.xFactor = factor(static_cast<double>(g.to.width) / g.from.width);
    g.yFactor = factor(static_cast<double>(g.to.height) / g.from.height);
    g.interpolation = random.OneIn(4) ? (random.OneIn(2) ? 1 : 4) : 2;
    return g;
}

template <class T>
void ExpectThePlainFormOverAnyGeometry() {
    for (std::uint32_t seed = 1; seed <= 10000; ++seed) {
        test::Random random(seed);
        ExpectThePlainForm<T>(AnyGeometry(random), seed);
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST_P(ResizeAgainstPlain, OfBytesWithHostileRectanglesAndFactors) {
    ExpectThePlainFormOverAnyGeometry<std::uint8_t>();
}

TEST_P(ResizeAgainstPlain, OfFloatsWithHostileRectanglesAndFactors) {
    ExpectThePlainFormOverAnyGeometry<float>();
}

// Infinities, and NaNs all of one pattern, which every order of the operands carries on alike.
TEST_P(ResizeAgainstPlain, OfFloatsThatAreNotFinite) {
    for (std::uint32_t seed = 1; seed <= 500; ++seed) {
        test::Random random(seed);
        const bool nans = random.OneIn(2);
        std::vector<float> source(9 * 9);
        for (float& value : source) {
            const float kOdd[] = {nans ? test::FloatOf(0xFFC00000) : kInfinity, kInfinity, -kInfinity};
            value = random.OneIn(5) ? random.OneOf(kOdd) : static_cast<float>(random.Between(-5, 5));
        }
        const std::int32_t to = random.Between(1, 20);
        const double factor = to / 9.0;
        std::vector<float> expected(20 * 20, 1.0f), actual = expected;

        reference::Resize32fC1(source.data(), {9, 9}, 36, {1, 1, 9, 9}, expected.data(), 80, {to, to}, factor,
                               factor, 2);
        Resize32fC1(source.data(), {9, 9}, 36, {1, 1, 9, 9}, actual.data(), 80, {to, to}, factor, factor, 2);

        ASSERT_TRUE(test::SameBytes(test::AsBytes(expected), test::AsBytes(actual))) << "seed " << seed;
    }
}

} // namespace
