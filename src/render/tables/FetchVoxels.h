// Voxels by their indexes, for all instruction sets: computed offsets and plain loads.
#pragma once

#include "render/StretchIndexes.h"

#include <cstdint>

namespace z3d::render {

// The grey voxels of `samples` samples, sixteen each, to `to`, which overlaps nothing else.
void FetchBytes(const std::uint8_t* const* slices, const Indexes& indexes, int samples, std::uint8_t* to);

// Offsets into slices, in bytes, become the four bytes that are there.
void FetchWords(const std::uint8_t* const* slices, const Indexes& indexes, int samples,
                std::uint32_t (&words)[kSamples][kRays]);

} // namespace z3d::render
