// The contrast score of every grey voxel, computed once, row by row: what a projection of scores then samples.
// A voxel's score depends on its indexes alone. 0 stands for voxels outside the window as well: neither counts.
#pragma once

#include "platform/Heap.h"
#include "render/isa/Samples.h"

#include <cstddef>

namespace z3d::render::Z3D_ISA {

class ScoreVolume {
public:
    ScoreVolume(const ProjectionJob& job, const GreyWindow& window) : grid_(job.grid), window_(window) {
        const std::size_t plane =
            static_cast<std::size_t>(grid_.width) * static_cast<std::size_t>(grid_.height);
        const auto depth = static_cast<std::size_t>(grid_.depth);
        const std::size_t longest = LongestAxis();
        if (plane > SIZE_MAX / 2 / depth) return;
        slices_ = static_cast<std::uint16_t**>(platform::HeapAllocate(depth * sizeof(std::uint16_t*)));
        scores_ = static_cast<std::uint16_t*>(platform::HeapAllocate(plane * depth * 2));
        neighbours_ = static_cast<std::int32_t*>(platform::HeapAllocate(longest * kDirections * 3 * 4));
        if (slices_ == nullptr || scores_ == nullptr || neighbours_ == nullptr) return;
        for (std::size_t z = 0; z < depth; ++z)
            slices_[z] = scores_ + z * plane;
        FindNeighbours(job.geometry.inverse, longest);
        for (std::int32_t z = 0; z < grid_.depth; ++z) {
            for (std::int32_t y = 0; y < grid_.height; ++y)
                ScoreRow(y, z);
        }
        isReady_ = true;
    }
    ~ScoreVolume() {
        platform::HeapFree(neighbours_);
        platform::HeapFree(scores_);
        platform::HeapFree(slices_);
    }
    ScoreVolume(const ScoreVolume&) = delete;
    ScoreVolume& operator=(const ScoreVolume&) = delete;

    // False where memory is short.
    bool IsReady() const { return isReady_; }
    const std::uint16_t* const* Slices() const { return slices_; }

private:
    static constexpr int kDirections = 4; // right, left, up, down, in the output

    struct Direction {
        const std::int32_t* index[3]; // of the neighbour, by axis and index of the voxel
        std::int32_t shift;           // along x, where it is the same for a run of columns
        std::int32_t first, last;     // that run
    };

    std::size_t LongestAxis() const {
        std::int32_t longest = grid_.width > grid_.height ? grid_.width : grid_.height;
        return static_cast<std::size_t>(longest > grid_.depth ? longest : grid_.depth);
    }

    void FindNeighbours(const float* inverse, std::size_t longest) {
        const std::int32_t sizes[3] = {grid_.width, grid_.height, grid_.depth};
        for (int number = 0; number < kDirections; ++number) {
            const int column = number / 2;
            const double sign = number % 2 == 0 ? 1 : -1;
            Direction& direction = direction_[number];
            for (int axis = 0; axis < 3; ++axis) {
                std::int32_t* index = neighbours_ + static_cast<std::size_t>(3 * number + axis) * longest;
                for (std::int32_t at = 0; at < sizes[axis]; ++at) {
                    index[at] = NearestVoxel(at + sign * inverse[3 * axis + column], sizes[axis]);
                }
                direction.index[axis] = index;
            }
            FindRun(direction);
        }
    }

    // The columns around the middle whose neighbours are all the same number of columns away.
    void FindRun(Direction& direction) const {
        const std::int32_t* x = direction.index[0];
        const std::int32_t middle = grid_.width / 2;
        direction.shift = x[middle] - middle;
        direction.first = direction.last = middle;
        while (direction.first > 0 && x[direction.first - 1] == direction.first - 1 + direction.shift)
            --direction.first;
        while (direction.last + 1 < grid_.width
               && x[direction.last + 1] == direction.last + 1 + direction.shift) {
            ++direction.last;
        }
    }

