// Three registers whose elements are to be taken in turn: a0 b0 c0 a1 b1 c1 ...
#pragma once

#include "primitives/Lanes.h"

#include <cstdint>
#include <emmintrin.h>

namespace z3d::primitives {

struct Triple {
    __m128i a, b, c;
};

// Pairs up neighbours of the wanted order, so that what remains to be interleaved is elements twice as wide.
// With each register cut into pairs of elements (even, odd), the wanted order is
//   a.even b.even | c.even a.odd | b.odd c.odd | ...
// and these three kinds of pairs are the new a, b and c; the even element is the lower half of a pair.
inline Triple PairBytes(const Triple& t) {
    const __m128i even = _mm_set1_epi16(0x00FF);
    return {_mm_or_si128(_mm_and_si128(t.a, even), _mm_slli_epi16(t.b, 8)),
            _mm_or_si128(_mm_and_si128(t.c, even), _mm_andnot_si128(even, t.a)),
            _mm_or_si128(_mm_srli_epi16(t.b, 8), _mm_andnot_si128(even, t.c))};
}

inline Triple PairWords(const Triple& t) {
    const __m128i even = _mm_set1_epi32(0x0000FFFF);
    return {_mm_or_si128(_mm_and_si128(t.a, even), _mm_slli_epi32(t.b, 16)),
            _mm_or_si128(_mm_and_si128(t.c, even), _mm_andnot_si128(even, t.a)),
            _mm_or_si128(_mm_srli_epi32(t.b, 16), _mm_andnot_si128(even, t.c))};
}

// The last step, for 32-bit elements: a0 b0 c0 a1 | b1 c1 a2 b2 | c2 a3 b3 c3. Shuffles only move bits, so
// any element survives, a signalling NaN too.
[[gnu::always_inline]] inline void StoreInterleaved32(const Triple& t, std::uint8_t* to) {
    const __m128 a = _mm_castsi128_ps(t.a);
    const __m128 b = _mm_castsi128_ps(t.b);
    const __m128 c = _mm_castsi128_ps(t.c);
    const __m128 ab01 = _mm_unpacklo_ps(a, b);
    const __m128 ab23 = _mm_unpackhi_ps(a, b);
    const __m128 c0a1 = _mm_shuffle_ps(c, ab01, _MM_SHUFFLE(2, 2, 0, 0));
    const __m128 b1c1 = _mm_shuffle_ps(ab01, c, _MM_SHUFFLE(1, 1, 3, 3));
    const __m128 c2a3 = _mm_shuffle_ps(c, ab23, _MM_SHUFFLE(2, 2, 2, 2));
    const __m128 b3c3 = _mm_shuffle_ps(ab23, c, _MM_SHUFFLE(3, 3, 3, 3));
    StoreFloats(to, _mm_shuffle_ps(ab01, c0a1, _MM_SHUFFLE(2, 0, 1, 0)));
    StoreFloats(to + 16, _mm_shuffle_ps(b1c1, ab23, _MM_SHUFFLE(1, 0, 2, 0)));
    StoreFloats(to + 32, _mm_shuffle_ps(c2a3, b3c3, _MM_SHUFFLE(2, 0, 2, 0)));
}

[[gnu::always_inline]] inline void StoreInterleaved8(const Triple& t, std::uint8_t* to) {
    StoreInterleaved32(PairWords(PairBytes(t)), to);
}

} // namespace z3d::primitives
