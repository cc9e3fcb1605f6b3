// What a block of voxels can contribute, as one byte: 0 when no voxel of it lies in the window, else one
// more than its largest measure (255 stands for 254 and 255). A code may be too large, never too small.
#pragma once

#include "render/tables/Measure.h"
#include "render/voxels/Windows.h"

#include <cstddef>

namespace z3d::render {

constexpr int kColumns = 16; // that are coded side by side

// Coders take the rows of voxels of a block one after another, sixteen columns at a time.

// Grey, any window: each voxel is tested.
class GreyCoder {
public:
    static constexpr int kBytes = 1;
    GreyCoder(const GreyWindow& window, Measure measure) : window_(window), measure_(measure) {}
    using State = Bytes; // largest code
    Z3D_INLINE State First(const std::uint8_t* row) const {
        const Bytes value = LoadBytes(row);
        return window_.Accepts({{value}}) & OneMore(measure_ == Measure::Smallness ? ~value : value);
    }
    Z3D_INLINE void Add(State& state, const std::uint8_t* row) const { state = Larger(state, First(row)); }
    Z3D_INLINE Bytes Code(State state) const { return state; }

private:
    const GreyWindow& window_;
    const Measure measure_;
};

// Grey where the extreme voxel of a block tells it all: the largest value of a window without an upper end, the
// smallest of one without a lower end, or, for presence, the value that is least above the window's lower end.
template <bool kLargest>
class GreyExtremeCoder {
public:
    static constexpr int kBytes = 1;
    GreyExtremeCoder(const GreyWindow& window, Measure measure)
        : window_(window),
          isPresence_(measure == Measure::Presence),
          shift_(AllBytes(isPresence_ ? static_cast<std::uint8_t>(window.Accepted().first) : 0)) {}
    static bool Fits(const GreyWindow& window, Measure measure) {
        if (kLargest) return measure == Measure::Largeness && window.Accepted().last == kLargestGrey;
        return measure == Measure::Presence
               || (measure == Measure::Smallness && window.Accepted().first == 0);
    }
    using State = Bytes;
    Z3D_INLINE State First(const std::uint8_t* row) const {
        const Bytes value = LoadBytes(row);
        return kLargest ? value : value - shift_;
    }
    Z3D_INLINE void Add(State& state, const std::uint8_t* row) const {
        const Bytes value = First(row);
        state = kLargest ? Larger(state, value) : Smaller(state, value);
    }
    Z3D_INLINE Bytes Code(State state) const {
        const Bytes accepted = window_.Accepts({{state + shift_}});
        if (isPresence_) return accepted;
        return accepted & OneMore(kLargest ? state : ~state);
    }

private:
    const GreyWindow& window_;
    const bool isPresence_;
    const Bytes shift_;
};

// RGB: the extremes of each channel over the block bound its sums and its measure. What is not asked for is not
// formed: the smallest values where the window has no upper end, the largest where it has no lower one.
template <bool kLargest, bool kSmallest>
class RgbCoder {
public:
    static constexpr int kBytes = 3;
    RgbCoder(const RgbWindow& window, Measure measure)
        : first_(_mm_set1_epi16(static_cast<short>(window.Accepted().first))),
          last_(_mm_set1_epi16(static_cast<short>(window.Accepted().last))),
          measure_(measure) {}
    static bool Fits(const RgbWindow& window, Measure measure) {
        const bool needsLargest = measure == Measure::Largeness || window.Accepted().first > 0;
        const bool needsSmallest = measure == Measure::Smallness || window.Accepted().last < kLargestSum;
        return kLargest >= needsLargest && kSmallest >= needsSmallest;
    }
    // Of the bytes as they lie, channel after channel.
    struct State {
        Bytes largest[3];
        Bytes smallest[3];
    };
    Z3D_INLINE State First(const std::uint8_t* row) const {
        State state;
        LoadBytes(row, state.largest);
        for (int part = 0; part < 3; ++part)
            state.smallest[part] = state.largest[part];
        return state;
    }
    Z3D_INLINE void Add(State& state, const std::uint8_t* row) const {
        Bytes bytes[3];
        LoadBytes(row, bytes);
#pragma GCC unroll 3
        for (int part = 0; part < 3; ++part) {
            if (kLargest) state.largest[part] = Larger(state.largest[part], bytes[part]);
            if (kSmallest) state.smallest[part] = Smaller(state.smallest[part], bytes[part]);
        }
    }
    Z3D_INLINE Bytes Code(State state) {
        Bytes code = AllBytes(0xFF);
        if (kLargest) {
            SplitChannels(state.largest);
            const RgbVoxels most = {{state.largest[0], state.largest[1], state.largest[2]}};
            if (measure_ == Measure::Largeness) {
                Note(most.channel[0], most.channel[1], most.channel[2]);
                code = OneMore(Larger(Larger(most.channel[0], most.channel[1]), most.channel[2]));
            }
            const Sums sums = SumOf(most);
            code &= ~NarrowMask({_mm_cmpgt_epi16(first_, sums.low), _mm_cmpgt_epi16(first_, sums.high)});
        }
        if (kSmallest) {
            SplitChannels(state.smallest);
            const RgbVoxels least = {{state.smallest[0], state.smallest[1], state.smallest[2]}};
            if (measure_ == Measure::Smallness) {
                Note(~least.channel[0], ~least.channel[1], ~least.channel[2]);
                code &= OneMore(~Smaller(Smaller(least.channel[0], least.channel[1]), least.channel[2]));
            }
            const Sums sums = SumOf(least);
            code &= ~NarrowMask({_mm_cmpgt_epi16(sums.low, last_), _mm_cmpgt_epi16(sums.high, last_)});
        }
        return code;
    }

