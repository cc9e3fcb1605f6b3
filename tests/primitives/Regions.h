// Random regions in heap blocks of exactly their size, and their comparison byte for byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <ios>
#include <random>
#include <span>
#include <vector>

namespace z3d::test {

class Random {
public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}

    std::uint32_t Bits() { return static_cast<std::uint32_t>(engine_()); }
    bool OneIn(std::uint32_t n) { return Bits() % n == 0; }
    // Both ends included.
    std::int32_t Between(std::int32_t low, std::int32_t high) {
        return low + static_cast<std::int32_t>(Bits() % static_cast<std::uint32_t>(high - low + 1));
    }
    // In [0, 1).
    double Fraction() { return Bits() * 0x1p-32; }
    // Often next to a multiple of sixteen, where blocks end.
    std::int32_t Length() { return OneIn(2) ? Between(1, 80) : 16 * Between(0, 4) + Between(1, 2); }
    template <class T, std::size_t kCount>
    T OneOf(const T (&values)[kCount]) {
        return values[Bits() % kCount];
    }

private:
    std::mt19937 engine_;
};

inline float FloatOf(std::uint32_t bits) {
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

inline std::uint32_t BitsOf(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// The bit pattern of a float of any kind: mostly around the display range, where the rounding happens.
inline std::uint32_t AnyFloatBits(Random& random) {
    constexpr std::uint32_t kSpecial[] = {
        0x00000000, 0x80000000, 0x00000001, 0x807FFFFF, 0x7F800000, 0xFF800000, 0x7F7FFFFF, 0xFF7FFFFF,
        0x7FC00000, 0xFFC12345, 0x7F800001, 0xFFA54321, 0x3F000000, 0x437E8000, 0x437F0000, 0x3F800000};
    switch (random.Between(0, 5)) {
    case 0:
        return random.Bits();
    case 1:
        return random.OneOf(kSpecial);
    case 2: // a tie
        return BitsOf(static_cast<float>(random.Between(-4, 520)) * 0.5f);
    case 3: // next to one
        return BitsOf(static_cast<float>(random.Between(1, 520)) * 0.5f) + (random.OneIn(2) ? 1u : ~0u);
    default:
        return BitsOf(static_cast<float>(random.Fraction() * 300.0 - 20.0));
    }
}

// A region in a heap block of its own, filled with random bytes. The block ends with the region's last byte
// or some bytes later, and begins with its first or some bytes before: no access outside goes unnoticed, in
// the first case by AddressSanitizer, in the second by comparison. The step is often odd, and may be below
// the row's width, so that rows overlap.
struct Region {
    std::vector<std::uint8_t> bytes;
    std::size_t first;
    std::int32_t step;

    Region(Random& random, std::size_t rowBytes, std::int32_t height, std::int32_t stepUnit = 1) {
        const auto width = static_cast<std::int32_t>(rowBytes);
        const std::int32_t kSteps[] = {width, width, width + 1, width + random.Between(1, 40),
                                       random.Between(1, width)};
        step = (random.OneOf(kSteps) + stepUnit - 1) / stepUnit * stepUnit;
        first = random.OneIn(2) ? 0 : 20;
        const std::size_t margin = random.OneIn(2) ? 0 : 33;
        bytes.resize(first + static_cast<std::size_t>(step) * static_cast<std::size_t>(height - 1) + rowBytes
                     + margin);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random.Bits());
    }

    // Overwrites the rows with floats of any kind, top to bottom.
    void FillFloats(Random& random, std::int32_t perRow, std::int32_t height) {
        for (std::int32_t y = 0; y < height; ++y)
            for (std::int32_t x = 0; x < perRow; ++x) {
                const std::uint32_t bits = AnyFloatBits(random);
                std::memcpy(bytes.data() + first + std::ptrdiff_t{step} * y + 4 * x, &bits, sizeof bits);
            }
    }

    std::uint8_t* Bytes() { return bytes.data() + first; }
    float* Floats() { return reinterpret_cast<float*>(Bytes()); }
};

inline std::uint32_t WordAt(std::span<const std::uint8_t> bytes, std::size_t at) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + at, bytes.size() - at < 4 ? bytes.size() - at : 4);
    return word;
}

inline testing::AssertionResult SameBytes(std::span<const std::uint8_t> expected,
                                          std::span<const std::uint8_t> actual) {
    if (expected.size() != actual.size()) return testing::AssertionFailure() << "different sizes";
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (expected[i] != actual[i])
            return testing::AssertionFailure()
                   << "byte " << i << " of " << expected.size() << std::hex << ", from there: expected 0x"
                   << WordAt(expected, i) << ", is 0x" << WordAt(actual, i);
    return testing::AssertionSuccess();
}

inline testing::AssertionResult SameRegion(const Region& expected, const Region& actual) {
    return SameBytes(expected.bytes, actual.bytes);
}

template <class T>
std::span<const std::uint8_t> AsBytes(const std::vector<T>& values) {
    return {reinterpret_cast<const std::uint8_t*>(values.data()), values.size() * sizeof(T)};
}

} // namespace z3d::test
