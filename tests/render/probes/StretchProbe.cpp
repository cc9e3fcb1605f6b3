// Compiled once per instruction set, as the kernels are. Nothing of the standard library may be used in here: a
// function of it that is not inlined could stand in for a baseline one of the same name.
#include "render/StretchProbe.h"

#include "render/kernels/sampling/BoundLookup.h"
#include "render/kernels/sampling/SampleStepper.h"

namespace z3d::test::Z3D_ISA {

using namespace render;
using render::Z3D_ISA::BoundLookup;
using render::Z3D_ISA::RayShape;
using render::Z3D_ISA::SampleStepper;

void TakeStretch(const Projection& projection, bool backToFront, std::int32_t margin,
                 const Positions& positions, Indexes& indexes) {
    RayShape shape;
    shape.backToFront = backToFront;
    shape.margin = margin;
    Positions behind = positions;
    SampleStepper(projection, shape).NextStretch(behind, kSamples, indexes, false);
}

void LookUp(const Projection& projection, const BoundTable& table, const Positions& positions,
            std::uint8_t (&bounds)[kRays]) {
    const Bytes found = BoundLookup(table, projection.grid).BoundsAt(positions);
    __builtin_memcpy(bounds, &found, sizeof bounds);
}

static std::uint32_t NearestOf(float coordinate, std::int32_t size) {
    const auto nearest = static_cast<std::int32_t>(static_cast<double>(coordinate) + 0.49);
    if (nearest < 0) return 0;
    return static_cast<std::uint32_t>(nearest < size ? nearest : size - 1);
}

std::int64_t FindWrongIndex(const Projection& projection, std::uint32_t first, std::uint32_t last,
                            std::uint32_t stride) {
    const SampleStepper stepper(projection, RayShape());
    Positions positions = {};
    Indexes indexes;
    for (std::uint64_t start = first; start <= last; start += std::uint64_t{kRays} * stride) {
        float values[kRays];
        for (int ray = 0; ray < kRays; ++ray) {
            const std::uint64_t wanted = start + static_cast<std::uint64_t>(ray) * stride;
            const auto bits = static_cast<std::uint32_t>(wanted < last ? wanted : last);
            __builtin_memcpy(&values[ray], &bits, sizeof bits);
        }
        __builtin_memcpy(positions.axis[0], values, sizeof values);
        __builtin_memcpy(positions.axis[2], values, sizeof values);
        stepper.NextStretch(positions, 1, indexes, false);
        for (int ray = 0; ray < kRays; ++ray) {
            if (indexes.plane[0][ray] == NearestOf(values[ray], projection.grid.width)
                && indexes.z[0][ray] == NearestOf(values[ray], projection.grid.depth)) {
                continue;
            }
            std::uint32_t bits = 0;
            __builtin_memcpy(&bits, &values[ray], sizeof bits);
            return bits;
        }
    }
    return -1;
}

extern const StretchProbe kStretchProbe;
const StretchProbe kStretchProbe = {&TakeStretch, &LookUp, &FindWrongIndex};

} // namespace z3d::test::Z3D_ISA
