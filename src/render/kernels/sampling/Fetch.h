// From voxel indexes to voxels.
#pragma once

#include "render/StretchIndexes.h"
#include "render/kernels/vector/Vector.h"
#include "render/tables/FetchBytes.h"
#include "render/voxels/VoxelGrid.h"

namespace z3d::render::Z3D_ISA {

// The voxels of a stretch, sample after sample.
template <int kChannels>
struct Stretch {
    Voxels<kChannels> sample[kSamples];
};

// Takes sixteen words apart, of whose bytes the first three count: 64 bytes, byte-interleaved four times. Each time
// moves byte i to 2i mod 63, so four times move byte c of word r from 4r + c to 16c + r.
Z3D_INLINE void SplitWords(const std::uint32_t (&words)[kRays], RgbVoxels& voxels) {
    __m128i a = _mm_load_si128(reinterpret_cast<const __m128i*>(words));
    __m128i b = _mm_load_si128(reinterpret_cast<const __m128i*>(words) + 1);
    __m128i c = _mm_load_si128(reinterpret_cast<const __m128i*>(words) + 2);
    __m128i d = _mm_load_si128(reinterpret_cast<const __m128i*>(words) + 3);
#pragma GCC unroll 4
    for (int interleave = 0; interleave < 4; ++interleave) {
        const __m128i first = _mm_unpacklo_epi8(a, c);
        const __m128i second = _mm_unpackhi_epi8(a, c);
        c = _mm_unpacklo_epi8(b, d);
        d = _mm_unpackhi_epi8(b, d);
        a = first;
        b = second;
    }
    voxels.channel[0] = ToBytes(a);
    voxels.channel[1] = ToBytes(b);
    voxels.channel[2] = ToBytes(c);
}

// Grey voxels are fetched one by one, by one function for all instruction sets.
Z3D_INLINE void Fetch(const VoxelGrid& grid, const Indexes& indexes, int samples, Stretch<1>& stretch) {
    FetchBytes(grid.slices, indexes, samples, reinterpret_cast<std::uint8_t*>(stretch.sample));
}

// Slices of one voxel.
[[gnu::noinline, gnu::cold]] inline void FetchOnlyVoxels(const VoxelGrid& grid, const std::uint32_t* z,
                                                         std::uint32_t* words) {
    for (int ray = 0; ray < kRays; ++ray) {
        const std::uint8_t* voxel = grid.slices[z[ray]];
        words[ray] = static_cast<std::uint32_t>(voxel[0] | voxel[1] << 8 | voxel[2] << 16);
    }
}

[[gnu::noinline, gnu::cold]] inline void ShiftLastVoxels(const std::uint32_t* plane, std::uint32_t last,
                                                         std::uint32_t* words) {
    for (int ray = 0; ray < kRays; ++ray)
        words[ray] >>= plane[ray] == last ? 8 : 0;
}

// Sixteen colours as words. A slice's last voxel has nothing behind it that may be read: it is read with the byte
// before it.
Z3D_INLINE void FetchWords(const VoxelGrid& grid, const std::uint32_t* z, const std::uint32_t* plane,
                           std::uint32_t last, std::uint32_t* words) {
    const std::uint8_t* const* slices = grid.slices;
    if (last == 0) return FetchOnlyVoxels(grid, z, words);
    alignas(64) std::uint32_t offset[kRays];
    Uints isAnyLast = {};
    for (int ray = 0; ray < kRays; ray += kFloatLanes) {
        const Uints voxel = LoadUints(plane + ray);
        const Uints isLast = reinterpret_cast<Uints>(voxel == last);
        Store(offset + ray, voxel + voxel + voxel + isLast);
        isAnyLast |= isLast;
    }
#pragma GCC unroll 8
    for (int ray = 0; ray < kRays; ++ray)
        __builtin_memcpy(&words[ray], slices[z[ray]] + offset[ray], 4);
    if (AnySet(isAnyLast)) ShiftLastVoxels(plane, last, words);
}

[[gnu::noinline]] inline void Fetch(const VoxelGrid& grid, const Indexes& __restrict indexes, int samples,
                                    Stretch<3>& __restrict stretch) {
    const std::uint32_t last =
        static_cast<std::uint32_t>(grid.width) * static_cast<std::uint32_t>(grid.height) - 1;
    // All words first: a vector load waits for narrower stores to its bytes that are still under way.
    alignas(64) std::uint32_t words[kSamples][kRays];
    for (int sample = 0; sample < samples; ++sample)
        FetchWords(grid, indexes.z[sample], indexes.plane[sample], last, words[sample]);
    for (int sample = 0; sample < samples; ++sample)
        SplitWords(words[sample], stretch.sample[sample]);
}

} // namespace z3d::render::Z3D_ISA
