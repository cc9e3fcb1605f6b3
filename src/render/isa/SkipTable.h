// Which stretches of a ray need not be looked at.
//
// The volume is divided into blocks of 2 x 2 x 2 voxels. A block's code is 0 when no voxel of it lies in the
// window, else one more than its largest measure (255 stands for 254 and 255). The bound of a block is the
// largest code of all blocks that a stretch of 16 samples can touch whose first sample lies in it.
//
// Which blocks those are. On each axis the index of sample t lies between floor(t s - e) and ceil(t s + e) of
// that of the first sample, s being the ray's step and e the rounding of 15 additions; so its block lies at most
// one beyond floor(floor(t s - e) / 2). The bound is therefore taken over codes that have been dilated by one
// block on the axes that move, at a dozen block offsets. Indexes beyond the volume are sampled at its border:
// blocks repeat there, one axis at a time, exactly as indexes are clamped.
#pragma once

#include "render/isa/Samples.h"

#include <cstddef>

namespace z3d::render::Z3D_ISA {

class SkipTable {
public:
    // Positions within a layer of blocks are formed in floats, which must be exact. A stretch must not reach
    // beyond the padding of a row: rotations that lengthen a ray's step, which hosts may pass, get no table.
    static bool IsUsable(const ProjectionJob& job) {
        for (int axis = 0; axis < 3; ++axis) {
            if (!(__builtin_fabsf(job.geometry.inverse[3 * axis + 2]) <= kLongestStep)) return false;
        }
        return job.skipMemory != nullptr && SkipExtent(job.grid).slab <= (1 << 24);
    }

    // The job must have memory for it.
    template <class Format>
    [[gnu::noinline]] static SkipTable Make(const ProjectionJob& job, const typename Format::Window& window,
                                            Measure measure, bool backToFront, std::int32_t margin) {
        SkipTable table(job, backToFront);
        table.CodeBlocks<Format>(job.grid, window, measure, margin);
        table.RepeatBorders();
        table.FindOffsets();
        table.Dilate();
        table.FormBounds();
        return table;
    }

    // The bounds of sixteen stretches by the positions of their first samples. 255 where a position lies too
    // far outside the volume for the argument above.
    [[gnu::noinline]] Bytes BoundsAt(const Positions& positions) const {
        alignas(64) std::uint32_t slab[kRays];
        alignas(64) std::uint32_t cell[kRays];
        alignas(64) std::int32_t isFar[kRays];
        const auto stride = static_cast<float>(extent_.stride);
        for (int lane = 0; lane < kRays; lane += kFloatLanes) {
            Ints outside = {};
            const Floats x = Block(LoadFloats(positions.axis[0] + lane), 0, outside);
            const Floats y = Block(LoadFloats(positions.axis[1] + lane), 1, outside);
            const Floats z = Block(LoadFloats(positions.axis[2] + lane), 2, outside);
            Store(cell + lane, TruncateUnsigned(y * stride + x));
            Store(slab + lane, TruncateUnsigned(z));
            __builtin_memcpy(isFar + lane, &outside, sizeof outside);
        }
        alignas(16) std::uint8_t bound[kRays];
        for (int ray = 0; ray < kRays; ++ray) {
            bound[ray] =
                static_cast<std::uint8_t>(bounds_[slab[ray] * extent_.slab + cell[ray]] | isFar[ray]);
        }
        Bytes bounds;
        __builtin_memcpy(&bounds, bound, sizeof bounds);
        return bounds;
    }

private:
    // 15 steps and their rounding (at most 0.13) stay within 16 voxels: 8 blocks.
    static constexpr float kLongestStep = 1.03125f;

    SkipTable(const ProjectionJob& job, bool backToFront) : extent_(job.grid) {
        const std::int32_t sizes[3] = {job.grid.width, job.grid.height, job.grid.depth};
        for (int axis = 0; axis < 3; ++axis) {
            const float step = job.geometry.inverse[3 * axis + 2];
            step_[axis] = backToFront ? -step : step;
            size_[axis] = sizes[axis];
        }
        codes_ = job.skipMemory + SkipExtent::kRowPadding;
        bounds_ = codes_ + extent_.Bytes();
    }

    // The block coordinate, counted from the border block before the volume.
    Z3D_INLINE Floats Block(Floats position, int axis, Ints& outside) const {
        const auto size = static_cast<float>(size_[axis]);
        outside |= (position < -1.25f) | (position > size + 0.25f);
        const Floats inside = Min(Max(position, Floats{}), AllFloats(size));
        const Floats whole = ToFloats(Truncate(inside));
        const Floats one = AllFloats(1);
        const Ints isUpper = inside - whole > kUpperPart;
        const Ints isBefore = position < -0.49f;
        // index + 2, halved
        const Floats index = whole + reinterpret_cast<Floats>(isUpper & reinterpret_cast<Ints>(one))
                             - reinterpret_cast<Floats>(isBefore & reinterpret_cast<Ints>(one)) + 2.0f;
        return ToFloats(Truncate(index * 0.5f));
    }

