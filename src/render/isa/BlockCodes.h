// What a block of 2 x 2 x 2 voxels can contribute, as one byte: 0 when no voxel of it lies in the window, else one
// more than its largest measure (255 stands for 254 and 255). A code may be too large, never too small.
#pragma once

#include "render/isa/SampledBlocks.h"
#include "render/isa/Samples.h"

#include <cstddef>

namespace z3d::render::Z3D_ISA {

// Sixteen voxels side by side, of which `columns` exist. The last one is repeated once, as its own neighbour; what lies
// beyond is filled with a byte that changes no result.
template <int kBytes>
Z3D_INLINE void LoadVoxels(const std::uint8_t* voxels, std::int32_t columns, std::uint8_t beyond,
                           Bytes (&bytes)[kBytes]) {
    if (columns == kRays) {
        __builtin_memcpy(&bytes, voxels, sizeof bytes);
        return;
    }
    std::uint8_t filled[kBytes * (kRays + 1)];
    __builtin_memset(filled, beyond, sizeof filled);
    const auto existing = static_cast<std::size_t>(kBytes * columns);
    __builtin_memcpy(filled, voxels, existing);
    __builtin_memcpy(filled + existing, voxels + existing - kBytes, kBytes);
    __builtin_memcpy(&bytes, filled, sizeof bytes);
}
Z3D_INLINE Bytes LoadGrey(const std::uint8_t* voxels, std::int32_t columns) {
    Bytes bytes[1];
    LoadVoxels(voxels, columns, 0, bytes);
    return bytes[0];
}

// Coders take the rows of voxels of a block one after another, sixteen columns at a time.

// Grey, any window: each voxel is tested.
class GreyCoder {
public:
    GreyCoder(const GreyWindow& window, Measure measure) : window_(window), measure_(measure) {}
    using State = Bytes; // largest code
    Z3D_INLINE State First(const std::uint8_t* row, std::int32_t columns) const {
        const GreySample sample = {LoadGrey(row, columns), {}};
        const Bytes value = measure_ == Measure::Smallness ? ~sample.value : sample.value;
        return window_.Accepts(sample) & ToBytes(_mm_adds_epu8(Raw(value), _mm_set1_epi8(1)));
    }
    Z3D_INLINE void Add(State& state, const std::uint8_t* row, std::int32_t columns) const {
        state = Larger(state, First(row, columns));
    }
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
    GreyExtremeCoder(const GreyWindow& window, Measure measure)
        : window_(window),
          isPresence_(measure == Measure::Presence),
          shift_(AllBytes(isPresence_ ? static_cast<std::uint8_t>(window.Range().first) : 0)) {}
    static bool Fits(const GreyWindow& window, Measure measure) {
        if (kLargest) return measure == Measure::Largeness && window.Range().last == kLargestGrey;
        return measure == Measure::Presence || (measure == Measure::Smallness && window.Range().first == 0);
    }
    using State = Bytes;
    Z3D_INLINE State First(const std::uint8_t* row, std::int32_t columns) const {
        const Bytes value = LoadGrey(row, columns);
        return kLargest ? value : value - shift_;
    }
    Z3D_INLINE void Add(State& state, const std::uint8_t* row, std::int32_t columns) const {
        const Bytes value = First(row, columns);
        state = kLargest ? Larger(state, value) : Smaller(state, value);
    }
    Z3D_INLINE Bytes Code(State state) const {
        const Bytes accepted = window_.Accepts({state + shift_, {}});
        if (isPresence_) return accepted;
        return accepted & ToBytes(_mm_adds_epu8(Raw(kLargest ? state : ~state), _mm_set1_epi8(1)));
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
    RgbCoder(const RgbWindow& window, Measure measure)
        : first_(_mm_set1_epi16(static_cast<short>(window.Range().first))),
          last_(_mm_set1_epi16(static_cast<short>(window.Range().last))),
          measure_(measure),
          beyond_(measure == Measure::Smallness ? 255 : 0) {}
    static bool Fits(const RgbWindow& window, Measure measure) {
        const bool needsLargest = measure == Measure::Largeness || window.Range().first > 0;
        const bool needsSmallest = measure == Measure::Smallness || window.Range().last < kLargestSum;
        return kLargest >= needsLargest && kSmallest >= needsSmallest;
    }
    // Of the bytes as they lie, channel after channel.
    struct State {
        Bytes largest[3];
        Bytes smallest[3];
    };
    Z3D_INLINE State First(const std::uint8_t* row, std::int32_t columns) const {
        State state;
        LoadVoxels(row, columns, beyond_, state.largest);
        for (int part = 0; part < 3; ++part)
            state.smallest[part] = state.largest[part];
        return state;
    }
    Z3D_INLINE void Add(State& state, const std::uint8_t* row, std::int32_t columns) const {
        Bytes bytes[3];
        LoadVoxels(row, columns, beyond_, bytes);
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
            const RgbSample most = {{state.largest[0], state.largest[1], state.largest[2]}, {}};
            if (measure_ == Measure::Largeness) {
                Note(most.channel[0], most.channel[1], most.channel[2]);
                code = OneMore(Larger(Larger(most.channel[0], most.channel[1]), most.channel[2]));
            }
            const Sums sums = most.Sum();
            code &= ~ToBytes(
                _mm_packs_epi16(_mm_cmpgt_epi16(first_, sums.low), _mm_cmpgt_epi16(first_, sums.high)));
        }
        if (kSmallest) {
            SplitChannels(state.smallest);
            const RgbSample least = {{state.smallest[0], state.smallest[1], state.smallest[2]}, {}};
            if (measure_ == Measure::Smallness) {
                Note(~least.channel[0], ~least.channel[1], ~least.channel[2]);
                code &= OneMore(~Smaller(Smaller(least.channel[0], least.channel[1]), least.channel[2]));
            }
            const Sums sums = least.Sum();
            code &= ~ToBytes(
                _mm_packs_epi16(_mm_cmpgt_epi16(sums.low, last_), _mm_cmpgt_epi16(sums.high, last_)));
        }
        return code;
    }

