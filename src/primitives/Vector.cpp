// The rule for both operations is double arithmetic, rounded once into the element. Single-precision
// arithmetic gives the same bits: the product of two floats is exact in double, and for a sum the 53 bits of
// a double are at least twice 24 plus two, so that rounding to double first cannot change the rounding to
// float.
#include "primitives/Vector.h"

#include "primitives/Blocks.h"
#include "primitives/Lanes.h"

#include <cmath>
#include <cstring>

namespace z3d::primitives {
namespace {

template <__m128 (*Operation)(__m128, __m128)>
struct ConstantKernel {
    static constexpr std::size_t kSourceBytes = 4;
    static constexpr std::size_t kDestinationBytes = 4;
    float value;

    [[gnu::always_inline]] void operator()(const std::uint8_t* source, std::uint8_t* destination) const {
        const __m128 constant = _mm_set1_ps(value);
        for (std::size_t i = 0; i < 4 * kBlock; i += 16)
            StoreFloats(destination + i, Operation(LoadFloats(source + i), constant));
    }
};

inline __m128 Multiply(__m128 a, __m128 b) { return _mm_mul_ps(a, b); }
inline __m128 Add(__m128 a, __m128 b) { return _mm_add_ps(a, b); }

Status CheckVector(const float* data, std::int32_t length) {
    return data == nullptr ? StatusNullPointer : CheckLength(length);
}

} // namespace

Status VecCopy32f(const float* source, float* destination, std::int32_t length) {
    if (source == nullptr) return StatusNullPointer;
    const Status status = CheckVector(destination, length);
    if (status != StatusNoError) return status;

    std::memcpy(destination, source, static_cast<std::size_t>(length) * sizeof(float));
    return StatusNoError;
}

Status VecMulC32fInPlace(float value, float* data, std::int32_t length) {
    const Status status = CheckVector(data, length);
    if (status != StatusNoError || std::isnan(value) || value == 1.0f) return status;

    const std::size_t count = static_cast<std::size_t>(length);
    if (value == 0.0f)
        std::memset(data, 0, count * sizeof(float));
    else
        MapRegion(ConstantKernel<Multiply>{value}, data, 1, data, 1, count, 1);
    return StatusNoError;
}

Status VecAddC32fInPlace(float value, float* data, std::int32_t length) {
    const Status status = CheckVector(data, length);
    if (status != StatusNoError || std::isnan(value) || value == 0.0f) return status;

    MapRegion(ConstantKernel<Add>{value}, data, 1, data, 1, static_cast<std::size_t>(length), 1);
    return StatusNoError;
}

} // namespace z3d::primitives
