// Contrast scores in the place of voxels: numbers of 16 bits, of up to 1020.
#pragma once

#include "render/kernels/sampling/Formats.h"

namespace z3d::render::Z3D_ISA {

struct Scores {
    [[maybe_unused]] static constexpr int kBytes = 0;
    static constexpr int kChannels = 1;
    static constexpr bool kKeepsPositions = false;
    using Window = NoWindow;
    using Source = VoxelGrid; // of ContrastScores
    using Sample = Sums;
    struct Samples {
        Sums sample[kSamples];
    };
    Z3D_INLINE static const Sample& SampleOf(const Samples& samples, int number) {
        return samples.sample[number];
    }
    Z3D_INLINE static Bytes Accepts(const Window& window, const Samples& samples, int number) {
        return window.Accepts(samples.sample[number]);
    }
};

#if Z3D_VECTOR_BYTES == 64
// Behind the last score there is room for the four bytes that gathers load.
[[gnu::noinline]] inline void GatherScores(const VoxelGrid& grid, const Indexes& indexes, int samples,
                                           Scores::Samples& stretch) {
    for (int sample = 0; sample < samples; ++sample) {
        const Uints plane = LoadUints(indexes.plane[sample]);
        const Uints words = GatherFromSlices(grid, indexes.z[sample], plane + plane);
        __m256i scores = _mm512_cvtepi32_epi16(reinterpret_cast<__m512i>(words));
        asm("" : "+x"(scores)); // in a register, as LowestBytes
        stretch.sample[sample] = {_mm256_castsi256_si128(scores), _mm256_extracti128_si256(scores, 1)};
    }
}
#endif

// Scores by their indexes, as FetchBytes takes voxels.
[[gnu::noinline]] inline void Fetch(const VoxelGrid& grid, const Indexes& __restrict indexes, int samples,
                                    Scores::Samples& __restrict stretch) {
#if Z3D_VECTOR_BYTES == 64
    if (grid.isGathered) return GatherScores(grid, indexes, samples, stretch);
#endif
    auto* __restrict to = reinterpret_cast<std::uint16_t*>(stretch.sample);
    const std::uint8_t* const* slices = grid.slices;
    for (int sample = 0; sample < samples; ++sample, to += kRays) {
        const std::uint32_t* z = indexes.z[sample];
        const std::uint32_t* plane = indexes.plane[sample];
#pragma GCC unroll 8
        for (int ray = 0; ray < kRays; ++ray)
            __builtin_memcpy(to + ray, slices[z[ray]] + 2 * std::size_t{plane[ray]}, sizeof *to);
    }
}

} // namespace z3d::render::Z3D_ISA