    std::uint8_t Highest(int channel) const {
        if (measure_ == Measure::Presence) return 255;
        std::uint8_t highest = 0;
        for (int lane = 0; lane < kRays; ++lane)
            highest = highest_[channel][lane] > highest ? highest_[channel][lane] : highest;
        return highest;
    }

private:
    Z3D_INLINE void Note(Bytes red, Bytes green, Bytes blue) {
        highest_[0] = Larger(highest_[0], red);
        highest_[1] = Larger(highest_[1], green);
        highest_[2] = Larger(highest_[2], blue);
    }
    Z3D_INLINE static Bytes OneMore(Bytes value) {
        return ToBytes(_mm_adds_epu8(Raw(value), _mm_set1_epi8(1)));
    }
    const __m128i first_;
    const __m128i last_;
    const Measure measure_;
    const std::uint8_t beyond_;
    Bytes highest_[3] = {};
};

// Codes of the blocks that are sampled, into rows of bytes that leave one border block all round (see SkipExtent). The
// codes of other blocks are 0.
class BlockCodes {
public:
    BlockCodes(const VoxelGrid& grid, const SampledBlocks& blocks, std::int32_t margin,
               const SkipExtent& extent, std::uint8_t* codes)
        : grid_(grid), blocks_(blocks), margin_(margin), extent_(extent), codes_(codes) {}

    void Fill(const GreyWindow& window, Measure measure, std::uint8_t (&)[3]) const {
        if (GreyExtremeCoder<true>::Fits(window, measure)) {
            FillWith<Grey>(GreyExtremeCoder<true>(window, measure));
        } else if (GreyExtremeCoder<false>::Fits(window, measure)) {
            FillWith<Grey>(GreyExtremeCoder<false>(window, measure));
        } else {
            FillWith<Grey>(GreyCoder(window, measure));
        }
    }
    // Also finds the largest measure of each channel.
    void Fill(const RgbWindow& window, Measure measure, std::uint8_t (&highest)[3]) const {
        if (RgbCoder<true, false>::Fits(window, measure)) {
            FillColour(RgbCoder<true, false>(window, measure), highest);
        } else if (RgbCoder<false, true>::Fits(window, measure)) {
            FillColour(RgbCoder<false, true>(window, measure), highest);
        } else {
            FillColour(RgbCoder<true, true>(window, measure), highest);
        }
    }

private:
    template <class Coder>
    void FillColour(Coder coder, std::uint8_t (&highest)[3]) const {
        FillWith<Rgb>(coder);
        for (int c = 0; c < 3; ++c)
            highest[c] = coder.Highest(c);
    }

    struct Span {
        std::int32_t first;
        std::int32_t last;
    };

