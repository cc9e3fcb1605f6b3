// Modes that keep one extreme byte per ray and channel, written as the largest rank: the byte itself, or its
// complement.
#pragma once

#include "render/isa/Rules.h"

namespace z3d::render::Z3D_ISA {

template <int kChannels>
struct ExtremeLanes {
    Bytes largest[kChannels]; // rank
    Bytes isFound;
};

using GreyExtremeLanes = ExtremeLanes<1>;

// Derived has RankOf, which is its own inverse.
template <class Derived, class VoxelFormat>
struct ExtremeRule : RuleDefaults {
    using Format = VoxelFormat;
    static constexpr int kChannels = Format::kBytes;
    using Lanes = ExtremeLanes<kChannels>;
    typename Format::Window window;
    Bytes highest[kChannels]; // no rank of the volume is above it

    explicit ExtremeRule(const ProjectionJob& job)
        : window(InclusiveRange(Format::kLargest, job.low, job.high)) {
        for (Bytes& rank : highest)
            rank = AllBytes(0xFF);
    }

    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        // A channel that has reached its highest rank waits for nothing, such as one that is black everywhere.
        Bytes least = AllBytes(0xFF);
        for (int c = 0; c < kChannels; ++c) {
            const Bytes isHighest = AreEqual(Larger(lanes.largest[c], highest[c]), lanes.largest[c]);
            least = Smaller(least, lanes.largest[c] | isHighest);
        }
        return IsAbove(bound, least, lanes.isFound);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = ValueOf(lanes.largest[c % kChannels][ray]);
    }
    static float ValueOf(std::uint8_t rank) { return Derived::RankOf(AllBytes(rank))[0]; }
};

template <class Derived>
struct GreyExtremeRule : ExtremeRule<Derived, Grey> {
    using Base = ExtremeRule<Derived, Grey>;
    using Base::Base;
    template <class AnyGrey>
    Z3D_INLINE void Sample(const AnyGrey& sample, Bytes isValid, typename Base::Lanes& lanes) const {
        const Bytes accepted = this->window.Accepts(sample) & isValid;
        lanes.largest[0] = Larger(lanes.largest[0], Derived::RankOf(sample.value) & accepted);
        lanes.isFound |= accepted;
    }
};

template <class Derived>
struct RgbExtremeRule : ExtremeRule<Derived, Rgb> {
    using Base = ExtremeRule<Derived, Rgb>;
    using Base::Base;
    Z3D_INLINE void Sample(const RgbSample& sample, Bytes isValid, typename Base::Lanes& lanes) const {
        const Bytes accepted = this->window.Accepts(sample) & isValid;
        for (int c = 0; c < 3; ++c)
            lanes.largest[c] = Larger(lanes.largest[c], Derived::RankOf(sample.channel[c]) & accepted);
        lanes.isFound |= accepted;
    }
};

} // namespace z3d::render::Z3D_ISA
