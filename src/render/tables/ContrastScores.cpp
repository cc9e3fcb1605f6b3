#include "render/tables/ContrastScores.h"

#include <algorithm>
#include <utility>

namespace z3d::render {
namespace {

constexpr std::int32_t kRunColumns = 16; // that are scored side by side

constexpr std::int64_t kLargest = 255; // byte

// As bytes, only so many scores may be too large for one.
constexpr std::int64_t kVoxelsPerLarge = 64;

// How far sixteen voxels are from their neighbours in one direction. Nothing, for those outside the window.
Z3D_INLINE Bytes Apart(const GreyWindow& window, const GreyVoxels& centre, const std::uint8_t* neighbours) {
    const GreyVoxels other = LoadVoxels<1>(neighbours);
    const Bytes apart =
        Larger(other.channel[0], centre.channel[0]) - Smaller(other.channel[0], centre.channel[0]);
    return apart & window.Accepts(other);
}

// Return how many reach the largest byte; scores of 16 bits never count as too large.
Z3D_INLINE int ScoreSixteen(const GreyWindow& window, const std::uint8_t* row,
                            const std::uint8_t* const (&from)[4], std::int32_t x, std::uint8_t* to) {
    const GreyVoxels centre = LoadVoxels<1>(row + x);
    __m128i sums = _mm_setzero_si128();
#pragma GCC unroll 4
    for (const std::uint8_t* neighbours : from)
        sums = _mm_adds_epu8(sums, Raw(Apart(window, centre, neighbours + x)));
    sums = _mm_and_si128(sums, Raw(window.Accepts(centre)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), sums);
    const unsigned large = BitsOf(AreEqual(ToBytes(sums), AllBytes(kLargest)));
    return large == 0 ? 0 : __builtin_popcount(large);
}
Z3D_INLINE int ScoreSixteen(const GreyWindow& window, const std::uint8_t* row,
                            const std::uint8_t* const (&from)[4], std::int32_t x, std::uint16_t* to) {
    const GreyVoxels centre = LoadVoxels<1>(row + x);
    Sums sums = {};
#pragma GCC unroll 4
    for (const std::uint8_t* neighbours : from)
        sums = sums + Widen(Apart(window, centre, neighbours + x));
    const Sums accepted = WidenMask(window.Accepts(centre));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_and_si128(sums.low, accepted.low));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 8), _mm_and_si128(sums.high, accepted.high));
    return 0;
}

} // namespace

ContrastScores::ContrastScores(const Projection& projection, const GreyWindow& window)
    : view_(projection.view), grid_(projection.grid), window_(window) {}

ContrastScores::~ContrastScores() = default;

template <class Score>
bool ContrastScores::Make() {
    if (!Allocate(sizeof(Score))) return false;
    FindNeighbours();
    large_ = 0;
    const std::int64_t plane = std::int64_t{grid_.width} * grid_.height;
    for (std::int32_t z = 0; z < grid_.depth; ++z) {
        for (std::int32_t y = 0; y < grid_.height; ++y)
            ScoreRow<Score>(y, z);
        if (large_ > (z + 1) * plane / kVoxelsPerLarge) return false;
    }
    return true;
}
template bool ContrastScores::Make<std::uint8_t>();
template bool ContrastScores::Make<std::uint16_t>();

