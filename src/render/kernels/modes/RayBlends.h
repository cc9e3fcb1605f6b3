// Single-precision values of sixteen rays, and samples as doubles.
#pragma once

#include "render/Traversal.h"
#include "render/kernels/vector/RayFloats.h"
#include "render/kernels/vector/Vector.h"

namespace z3d::render::Z3D_ISA {

// Sixteen numbers as doubles, in the order of the rays.
struct RayDoubles {
    static constexpr int kParts = kRays / kDoubleLanes;
    Doubles part[kParts];
};

// As many integers as there are double lanes: the low half of `low`, all of it, or both.
Z3D_INLINE Doubles FromInts(__m128i low, [[maybe_unused]] __m128i high) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Doubles>(_mm512_cvtepi32_pd(_mm256_set_m128i(high, low)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(_mm256_cvtepi32_pd(low));
#else
    return reinterpret_cast<Doubles>(_mm_cvtepi32_pd(low));
#endif
}

// Numbers without sign; their 32-bit integers are formed four at a time first.
Z3D_INLINE RayDoubles ToDoubles(const Sums& sums) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i quad[4] = {_mm_unpacklo_epi16(sums.low, zero), _mm_unpackhi_epi16(sums.low, zero),
                             _mm_unpacklo_epi16(sums.high, zero), _mm_unpackhi_epi16(sums.high, zero)};
    RayDoubles doubles;
#pragma GCC unroll 8
    for (int part = 0; part < RayDoubles::kParts; ++part) {
        if constexpr (kDoubleLanes == 2) {
            const __m128i pair = quad[part / 2];
            doubles.part[part] = FromInts(part % 2 == 0 ? pair : _mm_shuffle_epi32(pair, 0xEE), pair);
        } else {
            constexpr int kQuads = kDoubleLanes / 4;
            doubles.part[part] = FromInts(quad[part * kQuads], quad[part * kQuads + kQuads - 1]);
        }
    }
    return doubles;
}
Z3D_INLINE RayDoubles ToDoubles(Bytes bytes) { return ToDoubles(Widen(bytes)); }

// Single-precision values, kept as doubles: each is stored through RoundToSingle. Like RaySums, they can stay in
// registers, and are not aligned to whole vectors.
struct RayBlends {
    typedef double Part __attribute__((vector_size(Z3D_VECTOR_BYTES), aligned(16), may_alias));
    Part part[RayDoubles::kParts];

    Z3D_INLINE float Of(int ray) const {
        return static_cast<float>(part[ray / kDoubleLanes][ray % kDoubleLanes]);
    }
    // Exact: every part is a single-precision value.
    Z3D_INLINE RayFloats Values() const {
        float values[kRays];
        for (int index = 0; index < RayDoubles::kParts; ++index)
            StoreSingle(values + index * kDoubleLanes, part[index]);
        return LoadRayFloats(values);
    }
    Z3D_INLINE void Set(int ray, double value) { part[ray / kDoubleLanes][ray % kDoubleLanes] = value; }
};

} // namespace z3d::render::Z3D_ISA
