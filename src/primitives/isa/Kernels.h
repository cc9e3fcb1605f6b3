// The kernels of one instruction set: what the sources of this folder define. See KernelTable.h.
#pragma once

#include "primitives/KernelTable.h"
#include "primitives/isa/Registers.h"

namespace z3d::primitives::Z3D_ISA {

SumRange ComposeBytes(const ChannelSamples<std::uint8_t> (&channels)[3], std::uint8_t* pixels,
                      std::size_t count, ByteRange range);
SumRange ComposeFloats(const ChannelSamples<float> (&channels)[3], std::uint8_t* pixels, std::size_t count,
                       FloatScale scale);

void BlendBytes(const ByteDepthWeights& weights, const std::uint8_t* a, const std::uint8_t* b,
                std::uint8_t* to, std::size_t count);
void BlendFloats(const DepthWeights& weights, const float* a, const float* b, float* to, std::size_t count);

ByteExtremes ExtremesOfBytes(const std::uint8_t* samples, std::size_t count);
FloatExtremes WidenByFloats(FloatExtremes extremes, const float* samples, std::size_t count);

void BlendByteRows(const std::int16_t* upper, const std::int16_t* lower, std::int32_t weight,
                   std::uint8_t* to, std::size_t count);
void BlendFloatRows(const double* upper, const double* lower, double weight, std::uint8_t* to,
                    std::size_t count);
#if defined(__AVX2__)
void BlendByteColumns(const std::uint8_t* row, const ByteColumnGroup* groups, const ByteColumnWeight* weights,
                      std::int16_t* to, std::size_t count);
void BlendFloatColumns(const std::uint8_t* row, const FloatColumnGroup* groups, const double* fractions,
                       double* to, std::size_t count);
#endif

} // namespace z3d::primitives::Z3D_ISA
