// Regions of images: the first pixel's address, a row step in bytes, a width and a height in pixels.
//
// Rows go top to bottom, pixels left to right. A step may be any positive number of bytes: odd ones leave the
// samples of later rows unaligned, and one below the row's byte width makes rows overlap, the later row's
// writes winning. So nothing is ever read or written beyond a row's own bytes. The first sample of a float
// region, and a vector of floats, are aligned to 4 bytes.
#pragma once

#include "primitives/Status.h"

#include <cstddef>
#include <cstdint>

namespace z3d::primitives {

struct ImageSize {
    std::int32_t width, height;
};

// x and y count from 0 at the image's top-left pixel.
struct ImageRect {
    std::int32_t x, y, width, height;
};

inline const std::uint8_t* RowAt(const void* first, std::int32_t stepBytes, std::int32_t row) {
    return static_cast<const std::uint8_t*>(first)
           + static_cast<std::size_t>(stepBytes) * static_cast<std::size_t>(row);
}

inline std::uint8_t* RowAt(void* first, std::int32_t stepBytes, std::int32_t row) {
    return static_cast<std::uint8_t*>(first)
           + static_cast<std::size_t>(stepBytes) * static_cast<std::size_t>(row);
}

// Size, then steps. A row of 4 GiB and more cannot exist in the 32-bit product and counts as a wrong size, on
// every system alike; `pixelBytes` is that of the wider side.
inline Status CheckRegion(std::int32_t width, std::int32_t height, std::int32_t sourceStep,
                          std::int32_t destinationStep, std::uint32_t pixelBytes) {
    if (width < 1 || height < 1) return StatusSizeError;
    if (sourceStep < 1 || destinationStep < 1) return StatusStepError;
    if (static_cast<std::uint64_t>(width) * pixelBytes > UINT32_MAX) return StatusSizeError;
    return StatusNoError;
}

// The same for a vector of floats.
inline Status CheckLength(std::int32_t length) {
    if (length < 1) return StatusSizeError;
    if (static_cast<std::uint64_t>(length) * sizeof(float) > UINT32_MAX) return StatusSizeError;
    return StatusNoError;
}

} // namespace z3d::primitives
