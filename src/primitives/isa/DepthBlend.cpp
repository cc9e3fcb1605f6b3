// The weighted mean of two slices. See DepthWeights.h.
#include "primitives/isa/Kernels.h"

#include <cstring>

namespace z3d::primitives::Z3D_ISA {
namespace {

// A register of doubles at a time.
class Blend {
public:
    explicit Blend(const DepthWeights& weights)
        : weightA_(Z3D_MM(set1_pd)(1 - weights.t)),
          weightB_(Z3D_MM(set1_pd)(weights.t)),
          min_(Z3D_MM(set1_pd)(weights.min)),
          max_(Z3D_MM(set1_pd)(weights.max)) {}

    // MAXPD and MINPD give their second operand when the first is not greater (smaller) or either is a NaN.
    Z3D_INLINE Doubles operator()(Doubles a, Doubles b) const {
        const Doubles v = Z3D_MM(add_pd)(Z3D_MM(mul_pd)(a, weightA_), Z3D_MM(mul_pd)(b, weightB_));
        return Z3D_MM(min_pd)(max_, Z3D_MM(max_pd)(min_, v));
    }

#if defined(__AVX2__)
    Z3D_INLINE __m128 Four(__m128 a, __m128 b) const {
        return _mm256_cvtpd_ps((*this)(_mm256_cvtps_pd(a), _mm256_cvtps_pd(b)));
    }
    // 32-bit integers, truncated.
    Z3D_INLINE __m128i Four(__m128i a, __m128i b) const {
        return _mm256_cvttpd_epi32((*this)(_mm256_cvtepi32_pd(a), _mm256_cvtepi32_pd(b)));
    }
#else
    Z3D_INLINE __m128 Four(__m128 a, __m128 b) const {
        const __m128d low = (*this)(_mm_cvtps_pd(a), _mm_cvtps_pd(b));
        const __m128d high = (*this)(_mm_cvtps_pd(_mm_movehl_ps(a, a)), _mm_cvtps_pd(_mm_movehl_ps(b, b)));
        return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
    }
    Z3D_INLINE __m128i Four(__m128i a, __m128i b) const {
        const __m128d low = (*this)(_mm_cvtepi32_pd(a), _mm_cvtepi32_pd(b));
        const __m128d high =
            (*this)(_mm_cvtepi32_pd(_mm_unpackhi_epi64(a, a)), _mm_cvtepi32_pd(_mm_unpackhi_epi64(b, b)));
        return _mm_unpacklo_epi64(_mm_cvttpd_epi32(low), _mm_cvttpd_epi32(high));
    }
#endif

private:
    Doubles weightA_, weightB_, min_, max_;
};

Z3D_INLINE __m128i FourBytes(const std::uint8_t* from) {
    std::int32_t bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    const __m128i zero = _mm_setzero_si128();
    return _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), zero), zero);
}

// A register's worth of bytes by the double form.
void BlendExactly(const Blend& blend, const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* to) {
    for (std::size_t i = 0; i < kRegisterBytes; i += 4) {
        const __m128i four = blend.Four(FourBytes(a + i), FourBytes(b + i));
        const __m128i words = _mm_packs_epi32(four, four);
        const std::int32_t bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        std::memcpy(to + i, &bytes, sizeof bytes);
    }
}

// The whole form. A difference of bytes times a weight of 23 bits is formed by one multiplication of pairs:
// (d * 128) * high + d * low, with weight = 128 * high + low.
class WholeBlend {
public:
    explicit WholeBlend(const ByteDepthWeights& blend)
        : top_(Bytes(blend.wholeBelow - 1)),
          min_(Bytes(static_cast<std::int32_t>(blend.weights.min))),
          max_(Bytes(static_cast<std::int32_t>(blend.weights.max))) {
        const std::int32_t low = ((blend.weight + 64) & 127) - 64;
        const std::int32_t high = (blend.weight - low) / 128;
        weights_ = Z3D_MM(set1_epi32)(static_cast<std::int32_t>(
            static_cast<std::uint32_t>(low) << 16 | (static_cast<std::uint32_t>(high) & 0xFFFF)));
    }

