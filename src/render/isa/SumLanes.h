// Sums of bytes of sixteen rays, in single precision.
#pragma once

#include "render/isa/Samples.h"

namespace z3d::render::Z3D_ISA {

// Sums of bytes. Sums below 2^24 are exact in single precision, in any order: they gather in 16-bit integers
// first. Longer rays, whose sums could pass 2^24, add sample by sample.
constexpr std::int32_t kExactSamples = (1 << 24) / 255;

// Its loops are unrolled, so that all of it can stay in registers. Not aligned to whole vectors: walks keep many
// of these.
struct SumLanes {
    typedef float Part __attribute__((vector_size(Z3D_VECTOR_BYTES), aligned(16), may_alias));
    static constexpr int kParts = kRays / kFloatLanes;
    Part total[kParts];
    Sums recent;
    std::int32_t stretches; // that `recent` holds

    Z3D_INLINE void Add(Bytes bytes, bool isExact) {
        const __m128i zero = _mm_setzero_si128();
        recent.low = _mm_add_epi16(recent.low, _mm_unpacklo_epi8(Raw(bytes), zero));
        recent.high = _mm_add_epi16(recent.high, _mm_unpackhi_epi8(Raw(bytes), zero));
        if (!isExact) [[unlikely]]
            Settle();
    }
    // 16 stretches of 16 samples of up to 255 fit 16 bits.
    Z3D_INLINE void EndStretch() {
        if (++stretches == 65535 / (255 * kSamples)) Settle();
    }
    bool IsSame(const SumLanes& other) const {
        bool isSame = true;
        for (int ray = 0; ray < kRays; ++ray)
            isSame = isSame && Of(ray) == other.Of(ray);
        return isSame;
    }
    float Of(int ray) const {
        std::uint16_t part[kRays];
        __builtin_memcpy(part, &recent, sizeof part);
        return total[ray / kFloatLanes][ray % kFloatLanes] + part[ray];
    }

private:
    // One addition per ray, in single precision; adding 0 changes nothing.
    Z3D_INLINE void Settle() {
        const __m128i zero = _mm_setzero_si128();
        const __m128i quads[] = {_mm_unpacklo_epi16(recent.low, zero), _mm_unpackhi_epi16(recent.low, zero),
                                 _mm_unpacklo_epi16(recent.high, zero),
                                 _mm_unpackhi_epi16(recent.high, zero)};
#pragma GCC unroll 4
        for (int part = 0; part < kParts; ++part) {
            Ints integers;
            __builtin_memcpy(&integers, quads + part * (4 / kParts), sizeof integers);
            total[part] += ToFloats(integers);
        }
        recent = {zero, zero};
        stretches = 0;
    }
};

} // namespace z3d::render::Z3D_ISA
