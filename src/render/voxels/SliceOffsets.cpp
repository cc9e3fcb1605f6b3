#include "render/voxels/SliceOffsets.h"

#include <algorithm>
#include <cstddef>

namespace z3d::render {
namespace {

constexpr std::uint64_t kReach = std::uint64_t{1} << 32; // of all offsets together

std::uint64_t AddressOf(const std::uint8_t* slice) { return reinterpret_cast<std::uintptr_t>(slice); }

} // namespace

SliceOffsets::SliceOffsets(const std::uint8_t* const* slices, std::int32_t depth, std::uint64_t sliceBytes) {
    if constexpr (sizeof(void*) == sizeof(std::uint32_t)) return;

    std::uint64_t low = AddressOf(slices[0]);
    std::uint64_t high = low;
    for (std::int32_t z = 1; z < depth; ++z) {
        low = std::min(low, AddressOf(slices[z]));
        high = std::max(high, AddressOf(slices[z]));
    }
    if (high - low + sliceBytes > kReach) return;
    offsets_ = platform::HeapArray<std::uint32_t>(static_cast<std::size_t>(depth));
    if (!offsets_) return;

    const std::uint64_t middle = low + kReach / 2;
    for (std::int32_t z = 0; z < depth; ++z)
        offsets_[static_cast<std::size_t>(z)] = static_cast<std::uint32_t>(AddressOf(slices[z]) - middle);
    slices_ = {static_cast<std::uintptr_t>(middle), offsets_.Get()};
}

} // namespace z3d::render
