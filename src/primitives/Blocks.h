// Pointwise primitives: the walk over a region in blocks of 16 elements, for kernels that do one block.
//
// A kernel names the bytes of one element on either side and transforms 16 of them:
//   static constexpr std::size_t kSourceBytes, kDestinationBytes;
//   void operator()(const std::uint8_t* source, std::uint8_t* destination) const;
// It reads and writes exactly those 16 elements, at any alignment.
#pragma once

#include "primitives/Region.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace z3d::primitives {

inline constexpr std::size_t kBlock = 16;

template <class Kernel>
void MapRow(const Kernel& kernel, const std::uint8_t* source, std::uint8_t* destination, std::size_t count) {
    constexpr std::size_t kIn = Kernel::kSourceBytes;
    constexpr std::size_t kOut = Kernel::kDestinationBytes;
    for (; count >= kBlock; count -= kBlock) {
        kernel(source, destination);
        source += kBlock * kIn;
        destination += kBlock * kOut;
    }
    if (count == 0) return;

    // The row's end goes through a whole block of scratch: the same arithmetic, no byte beyond the row.
    std::uint8_t in[kBlock * kIn] = {};
    std::uint8_t out[kBlock * kOut];
    std::memcpy(in, source, count * kIn);
    kernel(in, out);
    std::memcpy(destination, out, count * kOut);
}

// Rows that follow each other without a gap on both sides are one long row: fewer row ends.
template <class Kernel>
void MapRegion(const Kernel& kernel, const void* source, std::int32_t sourceStep, void* destination,
               std::int32_t destinationStep, std::size_t rowElements, std::int32_t height) {
    const std::uint64_t elements =
        static_cast<std::uint64_t>(rowElements) * static_cast<std::uint64_t>(height);
    const bool dense = static_cast<std::size_t>(sourceStep) == rowElements * Kernel::kSourceBytes
                       && static_cast<std::size_t>(destinationStep) == rowElements * Kernel::kDestinationBytes
                       && elements <= UINT32_MAX;
    if (dense) {
        rowElements = static_cast<std::size_t>(elements);
        height = 1;
    }
    for (std::int32_t y = 0; y < height; ++y)
        MapRow(kernel, RowAt(source, sourceStep, y), RowAt(destination, destinationStep, y), rowElements);
}

} // namespace z3d::primitives
