#include "volume/DepthBlend.h"

#include <cstring>
#include <emmintrin.h>

namespace z3d::volume {
namespace {

// Two samples at a time.
class Pair {
public:
    explicit Pair(const DepthBlend& blend)
        : weightA_(_mm_set1_pd(1 - blend.t)),
          weightB_(_mm_set1_pd(blend.t)),
          min_(_mm_set1_pd(blend.bounds.min)),
          max_(_mm_set1_pd(blend.bounds.max)) {}

    // MAXPD and MINPD give their second operand when the first is not greater (smaller) or either is a NaN.
    __m128d operator()(__m128d a, __m128d b) const {
        const __m128d v = _mm_add_pd(_mm_mul_pd(a, weightA_), _mm_mul_pd(b, weightB_));
        return _mm_min_pd(max_, _mm_max_pd(min_, v));
    }

private:
    __m128d weightA_, weightB_, min_, max_;
};

__m128 UpperHalf(__m128 floats) { return _mm_movehl_ps(floats, floats); }

__m128 BlendFour(const Pair& blend, const float* a, const float* b) {
    const __m128 fourA = _mm_loadu_ps(a);
    const __m128 fourB = _mm_loadu_ps(b);
    const __m128d low = blend(_mm_cvtps_pd(fourA), _mm_cvtps_pd(fourB));
    const __m128d high = blend(_mm_cvtps_pd(UpperHalf(fourA)), _mm_cvtps_pd(UpperHalf(fourB)));
    return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
}

// Four samples in 32-bit lanes, truncated to integers.
__m128i BlendFour(const Pair& blend, __m128i a, __m128i b) {
    const __m128d low = blend(_mm_cvtepi32_pd(a), _mm_cvtepi32_pd(b));
    const __m128d high =
        blend(_mm_cvtepi32_pd(_mm_unpackhi_epi64(a, a)), _mm_cvtepi32_pd(_mm_unpackhi_epi64(b, b)));
    return _mm_unpacklo_epi64(_mm_cvttpd_epi32(low), _mm_cvttpd_epi32(high));
}

// Eight samples in 16-bit lanes.
__m128i BlendEight(const Pair& blend, __m128i a, __m128i b) {
    const __m128i zero = _mm_setzero_si128();
    return _mm_packs_epi32(BlendFour(blend, _mm_unpacklo_epi16(a, zero), _mm_unpacklo_epi16(b, zero)),
                           BlendFour(blend, _mm_unpackhi_epi16(a, zero), _mm_unpackhi_epi16(b, zero)));
}

void BlendSixteen(const Pair& blend, const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* result) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i bytesA = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a));
    const __m128i bytesB = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b));
    const __m128i low = BlendEight(blend, _mm_unpacklo_epi8(bytesA, zero), _mm_unpacklo_epi8(bytesB, zero));
    const __m128i high = BlendEight(blend, _mm_unpackhi_epi8(bytesA, zero), _mm_unpackhi_epi8(bytesB, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(result), _mm_packus_epi16(low, high));
}

} // namespace

void DepthBlend::Floats(const float* a, const float* b, float* result, std::size_t count) const {
    const Pair blend(*this);
    const std::size_t whole = count - count % 4;
    for (std::size_t i = 0; i < whole; i += 4)
        _mm_storeu_ps(result + i, BlendFour(blend, a + i, b + i));

    if (whole == count) return;

    // The end goes through whole registers of scratch: the same arithmetic, nothing beyond the slices.
    const std::size_t restBytes = (count - whole) * sizeof(float);
    float restA[4] = {};
    float restB[4] = {};
    std::memcpy(restA, a + whole, restBytes);
    std::memcpy(restB, b + whole, restBytes);
    _mm_storeu_ps(restA, BlendFour(blend, restA, restB));
    std::memcpy(result + whole, restA, restBytes);
}

void DepthBlend::Bytes(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* result,
                       std::size_t count) const {
    // With this bound no value is beyond the 32-bit integers that the registers truncate to.
    DepthBlend bounded = *this;
    if (bounded.bounds.max > 255.0f) bounded.bounds.max = 255.0f;
    const Pair blend(bounded);
    const std::size_t whole = count - count % 16;
    for (std::size_t i = 0; i < whole; i += 16)
        BlendSixteen(blend, a + i, b + i, result + i);
    if (whole == count) return;

    std::uint8_t restA[16] = {};
    std::uint8_t restB[16] = {};
    std::memcpy(restA, a + whole, count - whole);
    std::memcpy(restB, b + whole, count - whole);
    BlendSixteen(blend, restA, restB, restA);
    std::memcpy(result + whole, restA, count - whole);
}

} // namespace z3d::volume
