// Random numbers that are the same for the same seed on every platform: the raw outputs of the standard
// Mersenne twister through mappings of our own, since the standard distributions differ between libraries.
#pragma once

#include <cstdint>
#include <random>

namespace z3d::test {

class RandomSource {
public:
    explicit RandomSource(std::uint32_t seed) : engine_(seed) {}

    std::uint32_t Bits() { return static_cast<std::uint32_t>(engine_()); }

    // 0 to bound - 1; bound of at least 1.
    int Below(int bound) {
        const std::uint64_t product = static_cast<std::uint64_t>(Bits()) * static_cast<std::uint32_t>(bound);
        return static_cast<int>(product >> 32);
    }

    // low to high, both included.
    int Between(int low, int high) { return low + Below(high - low + 1); }

    bool Chance(int outOf) { return Below(outOf) == 0; }

    // A multiple of 2^-32 in [0, 1).
    double Unit() { return Bits() * (1.0 / 4294967296.0); }

    double Within(double low, double high) { return low + (high - low) * Unit(); }

private:
    std::mt19937 engine_;
};

} // namespace z3d::test
