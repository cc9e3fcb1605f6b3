#include "primitives/Scale.h"

#include "primitives/Blocks.h"
#include "primitives/Lanes.h"

namespace z3d::primitives {
namespace {

constexpr double kOneBy255 = 0.003921568859368563;
static_assert(kOneBy255 == 1.0f / 255.0f, "1/255 in single precision");

// A byte has only 256 results; they are computed once per call, and looked up.
class BytesToFloats {
public:
    static constexpr std::size_t kSourceBytes = 1;
    static constexpr std::size_t kDestinationBytes = 4;

    BytesToFloats(double slope, double offset) {
        for (int byte = 0; byte < 256; ++byte)
            results_[byte] = static_cast<float>(byte * slope + offset);
    }

    [[gnu::always_inline]] void operator()(const std::uint8_t* source, std::uint8_t* destination) const {
        Four(source, destination);
        Four(source + 4, destination + 16);
        Four(source + 8, destination + 32);
        Four(source + 12, destination + 48);
    }

private:
    // One store for four results: fewer stores are worth the three shuffles.
    [[gnu::always_inline]] void Four(const std::uint8_t* source, std::uint8_t* destination) const {
        const __m128 low = _mm_unpacklo_ps(At(source[0]), At(source[1]));
        const __m128 high = _mm_unpacklo_ps(At(source[2]), At(source[3]));
        StoreFloats(destination, _mm_movelh_ps(low, high));
    }

    __m128 At(std::uint8_t byte) const { return _mm_load_ss(&results_[byte]); }

    float results_[256];
};

// Below vMax, the byte is the integer part of t = x * slope + offset, one less when t is an odd integer. That
// is t - 0.5 rounded to nearest, ties to even: the subtraction is exact for 0.25 <= t < 256, an integer t
// becomes a tie between t - 1 and t, and any other t - 0.5 lies less than a half from t's integer part.
//
// At and below vMin, t stays below 1 (rounding moves the exact 0.5 by no more than 2^-18) and falls as x
// does, so the byte saturates to 0; what does not fit an integer, and what is not a number, converts to the
// most negative integer and gives 0 too. At and above vMax the comparison decides alone: with an infinite
// range t means nothing there.
struct FloatsToBytes {
    static constexpr std::size_t kSourceBytes = 4;
    static constexpr std::size_t kDestinationBytes = 1;
    double slope, offset;
    float top;

    __m128i Two(__m128d values) const {
        const __m128d t = _mm_add_pd(_mm_mul_pd(values, _mm_set1_pd(slope)), _mm_set1_pd(offset));
        return _mm_cvtpd_epi32(_mm_sub_pd(t, _mm_set1_pd(0.5)));
    }

    __m128i Four(const std::uint8_t* source) const {
        return _mm_unpacklo_epi64(Two(LoadDoubles(source)), Two(LoadDoubles(source + 8)));
    }

    // All bits set where a value reaches vMax.
    __m128i AtTop(const std::uint8_t* source) const {
        return _mm_castps_si128(_mm_cmpge_ps(LoadFloats(source), _mm_set1_ps(top)));
    }

    [[gnu::always_inline]] void operator()(const std::uint8_t* source, std::uint8_t* destination) const {
        const __m128i atTop = _mm_packs_epi16(_mm_packs_epi32(AtTop(source), AtTop(source + 16)),
                                              _mm_packs_epi32(AtTop(source + 32), AtTop(source + 48)));
        const __m128i bytes =
            SaturateToBytes(Four(source), Four(source + 16), Four(source + 32), Four(source + 48));
        StoreBytes(destination, _mm_or_si128(atTop, bytes));
    }
};

} // namespace

Status Scale8u32fC3(const std::uint8_t* source, std::int32_t sourceStep, float* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height, float vMin,
                    float vMax) {
    const double range = static_cast<double>(vMax) - static_cast<double>(vMin);
    if (!(range > 0.0)) return StatusRangeError;
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    const Status status = CheckRegion(width, height, sourceStep, destinationStep, 3 * sizeof(float));
    if (status != StatusNoError) return status;

    const double slope = range * kOneBy255;
    MapRegion(BytesToFloats(slope, vMin), source, sourceStep, destination, destinationStep,
              3 * static_cast<std::size_t>(width), height);
    return StatusNoError;
}

Status Scale32f8uC3(const float* source, std::int32_t sourceStep, std::uint8_t* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height, float vMin,
                    float vMax) {
    const double range = static_cast<double>(vMax) - static_cast<double>(vMin);
    if (!(range > 0.0)) return StatusRangeError;
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    const Status status = CheckRegion(width, height, sourceStep, destinationStep, 3 * sizeof(float));
    if (status != StatusNoError) return status;

    // The constant is formed first and added after the product: (x - vMin) * slope differs in the last bit.
    const double slope = 255.0 / range;
    const double offset = 0.5 - slope * static_cast<double>(vMin);
    MapRegion(FloatsToBytes{slope, offset, vMax}, source, sourceStep, destination, destinationStep,
              3 * static_cast<std::size_t>(width), height);
    return StatusNoError;
}

} // namespace z3d::primitives
