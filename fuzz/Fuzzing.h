// What the fuzzers share: an expectation, and requests of the platform that are refused in turn.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace z3d::fuzz {

inline constexpr int kNever = -1;

// Ends the program with the place of the expectation; the fuzzer keeps the input that led here.
inline void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "%s:%d: not as expected\n", file, line);
    std::abort();
}

// From here on every request counts, from 0; the one with this index is refused.
void RefuseRequest(int index);
// Requests granted and not yet released.
int Outstanding();

// To the last bit, but one NaN is as good as another.
inline bool Agree(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b)
           || (std::isnan(a) && std::isnan(b));
}
inline bool Agree(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b)
           || (std::isnan(a) && std::isnan(b));
}

// Any bits, or (more often) a plain number that means something.
inline float AnyFloat(FuzzedDataProvider& input) {
    static constexpr float kPlain[] = {0, 1, -1, 0.5f, 2, -0.5f, 100, 255, 765, 0.70710677f};
    return input.ConsumeBool() ? input.PickValueInArray(kPlain)
                               : std::bit_cast<float>(input.ConsumeIntegral<std::uint32_t>());
}

} // namespace z3d::fuzz
