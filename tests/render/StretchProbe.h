// The innermost steps of the kernels by themselves: from positions to voxel indexes, and to bounds.
#pragma once

#include "render/InstructionSet.h"
#include "render/Projection.h"
#include "render/StretchIndexes.h"
#include "render/tables/BoundTable.h"

#include <cstdint>

namespace z3d::test {

struct StretchProbe {
    // The voxel indexes of sixteen samples of sixteen rays, the first of which lie at `positions`.
    void (*takeStretch)(const render::Projection& projection, bool backToFront, std::int32_t margin,
                        const render::Positions& positions, render::Indexes& indexes);

    // What the table, which has been made for the projection, says about these sixteen stretches.
    void (*lookUp)(const render::Projection& projection, const render::BoundTable& table,
                   const render::Positions& positions, std::uint8_t (&bounds)[render::kRays]);

    // Floats whose bits are first, first + stride ... up to last, none of them below -2 or as large as 65536: the bits
    // of the first one whose index on the x or the z axis is not trunc(c + 0.49) in doubles, clamped to the axis. -1
    // when there is none.
    std::int64_t (*findWrongIndex)(const render::Projection& projection, std::uint32_t first,
                                   std::uint32_t last, std::uint32_t stride);
};

// Of an instruction set that the processor has.
const StretchProbe& ProbeOf(render::InstructionSet set);

} // namespace z3d::test
