// Single-precision values of sixteen rays, and samples as doubles.
#pragma once

#include "render/isa/Samples.h"

namespace z3d::render::Z3D_ISA {

// Sixteen numbers as doubles, in the order of the rays.
struct DoubleLanes {
    Doubles part[kRays / kDoubleLanes];
};

Z3D_INLINE Doubles FromInts(__m128i low, [[maybe_unused]] __m128i high) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Doubles>(_mm512_cvtepi32_pd(_mm256_set_m128i(high, low)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(_mm256_cvtepi32_pd(low));
#else
    return reinterpret_cast<Doubles>(_mm_cvtepi32_pd(low));
#endif
}

Z3D_INLINE DoubleLanes Widen(const Sums& sums) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i quad[4] = {_mm_unpacklo_epi16(sums.low, zero), _mm_unpackhi_epi16(sums.low, zero),
                             _mm_unpacklo_epi16(sums.high, zero), _mm_unpackhi_epi16(sums.high, zero)};
    DoubleLanes lanes;
#pragma GCC unroll 8
    for (int part = 0; part < kRays / kDoubleLanes; ++part) {
        if constexpr (kDoubleLanes == 2) {
            const __m128i pair = quad[part / 2];
            lanes.part[part] = FromInts(part % 2 == 0 ? pair : _mm_shuffle_epi32(pair, 0xEE), pair);
        } else {
            constexpr int kQuads = kDoubleLanes / 4;
            lanes.part[part] = FromInts(quad[part * kQuads], quad[part * kQuads + kQuads - 1]);
        }
    }
    return lanes;
}
Z3D_INLINE DoubleLanes Widen(Bytes bytes) {
    const __m128i zero = _mm_setzero_si128();
    return Widen(Sums{_mm_unpacklo_epi8(Raw(bytes), zero), _mm_unpackhi_epi8(Raw(bytes), zero)});
}

// Single-precision values, kept as doubles: each is stored through RoundToSingle. Like SumLanes, they can stay in
// registers, and are not aligned to whole vectors.
struct SingleLanes {
    typedef double Part __attribute__((vector_size(Z3D_VECTOR_BYTES), aligned(16), may_alias));
    Part part[kRays / kDoubleLanes];

    float Of(int ray) const { return static_cast<float>(part[ray / kDoubleLanes][ray % kDoubleLanes]); }
};

// Puts the values of the rays back that are not accepted.
template <int kLanes>
[[gnu::noinline]] void PutBack(SingleLanes (&lanes)[kLanes], const SingleLanes (&before)[kLanes],
                               Bytes accepted) {
    for (int number = 0; number < kLanes; ++number) {
        for (int ray = 0; ray < kRays; ++ray) {
            if (accepted[ray]) continue;
            const int part = ray / kDoubleLanes;
            lanes[number].part[part][ray % kDoubleLanes] = before[number].part[part][ray % kDoubleLanes];
        }
    }
}

} // namespace z3d::render::Z3D_ISA
