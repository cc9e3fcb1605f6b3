// The image primitives in their plainest form: one pixel at a time, every rule as it is stated, double
// between stores. What the library's own primitives are compared with, bit for bit.
//
// Arguments, order of checks and results are those of the headers in src/primitives.
#pragma once

#include "primitives/Region.h"

#include <cstdint>
#include <vector>

namespace z3d::reference {

using primitives::ImageRect;
using primitives::ImageSize;
using primitives::Status;

Status Set8uC1(std::uint8_t value, std::uint8_t* destination, std::int32_t destinationStep,
               std::int32_t width, std::int32_t height);
Status VecCopy32f(const float* source, float* destination, std::int32_t length);
Status CopyPlanes8uP3C3(const std::uint8_t* const* planes, std::int32_t sourceStep, std::uint8_t* destination,
                        std::int32_t destinationStep, std::int32_t width, std::int32_t height);
Status CopyPlanes32fP3C3(const float* const* planes, std::int32_t sourceStep, float* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height);

Status Resize8uC1(const std::uint8_t* source, ImageSize sourceSize, std::int32_t sourceStep,
                  ImageRect rectangle, std::uint8_t* destination, std::int32_t destinationStep,
                  ImageSize destinationSize, double xFactor, double yFactor, std::int32_t interpolation);
Status Resize32fC1(const float* source, ImageSize sourceSize, std::int32_t sourceStep, ImageRect rectangle,
                   float* destination, std::int32_t destinationStep, ImageSize destinationSize,
                   double xFactor, double yFactor, std::int32_t interpolation);

Status VecMulC32fInPlace(float value, float* data, std::int32_t length);
Status VecAddC32fInPlace(float value, float* data, std::int32_t length);
Status VecConvert32f8uSfs(const float* source, std::uint8_t* destination, std::int32_t length,
                          std::int32_t roundingMode, std::int32_t scaleFactor);
Status Convert32f8uC3(const float* source, std::int32_t sourceStep, std::uint8_t* destination,
                      std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                      std::int32_t roundingMode);
Status Scale8u32fC3(const std::uint8_t* source, std::int32_t sourceStep, float* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height, float vMin,
                    float vMax);
Status Scale32f8uC3(const float* source, std::int32_t sourceStep, std::uint8_t* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height, float vMin,
                    float vMax);

Status ColorToGray8uC3C1(const std::uint8_t* source, std::int32_t sourceStep, std::uint8_t* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                         const float* weights);
Status MinMax8uC1(const std::uint8_t* source, std::int32_t sourceStep, std::int32_t width,
                  std::int32_t height, std::uint8_t* smallest, std::uint8_t* largest);
Status VecMax32f(const float* source, std::int32_t length, float* largest);
Status VecMin32f(const float* source, std::int32_t length, float* smallest);

// Two samples as one: at t = 0 the first, at 1 the second. A NaN passes the bounds.
double BlendDepth(double t, double min, double max, double a, double b);
// The same of bytes, truncated to a byte.
std::vector<std::uint8_t> BlendDepth8u(double t, double min, double max, const std::vector<std::uint8_t>& a,
                                       const std::vector<std::uint8_t>& b);

} // namespace z3d::reference
