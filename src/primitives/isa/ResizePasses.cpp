// The passes of the bilinear blend whose form depends on the instruction set. See ResizePasses.h.
#include "primitives/isa/Kernels.h"

#include <cstring>

namespace z3d::primitives::Z3D_ISA {
namespace {

constexpr std::int32_t kOne = 16384; // the weight 1

// The register's worth of 16-bit samples: upper * (1 - w) + lower * w, rounded to whole units.
Z3D_INLINE Integers BlendWords(const std::int16_t* upper, const std::int16_t* lower, Integers weights) {
    const Integers u = Load(upper);
    const Integers l = Load(lower);
    const Integers half = Z3D_MM(set1_epi32)(1 << 19);
    const Integers low = Z3D_MM(madd_epi16)(Z3D_MM(unpacklo_epi16)(u, l), weights);
    const Integers high = Z3D_MM(madd_epi16)(Z3D_MM(unpackhi_epi16)(u, l), weights);
    return Z3D_MM(packs_epi32)(Z3D_MM(srai_epi32)(Z3D_MM(add_epi32)(low, half), 20),
                               Z3D_MM(srai_epi32)(Z3D_MM(add_epi32)(high, half), 20));
}

// A double register's worth of samples: lower * f + upper * (1 - f).
Z3D_INLINE auto BlendDoubles(const double* upper, const double* lower, Doubles weight, Doubles rest) {
    return Z3D_MM(cvtpd_ps)(Z3D_MM(add_pd)(Z3D_MM(mul_pd)(Z3D_MM(loadu_pd)(lower), weight),
                                           Z3D_MM(mul_pd)(Z3D_MM(loadu_pd)(upper), rest)));
}

} // namespace

// A row's last register goes back to lie within the row. A row shorter than a register is read whole, as intermediates
// are padded, and written through scratch.
void BlendByteRows(const std::int16_t* upper, const std::int16_t* lower, std::int32_t weight,
                   std::uint8_t* to, std::size_t count) {
    constexpr std::size_t kHalf = kRegisterBytes / 2;
    const Integers weights = Z3D_MM(set1_epi32)((weight << 16) | (kOne - weight));
    const auto blended = [&](std::size_t x) {
        return InOrder(Z3D_MM(packus_epi16)(BlendWords(upper + x, lower + x, weights),
                                            BlendWords(upper + x + kHalf, lower + x + kHalf, weights)));
    };
    if (count >= kRegisterBytes) {
        const std::size_t last = count - kRegisterBytes;
        for (std::size_t x = 0; x < last; x += kRegisterBytes)
            Store(to + x, blended(x));
        Store(to + last, blended(last));
    } else {
        std::uint8_t samples[kRegisterBytes];
        Store(samples, blended(0));
        std::memcpy(to, samples, count);
    }
}

void BlendFloatRows(const double* upper, const double* lower, double weight, std::uint8_t* to,
                    std::size_t count) {
    constexpr std::size_t kAtATime = sizeof(Doubles) / sizeof(double);
    const Doubles weights = Z3D_MM(set1_pd)(weight);
    const Doubles rests = Z3D_MM(set1_pd)(1.0 - weight);
    const auto blend = [&](std::size_t x, std::size_t samples) {
        const auto blended = BlendDoubles(upper + x, lower + x, weights, rests);
        std::memcpy(to + 4 * x, &blended, 4 * samples);
    };
    if (count >= kAtATime) {
        const std::size_t last = count - kAtATime;
        for (std::size_t x = 0; x < last; x += kAtATime)
            blend(x, kAtATime);
        blend(last, kAtATime);
    } else {
        blend(0, count);
    }
}

#if defined(__AVX2__)
// A shuffle widens the pairs of eight columns to 16 bits, four columns in each half.
void BlendByteColumns(const std::uint8_t* row, const ByteColumnGroup* groups, const ByteColumnWeight* weights,
                      std::int16_t* to, std::size_t count) {
    const __m256i half = _mm256_set1_epi32(128);
    const auto eight = [&](const ByteColumnGroup& group, const ByteColumnWeight* weight) {
        const __m128i loaded = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + group.first));
        const __m256i pairs = _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(loaded), Load(group.shuffle));
        const __m256i sums = _mm256_madd_epi16(pairs, Load(weight));
        return _mm256_srai_epi32(_mm256_add_epi32(sums, half), 8);
    };
    for (std::size_t x = 0; x < count; x += 16, groups += 2) {
        const __m256i first = eight(groups[0], weights + x);
        const __m256i second = eight(groups[1], weights + x + 8);
        Store(to + x, InOrder(_mm256_packs_epi32(first, second)));
    }
}

void BlendFloatColumns(const std::uint8_t* row, const FloatColumnGroup* groups, const double* fractions,
                       double* to, std::size_t count) {
    const auto* samples = reinterpret_cast<const float*>(row);
    for (std::size_t x = 0; x < count; x += 4, ++groups) {
        const __m256 pairs =
            _mm256_permutevar8x32_ps(_mm256_loadu_ps(samples + groups->first), Load(groups->permutation));
        const __m256d a = _mm256_cvtps_pd(_mm256_castps256_ps128(pairs));
        const __m256d b = _mm256_cvtps_pd(_mm256_extractf128_ps(pairs, 1));
        const __m256d blended =
            _mm256_add_pd(a, _mm256_mul_pd(_mm256_sub_pd(b, a), _mm256_loadu_pd(fractions + x)));
        _mm256_storeu_pd(to + x, _mm256_cvtps_pd(_mm256_cvtpd_ps(blended)));
    }
}
#endif

} // namespace z3d::primitives::Z3D_ISA