    // Voxel code before the maximum over blocks: 0 outside the window.
    Z3D_INLINE static Bytes CodeOf(const GreySample& sample, const GreyWindow& window, Measure measure) {
        const Bytes value = measure == Measure::Smallness ? ~sample.value : sample.value;
        return window.Accepts(sample) & ToBytes(_mm_adds_epu8(Raw(value), _mm_set1_epi8(1)));
    }
    Z3D_INLINE static Bytes CodeOf(const RgbSample& sample, const RgbWindow& window, Measure measure) {
        Bytes value = {};
        for (const Bytes& channel : sample.channel) {
            value = Larger(value, measure == Measure::Smallness ? ~channel : channel);
        }
        return window.Accepts(sample) & ToBytes(_mm_adds_epu8(Raw(value), _mm_set1_epi8(1)));
    }

    template <class Format>
    [[gnu::noinline]] void CodeBlocks(const VoxelGrid& grid, const typename Format::Window& window,
                                      Measure measure, std::int32_t margin) {
        const std::int32_t blocksY = (grid.height + 1) / 2;
        const std::int32_t blocksZ = (grid.depth + 1) / 2;
        for (std::int32_t bz = 0; bz < blocksZ; ++bz) {
            for (std::int32_t by = 0; by < blocksY; ++by) {
                std::uint8_t* to = Row(codes_, by + 1, bz + 1) + 1;
                const BlockRows<Format> rows(grid, RowsOf(by, grid.height, margin),
                                             RowsOf(bz, grid.depth, margin));
                std::int32_t x = 0;
                for (; x + kRays <= grid.width; x += kRays) {
                    StorePairs(to + x / 2, rows.CodeAt(x, kRays, window, measure));
                }
                if (x < grid.width) StorePairs(to + x / 2, rows.CodeAt(x, grid.width - x, window, measure));
                if (margin > 0 && grid.width > 1) {
                    // The last column stands for the one before it too.
                    const Bytes before = rows.CodeAt(grid.width - 2, 1, window, measure);
                    std::uint8_t& last = to[(grid.width - 1) / 2];
                    last = before[0] > last ? before[0] : last;
                }
            }
        }
    }

    // The larger of each two neighbouring columns.
    Z3D_INLINE static void StorePairs(std::uint8_t* to, Bytes code) {
        const __m128i odd = _mm_srli_epi16(Raw(code), 8);
        const __m128i even = _mm_and_si128(Raw(code), _mm_set1_epi16(0xFF));
        const __m128i pairs = _mm_max_epi16(odd, even);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(pairs, pairs));
    }

    struct Span {
        std::int32_t first;
        std::int32_t last;
    };
    // The rows (or slices) of a block. With a margin the last block also stands for the row before it, which is
    // sampled in place of the border.
    static Span RowsOf(std::int32_t block, std::int32_t size, std::int32_t margin) {
        Span span = {2 * block, 2 * block + 1 < size ? 2 * block + 1 : size - 1};
        if (span.last == size - 1) {
            span.first -= margin;
            if (span.first < 0) span.first = 0;
        }
        return span;
    }

    // The rows of voxels of one row of blocks: at most three by three, where a margin widens a block.
    template <class Format>
    struct BlockRows {
        const std::uint8_t* row[9];
        int count = 0;

        BlockRows(const VoxelGrid& grid, Span y, Span z) {
            for (std::int32_t vz = z.first; vz <= z.last; ++vz) {
                for (std::int32_t vy = y.first; vy <= y.last; ++vy) {
                    row[count++] = grid.At<Format::kBytes>(0, vy, vz);
                }
            }
        }
        Z3D_INLINE Bytes CodeAt(std::int32_t x, std::int32_t columns, const typename Format::Window& window,
                                Measure measure) const {
            const std::size_t offset = static_cast<std::size_t>(x) * Format::kBytes;
            Bytes code = CodeOf(LoadRow<Format>(row[0] + offset, columns, {}), window, measure);
            if (count == 4) {
                for (int index = 1; index < 4; ++index) {
                    code = Larger(code,
                                  CodeOf(LoadRow<Format>(row[index] + offset, columns, {}), window, measure));
                }
                return code;
            }
            for (int index = 1; index < count; ++index) {
                code =
                    Larger(code, CodeOf(LoadRow<Format>(row[index] + offset, columns, {}), window, measure));
            }
            return code;
        }
    };

    // The border blocks around the volume repeat the nearest inner one.
    [[gnu::noinline]] void RepeatBorders() {
        const std::int32_t lastX = (size_[0] + 1) / 2;
        const std::int32_t lastY = (size_[1] + 1) / 2;
        const std::int32_t lastZ = (size_[2] + 1) / 2;
        for (std::int32_t z = 1; z <= lastZ; ++z) {
            std::uint8_t* slab = codes_ + static_cast<std::size_t>(z) * extent_.slab;
            for (std::int32_t y = 1; y <= lastY; ++y) {
                std::uint8_t* row = slab + static_cast<std::size_t>(y) * extent_.stride;
                for (std::int32_t x = -SkipExtent::kReach; x < 1; ++x)
                    row[x] = row[1];
                for (std::int32_t x = lastX + 1;
                     x < static_cast<std::int32_t>(extent_.stride) - SkipExtent::kReach; ++x) {
                    row[x] = row[lastX];
                }
            }
        }
    }

