#include "render/tables/FetchVoxels.h"

namespace z3d::render {

// One structure of indexes, not two arrays: 32-bit code has too few registers for both.
void FetchBytes(const std::uint8_t* const* __restrict slices, const Indexes& __restrict indexes, int samples,
                std::uint8_t* __restrict to) {
    const std::uint32_t* z = indexes.z[0];
    const std::uint32_t* plane = indexes.plane[0];
    const int last = samples * kRays;
#pragma GCC unroll 8
    for (int index = 0; index < last; ++index)
        to[index] = slices[z[index]][plane[index]];
}

// Words may alias voxels for all that the compiler knows: it must not try to load several at once.
void FetchWords(const std::uint8_t* const* slices, const std::uint32_t* z, int count, std::uint32_t* words) {
#pragma GCC unroll 8
    for (int index = 0; index < count; ++index)
        __builtin_memcpy(&words[index], slices[z[index]] + words[index], sizeof words[index]);
}

} // namespace z3d::render