    template <class Format, class Coder>
    [[gnu::noinline]] void FillWith(Coder&& coder) const {
        __builtin_memset(codes_, 0, extent_.Bytes());
        for (std::int32_t bz = blocks_.first[2]; bz <= blocks_.last[2]; ++bz) {
            const Span z = RowsOf(bz - 1, grid_.depth);
            for (std::int32_t by = blocks_.first[1]; by <= blocks_.last[1]; ++by) {
                std::uint8_t* to = Row(by, bz) + 1;
                const Span y = RowsOf(by - 1, grid_.height);
                // At most three by three rows of voxels, where a margin widens a block.
                const std::uint8_t* row[9];
                int rows = 0;
                for (std::int32_t vz = z.first; vz <= z.last; ++vz) {
                    for (std::int32_t vy = y.first; vy <= y.last; ++vy)
                        row[rows++] = grid_.At<Format::kBytes>(0, vy, vz);
                }
                FillRow<Format>(coder, row, rows, to);
            }
        }
        RepeatBorders();
    }

    template <class Format, class Coder>
    Z3D_INLINE void FillRow(Coder& coder, const std::uint8_t* const* row, int rows, std::uint8_t* to) const {
        const std::int32_t width = grid_.width;
        const std::int32_t end = 2 * blocks_.last[0] < width ? 2 * blocks_.last[0] : width;
        std::int32_t x = 2 * (blocks_.first[0] - 1);
        if (rows == 4) {
            for (; x < end && x + kRays <= width; x += kRays) {
                const std::size_t offset = static_cast<std::size_t>(x) * Format::kBytes;
                auto state = coder.First(row[0] + offset, kRays);
#pragma GCC unroll 3
                for (int index = 1; index < 4; ++index)
                    coder.Add(state, row[index] + offset, kRays);
                StorePairs(to + x / 2, coder.Code(state));
            }
        } else {
            for (; x < end && x + kRays <= width; x += kRays)
                StorePairs(to + x / 2, CodeAt<Format>(coder, row, rows, x, kRays));
        }
        if (x < end) StorePairs(to + x / 2, CodeAt<Format>(coder, row, rows, x, width - x));
        if (margin_ > 0 && width > 1 && end == width) {
            // The last column stands for the one before it too.
            const Bytes before = CodeAt<Format>(coder, row, rows, width - 2, 1);
            std::uint8_t& last = to[(width - 1) / 2];
            last = before[0] > last ? before[0] : last;
        }
    }

    template <class Format, class Coder>
    [[gnu::noinline]] static Bytes CodeAt(Coder& coder, const std::uint8_t* const* row, int rows,
                                          std::int32_t x, std::int32_t columns) {
        const std::size_t offset = static_cast<std::size_t>(x) * Format::kBytes;
        auto state = coder.First(row[0] + offset, columns);
        for (int index = 1; index < rows; ++index)
            coder.Add(state, row[index] + offset, columns);
        return coder.Code(state);
    }

    // The larger of each two neighbouring columns.
    Z3D_INLINE static void StorePairs(std::uint8_t* to, Bytes code) {
        const __m128i odd = _mm_srli_epi16(Raw(code), 8);
        const __m128i even = _mm_and_si128(Raw(code), _mm_set1_epi16(0xFF));
        const __m128i pairs = _mm_max_epi16(odd, even);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(pairs, pairs));
    }

    // The rows (or slices) of a block. With a margin the last block also stands for the row before it, which is
    // sampled in place of the border.
    Span RowsOf(std::int32_t block, std::int32_t size) const {
        Span span = {2 * block, 2 * block + 1 < size ? 2 * block + 1 : size - 1};
        if (span.last == size - 1) {
            span.first -= margin_;
            if (span.first < 0) span.first = 0;
        }
        return span;
    }

    // Before the first and behind the last block of a row, the nearest block repeats.
    void RepeatBorders() const {
        const std::size_t blocksX = static_cast<std::size_t>(grid_.width + 1) / 2;
        for (std::int32_t z = blocks_.first[2]; z <= blocks_.last[2]; ++z) {
            for (std::int32_t y = blocks_.first[1]; y <= blocks_.last[1]; ++y) {
                std::uint8_t* row = Row(y, z);
                __builtin_memset(row - SkipExtent::kReach, row[1], SkipExtent::kReach + 1);
                __builtin_memset(row + blocksX + 1, row[blocksX],
                                 extent_.stride - SkipExtent::kReach - blocksX - 1);
            }
        }
    }

    std::uint8_t* Row(std::int32_t y, std::int32_t z) const {
        return codes_ + static_cast<std::size_t>(z) * extent_.slab
               + static_cast<std::size_t>(y) * extent_.stride;
    }

    const VoxelGrid& grid_;
    const SampledBlocks& blocks_;
    const std::int32_t margin_;
    const SkipExtent& extent_;
    std::uint8_t* const codes_;
};

} // namespace z3d::render::Z3D_ISA
