// Aligned scratch for vectors and images.
//
// A buffer starts on a 32-byte boundary and its contents are not cleared. Image rows are a multiple of 32
// bytes apart: the row's byte width rounded up; the bytes in between are padding. The caller owns the buffer
// and gives it back with the releaser, which ignores null.
#pragma once

#include <cstdint>

namespace z3d::primitives {

// Null when length (in floats) is below 1, when the bytes do not fit 32 bits, or without memory.
float* VecMalloc32f(std::int32_t length);
void VecFree(float* vector);

// *step receives the row step in bytes. Null, with *step = 0, when width or height is below 1, when the step
// or the buffer's byte count does not fit 32 bits, or without memory; null and nothing written when step is
// null.
std::uint8_t* ImageMalloc8uC1(std::int32_t width, std::int32_t height, std::int32_t* step);
std::uint8_t* ImageMalloc8uC3(std::int32_t width, std::int32_t height, std::int32_t* step);
float* ImageMalloc32fC1(std::int32_t width, std::int32_t height, std::int32_t* step);
float* ImageMalloc32fC3(std::int32_t width, std::int32_t height, std::int32_t* step);
void ImageFree(void* image);

} // namespace z3d::primitives
