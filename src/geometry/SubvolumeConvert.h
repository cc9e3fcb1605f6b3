// Coordinates and extents of a sub-volume from one scale to another.
#pragma once

#include <cstdint>

namespace z3d::geometry {

// value * newScale / oldScale, rounded up when roundUp is above 0, else down; of that whole number the low 16
// bits, signed. Below 1 the result is 1; above newScale it is the low 16 bits of newScale. An oldScale of 0
// gives 1.
std::int16_t SubvolumeConvert(std::int32_t value, std::int32_t newScale, std::int32_t oldScale,
                              std::int16_t roundUp);

} // namespace z3d::geometry
