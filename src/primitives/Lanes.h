// The few SSE2 loads, stores and packs that the kernels share; any alignment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <emmintrin.h>

namespace z3d::primitives {

inline __m128i LoadBytes(const std::uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

inline void StoreBytes(std::uint8_t* to, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
}

// The load and store of whole registers move bits: a signalling NaN stays one.
inline __m128 LoadFloats(const std::uint8_t* from) { return _mm_castsi128_ps(LoadBytes(from)); }

inline void StoreFloats(std::uint8_t* to, __m128 floats) { StoreBytes(to, _mm_castps_si128(floats)); }

// Two floats as doubles, straight from memory: no shuffle for the upper half of a register.
inline __m128d LoadDoubles(const std::uint8_t* from) {
    return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from))));
}

inline __m128d LoadDoubles(const float* from) {
    return LoadDoubles(reinterpret_cast<const std::uint8_t*>(from));
}

// Two pairs of doubles as four floats, each rounded once.
inline __m128 RoundToFloats(__m128d low, __m128d high) {
    return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
}

// Sixteen 32-bit integers as bytes; what is below 0 gives 0, what is above 255 gives 255.
inline __m128i SaturateToBytes(__m128i a, __m128i b, __m128i c, __m128i d) {
    return _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
}

} // namespace z3d::primitives
