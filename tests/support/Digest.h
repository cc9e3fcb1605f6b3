// One number for many: a literal digest pins a long series of results in every build at once.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>

namespace z3d::test {

// FNV-1a, 64 bits, over bit patterns from the low byte to the high one.
class Digest {
public:
    template <std::unsigned_integral Word>
    void Add(Word word) {
        for (std::size_t shift = 0; shift < 8 * sizeof(Word); shift += 8) {
            value_ = (value_ ^ ((word >> shift) & 0xFF)) * 0x100000001B3u;
        }
    }

    // All NaNs alike: which of its operands an operation takes a NaN from is the compiler's choice.
    void Add(float value) { Add(value == value ? std::bit_cast<std::uint32_t>(value) : 0x7FC00000u); }
    void Add(double value) {
        Add(value == value ? std::bit_cast<std::uint64_t>(value) : std::uint64_t{0x7FF8000000000000u});
    }

    std::uint64_t Value() const { return value_; }

private:
    std::uint64_t value_ = 0xCBF29CE484222325u;
};

} // namespace z3d::test
