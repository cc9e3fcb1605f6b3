// Which stretches of a ray need not be looked at.
//
// Blocks of 2 x 2 x 2 voxels have codes (see BlockCodes). The bound of a block is the largest code of all blocks
// that a stretch of 16 samples can touch whose first sample lies in it.
//
// Which blocks those are. A coordinate p is sampled at index floor(p + 0.49), which lies in block
// floor((p + 2.49) / 2), counted from one border block before the volume. Let the first sample's quotient lie
// surely within a block: by d on either side. Sample t's is larger by t s / 2, s being the step of the ray, up to
// e / 2 for the rounding of 15 additions. So sample t's block lies between floor(d + (t s - e) / 2) and
// ceil(1 - d + (t s + e) / 2) - 1 blocks on. The bound is taken over codes that have been dilated by the width of
// this range, at a dozen block offsets. Indexes beyond the volume are sampled at its border: blocks repeat
// there, one axis at a time, exactly as indexes are clamped.
#pragma once

#include "render/isa/BlockCodes.h"

#include <cstddef>

namespace z3d::render::Z3D_ISA {

class SkipTable {
public:
    // Block coordinates must fit into 15 bits. A stretch must not reach beyond the padding of a row: rotations that
    // lengthen a ray's step, which hosts may pass, get no table.
    static bool IsUsable(const ProjectionJob& job) {
        for (int axis = 0; axis < 3; ++axis) {
            if (!(__builtin_fabsf(job.geometry.inverse[3 * axis + 2]) <= kLongestStep)) return false;
        }
        const SkipExtent extent(job.grid);
        return job.skipMemory != nullptr && extent.boundsStride < (1 << 15) && extent.blocksY < (1 << 15);
    }

    SkipTable(const ProjectionJob& job, bool backToFront) : extent_(job.grid), sampled_(job) {
        const std::int32_t sizes[3] = {job.grid.width, job.grid.height, job.grid.depth};
        for (int axis = 0; axis < 3; ++axis) {
            const float step = job.geometry.inverse[3 * axis + 2];
            step_[axis] = backToFront ? -step : step;
            size_[axis] = sizes[axis];
        }
        codes_ = job.skipMemory + SkipExtent::kRowPadding;
        bounds_ = codes_ + extent_.CodeBytes();

        // Fifteen roundings of at most half a unit in the last place of twice the largest coordinate, and the one
        // of the block coordinate.
        const double largest = MaxOf(size_[0], MaxOf(size_[1], size_[2]));
        rounding_ = (largest + 32) * 0x1p-19;
        surely_ = rounding_ / 2 + 0x1p-12;
        largestOffCentre_ = AllFloats(static_cast<float>(0.5 - surely_ - rounding_ / 16));
        const std::int32_t blocks[3] = {extent_.blocksX, extent_.blocksY, extent_.blocksZ};
        for (int axis = 0; axis < 3; ++axis) {
            // The largest float below: its position within its block is never sure.
            last_[axis] = AllFloats(__builtin_nextafterf(static_cast<float>(blocks[axis]), 0));
        }
        factors_ = FactorsFor(static_cast<std::uint32_t>(extent_.boundsStride));
        half_ = AllFloats(0.5f);
        firstBlock_ = AllFloats(1.245f); // (0 + 2.49) / 2
    }

    // Fills the table, for which the job must have memory.
    template <class Window>
    void Make(const VoxelGrid& grid, const Window& window, Measure measure, std::int32_t margin) {
        FindOffsets();
        WithCoder(window, measure, highest_, [&](auto& coder) {
            BlockCodes codes(grid, sampled_, margin, extent_, coder);
            FillWith(codes);
        });
    }

    // How many voxels there are to look at.
    double Voxels() const { return sampled_.Voxels(); }

    // No voxel has a larger measure in this channel.
    std::uint8_t Highest(int channel) const { return highest_[channel]; }