    // False, with nothing stored, when some difference is too large for it.
    Z3D_INLINE bool Try(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* to) const {
        const Integers bytesA = Load(a);
        const Integers bytesB = Load(b);
        const Integers distance = Or(Z3D_MM(subs_epu8)(bytesA, bytesB), Z3D_MM(subs_epu8)(bytesB, bytesA));
        if (AnySet(Z3D_MM(subs_epu8)(distance, top_))) return false;

        const Integers low =
            Words(Z3D_MM(unpacklo_epi8)(bytesA, Zeroes()), Z3D_MM(unpacklo_epi8)(bytesB, Zeroes()));
        const Integers high =
            Words(Z3D_MM(unpackhi_epi8)(bytesA, Zeroes()), Z3D_MM(unpackhi_epi8)(bytesB, Zeroes()));
        const Integers blended = Z3D_MM(packus_epi16)(low, high);
        Store(to, Z3D_MM(min_epu8)(max_, Z3D_MM(max_epu8)(min_, blended)));
        return true;
    }

private:
    static Integers Bytes(std::int32_t value) { return Z3D_MM(set1_epi8)(static_cast<char>(value)); }

    Z3D_INLINE Integers Words(Integers a, Integers b) const {
        const Integers d = Z3D_MM(sub_epi16)(b, a);
        const Integers times128 = Z3D_MM(slli_epi16)(d, 7);
        const Integers low = Z3D_MM(madd_epi16)(Z3D_MM(unpacklo_epi16)(times128, d), weights_);
        const Integers high = Z3D_MM(madd_epi16)(Z3D_MM(unpackhi_epi16)(times128, d), weights_);
        return Z3D_MM(add_epi16)(
            a, Z3D_MM(packs_epi32)(Z3D_MM(srai_epi32)(low, 22), Z3D_MM(srai_epi32)(high, 22)));
    }

    Integers top_, min_, max_, weights_;
};

// Not inlined: the end of a slice takes the same code.
[[gnu::noinline]] void BlendRegisters(const ByteDepthWeights& weights, const std::uint8_t* a,
                                      const std::uint8_t* b, std::uint8_t* to, std::size_t registers) {
    const Blend blend(weights.weights);
    const WholeBlend wholeBlend(weights);
    const bool isWhole = weights.wholeBelow > 0;
    for (; registers != 0; --registers) {
        if (!isWhole || !wholeBlend.Try(a, b, to)) BlendExactly(blend, a, b, to);
        a += kRegisterBytes;
        b += kRegisterBytes;
        to += kRegisterBytes;
    }
}

} // namespace

void BlendBytes(const ByteDepthWeights& weights, const std::uint8_t* a, const std::uint8_t* b,
                std::uint8_t* to, std::size_t count) {
    BlendRegisters(weights, a, b, to, count / kRegisterBytes);

    // The end goes through whole registers of scratch: the same arithmetic, nothing beyond the slices.
    const std::size_t rest = count % kRegisterBytes;
    if (rest != 0) {
        std::uint8_t restA[kRegisterBytes] = {};
        std::uint8_t restB[kRegisterBytes] = {};
        std::uint8_t blended[kRegisterBytes];
        std::memcpy(restA, a + (count - rest), rest);
        std::memcpy(restB, b + (count - rest), rest);
        BlendRegisters(weights, restA, restB, blended, 1);
        std::memcpy(to + (count - rest), blended, rest);
    }
}

void BlendFloats(const DepthWeights& weights, const float* a, const float* b, float* to, std::size_t count) {
    const Blend blend(weights);
    for (; count >= 4; count -= 4, a += 4, b += 4, to += 4)
        _mm_storeu_ps(to, blend.Four(_mm_loadu_ps(a), _mm_loadu_ps(b)));
    if (count != 0) {
        float restA[4] = {};
        float restB[4] = {};
        std::memcpy(restA, a, 4 * count);
        std::memcpy(restB, b, 4 * count);
        _mm_storeu_ps(restA, blend.Four(_mm_loadu_ps(restA), _mm_loadu_ps(restB)));
        std::memcpy(to, restA, 4 * count);
    }
}

} // namespace z3d::primitives::Z3D_ISA