    void ScoreRow(std::int32_t y, std::int32_t z) {
        const std::uint8_t* row = grid_.At<1>(0, y, z);
        const std::uint8_t* neighbour[kDirections];
        std::int32_t first = 0;
        std::int32_t last = grid_.width - 1;
        for (int number = 0; number < kDirections; ++number) {
            const Direction& direction = direction_[number];
            neighbour[number] = grid_.At<1>(0, direction.index[1][y], direction.index[2][z]);
            first = direction.first > first ? direction.first : first;
            last = direction.last < last ? direction.last : last;
        }
        std::uint16_t* to = slices_[z] + static_cast<std::size_t>(y) * static_cast<std::size_t>(grid_.width);
        // Sixteen columns at a time within the run; the last sixteen overlap the ones before rather than leave it.
        std::int32_t x = 0;
        while (x < grid_.width) {
            if (x < first || x > last || last - first < kRays - 1) {
                to[x] = ScoreOne(row, neighbour, x);
                ++x;
            } else {
                const std::int32_t from = x + kRays - 1 <= last ? x : last - (kRays - 1);
                ScoreSixteen(row, neighbour, from, to);
                x = from + kRays;
            }
        }
    }

    std::uint16_t ScoreOne(const std::uint8_t* row, const std::uint8_t* const* neighbour,
                           std::int32_t x) const {
        const ValueRange& range = window_.Range();
        const std::int32_t value = row[x];
        if (value < range.first || value > range.last) return 0;
        std::int32_t score = 0;
        for (int number = 0; number < kDirections; ++number) {
            const std::int32_t other = neighbour[number][direction_[number].index[0][x]];
            if (other >= range.first && other <= range.last)
                score += other > value ? other - value : value - other;
        }
        return static_cast<std::uint16_t>(score);
    }

    void ScoreSixteen(const std::uint8_t* row, const std::uint8_t* const* neighbour, std::int32_t x,
                      std::uint16_t* to) const {
        const __m128i zero = _mm_setzero_si128();
        const GreySample centre = LoadSixteen<Grey>(row + x);
        __m128i low = zero;
        __m128i high = zero;
#pragma GCC unroll 4
        for (int number = 0; number < kDirections; ++number) {
            const GreySample other = LoadSixteen<Grey>(neighbour[number] + x + direction_[number].shift);
            const __m128i apart = _mm_or_si128(_mm_subs_epu8(Raw(other.value), Raw(centre.value)),
                                               _mm_subs_epu8(Raw(centre.value), Raw(other.value)));
            const __m128i counted = _mm_and_si128(apart, Raw(window_.Accepts(other)));
            low = _mm_add_epi16(low, _mm_unpacklo_epi8(counted, zero));
            high = _mm_add_epi16(high, _mm_unpackhi_epi8(counted, zero));
        }
        const __m128i accepted = Raw(window_.Accepts(centre));
        low = _mm_and_si128(low, _mm_unpacklo_epi8(accepted, accepted));
        high = _mm_and_si128(high, _mm_unpackhi_epi8(accepted, accepted));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + x), low);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + x + 8), high);
    }

    const VoxelGrid& grid_;
    const GreyWindow& window_;
    std::uint16_t** slices_ = nullptr;
    std::uint16_t* scores_ = nullptr;
    std::int32_t* neighbours_ = nullptr;
    Direction direction_[kDirections];
    bool isReady_ = false;
};

// Scores in the place of voxels.
struct ScoreStretch {
    alignas(16) std::uint16_t value[kSamples][kRays];
};
struct ScoreSample {
    Sums value;
};
struct Score {
    using Grid = const std::uint16_t* const*;
    using Stretch = ScoreStretch;
    using Sample = ScoreSample;
    Z3D_INLINE static Sample SampleOf(const Stretch& stretch, const Indexes&, int sample) {
        const auto* halves = reinterpret_cast<const __m128i*>(stretch.value[sample]);
        return {{_mm_load_si128(halves), _mm_load_si128(halves + 1)}};
    }
};

[[gnu::noinline]] inline void Fetch(const std::uint16_t* const* slices, const Indexes& __restrict indexes,
                                    int samples, ScoreStretch& __restrict stretch) {
    std::uint16_t* __restrict to = stretch.value[0];
    const std::uint32_t* z = indexes.z[0];
    const std::uint32_t* plane = indexes.plane[0];
    const int last = samples * kRays;
#pragma GCC unroll 8
    for (int index = 0; index < last; ++index)
        to[index] = slices[z[index]][plane[index]];
}

} // namespace z3d::render::Z3D_ISA
