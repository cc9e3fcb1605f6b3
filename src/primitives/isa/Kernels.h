// The kernels of one instruction set: what the sources of this folder define. See KernelTable.h.
#pragma once

#include "primitives/KernelTable.h"
#include "primitives/isa/Registers.h"

namespace z3d::primitives::Z3D_ISA {

SumRange ComposeBytes(const ChannelSamples<std::uint8_t> (&channels)[3], std::uint8_t* pixels,
                      std::size_t count, ByteRange range);
SumRange ComposeFloats(const ChannelSamples<float> (&channels)[3], std::uint8_t* pixels, std::size_t count,
                       FloatScale scale);

} // namespace z3d::primitives::Z3D_ISA
