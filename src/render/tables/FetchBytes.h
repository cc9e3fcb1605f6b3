// Grey voxels by their indexes, for all instruction sets.
#pragma once

#include "render/StretchIndexes.h"

#include <cstdint>

namespace z3d::render {

// The voxels of `samples` samples, sixteen each, to `to`, which overlaps nothing else. Computed offsets and plain loads
// beat hardware gathers of bytes.
void FetchBytes(const std::uint8_t* const* slices, const Indexes& indexes, int samples, std::uint8_t* to);

} // namespace z3d::render
