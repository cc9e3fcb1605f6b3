// From voxel indexes to voxels.
#pragma once

#include "render/StretchIndexes.h"
#include "render/kernels/sampling/Colours.h"
#include "render/kernels/vector/Gathers.h"
#include "render/tables/FetchVoxels.h"
#include "render/voxels/VoxelGrid.h"

namespace z3d::render::Z3D_ISA {

// The voxels of a stretch, sample after sample.
template <int kChannels>
struct Stretch {
    Voxels<kChannels> sample[kSamples];
};

#if Z3D_VECTOR_BYTES == 64
// Gathers load four bytes, and behind a slice's last voxel nothing may be read: the last voxels are found higher up in
// the slice's last four bytes. False for slices of less than four bytes.
[[gnu::noinline]] inline bool Gather(const VoxelGrid& grid, const Indexes& indexes, int samples,
                                     Stretch<1>& stretch) {
    const std::uint32_t voxels =
        static_cast<std::uint32_t>(grid.width) * static_cast<std::uint32_t>(grid.height);
    if (voxels < 4) return false;
    const __m512i lastWord = _mm512_set1_epi32(static_cast<int>(voxels - 4));
    const SlicesAtHand slices(grid, indexes.z[0], indexes.z[samples - 1]);
    const bool areNear = slices.AreNear();
    for (int sample = 0; sample < samples; ++sample) {
        const __m512i plane = _mm512_load_si512(indexes.plane[sample]);
        const __m512i word = _mm512_min_epu32(plane, lastWord);
        const auto offset = reinterpret_cast<Uints>(word);
        const Uints four = areNear ? slices.Gather(grid, indexes.z[sample], offset)
                                   : GatherFromSlices(grid, indexes.z[sample], offset);
        const __m512i bits = _mm512_slli_epi32(_mm512_sub_epi32(plane, word), 3);
        stretch.sample[sample].channel[0] =
            LowestBytes(reinterpret_cast<Uints>(_mm512_srlv_epi32(reinterpret_cast<__m512i>(four), bits)));
    }
    return true;
}

// The same of colours: only the last voxel has nothing behind it.
[[gnu::noinline]] inline bool Gather(const VoxelGrid& grid, const Indexes& indexes, int samples,
                                     ColourWords& stretch) {
    const std::uint32_t last =
        static_cast<std::uint32_t>(grid.width) * static_cast<std::uint32_t>(grid.height) - 1;
    if (last == 0) return false;
    const SlicesAtHand slices(grid, indexes.z[0], indexes.z[samples - 1]);
    const bool areNear = slices.AreNear();
    for (int sample = 0; sample < samples; ++sample) {
        const Uints voxel = LoadUints(indexes.plane[sample]);
        const Uints isLast = reinterpret_cast<Uints>(voxel == last);
        const Uints offset = voxel + voxel + voxel + isLast;
        const Uints colours = areNear ? slices.Gather(grid, indexes.z[sample], offset)
                                      : GatherFromSlices(grid, indexes.z[sample], offset);
        Store(stretch.sample[sample], colours >> (isLast & 8));
    }
    return true;
}
#else
template <class Samples>
Z3D_INLINE bool Gather(const VoxelGrid&, const Indexes&, int, Samples&) {
    return false;
}
#endif

// Grey voxels are fetched one by one, by one function for all instruction sets, where they are not gathered.
Z3D_INLINE void Fetch(const VoxelGrid& grid, const Indexes& indexes, int samples, Stretch<1>& stretch) {
    if (grid.isGathered && Gather(grid, indexes, samples, stretch)) return;
    FetchBytes(grid.slices, indexes, samples, reinterpret_cast<std::uint8_t*>(stretch.sample));
}

// Slices of one voxel.
[[gnu::noinline, gnu::cold]] inline void FetchOnlyVoxels(const std::uint8_t* const* slices,
                                                         const Indexes& indexes, int samples,
                                                         std::uint32_t (&words)[kSamples][kRays]) {
    for (int sample = 0; sample < samples; ++sample) {
        for (int ray = 0; ray < kRays; ++ray) {
            const std::uint8_t* voxel = slices[indexes.z[sample][ray]];
            words[sample][ray] = static_cast<std::uint32_t>(voxel[0] | voxel[1] << 8 | voxel[2] << 16);
        }
    }
}

[[gnu::noinline, gnu::cold]] inline void ShiftLastVoxels(const Indexes& indexes, std::uint32_t last,
                                                         int samples,
                                                         std::uint32_t (&words)[kSamples][kRays]) {
    for (int sample = 0; sample < samples; ++sample) {
        for (int ray = 0; ray < kRays; ++ray)
            words[sample][ray] >>= indexes.plane[sample][ray] == last ? 8 : 0;
    }
}

// Colours by plain loads. A slice's last voxel has nothing behind it that may be read: it is read with the byte before
// it.
Z3D_INLINE void FetchColours(const VoxelGrid& grid, const Indexes& __restrict indexes, int samples,
                             std::uint32_t (&__restrict words)[kSamples][kRays]) {
    const std::uint32_t last =
        static_cast<std::uint32_t>(grid.width) * static_cast<std::uint32_t>(grid.height) - 1;
    if (last == 0) return FetchOnlyVoxels(grid.slices, indexes, samples, words);

    // All offsets before all loads: what has just been stored is loaded at once only in the pieces it was stored in.
    Uints isAnyLast = {};
    for (int sample = 0; sample < samples; ++sample) {
        for (int ray = 0; ray < kRays; ray += kFloatLanes) {
            const Uints voxel = LoadUints(indexes.plane[sample] + ray);
            const Uints isLast = reinterpret_cast<Uints>(voxel == last);
            Store(words[sample] + ray, voxel + voxel + voxel + isLast);
            isAnyLast |= isLast;
        }
    }
    FetchWords(grid.slices, indexes, samples, words);
    if (AnySet(isAnyLast)) ShiftLastVoxels(indexes, last, samples, words);
}

[[gnu::noinline]] inline void Fetch(const VoxelGrid& grid, const Indexes& __restrict indexes, int samples,
                                    ColourWords& __restrict stretch) {
    if (grid.isGathered && Gather(grid, indexes, samples, stretch)) return;
    FetchColours(grid, indexes, samples, stretch.sample);
}

} // namespace z3d::render::Z3D_ISA
