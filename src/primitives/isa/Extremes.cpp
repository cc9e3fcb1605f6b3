// The smallest and the largest of samples.
#include "primitives/isa/Kernels.h"

#include <algorithm>

namespace z3d::primitives::Z3D_ISA {

// Two pairs of registers: each waits for its own last result only.
ByteExtremes ExtremesOfBytes(const std::uint8_t* samples, std::size_t count) {
    Integers max0 = Zeroes();
    Integers max1 = max0;
    Integers min0 = Z3D_MM(set1_epi8)(-1);
    Integers min1 = min0;
    for (; count >= 2 * kRegisterBytes; count -= 2 * kRegisterBytes, samples += 2 * kRegisterBytes) {
        const Integers first = Load(samples);
        const Integers second = Load(samples + kRegisterBytes);
        max0 = Z3D_MM(max_epu8)(max0, first);
        min0 = Z3D_MM(min_epu8)(min0, first);
        max1 = Z3D_MM(max_epu8)(max1, second);
        min1 = Z3D_MM(min_epu8)(min1, second);
    }
    std::uint8_t max[kRegisterBytes];
    std::uint8_t min[kRegisterBytes];
    Store(max, Z3D_MM(max_epu8)(max0, max1));
    Store(min, Z3D_MM(min_epu8)(min0, min1));

    ByteExtremes extremes = {0, 255};
    const auto take = [&](std::uint8_t most, std::uint8_t least) {
        extremes.max = std::max(extremes.max, most);
        extremes.min = std::min(extremes.min, least);
    };
    for (std::size_t i = 0; i < kRegisterBytes; ++i)
        take(max[i], min[i]);
    for (std::size_t i = 0; i < count; ++i)
        take(samples[i], samples[i]);
    return extremes;
}

// MAXPS and MINPS give their second operand when the first is not greater (smaller) or either is a NaN: with the sample
// first and the running value second, that is the rule in each lane.
FloatExtremes WidenByFloats(FloatExtremes extremes, const float* samples, std::size_t count) {
    constexpr std::size_t kLanes = kRegisterBytes / sizeof(float);
    auto max0 = Z3D_MM(set1_ps)(extremes.max);
    auto min0 = Z3D_MM(set1_ps)(extremes.min);
    auto max1 = max0;
    auto min1 = min0;
    for (; count >= 2 * kLanes; count -= 2 * kLanes, samples += 2 * kLanes) {
        const auto first = Z3D_MM(loadu_ps)(samples);
        const auto second = Z3D_MM(loadu_ps)(samples + kLanes);
        max0 = Z3D_MM(max_ps)(first, max0);
        min0 = Z3D_MM(min_ps)(first, min0);
        max1 = Z3D_MM(max_ps)(second, max1);
        min1 = Z3D_MM(min_ps)(second, min1);
    }
    float max[kLanes];
    float min[kLanes];
    Z3D_MM(storeu_ps)(max, Z3D_MM(max_ps)(max1, max0));
    Z3D_MM(storeu_ps)(min, Z3D_MM(min_ps)(min1, min0));

    // The lanes, and then the samples of the end, as further values.
    const auto take = [&](float most, float least) {
        if (most > extremes.max) extremes.max = most;
        if (least < extremes.min) extremes.min = least;
    };
    for (std::size_t lane = 0; lane < kLanes; ++lane)
        take(max[lane], min[lane]);
    for (std::size_t i = 0; i < count; ++i)
        take(samples[i], samples[i]);
    return extremes;
}

} // namespace z3d::primitives::Z3D_ISA
