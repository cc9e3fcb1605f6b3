// The few vector types of the kernels, at the width of the instruction set that the file is compiled for.
// Everything here lives in a namespace of that instruction set and is inlined, so that no function compiled
// with newer instructions can stand in for a baseline one.
#pragma once

#include "render/voxels/Bytes.h"

#include <cstdint>

#include <immintrin.h>

#if defined(__AVX512F__) && defined(__AVX512DQ__) && defined(__AVX512VL__) && defined(__AVX512BW__)
#define Z3D_ISA avx512
#define Z3D_VECTOR_BYTES 64
#elif defined(__AVX2__)
#define Z3D_ISA avx2
#define Z3D_VECTOR_BYTES 32
#else
#define Z3D_ISA sse2
#define Z3D_VECTOR_BYTES 16
#endif

namespace z3d::render::Z3D_ISA {

typedef float Floats __attribute__((vector_size(Z3D_VECTOR_BYTES), may_alias));
typedef std::int32_t Ints __attribute__((vector_size(Z3D_VECTOR_BYTES), may_alias));
typedef std::uint32_t Uints __attribute__((vector_size(Z3D_VECTOR_BYTES), may_alias));
typedef double Doubles __attribute__((vector_size(Z3D_VECTOR_BYTES), may_alias));
typedef std::int64_t LongMask __attribute__((vector_size(Z3D_VECTOR_BYTES), may_alias));

constexpr int kFloatLanes = Z3D_VECTOR_BYTES / 4;
constexpr int kDoubleLanes = Z3D_VECTOR_BYTES / 8;

using render::AnySet;

// Unaligned, as all loads and stores here.
Z3D_INLINE Floats LoadFloats(const float* from) {
    Floats value;
    __builtin_memcpy(&value, from, sizeof value);
    return value;
}
Z3D_INLINE Doubles LoadDoubles(const double* from) {
    Doubles value;
    __builtin_memcpy(&value, from, sizeof value);
    return value;
}
Z3D_INLINE Uints LoadUints(const std::uint32_t* from) {
    Uints value;
    __builtin_memcpy(&value, from, sizeof value);
    return value;
}
Z3D_INLINE void Store(float* to, Floats value) { __builtin_memcpy(to, &value, sizeof value); }
Z3D_INLINE void Store(std::uint32_t* to, Uints value) { __builtin_memcpy(to, &value, sizeof value); }
Z3D_INLINE Floats AllFloats(float value) { return value - Floats{}; }
Z3D_INLINE Doubles AllDoubles(double value) { return value - Doubles{}; }

// Smaller and larger of two floats; the second one where the first is NaN.
Z3D_INLINE Floats Min(Floats a, Floats b) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Floats>(_mm512_min_ps(reinterpret_cast<__m512>(a), reinterpret_cast<__m512>(b)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Floats>(_mm256_min_ps(reinterpret_cast<__m256>(a), reinterpret_cast<__m256>(b)));
#else
    return reinterpret_cast<Floats>(_mm_min_ps(reinterpret_cast<__m128>(a), reinterpret_cast<__m128>(b)));
#endif
}
Z3D_INLINE Floats Max(Floats a, Floats b) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Floats>(_mm512_max_ps(reinterpret_cast<__m512>(a), reinterpret_cast<__m512>(b)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Floats>(_mm256_max_ps(reinterpret_cast<__m256>(a), reinterpret_cast<__m256>(b)));
#else
    return reinterpret_cast<Floats>(_mm_max_ps(reinterpret_cast<__m128>(a), reinterpret_cast<__m128>(b)));
#endif
}

// Where a > b, for numbers. In this form SSE2 needs no copy of b.
Z3D_INLINE Ints IsAbove(Floats a, Floats b) {
#if Z3D_VECTOR_BYTES == 16
    return reinterpret_cast<Ints>(_mm_cmpnle_ps(reinterpret_cast<__m128>(a), reinterpret_cast<__m128>(b)));
#else
    return a > b;
#endif
}

// Truncation; the values must lie in the range of a 32-bit integer.
Z3D_INLINE Ints Truncate(Floats value) { return __builtin_convertvector(value, Ints); }
Z3D_INLINE Floats ToFloats(Ints value) { return __builtin_convertvector(value, Floats); }

// The sum of the products of the lower and of the upper halves of each word, which count as signed.
Z3D_INLINE Ints MultiplyHalves(Ints a, Ints b) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Ints>(
        _mm512_madd_epi16(reinterpret_cast<__m512i>(a), reinterpret_cast<__m512i>(b)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Ints>(
        _mm256_madd_epi16(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
#else
    return reinterpret_cast<Ints>(_mm_madd_epi16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#endif
}

// row * width + column, for rows and widths below 2^15: upper halves are 0.
Z3D_INLINE Ints FactorsFor(std::uint32_t width) { return static_cast<std::int32_t>(width) - Ints{}; }
Z3D_INLINE Uints RowTimesWidth(Ints row, Ints column, Ints factors) {
    return reinterpret_cast<Uints>(MultiplyHalves(row, factors) + column);
}

// The value after a round trip through single precision.
Z3D_INLINE Doubles RoundToSingle(Doubles value) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Doubles>(_mm512_cvtps_pd(_mm512_cvtpd_ps(reinterpret_cast<__m512d>(value))));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(_mm256_cvtps_pd(_mm256_cvtpd_ps(reinterpret_cast<__m256d>(value))));
#else
    return reinterpret_cast<Doubles>(_mm_cvtps_pd(_mm_cvtpd_ps(reinterpret_cast<__m128d>(value))));
#endif
}

// Stores the lanes rounded to single precision.
Z3D_INLINE void StoreSingle(float* to, Doubles value) {
#if Z3D_VECTOR_BYTES == 64
    _mm256_storeu_ps(to, _mm512_cvtpd_ps(reinterpret_cast<__m512d>(value)));
#elif Z3D_VECTOR_BYTES == 32
    _mm_storeu_ps(to, _mm256_cvtpd_ps(reinterpret_cast<__m256d>(value)));
#else
    _mm_storel_pi(reinterpret_cast<__m64*>(to), _mm_cvtpd_ps(reinterpret_cast<__m128d>(value)));
#endif
}
// Loads as many floats as there are double lanes.
Z3D_INLINE Doubles LoadAsDoubles(const float* from) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Doubles>(_mm512_cvtps_pd(_mm256_loadu_ps(from)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(_mm256_cvtps_pd(_mm_loadu_ps(from)));
#else
    return reinterpret_cast<Doubles>(
        _mm_cvtps_pd(_mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(from))));
#endif
}
Z3D_INLINE Doubles LoadAsDoubles(const std::int32_t* from) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Doubles>(
        _mm512_cvtepi32_pd(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from))));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(
        _mm256_cvtepi32_pd(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from))));
#else
    return reinterpret_cast<Doubles>(
        _mm_cvtepi32_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from))));
