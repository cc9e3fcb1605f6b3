// In what portions rays are taken.
#pragma once

#include <cstdint>

namespace z3d::render {

constexpr int kRays = 16; // of a packet: 4 x 4 neighbouring pixels
constexpr int kSamples =
    16; // of a stretch: so many samples of each ray are looked at, or passed over, together

// Packets are rendered tile by tile, so that neighbouring rays find the voxels that they share in the cache; tiles side
// by side form a band.
constexpr std::int32_t kPacketSide = 4;
constexpr std::int32_t kTileSide = 32;

} // namespace z3d::render
