// How large the volume becomes that is made of files of a stored size.
#pragma once

#include "volume/RawVolumeLoader.h"

#include <cstdint>

namespace z3d::compose {

// The stored size; where its diagonal is longer than `maxDiagonal`, every length is scaled by their quotient and
// truncated. Every length is at least 1.
volume::VolumeSize OutputSize(const volume::VolumeSize& stored, std::int32_t maxDiagonal);

} // namespace z3d::compose
