// Pictures that stay as they are: requests written out bit by bit, with the digest of what they show. One file of
// them, tests/render/GoldenRows.inc, holds every build and every binding to the same figures.
#pragma once

#include "reference/ReferenceRenderer.h"
#include "support/ProceduralVolumes.h"
#include "support/RandomRequests.h"

#include <array>
#include <cstdint>
#include <span>

namespace z3d::test {

enum class VolumeKind { Noise, Sparse, Blob, Ramp, Step, Checkerboard };

struct GoldenRow {
    std::int16_t mode;
    VolumeKind kind;
    VolumeSize size;
    // The seed of the first three kinds, a ramp's axis, 256 times a step's border plus its inside, or the side
    // of a checkerboard's cells.
    std::uint32_t detail;
    // Floats as their bits.
    std::array<std::uint32_t, 9> rotation;
    Crop crop;
    std::uint32_t high, low, extra;
    // The size as the host receives it.
    int width, height;
    std::uint64_t digest;
};

std::span<const GoldenRow> AllRows();

reference::Volume VolumeOf(const GoldenRow& row);

reference::Request RequestOf(const GoldenRow& row);

std::uint64_t DigestOf(const reference::Projection& projection);

} // namespace z3d::test
