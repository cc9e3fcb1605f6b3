// Single-precision values of sixteen rays, for rules whose result is not a byte.
#pragma once

#include "render/isa/Samples.h"

namespace z3d::render::Z3D_ISA {

// Sixteen bytes as integers, in the order of the rays.
struct alignas(64) IntegerLanes {
    std::int32_t value[kRays];

    Z3D_INLINE explicit IntegerLanes(Bytes bytes) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i low = _mm_unpacklo_epi8(Raw(bytes), zero);
        const __m128i high = _mm_unpackhi_epi8(Raw(bytes), zero);
        Put(0, _mm_unpacklo_epi16(low, zero));
        Put(4, _mm_unpackhi_epi16(low, zero));
        Put(8, _mm_unpacklo_epi16(high, zero));
        Put(12, _mm_unpackhi_epi16(high, zero));
    }
    Z3D_INLINE explicit IntegerLanes(const Sums& sums) {
        const __m128i zero = _mm_setzero_si128();
        Put(0, _mm_unpacklo_epi16(sums.low, zero));
        Put(4, _mm_unpackhi_epi16(sums.low, zero));
        Put(8, _mm_unpacklo_epi16(sums.high, zero));
        Put(12, _mm_unpackhi_epi16(sums.high, zero));
    }

private:
    Z3D_INLINE void Put(int ray, __m128i four) {
        _mm_store_si128(reinterpret_cast<__m128i*>(value + ray), four);
    }
};

// Sums of bytes. Sums below 2^24 are exact in single precision, in any order: those of up to 16 samples are kept
// in 16-bit integers first. Longer rays, whose sums could pass 2^24, add sample by sample.
constexpr std::int32_t kExactSamples = (1 << 24) / 255;

struct alignas(64) FloatLanes {
    float value[kRays];

    // One addition per ray, in single precision; adding 0 changes nothing.
    Z3D_INLINE void Add(const IntegerLanes& integers) {
        for (int ray = 0; ray < kRays; ray += kFloatLanes) {
            Ints part;
            __builtin_memcpy(&part, integers.value + ray, sizeof part);
            Store(value + ray, LoadFloats(value + ray) + ToFloats(part));
        }
    }
};

struct SumLanes {
    FloatLanes total;
    Sums recent;

    Z3D_INLINE void Add(Bytes bytes, bool isExact) {
        if (isExact) {
            const __m128i zero = _mm_setzero_si128();
            recent.low = _mm_add_epi16(recent.low, _mm_unpacklo_epi8(Raw(bytes), zero));
            recent.high = _mm_add_epi16(recent.high, _mm_unpackhi_epi8(Raw(bytes), zero));
        } else {
            total.Add(IntegerLanes(bytes));
        }
    }
    Z3D_INLINE void Settle() {
        total.Add(IntegerLanes(recent));
        recent = {_mm_setzero_si128(), _mm_setzero_si128()};
    }
};

} // namespace z3d::render::Z3D_ISA