    // The bounds of sixteen stretches by the positions of their first samples. 255 where a position lies too close to
    // a face between blocks, or too far outside the volume, for the argument above.
    [[gnu::noinline]] Bytes BoundsAt(const Positions& positions) const {
        alignas(64) std::uint32_t layer[kRays];
        alignas(64) std::uint32_t cell[kRays];
        alignas(64) Ints isSure[kRays / kFloatLanes];
        for (int part = 0; part < kRays / kFloatLanes; ++part) {
            const int lane = part * kFloatLanes;
            Floats offCentre = {};
            const Ints x = Block(LoadFloats(positions.axis[0] + lane), 0, offCentre);
            const Ints y = Block(LoadFloats(positions.axis[1] + lane), 1, offCentre);
            const Ints z = Block(LoadFloats(positions.axis[2] + lane), 2, offCentre);
            Store(cell + lane, RowTimesWidth(y, x, factors_));
            Store(layer + lane, reinterpret_cast<Uints>(z));
            isSure[part] = offCentre < largestOffCentre_;
        }
        alignas(16) std::uint8_t bound[kRays];
        for (int ray = 0; ray < kRays; ++ray)
            bound[ray] = bounds_[layer[ray] * extent_.boundsLayer + cell[ray]];
        const auto* sure = reinterpret_cast<const __m128i*>(isSure);
        const __m128i low = _mm_packs_epi32(sure[0], sure[1]);
        const __m128i high = _mm_packs_epi32(sure[2], sure[3]);
        Bytes bounds;
        __builtin_memcpy(&bounds, bound, sizeof bounds);
        return bounds | ~ToBytes(_mm_packs_epi16(low, high));
    }

private:
    // 15 steps and their rounding (at most 0.13) stay within 16 voxels: 8 blocks.
    static constexpr float kLongestStep = 1.03125f;

    // The block coordinate, and how far from the middle of a block the position lies; in blocks.
    Z3D_INLINE Ints Block(Floats position, int axis, Floats& offCentre) const {
        const Floats at = Min(Max(position * half_ + firstBlock_, Floats{}), last_[axis]);
        const Ints block = Truncate(at);
        const Floats off = at - ToFloats(block) - half_;
        offCentre = Max(offCentre, Max(off, -off));
        return block;
    }

    // Block offsets of the sixteen samples from the block of the first one, without repetition.
    [[gnu::noinline]] void FindOffsets() {
        offsets_ = 0;
        for (int sample = 0; sample < kSamples; ++sample) {
            Offset offset;
            for (int axis = 0; axis < 3; ++axis) {
                const double shift = sample * static_cast<double>(step_[axis]) / 2;
                const double slack = step_[axis] == 0 ? 0 : rounding_ / 2;
                offset.axis[axis] = static_cast<std::int32_t>(__builtin_floor(surely_ + shift - slack));
                const auto highest =
                    static_cast<std::int32_t>(__builtin_ceil(1 - surely_ + shift + slack)) - 1;
                reach_[axis] = MaxOf(reach_[axis], highest - offset.axis[axis]);
            }
            farthest_ = MaxOf(farthest_, offset.axis[2]);
            bool isNew = true;
            for (int known = 0; known < offsets_; ++known)
                isNew = isNew && !offset_[known].Equals(offset);
            if (isNew) offset_[offsets_++] = offset;
        }
    }

    // Layer by layer. Codes of no more layers are kept than the bounds of one are taken over.
    template <class Codes>
    [[gnu::noinline]] void FillWith(Codes& codes) {
        const std::int32_t lastZ = (size_[2] + 1) / 2;
        std::int32_t next = FirstCoded(2);
        // Stretches begin in the sampled blocks, or a border block beside them.
        for (std::int32_t z = sampled_.first[2] - 1; z <= sampled_.last[2] + 1 && z < extent_.blocksZ; ++z) {
            const std::int32_t needed = Between(z + farthest_, 1, lastZ) + reach_[2];
            for (; next <= needed && next <= sampled_.last[2]; ++next) {
                codes.FillLayer(next, Layer(next));
                Dilate(next);
            }
            FormBounds(z);
        }
    }

    // Codes before the sampled blocks are wanted as far as those reach back; codes behind them are 0.
    std::int32_t FirstCoded(int axis) const { return MaxOf(1, sampled_.first[axis] - reach_[axis]); }

    // Each code becomes the largest of its own and the following ones within reach on each axis.
    [[gnu::noinline]] void Dilate(std::int32_t z) {
        const std::int32_t lastY = (size_[1] + 1) / 2;
        for (std::int32_t y = sampled_.first[1]; y <= sampled_.last[1]; ++y) {
            std::uint8_t* row = CodeRow(y, z) - SkipExtent::kReach;
            for (std::int32_t pass = 0; pass < reach_[0]; ++pass)
                Merge(row, row + 1, extent_.stride);
        }
        for (std::int32_t y = FirstCoded(1); y <= sampled_.last[1]; ++y) {
            for (std::int32_t next = 1; next <= reach_[1] && y + next <= lastY; ++next)
                MergeRow(CodeRow(y, z), CodeRow(y + next, z));
        }
        for (std::int32_t before = MaxOf(FirstCoded(2), z - reach_[2]); before < z; ++before) {
            for (std::int32_t y = FirstCoded(1); y <= sampled_.last[1]; ++y)
                MergeRow(CodeRow(y, before), CodeRow(y, z));
        }
    }