// Everything or nothing: sizes are formed once, and checked.
bool ContrastScores::Allocate(std::size_t scoreBytes) {
    constexpr std::size_t kBehind = 2;
    const std::size_t plane = static_cast<std::size_t>(grid_.width) * static_cast<std::size_t>(grid_.height);
    const auto depth = static_cast<std::size_t>(grid_.depth);
    if (plane > (SIZE_MAX - kBehind) / sizeof(std::uint16_t) / depth) return false;
    platform::HeapArray<const std::uint8_t*> slices(depth);
    scores_ = platform::HeapArray<std::uint8_t>(plane * depth * scoreBytes + kBehind);
    neighbours_ = platform::HeapArray<std::int32_t>(LongestAxis() * kDirections * 3);
    if (!slices || !scores_ || !neighbours_) return false;
    for (std::size_t z = 0; z < depth; ++z)
        slices[z] = scores_.Get() + z * plane * scoreBytes;
    slices_ = std::move(slices);
    if (grid_.isGathered) offsets_ = SliceOffsets(slices_.Get(), grid_.depth, plane * scoreBytes);
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
template <class Score>
void ContrastScores::ScoreRow(std::int32_t y, std::int32_t z) {
    // Every direction has one row of neighbours, and a run of columns that can be taken side by side.
    const std::uint8_t* row = grid_.At<1>(0, y, z);
    const std::uint8_t* neighbour[kDirections];
    Run run = {0, grid_.width - 1};
    for (int number = 0; number < kDirections; ++number) {
        const Direction& direction = direction_[number];
        neighbour[number] = grid_.At<1>(0, direction.index[1][y], direction.index[2][z]);
        run.first = std::max(run.first, direction.first);
        run.last = std::min(run.last, direction.last);
    }

    const std::size_t above = static_cast<std::size_t>(z) * static_cast<std::size_t>(grid_.height);
    Score* to = reinterpret_cast<Score*>(scores_.Get())
                + (above + static_cast<std::size_t>(y)) * static_cast<std::size_t>(grid_.width);
    if (run.last - run.first < kRunColumns - 1) {
        ScoreSingly(row, neighbour, {0, grid_.width - 1}, to);
        return;
    }
    ScoreSingly(row, neighbour, {0, run.first - 1}, to);
    ScoreRun(row, neighbour, run, to);
    ScoreSingly(row, neighbour, {run.last + 1, grid_.width - 1}, to);
}

template <class Score>
void ContrastScores::ScoreSingly(const std::uint8_t* row, const std::uint8_t* const* neighbour, Run run,
                                 Score* to) {
    for (std::int32_t x = run.first; x <= run.last; ++x) {
        const std::int32_t score = ScoreOne(row, neighbour, x);
        const bool isLarge = sizeof(Score) == 1 && score >= kLargest;
        to[x] = static_cast<Score>(isLarge ? kLargest : score);
        large_ += isLarge;
    }
}

// The score as its rule has it: at most four differences of 255, and none from outside the window.
std::int32_t ContrastScores::ScoreOne(const std::uint8_t* row, const std::uint8_t* const* neighbour,
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
    return score;
}

// The same for columns whose neighbours lie the same number of columns away, sixteen at a time; the last sixteen
// overlap the ones before rather than leave the run, so that large scores may be counted twice.
template <class Score>
void ContrastScores::ScoreRun(const std::uint8_t* row, const std::uint8_t* const* neighbour, Run run,
                              Score* to) {
    const std::uint8_t* from[kDirections];
    for (int number = 0; number < kDirections; ++number)
        from[number] = neighbour[number] + (run.first + direction_[number].shift);
    row += run.first;
    to += run.first;
    const std::int32_t last = run.last - run.first;
    std::int64_t large = 0;
    for (std::int32_t x = 0; x <= last; x += kRunColumns) {
        x = std::min(x, last - (kRunColumns - 1));
        large += ScoreSixteen(window_, row, from, x, to + x);
    }
    large_ += large;
}

void ClearBorder(const Projection& projection) {
    const std::int32_t width = projection.view.outputWidth;
    const std::int32_t last = projection.view.outputHeight - 1;
    for (std::int32_t row = 0; row <= last; ++row) {
        const std::int32_t step = row == 0 || row == last || width == 1 ? 1 : width - 1;
        for (std::int32_t column = 0; column < width; column += step)
            __builtin_memset(projection.PixelAt(row, column), 0, 3 * sizeof(float));
    }
}

} // namespace z3d::render
