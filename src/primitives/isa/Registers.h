// The vector registers of the instruction set that the file is compiled for, and how kernels write for them once.
//
// Z3D_MM(add_epi16)(a, b) is the intrinsic of that name at the register's width. Those of AVX2 that move elements
// about do so within each half of 16 bytes. Everything here lives in a namespace of the instruction set and is
// inlined, so that no function compiled with newer instructions can stand in for a baseline one.
#pragma once

#include <cstddef>
#include <cstdint>

#include <immintrin.h>

#if defined(__AVX2__)
#define Z3D_ISA avx2
#define Z3D_MM(name) _mm256_##name
#else
#define Z3D_ISA sse2
#define Z3D_MM(name) _mm_##name
#endif

#define Z3D_INLINE [[gnu::always_inline]] inline

namespace z3d::primitives::Z3D_ISA {

#if defined(__AVX2__)
using Integers = __m256i;
using Doubles = __m256d;
#else
using Integers = __m128i;
using Doubles = __m128d;
#endif

constexpr std::size_t kRegisterBytes = sizeof(Integers);

#if defined(__AVX2__)
Z3D_INLINE Integers Zeroes() { return _mm256_setzero_si256(); }
Z3D_INLINE Integers Load(const void* from) { return _mm256_loadu_si256(static_cast<const __m256i*>(from)); }
Z3D_INLINE void Store(void* to, Integers value) { _mm256_storeu_si256(static_cast<__m256i*>(to), value); }
Z3D_INLINE Integers Or(Integers a, Integers b) { return _mm256_or_si256(a, b); }
Z3D_INLINE bool AnySet(Integers value) { return _mm256_testz_si256(value, value) == 0; }
// What packing two registers in order gives, in order: packing works within each half.
Z3D_INLINE Integers InOrder(Integers packed) { return _mm256_permute4x64_epi64(packed, 0b11'01'10'00); }
#else
Z3D_INLINE Integers Zeroes() { return _mm_setzero_si128(); }
Z3D_INLINE Integers Load(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }
Z3D_INLINE void Store(void* to, Integers value) { _mm_storeu_si128(static_cast<__m128i*>(to), value); }
Z3D_INLINE Integers Or(Integers a, Integers b) { return _mm_or_si128(a, b); }
Z3D_INLINE bool AnySet(Integers value) {
    return _mm_movemask_epi8(_mm_cmpeq_epi8(value, Zeroes())) != 0xFFFF;
}
Z3D_INLINE Integers InOrder(Integers packed) { return packed; }
#endif

} // namespace z3d::primitives::Z3D_ISA
