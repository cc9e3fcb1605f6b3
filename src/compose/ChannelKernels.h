// From three planes of samples to RGB pixels, and how bright these are.
#pragma once

#include "primitives/ValueRange.h"

#include <cstddef>
#include <cstdint>

namespace z3d::compose {

// The samples of each channel, pixel by pixel without padding. A missing channel is null and counts as zero.
template <class Sample>
struct Planes {
    const Sample* red;
    const Sample* green;
    const Sample* blue;
};

// Fills `count` pixels of 3 bytes and widens `display` by the pixels' brightness as a sum of
// three channels. `range` is what the samples mean:
//   bytes    0 to 255 stand for range.min to range.max; that value, rounded and saturated, is the result's byte.
//   floats   range.min and below become 0, range.max and above 255, with a linear map in between.
// Without a range (max not above min) every byte is 0.
// False when scratch memory is short; the pixels are then of no use.
[[nodiscard]] bool ComposeBytes(const Planes<std::uint8_t>& planes, std::uint8_t* pixels, std::size_t count,
                                const primitives::ValueRange& range, primitives::ValueRange& display);
[[nodiscard]] bool ComposeFloats(const Planes<float>& planes, std::uint8_t* pixels, std::size_t count,
                                 const primitives::ValueRange& range, primitives::ValueRange& display);

} // namespace z3d::compose
