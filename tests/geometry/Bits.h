// Bit patterns of floating-point values and their comparison.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>

namespace z3d::test {

template <class Float>
auto BitsOf(Float value) {
    return std::bit_cast<std::conditional_t<sizeof(Float) == 8, std::uint64_t, std::uint32_t>>(value);
}

template <class Float>
std::string HexOf(Float value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%0*llX", static_cast<int>(2 * sizeof(Float)),
                  static_cast<unsigned long long>(BitsOf(value)));
    return text;
}

inline double FromBits(std::uint64_t bits) { return std::bit_cast<double>(bits); }

// Succeeds when `count` values agree to the last bit; names the first that does not.
template <class Float>
::testing::AssertionResult SameBits(const Float* got, const Float* want, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (BitsOf(got[i]) == BitsOf(want[i])) continue;
        return ::testing::AssertionFailure() << "element " << i << " is " << got[i] << " (" << HexOf(got[i])
                                             << "), not " << want[i] << " (" << HexOf(want[i]) << ")";
    }
    return ::testing::AssertionSuccess();
}

template <class Float>
::testing::AssertionResult SameBits(Float got, Float want) {
    return SameBits(&got, &want, 1);
}

} // namespace z3d::test
