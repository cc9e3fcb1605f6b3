// What a mode says about itself: a rule derives from RuleDefaults and states how it differs from the walk.
//
//   Format      Grey or Rgb
//   Lanes       what sixteen rays carry from sample to sample; starts from zeroes
//   window      the voxel values that can contribute at all
//   Sample      what one sample does to the rays of the mask; as a template, it is handed samples that need
//               no window test, too, where the window accepts every value
//   Finish      the pixel of one ray that had samples; it holds kInitial before
//
// Each lane does what a ray by itself would do, in the same order, so results are the same to the last bit
// whatever the packet and the instruction set.
#pragma once

#include "render/isa/Samples.h"

namespace z3d::render::Z3D_ISA {

// The rays with a voxel in the window ahead.
Z3D_INLINE Bytes WantsAny(Bytes bound) { return ~AreEqual(bound, Bytes{}); }

// Where black changes nothing but a ray that has found no voxel yet: the rays with anything else ahead. Bounds are of
// largest values, and that of black is 1.
Z3D_INLINE Bytes WantsColour(Bytes bound, Bytes isFound) {
    const Bytes isBlack = AreEqual(Smaller(bound, AllBytes(1)), bound) & isFound;
    return WantsAny(bound) & ~isBlack;
}

struct RuleDefaults {
    static constexpr float kInitial = kLowestFloat;    // the pixel before, and without, a contribution
    static constexpr std::int32_t kSamplesPastEnd = 0; // samples beyond the trimmed range
    static constexpr bool kBackToFront = false;
    static constexpr std::int32_t kBorder = 0;    // output pixels at each edge that are left 0
    static constexpr int kFirstLook = kSamples;   // samples that a packet takes before it asks who has ended
    static constexpr int kLook = kSamples;        // and between later questions
    static constexpr bool kUsesPositions = false; // whether samples know their unrounded positions
    static constexpr Measure kMeasure = Measure::Presence; // what bounds of skipped stretches are about

    // The smallest voxel index that is sampled on every axis; the largest lies as far from the other end.
    std::int32_t Margin() const { return 0; }
    // Samples of a ray that count at most.
    std::int32_t SampleLimit() const { return INT32_MAX; }

    // The rays that a stretch can still change, given its bound per ray (see SkipTable); 0: nothing in the
    // window there.
    template <class Lanes>
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes&) const {
        return WantsAny(bound);
    }
    // The rays that no further sample can change.
    template <class Lanes>
    Z3D_INLINE Bytes Ended(const Lanes&) const {
        return Bytes{};
    }
    // A stretch without a voxel in the window was left out.
    template <class Lanes>
    Z3D_INLINE void PassOver(Lanes&) const {}
    // Whether samples between the two changed nothing.
    template <class Lanes>
    bool AreSame(const Lanes& before, const Lanes& after) const {
        return __builtin_memcmp(&before, &after, sizeof after) == 0;
    }
    // After every 16 samples, and after the last one.
    template <class Lanes>
    Z3D_INLINE void EndStretch(Lanes&) const {}
};

// Whether the sample of a rule is such a template. Worth its size where a sample costs little else.
template <class Rule>
concept TakesAccepted = requires(const Rule& rule, typename Rule::Lanes& lanes) {
    rule.Sample(AcceptedGrey{}, Bytes{}, lanes);
};

// For rules that keep a largest value: the rays whose bound is above what they have. Bounds are one more than
// the value, and 255 stands for both 254 and 255.
Z3D_INLINE Bytes IsAbove(Bytes bound, Bytes largest, Bytes isFound) {
    const Bytes largestBound = ToBytes(_mm_adds_epu8(Raw(largest), _mm_set1_epi8(1)));
    const Bytes safe = Smaller(largestBound, AllBytes(254)) | AreEqual(largest, AllBytes(255));
    const Bytes reached = safe & isFound;
    return ~AreEqual(Larger(bound, reached), reached);
}

// One row of the image as it is without contributions.
template <class Rule>
void FillRowWithInitial(const ProjectionJob& job, std::int32_t row) {
    const std::int32_t width = job.geometry.outputWidth;
    float* pixels = job.pixels + 3 * static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
    for (std::int32_t index = 3 * Rule::kBorder; index < 3 * (width - Rule::kBorder); ++index)
        pixels[index] = Rule::kInitial;
}

} // namespace z3d::render::Z3D_ISA