    // Block offsets of the sixteen samples from the block of the first one, without repetition.
    [[gnu::noinline]] void FindOffsets() {
        const double largest = size_[0] > size_[1] ? (size_[0] > size_[2] ? size_[0] : size_[2])
                                                   : (size_[1] > size_[2] ? size_[1] : size_[2]);
        // Fifteen roundings of at most half a unit in the last place of twice the largest coordinate.
        const double rounding = (largest + 32) * 0x1p-19;
        offsets_ = 0;
        for (int sample = 0; sample < kSamples; ++sample) {
            Offset offset;
            for (int axis = 0; axis < 3; ++axis) {
                const double shift = sample * static_cast<double>(step_[axis]);
                const double slack = step_[axis] == 0 ? 0 : rounding;
                const auto lowest = static_cast<std::int32_t>(__builtin_floor(shift - slack));
                offset.axis[axis] = lowest >> 1;
                const auto highest = static_cast<std::int32_t>(__builtin_ceil(shift + slack));
                reach_[axis] = MaxOf(reach_[axis], ((highest + 1) >> 1) - offset.axis[axis]);
            }
            bool isNew = true;
            for (int known = 0; known < offsets_; ++known)
                isNew = isNew && !offset_[known].Equals(offset);
            if (isNew) offset_[offsets_++] = offset;
        }
    }

    // Each code becomes the largest of its own and the following ones within reach on each axis.
    [[gnu::noinline]] void Dilate() {
        const std::int32_t lastY = (size_[1] + 1) / 2;
        const std::int32_t lastZ = (size_[2] + 1) / 2;
        for (std::int32_t z = 1; z <= lastZ; ++z) {
            for (std::int32_t y = 1; y <= lastY; ++y) {
                std::uint8_t* row = Row(codes_, y, z) - SkipExtent::kReach;
                for (std::int32_t pass = 0; pass < reach_[0]; ++pass) {
                    Merge(row, row + 1, extent_.stride);
                }
            }
            for (std::int32_t y = 1; y < lastY; ++y) {
                for (std::int32_t next = 1; next <= reach_[1]; ++next) {
                    MergeRow(Row(codes_, y, z), Row(codes_, y + next < lastY ? y + next : lastY, z));
                }
            }
        }
        for (std::int32_t z = 1; z < lastZ; ++z) {
            for (std::int32_t next = 1; next <= reach_[2]; ++next) {
                for (std::int32_t y = 1; y <= lastY; ++y) {
                    MergeRow(Row(codes_, y, z), Row(codes_, y, z + next < lastZ ? z + next : lastZ));
                }
            }
        }
    }

    [[gnu::noinline]] void FormBounds() {
        const std::int32_t lastY = (size_[1] + 1) / 2;
        const std::int32_t lastZ = (size_[2] + 1) / 2;
        for (std::int32_t z = 0; z < extent_.blocksZ; ++z) {
            for (std::int32_t y = 0; y < extent_.blocksY; ++y) {
                const std::uint8_t* from[kSamples];
                for (int index = 0; index < offsets_; ++index) {
                    const Offset& offset = offset_[index];
                    from[index] = Row(codes_, Between(y + offset.axis[1], 1, lastY),
                                      Between(z + offset.axis[2], 1, lastZ))
                                  + offset.axis[0];
                }
                std::uint8_t* to = Row(bounds_, y, z);
                for (std::int32_t x = 0; x < extent_.blocksX; x += 16) {
                    __m128i largest = _mm_setzero_si128();
                    for (int index = 0; index < offsets_; ++index) {
                        largest = _mm_max_epu8(
                            largest, _mm_loadu_si128(reinterpret_cast<const __m128i*>(from[index] + x)));
                    }
                    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + x), largest);
                }
            }
        }
    }

    struct Offset {
        std::int32_t axis[3];
        bool Equals(const Offset& other) const {
            return axis[0] == other.axis[0] && axis[1] == other.axis[1] && axis[2] == other.axis[2];
        }
    };

    static std::int32_t MaxOf(std::int32_t a, std::int32_t b) { return a > b ? a : b; }
    static std::int32_t Between(std::int32_t value, std::int32_t low, std::int32_t high) {
        return value < low ? low : (value > high ? high : value);
    }
    std::uint8_t* Row(std::uint8_t* table, std::int32_t y, std::int32_t z) const {
        return table + static_cast<std::size_t>(z) * extent_.slab
               + static_cast<std::size_t>(y) * extent_.stride;
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

    SkipExtent extent_;
    std::int32_t size_[3];
    float step_[3];
    std::uint8_t* codes_;
    std::uint8_t* bounds_;
    Offset offset_[kSamples];
    int offsets_ = 0;
    std::int32_t reach_[3] = {0, 0, 0};
};

} // namespace z3d::render::Z3D_ISA
