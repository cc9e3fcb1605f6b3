#include "render/tables/FetchVoxels.h"

namespace z3d::render {

// One structure of indexes, not two arrays: 32-bit code has too few registers for both.
void FetchBytes(const std::uint8_t* const* __restrict slices, const Indexes& __restrict indexes, int samples,
                std::uint8_t* __restrict to) {
    for (int sample = 0; sample < samples; ++sample, to += kRays) {
        const std::uint32_t* z = indexes.z[sample];
        const std::uint32_t* plane = indexes.plane[sample];
#pragma GCC unroll 8
        for (int ray = 0; ray < kRays; ++ray)
            to[ray] = slices[z[ray]][plane[ray]];
    }
}

// Words may alias voxels for all that the compiler knows: it must not try to load several at once.
void FetchWords(const std::uint8_t* const* slices, const Indexes& indexes, int samples,
                std::uint32_t (&words)[kSamples][kRays]) {
    for (int sample = 0; sample < samples; ++sample) {
        const std::uint32_t* z = indexes.z[sample];
        std::uint32_t* word = words[sample];
#pragma GCC unroll 8
        for (int ray = 0; ray < kRays; ++ray)
            __builtin_memcpy(&word[ray], slices[z[ray]] + word[ray], sizeof word[ray]);
    }
}

} // namespace z3d::render
