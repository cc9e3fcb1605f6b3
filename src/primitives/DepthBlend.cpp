#include "primitives/DepthBlend.h"

#include "primitives/KernelTable.h"

#include <emmintrin.h>

namespace z3d::primitives {
namespace {

// The whole form counts differences in units of 2^-22.
constexpr std::int32_t kUnit = 1 << 22;

bool IsByte(float value) {
    return value >= 0.0f && value <= 255.0f && value == static_cast<float>(static_cast<std::uint8_t>(value));
}

// Whether the double form gives every byte that is blended with itself, or a little more. Doubling a byte doubles every
// step, so the odd ones tell.
bool KeepsEqualBytes(double t) {
    const __m128d weightA = _mm_set1_pd(1 - t);
    const __m128d weightB = _mm_set1_pd(t);
    const __m128d step = _mm_set1_pd(4);
    __m128d bytes = _mm_setr_pd(1, 3);
    __m128d isLess = _mm_setzero_pd();
    for (int i = 0; i < 64; ++i) {
        const __m128d v = _mm_add_pd(_mm_mul_pd(bytes, weightA), _mm_mul_pd(bytes, weightB));
        isLess = _mm_or_pd(isLess, _mm_cmplt_pd(v, bytes));
        bytes = _mm_add_pd(bytes, step);
    }
    return _mm_movemask_pd(isLess) == 0;
}

// The smallest difference whose product with the weight comes close to an integer, without being 0; 256 if none does.
std::int32_t FirstNearInteger(std::int32_t weight) {
    // The distance of the exact product from an integer is to be above 2^-13, 512 units. The rounding of the weight
    // moves a product by up to 128.
    constexpr std::uint32_t kNear = 512 + 128;
    std::uint32_t product = kNear;
    for (std::int32_t difference = 1; difference < 256; ++difference) {
        product += static_cast<std::uint32_t>(weight);
        if ((product & (kUnit - 1)) <= 2 * kNear) return difference;
    }
    return 256;
}

// Where whole arithmetic gives the truncated double form: truncating and then cutting to whole bounds of at least 0 is
// cutting and then truncating, so what has to agree is the integer below v.
//
// With x = a + d * t for the exact d = b - a, v is off x by less than 2^-40, and a + d * weight / 2^22 by at most
// 255 * 2^-23, below 2^-15. So both have the same integer below them where d * t is farther than 2^-13 from an
// integer. Where the weight is exactly t, all three are the same: no product or sum has more than 53 bits. What is
// left is d = 0, where v may be a rounding below a.
ByteDepthWeights PlanBytes(const DepthBlend& blend) {
    // With this bound no value is beyond the 32-bit integers that the registers truncate to.
    const float max = blend.bounds.max > 255.0f ? 255.0f : blend.bounds.max;
    ByteDepthWeights plan = {{blend.t, blend.bounds.min, max}, 0, 0};
    if (!IsByte(blend.bounds.min) || !IsByte(max) || blend.bounds.min > max) return plan;
    // Weights, and the sixteen-bit halves that the kernels multiply with, stay below 1.
    if (!(blend.t > -0.9999 && blend.t < 0.9999) || !KeepsEqualBytes(blend.t)) return plan;

    const double units = blend.t * kUnit;
    plan.weight = static_cast<std::int32_t>(units + (units < 0 ? -0.5 : 0.5));
    plan.wholeBelow = units == plan.weight ? 256 : FirstNearInteger(plan.weight);
    return plan;
}

} // namespace

void DepthBlend::Floats(const float* a, const float* b, float* result, std::size_t count) const {
    CurrentKernels().blendFloats({t, bounds.min, bounds.max}, a, b, result, count);
}

void DepthBlend::Bytes(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* result,
                       std::size_t count) const {
    CurrentKernels().blendBytes(PlanBytes(*this), a, b, result, count);
}

} // namespace z3d::primitives