    [[gnu::noinline]] void FormBounds(std::int32_t z) {
        const std::int32_t lastY = (size_[1] + 1) / 2;
        const std::int32_t lastZ = (size_[2] + 1) / 2;
        for (std::int32_t y = sampled_.first[1] - 1; y <= sampled_.last[1] + 1 && y < extent_.blocksY; ++y) {
            const std::uint8_t* from[kSamples];
            int count = 0;
            for (int index = 0; index < offsets_; ++index) {
                const Offset& offset = offset_[index];
                const std::int32_t layer = Between(z + offset.axis[2], 1, lastZ);
                if (layer < FirstCoded(2) || layer > sampled_.last[2]) continue;
                from[count++] = CodeRow(Between(y + offset.axis[1], 1, lastY), layer) + offset.axis[0];
            }
            std::uint8_t* to = bounds_ + static_cast<std::size_t>(z) * extent_.boundsLayer
                               + static_cast<std::size_t>(y) * extent_.boundsStride;
            for (std::int32_t x = 0; x < extent_.blocksX; x += 64)
                LargestOf(from, count, x, to);
        }
    }

    // 64 blocks of a row; fewer exist at its end, where the padding of the table takes what is too much.
    Z3D_INLINE static void LargestOf(const std::uint8_t* const* from, int count, std::int32_t x,
                                     std::uint8_t* to) {
        __m128i largest[4] = {_mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128(),
                              _mm_setzero_si128()};
        for (int index = 0; index < count; ++index) {
            const auto* bytes = reinterpret_cast<const __m128i*>(from[index] + x);
#pragma GCC unroll 4
            for (int part = 0; part < 4; ++part)
                largest[part] = _mm_max_epu8(largest[part], _mm_loadu_si128(bytes + part));
        }
#pragma GCC unroll 4
        for (int part = 0; part < 4; ++part)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + x) + part, largest[part]);
    }

    struct Offset {
        std::int32_t axis[3];
        bool Equals(const Offset& other) const {
            return axis[0] == other.axis[0] && axis[1] == other.axis[1] && axis[2] == other.axis[2];
        }
    };

    template <class Number>
    static Number MaxOf(Number a, Number b) {
        return a > b ? a : b;
    }
    static std::int32_t Between(std::int32_t value, std::int32_t low, std::int32_t high) {
        return value < low ? low : (value > high ? high : value);
    }
    std::uint8_t* Layer(std::int32_t z) const {
        return codes_ + static_cast<std::size_t>(z % extent_.layers) * extent_.layer;
    }
    std::uint8_t* CodeRow(std::int32_t y, std::int32_t z) const {
        return Layer(z) + static_cast<std::size_t>(y) * extent_.stride;
    }
    void MergeRow(std::uint8_t* row, const std::uint8_t* next) const {
        Merge(row - SkipExtent::kReach, next - SkipExtent::kReach, extent_.stride);
    }
    // Whole vectors, as rows are; front to back, so that a row can be merged with itself one byte on.
    static void Merge(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) {
        for (std::size_t at = 0; at < bytes; at += 16) {
            const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(to + at));
            const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), _mm_max_epu8(a, b));
        }
    }

    std::int32_t farthest_ = 0; // offset along z
    SkipExtent extent_;
    SampledBlocks sampled_;
    std::uint8_t highest_[3] = {255, 255, 255};
    std::int32_t size_[3];
    float step_[3];
    double rounding_; // of a coordinate, over a stretch
    double surely_;   // d of the argument above
    Floats largestOffCentre_;
    Floats last_[3];
    Floats half_;
    Floats firstBlock_;
    Ints factors_;
    std::uint8_t* codes_;
    std::uint8_t* bounds_;
    Offset offset_[kSamples];
    int offsets_ = 0;
    std::int32_t reach_[3] = {0, 0, 0};
};

} // namespace z3d::render::Z3D_ISA
