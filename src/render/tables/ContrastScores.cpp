#include "render/tables/ContrastScores.h"

#include <algorithm>
#include <utility>

namespace z3d::render {
namespace {

constexpr std::int32_t kColumns = 16; // that are scored side by side

} // namespace

ContrastScores::ContrastScores(const Projection& projection, const GreyWindow& window)
    : view_(projection.view), grid_(projection.grid), window_(window) {}

ContrastScores::~ContrastScores() = default;

bool ContrastScores::Make() {
    if (!Allocate()) return false;
    FindNeighbours();
    for (std::int32_t z = 0; z < grid_.depth; ++z) {
        for (std::int32_t y = 0; y < grid_.height; ++y)
            ScoreRow(y, z);
    }
    return true;
}

// Everything or nothing: sizes are formed once, and checked.
bool ContrastScores::Allocate() {
    const std::size_t plane = static_cast<std::size_t>(grid_.width) * static_cast<std::size_t>(grid_.height);
    const auto depth = static_cast<std::size_t>(grid_.depth);
    if (plane > SIZE_MAX / 2 / depth) return false;
    platform::HeapArray<std::uint16_t*> slices(depth);
    scores_ = platform::HeapArray<std::uint16_t>(plane * depth);
    neighbours_ = platform::HeapArray<std::int32_t>(LongestAxis() * kDirections * 3);
    if (!slices || !scores_ || !neighbours_) return false;
    for (std::size_t z = 0; z < depth; ++z)
        slices[z] = scores_.Get() + z * plane;
    slices_ = std::move(slices);
    sliceScores_ = slices_.Get();
    return true;
}

std::size_t ContrastScores::LongestAxis() const {
    return static_cast<std::size_t>(std::max(grid_.width, std::max(grid_.height, grid_.depth)));
}

// Along each axis, the neighbour of an index depends on that index alone: four times three short tables hold all.
void ContrastScores::FindNeighbours() {
    const std::int32_t sizes[3] = {grid_.width, grid_.height, grid_.depth};
    for (int number = 0; number < kDirections; ++number) {
        const int column = number / 2;
        const double sign = number % 2 == 0 ? 1 : -1;
        Direction& direction = direction_[number];
        for (int axis = 0; axis < 3; ++axis) {
            std::int32_t* index =
                neighbours_.Get() + static_cast<std::size_t>(3 * number + axis) * LongestAxis();
            for (std::int32_t at = 0; at < sizes[axis]; ++at)
                index[at] = NearestVoxel(at + sign * view_.Inverse(axis, column), sizes[axis]);
            direction.index[axis] = index;
        }
        FindRun(direction);
    }
}

// The columns around the middle whose neighbours are all the same number of columns away.
void ContrastScores::FindRun(Direction& direction) const {
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

// Scores all voxels of a row.
void ContrastScores::ScoreRow(std::int32_t y, std::int32_t z) {
    // Every direction has one row of neighbours, and a run of columns that can be taken side by side.
    const std::uint8_t* row = grid_.At<1>(0, y, z);
    const std::uint8_t* neighbour[kDirections];
    std::int32_t first = 0;
    std::int32_t last = grid_.width - 1;
    for (int number = 0; number < kDirections; ++number) {
        const Direction& direction = direction_[number];
        neighbour[number] = grid_.At<1>(0, direction.index[1][y], direction.index[2][z]);
        first = std::max(first, direction.first);
        last = std::min(last, direction.last);
    }

    // Sixteen columns at a time within the run; the last sixteen overlap the ones before rather than leave it.
    std::uint16_t* to = slices_[static_cast<std::size_t>(z)]
                        + static_cast<std::size_t>(y) * static_cast<std::size_t>(grid_.width);
    std::int32_t x = 0;
    while (x < grid_.width) {
        if (x < first || x > last || last - first < kColumns - 1) {
            to[x] = ScoreOne(row, neighbour, x);
            ++x;
        } else {
            const std::int32_t from = std::min(x, last - (kColumns - 1));
            ScoreSixteen(row, neighbour, from, to + from);
            x = from + kColumns;
        }
    }
}

// The score as its rule has it: at most four differences of 255, and none from outside the window.
std::uint16_t ContrastScores::ScoreOne(const std::uint8_t* row, const std::uint8_t* const* neighbour,
                                       std::int32_t x) const {
    const ValueInterval accepted = window_.Accepted();
    const std::int32_t value = row[x];
    if (value < accepted.first || value > accepted.last) return 0;
    std::int32_t score = 0;
    for (int number = 0; number < kDirections; ++number) {
        const std::int32_t other = neighbour[number][direction_[number].index[0][x]];
        if (other >= accepted.first && other <= accepted.last)
            score += other > value ? other - value : value - other;
    }
    return static_cast<std::uint16_t>(score);
}

// The same for sixteen columns, whose neighbours lie the same number of columns away.
void ContrastScores::ScoreSixteen(const std::uint8_t* row, const std::uint8_t* const* neighbour,
                                  std::int32_t x, std::uint16_t* to) const {
    const GreyVoxels centre = LoadVoxels<1>(row + x);
    Sums sums = {};
#pragma GCC unroll 4
    for (int number = 0; number < kDirections; ++number) {
        const GreyVoxels other = LoadVoxels<1>(neighbour[number] + x + direction_[number].shift);
        const Bytes apart =
            Larger(other.channel[0], centre.channel[0]) - Smaller(other.channel[0], centre.channel[0]);
        sums = sums + Widen(apart & window_.Accepts(other));
    }
    const Sums accepted = WidenMask(window_.Accepts(centre));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_and_si128(sums.low, accepted.low));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 8), _mm_and_si128(sums.high, accepted.high));
}

} // namespace z3d::render
