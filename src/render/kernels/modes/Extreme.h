// Keeps one extreme byte per ray and channel, as the largest rank: the byte itself for maxima, its complement for
// minima.
#pragma once

#include "render/kernels/walks/RuleOf.h"

namespace z3d::render::Z3D_ISA {

// For modes that keep a largest rank: stretches with bounds up to this change nothing. Bounds are one more than the
// rank, and 255 stands for both 254 and 255.
Z3D_INLINE Bytes ReachedBound(Bytes largest, Bytes isFound) {
    return (Smaller(OneMore(largest), AllBytes(254)) | AreEqual(largest, AllBytes(255))) & isFound;
}

template <class VoxelFormat>
struct Extreme : NothingPending {
    using Format = VoxelFormat;
    static constexpr int kChannels = Format::kChannels;
    struct State {
        Bytes largest[kChannels]; // rank
        Bytes isFound;
    };
    using Fold = std::conditional_t<kChannels == 3, ColourRanks, void>;
    static constexpr Counts kCounts = Counts::EverySample;
    static constexpr bool kEndsRays = false; // only the highest byte could end one
    static constexpr bool kReducesRows = true;

    RayShape shape;
    Looks looks;
    typename Format::Window window;
    Bytes flip; // a rank is a byte ^ flip

    Extreme(const RayShape& rays, const Looks& looksOfMode, const typename Format::Window& accepting,
            std::uint8_t complement)
        : shape(rays), looks(looksOfMode), window(accepting), flip(AllBytes(complement)) {}

    Z3D_INLINE void Sample(const typename Format::Sample& voxels, const SamplePlace&, Bytes accepted,
                           State& state) const {
        for (int c = 0; c < kChannels; ++c)
            state.largest[c] = Larger(state.largest[c], (voxels.channel[c] ^ flip) & accepted);
        state.isFound |= accepted;
    }
    static constexpr bool MayFold() { return true; }
    Z3D_INLINE void AddTo(ColourRanks& ranks, const std::uint32_t* colours, Bytes accepted) const {
        ranks.Add(colours, flip, accepted);
    }
    Z3D_INLINE void Merge(const ColourRanks& ranks, Bytes accepted, State& state) const {
        const RgbVoxels largest = ranks.Ranks();
        for (int c = 0; c < kChannels; ++c)
            state.largest[c] = Larger(state.largest[c], largest.channel[c]);
        state.isFound |= accepted;
    }
    Z3D_INLINE Bytes Settled(const State& state, const Bytes (&highest)[3]) const {
        // A channel that has reached its highest rank waits for nothing, such as one that is black everywhere.
        Bytes least = AllBytes(255);
        for (int c = 0; c < kChannels; ++c) {
            const Bytes isHighest = AreEqual(Larger(state.largest[c], highest[c]), state.largest[c]);
            least = Smaller(least, state.largest[c] | isHighest);
        }
        return ReachedBound(least, state.isFound);
    }
    Z3D_INLINE RayPixels<kChannels> Finish(const State& state) const {
        RayPixels<kChannels> pixels;
        for (int c = 0; c < kChannels; ++c)
            pixels.channel[c] = Where(state.isFound, ToRayFloats(state.largest[c] ^ flip), looks.initial);
        return pixels;
    }
};

using GreyExtreme = Extreme<Grey>;

// The largest byte of each ray; the lowest float where it is 0.
void RenderLargestBytes(const Projection& projection);

} // namespace z3d::render::Z3D_ISA