    std::uint8_t Highest(int channel) const {
        if (measure_ == Measure::Presence) return 255;
        std::uint8_t highest = 0;
        for (int lane = 0; lane < kColumns; ++lane)
            highest = highest_[channel][lane] > highest ? highest_[channel][lane] : highest;
        return highest;
    }

private:
    Z3D_INLINE void Note(Bytes red, Bytes green, Bytes blue) {
        highest_[0] = Larger(highest_[0], red);
        highest_[1] = Larger(highest_[1], green);
        highest_[2] = Larger(highest_[2], blue);
    }
    const __m128i first_;
    const __m128i last_;
    const Measure measure_;
    Bytes highest_[3] = {};
};

// Hands the coder that fits a window and measure to `use`.
template <class Use>
void WithGreyCoder(const GreyWindow& window, Measure measure, const Use& use) {
    if (GreyExtremeCoder<true>::Fits(window, measure)) {
        GreyExtremeCoder<true> coder(window, measure);
        use(coder);
    } else if (GreyExtremeCoder<false>::Fits(window, measure)) {
        GreyExtremeCoder<false> coder(window, measure);
        use(coder);
    } else {
        GreyCoder coder(window, measure);
        use(coder);
    }
}

template <bool kLargest, bool kSmallest, class Use>
bool TryRgbCoder(const RgbWindow& window, Measure measure, std::uint8_t (&highest)[3], const Use& use) {
    if (!RgbCoder<kLargest, kSmallest>::Fits(window, measure)) return false;
    RgbCoder<kLargest, kSmallest> coder(window, measure);
    use(coder);
    for (int c = 0; c < 3; ++c)
        highest[c] = coder.Highest(c);
    return true;
}
// The same. `highest` becomes the largest measure of each channel, or something above it.
template <class Use>
void WithRgbCoder(const RgbWindow& window, Measure measure, std::uint8_t (&highest)[3], const Use& use) {
    if (TryRgbCoder<true, false>(window, measure, highest, use)) return;
    if (TryRgbCoder<false, true>(window, measure, highest, use)) return;
    TryRgbCoder<true, true>(window, measure, highest, use);
}

} // namespace z3d::render
