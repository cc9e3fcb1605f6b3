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

#include <type_traits>

namespace z3d::render::Z3D_ISA {
namespace {

constexpr std::int32_t kGreyMaximumSamplesPastEnd = 1;

constexpr std::uint8_t kMaximum = 0;    // ranks are bytes
constexpr std::uint8_t kMinimum = 0xFF; // ranks are complements

// With a flip that the compiler knows, for rows: they have no register to spare for one.
template <class Format, std::uint8_t kFlip>
struct ExtremeRows : Extreme<Format> {
    using Extreme<Format>::Extreme;
    using State = typename Extreme<Format>::State;
    Z3D_INLINE void Sample(const typename Format::Sample& voxels, const SamplePlace&, Bytes accepted,
                           State& state) const {
        for (int c = 0; c < Format::kChannels; ++c)
            state.largest[c] = Larger(state.largest[c], (voxels.channel[c] ^ AllBytes(kFlip)) & accepted);
        state.isFound |= accepted;
    }
    Z3D_INLINE static Bytes Outer(Bytes a, Bytes b) {
        return kFlip == kMaximum ? Larger(a, b) : Smaller(a, b);
    }
};

template <class Format>
ExtremeRows<Format, kMaximum> MaximumOf(const typename Format::Window& window, const RayShape& shape) {
    return {shape,
            {.initial = kLowestFloat, .measure = Measure::Largeness, .isBestFirst = true},
            window,
            kMaximum};
}

template <class Format>
ExtremeRows<Format, kMinimum> MinimumOf(const Projection& projection) {
    return {{},
            {.initial = kHighestFloat, .measure = Measure::Smallness},
            WindowOf<Format>(projection, WindowTest::Inclusive),
            kMinimum};
}

// Everything but the rows takes the mode as what it is derived from, once for both kinds of extremes.
template <class Format, std::uint8_t kFlip>
Rule RuleWithRows(const ExtremeRows<Format, kFlip>& mode, const Projection& projection) {
    static_assert(std::is_standard_layout_v<ExtremeRows<Format, kFlip>>, "both have the same address");
    Rule rule = RuleOf<Extreme<Format>>(mode, projection.grid);
    rule.reduceRows = ReduceRows<ExtremeRows<Format, kFlip>>;
    return rule;
}

} // namespace

void MaxProjectionGrey(const Projection& projection) {
    const auto mode = MaximumOf<Grey>(WindowOf<Grey>(projection, WindowTest::Inclusive),
                                      {.samplesPastEnd = kGreyMaximumSamplesPastEnd});
    RenderExtreme(projection, RuleWithRows(mode, projection), mode);
}

void RenderLargestBytes(const Projection& projection) {
    const auto mode = MaximumOf<Grey>(GreyWindow({1, kLargestGrey}), {});
    RenderExtreme(projection, RuleWithRows(mode, projection), mode);
}

void MaxProjectionRgb(const Projection& projection) {
    const auto mode = MaximumOf<Rgb>(WindowOf<Rgb>(projection, WindowTest::Inclusive), {});
    Render(projection, RuleWithRows(mode, projection));
}

void MinProjectionGrey(const Projection& projection) {
    const auto mode = MinimumOf<Grey>(projection);
    RenderExtreme(projection, RuleWithRows(mode, projection), mode);
}

void MinProjectionRgb(const Projection& projection) {
    const auto mode = MinimumOf<Rgb>(projection);
    Render(projection, RuleWithRows(mode, projection));
}

} // namespace z3d::render::Z3D_ISA
