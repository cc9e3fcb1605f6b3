// Sums of bytes of sixteen rays, in single precision.
#pragma once

#include "render/Traversal.h"
#include "render/kernels/vector/RayFloats.h"
#include "render/kernels/vector/Vector.h"

namespace z3d::render::Z3D_ISA {

// Sums of bytes. Sums below 2^24 are exact in single precision, in any order: they gather in 16-bit integers
// first. Longer rays, whose sums could pass 2^24, add sample by sample.
constexpr std::int32_t kExactSamples = (1 << 24) / 255;

// Its loops are unrolled, so that all of it can stay in registers. Not aligned to whole vectors: walks keep many
// of these.
struct RaySums {
    typedef float Part __attribute__((vector_size(Z3D_VECTOR_BYTES), aligned(16), may_alias));
    static constexpr int kParts = kRays / kFloatLanes;
    Part total[kParts];
    Sums recent;
    std::int32_t stretches; // that `recent` holds

    RaySums() = default;
    RaySums(const RaySums&) = default;
    // Member by member: copied as a block, it would wait for members that have just been stored. To itself it does
    // nothing. NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
    Z3D_INLINE RaySums& operator=(const RaySums& other) {
#pragma GCC unroll 4
        for (int part = 0; part < kParts; ++part)
            total[part] = other.total[part];
        recent = other.recent;
        stretches = other.stretches;
        return *this;
    }

    Z3D_INLINE void Add(Bytes bytes, bool isExact) { Add(Widen(bytes), isExact); }
    Z3D_INLINE void Add(const Sums& numbers, bool isExact) {
        recent = recent + numbers;
        if (!isExact) [[unlikely]]
            Settle();
    }
    // 16 stretches of 16 samples of up to 255 fit 16 bits.
    Z3D_INLINE void EndStretch() {
        if (++stretches == 65535 / (255 * kSamples)) Settle();
    }
    Z3D_INLINE RayFloats Total() const {
        RayFloats sums = ToRayFloats(recent);
        RayFloats totals;
        __builtin_memcpy(&totals, total, sizeof totals);
#pragma GCC unroll 4
        for (int quad = 0; quad < 4; ++quad)
            sums.quad[quad] = _mm_add_ps(sums.quad[quad], totals.quad[quad]);
        return sums;
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
