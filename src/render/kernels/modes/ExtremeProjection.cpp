// Modes 0 and 1, maximum- and minimum-intensity projection (MIP, MinIP): the largest or smallest voxel of each ray that
// lies in the window.
//
// Departures from the frame:
// - the grey maximum takes one sample past the trimmed range: the border voxel again, or the one just beyond the crop
//   box
// - a pixel of a minimum without a contribution holds the largest float
// - colour tests the window on the channel sum, but keeps the extreme of each channel by itself
#include "render/kernels/Kernels.h"
#include "render/kernels/modes/Extreme.h"
#include "render/kernels/modes/ModeWindow.h"
#include "render/kernels/walks/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr std::int32_t kGreyMaximumSamplesPastEnd = 1;

constexpr std::uint8_t kMaximum = 0;    // ranks are bytes
constexpr std::uint8_t kMinimum = 0xFF; // ranks are complements

template <class Format>
Extreme<Format> MaximumOf(const Projection& projection, const RayShape& shape) {
    return {shape,
            {.initial = kLowestFloat, .measure = Measure::Largeness},
            WindowOf<Format>(projection, WindowTest::Inclusive),
            kMaximum};
}

template <class Format>
Extreme<Format> MinimumOf(const Projection& projection) {
    return {{},
            {.initial = kHighestFloat, .measure = Measure::Smallness},
            WindowOf<Format>(projection, WindowTest::Inclusive),
            kMinimum};
}

// The same with a flip that the compiler knows: rows have no register to spare for one.
template <class Format, std::uint8_t kFlip>
struct ExtremeRows : Extreme<Format> {
    using State = typename Extreme<Format>::State;
    Z3D_INLINE void Sample(const typename Format::Sample& voxels, const SamplePlace&, Bytes accepted,
                           State& state) const {
        for (int c = 0; c < Format::kChannels; ++c)
            state.largest[c] = Larger(state.largest[c], (voxels.channel[c] ^ AllBytes(kFlip)) & accepted);
        state.isFound |= accepted;
    }
};

template <std::uint8_t kFlip, class Format>
Rule RuleWithRows(const Extreme<Format>& mode, const Projection& projection) {
    Rule rule = RuleOf(mode, projection.grid);
    rule.reduceRows = ReduceRows<ExtremeRows<Format, kFlip>>;
    return rule;
}

} // namespace

void MaxProjectionGrey(const Projection& projection) {
    const auto mode = MaximumOf<Grey>(projection, {.samplesPastEnd = kGreyMaximumSamplesPastEnd});
    RenderExtreme(projection, RuleWithRows<kMaximum>(mode, projection), mode);
}

void MaxProjectionRgb(const Projection& projection) {
    const auto mode = MaximumOf<Rgb>(projection, {});
    Render(projection, RuleWithRows<kMaximum>(mode, projection));
}

void MinProjectionGrey(const Projection& projection) {
    const auto mode = MinimumOf<Grey>(projection);
    RenderExtreme(projection, RuleWithRows<kMinimum>(mode, projection), mode);
}

void MinProjectionRgb(const Projection& projection) {
    const auto mode = MinimumOf<Rgb>(projection);
    Render(projection, RuleWithRows<kMinimum>(mode, projection));
}

} // namespace z3d::render::Z3D_ISA
