// Grey levels through a gamma or contrast curve.
#pragma once

#include <cstdint>

namespace z3d::geometry {

// The entry of a curve of 256 bytes at a fractional grey level: between two entries the linear interpolation,
// fraction dropped. Levels are held to [0, 255]; NaN counts as 0. 0 to 255; 0 when the table is null.
std::int32_t AdjustGamma(const std::uint8_t* table, float level);

} // namespace z3d::geometry