#endif
}
// Truncates the lanes and stores them as 32-bit integers; the values must fit.
Z3D_INLINE void StoreTruncated(std::int32_t* to, Doubles value) {
#if Z3D_VECTOR_BYTES == 64
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to),
                        _mm512_cvttpd_epi32(reinterpret_cast<__m512d>(value)));
#elif Z3D_VECTOR_BYTES == 32
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_cvttpd_epi32(reinterpret_cast<__m256d>(value)));
#else
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_cvttpd_epi32(reinterpret_cast<__m128d>(value)));
#endif
}

// As Min and Max of floats.
Z3D_INLINE Doubles MinDoubles(Doubles a, Doubles b) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Doubles>(
        _mm512_min_pd(reinterpret_cast<__m512d>(a), reinterpret_cast<__m512d>(b)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(
        _mm256_min_pd(reinterpret_cast<__m256d>(a), reinterpret_cast<__m256d>(b)));
#else
    return reinterpret_cast<Doubles>(_mm_min_pd(reinterpret_cast<__m128d>(a), reinterpret_cast<__m128d>(b)));
#endif
}
Z3D_INLINE Doubles MaxDoubles(Doubles a, Doubles b) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Doubles>(
        _mm512_max_pd(reinterpret_cast<__m512d>(a), reinterpret_cast<__m512d>(b)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(
        _mm256_max_pd(reinterpret_cast<__m256d>(a), reinterpret_cast<__m256d>(b)));
#else
    return reinterpret_cast<Doubles>(_mm_max_pd(reinterpret_cast<__m128d>(a), reinterpret_cast<__m128d>(b)));
#endif
}

// The integer part; the values must fit into 32 bits.
Z3D_INLINE Doubles Whole(Doubles value) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Doubles>(
        _mm512_roundscale_pd(reinterpret_cast<__m512d>(value), _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Doubles>(
        _mm256_round_pd(reinterpret_cast<__m256d>(value), _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC));
#else
    return reinterpret_cast<Doubles>(_mm_cvtepi32_pd(_mm_cvttpd_epi32(reinterpret_cast<__m128d>(value))));
#endif
}

// Where the mask is set the first value, else the second.
// By bits: masks are all ones or all zeroes, and SSE2 has no comparison of 64-bit integers to test them with.
Z3D_INLINE Doubles Select(LongMask mask, Doubles set, Doubles clear) {
    return reinterpret_cast<Doubles>((reinterpret_cast<LongMask>(set) & mask)
                                     | (reinterpret_cast<LongMask>(clear) & ~mask));
}

// Whether a lane of a mask is set.
Z3D_INLINE bool AnySet(LongMask mask) {
#if Z3D_VECTOR_BYTES == 64
    return _mm512_movepi64_mask(reinterpret_cast<__m512i>(mask)) != 0;
#elif Z3D_VECTOR_BYTES == 32
    return _mm256_movemask_pd(reinterpret_cast<__m256d>(mask)) != 0;
#else
    return _mm_movemask_pd(reinterpret_cast<__m128d>(mask)) != 0;
#endif
}
Z3D_INLINE bool AnySet(Uints mask) {
#if Z3D_VECTOR_BYTES == 64
    return _mm512_test_epi32_mask(reinterpret_cast<__m512i>(mask), reinterpret_cast<__m512i>(mask)) != 0;
#elif Z3D_VECTOR_BYTES == 32
    return _mm256_movemask_epi8(reinterpret_cast<__m256i>(mask)) != 0;
#else
    return _mm_movemask_epi8(reinterpret_cast<__m128i>(mask)) != 0;
#endif
}
} // namespace z3d::render::Z3D_ISA
