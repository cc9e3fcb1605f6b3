// Sixteen bytes side by side, one per ray or column, and what can be done with them on every processor.
#pragma once

#include "render/voxels/Inline.h"

#include <cstdint>

#include <emmintrin.h>

namespace z3d::render {

// Masks are bytes of 0xFF and 0.
typedef std::uint8_t Bytes __attribute__((vector_size(16), may_alias));

Z3D_INLINE __m128i Raw(Bytes value) { return reinterpret_cast<__m128i>(value); }
Z3D_INLINE Bytes ToBytes(__m128i value) { return reinterpret_cast<Bytes>(value); }
Z3D_INLINE Bytes AllBytes(std::uint8_t value) { return value - Bytes{}; }
Z3D_INLINE Bytes Smaller(Bytes a, Bytes b) { return ToBytes(_mm_min_epu8(Raw(a), Raw(b))); }
Z3D_INLINE Bytes Larger(Bytes a, Bytes b) { return ToBytes(_mm_max_epu8(Raw(a), Raw(b))); }
Z3D_INLINE Bytes AreEqual(Bytes a, Bytes b) { return ToBytes(_mm_cmpeq_epi8(Raw(a), Raw(b))); }
Z3D_INLINE Bytes AreAbove(Bytes a, Bytes b) { return ~AreEqual(Larger(a, b), b); }
// One more, and 255 for 255.
Z3D_INLINE Bytes OneMore(Bytes value) { return ToBytes(_mm_adds_epu8(Raw(value), _mm_set1_epi8(1))); }
Z3D_INLINE unsigned BitsOf(Bytes mask) { return static_cast<unsigned>(_mm_movemask_epi8(Raw(mask))); }
Z3D_INLINE bool AnySet(Bytes mask) { return BitsOf(mask) != 0; }
Z3D_INLINE int SumOf(Bytes value) {
    const __m128i halves = _mm_sad_epu8(Raw(value), _mm_setzero_si128());
    return _mm_cvtsi128_si32(halves) + _mm_extract_epi16(halves, 4);
}

Z3D_INLINE Bytes LoadBytes(const std::uint8_t* from) {
    Bytes value;
    __builtin_memcpy(&value, from, sizeof value);
    return value;
}

// Sixteen 16-bit numbers: bytes 0 to 7 and 8 to 15.
struct Sums {
    __m128i low;
    __m128i high;
};
Z3D_INLINE Sums Widen(Bytes bytes) {
    const __m128i zero = _mm_setzero_si128();
    return {_mm_unpacklo_epi8(Raw(bytes), zero), _mm_unpackhi_epi8(Raw(bytes), zero)};
}
Z3D_INLINE Sums operator+(const Sums& a, const Sums& b) {
    return {_mm_add_epi16(a.low, b.low), _mm_add_epi16(a.high, b.high)};
}
// A mask of bytes as one of 16-bit numbers, and back.
Z3D_INLINE Sums WidenMask(Bytes mask) {
    return {_mm_unpacklo_epi8(Raw(mask), Raw(mask)), _mm_unpackhi_epi8(Raw(mask), Raw(mask))};
}
Z3D_INLINE Bytes NarrowMask(const Sums& mask) { return ToBytes(_mm_packs_epi16(mask.low, mask.high)); }

// Sixteen voxels, channel by channel.
template <int kChannels>
struct Voxels {
    Bytes channel[kChannels];
};
using GreyVoxels = Voxels<1>;
using RgbVoxels = Voxels<3>;

Z3D_INLINE Sums SumOf(const RgbVoxels& voxels) {
    return Widen(voxels.channel[0]) + Widen(voxels.channel[1]) + Widen(voxels.channel[2]);
}

// Takes the channels of sixteen voxels apart: 48 bytes that lie voxel after voxel become channel after channel, by four
// byte interleaves. Each moves byte i to 2i mod 47, so four of them move channel c of voxel v from 3v + c to 16c + v.
Z3D_INLINE void SplitChannels(Bytes (&bytes)[3]) {
#pragma GCC unroll 4
    for (int interleave = 0; interleave < 4; ++interleave) {
        const __m128i a = Raw(bytes[0]);
        const __m128i b = Raw(bytes[1]);
        const __m128i c = Raw(bytes[2]);
        bytes[0] = ToBytes(_mm_unpacklo_epi8(a, _mm_unpackhi_epi64(b, b)));
        bytes[1] = ToBytes(_mm_unpacklo_epi8(_mm_unpackhi_epi64(a, a), c));
        bytes[2] = ToBytes(_mm_unpacklo_epi8(b, _mm_unpackhi_epi64(c, c)));
    }
}

// 16 * kCount bytes as they lie. Register by register: what a compiler copies as a whole it may copy by words, and a
// register that is then loaded from two of them waits for both to reach the cache.
template <int kCount>
Z3D_INLINE void LoadBytes(const std::uint8_t* from, Bytes (&to)[kCount]) {
#pragma GCC unroll 3
    for (int part = 0; part < kCount; ++part)
        to[part] = LoadBytes(from + 16 * part);
}

// Sixteen voxels that follow each other in memory.
template <int kChannels>
Z3D_INLINE Voxels<kChannels> LoadVoxels(const std::uint8_t* from) {
    Voxels<kChannels> voxels;
    LoadBytes(from, voxels.channel);
    if constexpr (kChannels == 3) SplitChannels(voxels.channel);
    return voxels;
}

} // namespace z3d::render
