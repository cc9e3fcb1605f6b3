// Why the processor's own conversion is exact here. Half-to-even is stated as: t = y + 0.5 in double, r the
// integer part of t, one less when t is an odd integer. A float (times a power of two) in (0, 255) has at
// most 24 significant bits, so t is exact from y = 2^-29 up, and below that both forms give 0. Hence t is an
// integer only for a true tie, the integer part is right everywhere else, and the result is y rounded to
// nearest, ties to even: the conversion under the rounding mode in force.
#include "primitives/Convert.h"

#include "primitives/Blocks.h"
#include "primitives/Lanes.h"

#include <limits>

namespace z3d::primitives {
namespace {

enum class Rounding { HalfToEven, TowardZero };

// Sixteen floats to bytes as they stand.
template <Rounding kRounding>
struct ConvertKernel {
    static constexpr std::size_t kSourceBytes = 4;
    static constexpr std::size_t kDestinationBytes = 1;

    // The maximum takes its second operand when the first is not a number, so that becomes 0.
    static __m128i Four(const std::uint8_t* source) {
        const __m128 bounded =
            _mm_min_ps(_mm_max_ps(LoadFloats(source), _mm_setzero_ps()), _mm_set1_ps(255.0f));
        return kRounding == Rounding::HalfToEven ? _mm_cvtps_epi32(bounded) : _mm_cvttps_epi32(bounded);
    }

    [[gnu::always_inline]] void operator()(const std::uint8_t* source, std::uint8_t* destination) const {
        StoreBytes(destination,
                   SaturateToBytes(Four(source), Four(source + 16), Four(source + 32), Four(source + 48)));
    }
};

// Sixteen floats to bytes after a multiplication in double, where a product that a float could not hold
// counts.
template <Rounding kRounding>
struct ScaledConvertKernel {
    static constexpr std::size_t kSourceBytes = 4;
    static constexpr std::size_t kDestinationBytes = 1;
    double multiplier;

    __m128i Two(__m128d values) const {
        const __m128d product = _mm_mul_pd(values, _mm_set1_pd(multiplier));
        const __m128d bounded = _mm_min_pd(_mm_max_pd(product, _mm_setzero_pd()), _mm_set1_pd(255.0));
        return kRounding == Rounding::HalfToEven ? _mm_cvtpd_epi32(bounded) : _mm_cvttpd_epi32(bounded);
    }

    __m128i Four(const std::uint8_t* source) const {
        return _mm_unpacklo_epi64(Two(LoadDoubles(source)), Two(LoadDoubles(source + 8)));
    }

    [[gnu::always_inline]] void operator()(const std::uint8_t* source, std::uint8_t* destination) const {
        StoreBytes(destination,
                   SaturateToBytes(Four(source), Four(source + 16), Four(source + 32), Four(source + 48)));
    }
};

// 2^-scaleFactor by repeated halving or doubling: 0 or infinity when it leaves the doubles' range, and from
// there on further steps change nothing.
double MultiplierFor(std::int32_t scaleFactor) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    double multiplier = 1.0;
    for (; scaleFactor > 0 && multiplier > 0.0; --scaleFactor)
        multiplier *= 0.5;
    for (; scaleFactor < 0 && multiplier < kInfinity; ++scaleFactor)
        multiplier *= 2.0;
    return multiplier;
}

} // namespace

Status VecConvert32f8uSfs(const float* source, std::uint8_t* destination, std::int32_t length,
                          std::int32_t roundingMode, std::int32_t scaleFactor) {
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    const Status status = CheckLength(length);
    if (status != StatusNoError) return status;

    const auto convert = [&](const auto& kernel) {
        MapRegion(kernel, source, 1, destination, 1, static_cast<std::size_t>(length), 1);
    };
    const bool toEven = roundingMode == kRoundHalfToEven;
    if (scaleFactor == 0) {
        toEven ? convert(ConvertKernel<Rounding::HalfToEven>{})
               : convert(ConvertKernel<Rounding::TowardZero>{});
    } else {
        const double multiplier = MultiplierFor(scaleFactor);
        toEven ? convert(ScaledConvertKernel<Rounding::HalfToEven>{multiplier})
               : convert(ScaledConvertKernel<Rounding::TowardZero>{multiplier});
    }
    return StatusNoError;
}

Status Convert32f8uC3(const float* source, std::int32_t sourceStep, std::uint8_t* destination,
                      std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                      std::int32_t roundingMode) {
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    const Status status = CheckRegion(width, height, sourceStep, destinationStep, 3 * sizeof(float));
    if (status != StatusNoError) return status;

    const std::size_t samples = 3 * static_cast<std::size_t>(width);
    if (roundingMode == kRoundHalfToEven)
        MapRegion(ConvertKernel<Rounding::HalfToEven>{}, source, sourceStep, destination, destinationStep,
                  samples, height);
    else
        MapRegion(ConvertKernel<Rounding::TowardZero>{}, source, sourceStep, destination, destinationStep,
                  samples, height);
    return StatusNoError;
}

} // namespace z3d::primitives
