// Modes that keep one extreme byte per ray, written as the largest rank: the byte itself, or its complement.
#pragma once

#include "render/isa/Rules.h"

namespace z3d::render::Z3D_ISA {

struct ExtremeLanes {
    Bytes largest; // rank
    Bytes isFound;
};

// Derived has RankOf, which is its own inverse.
template <class Derived>
struct ExtremeRule : RuleDefaults {
    using Format = Grey;
    using Lanes = ExtremeLanes;
    GreyWindow window;

    explicit ExtremeRule(const ProjectionJob& job)
        : window(InclusiveRange(kLargestGrey, job.low, job.high)) {}

    template <class AnyGrey>
    Z3D_INLINE void Sample(const AnyGrey& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        lanes.largest = Larger(lanes.largest, Derived::RankOf(sample.value) & accepted);
        lanes.isFound |= accepted;
    }
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        return IsAbove(bound, lanes.largest, lanes.isFound);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        pixel[0] = pixel[1] = pixel[2] = ValueOf(lanes.largest[ray]);
    }
    static float ValueOf(std::uint8_t rank) { return Derived::RankOf(AllBytes(rank))[0]; }
};

} // namespace z3d::render::Z3D_ISA
