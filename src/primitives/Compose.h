// Three channels as pixels of three bytes, in one pass, and how bright the pixels are.
#pragma once

#include <cstddef>
#include <cstdint>

namespace z3d::primitives {

// The smallest and the largest sum of a pixel's three bytes. Of no pixels: the two the wrong way round.
struct SumRange {
    std::int32_t min = 765;
    std::int32_t max = 0;
};

// What bytes stand for: 0 for min, 255 for max. min is below max.
struct ByteRange {
    std::uint8_t min;
    std::uint8_t max;
};

// Pixel i receives the bytes of planes[0][i], planes[1][i] and planes[2][i]; a plane that is null counts as zeroes.
// The pixels overlap no plane.
//
// Compose8uP3C3: sample s gives what Scale8u32fC3 and Convert32f8uC3 (half to even) give one after the other.
SumRange Compose8uP3C3(const std::uint8_t* const (&planes)[3], std::uint8_t* pixels, std::size_t count,
                       ByteRange range);
// Compose32f8uP3C3: what Scale32f8uC3 gives. vMin is below vMax, and both are finite.
SumRange Compose32f8uP3C3(const float* const (&planes)[3], std::uint8_t* pixels, std::size_t count,
                          float vMin, float vMax);

} // namespace z3d::primitives
