#include "render/tables/BoundTable.h"

#include "render/tables/BlockCoders.h"
#include "render/tables/BlockCodes.h"

#include <algorithm>
#include <cmath>

namespace z3d::render {
namespace {

// Which are counted from 1: the last one, too.
std::int32_t BlocksIn(std::int32_t size) { return (size + kBlockSide - 1) / kBlockSide; }

// Whole vectors, as rows are; front to back, so that a row can be merged with itself one byte on.
void Merge(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) {
    for (std::size_t at = 0; at < bytes; at += 16) {
        const Bytes merged = Larger(LoadBytes(to + at), LoadBytes(from + at));
        __builtin_memcpy(to + at, &merged, sizeof merged);
    }
}

// The largest of each byte of 64 blocks of a row; fewer exist at its end, where the padding of the table takes what is
// too much.
void StoreLargest(const std::uint8_t* const* from, int count, std::int32_t x, std::uint8_t* to) {
    Bytes largest[4] = {};
    for (int index = 0; index < count; ++index) {
#pragma GCC unroll 4
        for (int part = 0; part < 4; ++part)
            largest[part] = Larger(largest[part], LoadBytes(from[index] + x + 16 * part));
    }
    __builtin_memcpy(to + x, largest, sizeof largest);
}

} // namespace

BoundTable::BoundTable(const Projection& projection, const TableSubject& subject)
    : grid_(projection.grid),
      subject_(subject),
      extent_(projection.grid),
      sampled_(projection.view, projection.grid) {
    for (int axis = 0; axis < 3; ++axis) {
        const float step = projection.view.Inverse(axis, 2);
        step_[axis] = subject.backToFront ? -step : step;
    }
    // Fifteen roundings of at most half a unit in the last place of twice the largest coordinate, and the one
    // of the block coordinate.
    const double largest = std::max(grid_.width, std::max(grid_.height, grid_.depth));
    rounding_ = (largest + 32) * 0x1p-19;
    surely_ = rounding_ / kBlockSide + 0x1p-12;
}

BoundTable::~BoundTable() = default;

bool BoundTable::IsPossible() const {
    for (const float step : step_) {
        if (!(std::fabs(step) <= kLongestStep)) return false;
    }
    const auto layers = static_cast<std::uint32_t>(extent_.blocksZ);
    return extent_.boundsStride < (1 << 15) && extent_.blocksY < (1 << 15)
           && std::uint64_t{extent_.boundsLayer} * layers < (std::uint64_t{1} << 31);
}

bool BoundTable::Make() {
    memory_ = platform::HeapArray<std::uint8_t>(extent_.TableBytes(grid_));
    if (!memory_) return false;
    codes_ = memory_.Get() + BlockExtent::kRowPadding;
    bounds_ = codes_ + extent_.CodeBytes();
    FindOffsets();
    const auto fill = [this](auto& coder) { FillWith(coder); };
    if (subject_.isColour) {
        WithRgbCoder(RgbWindow(subject_.accepted), subject_.measure, highest_, fill);
    } else {
        WithGreyCoder(GreyWindow(subject_.accepted), subject_.measure, fill);
    }
    return true;
}

// Block offsets of the sixteen samples from the block of the first one, without repetition.
void BoundTable::FindOffsets() {
    for (int sample = 0; sample < kSamples; ++sample) {
        Offset offset;
        for (int axis = 0; axis < 3; ++axis) {
            const double shift = sample * static_cast<double>(step_[axis]) / kBlockSide;
            const double slack = step_[axis] == 0 ? 0 : rounding_ / kBlockSide;
            offset.axis[axis] = static_cast<std::int32_t>(std::floor(surely_ + shift - slack));
            const auto highest = static_cast<std::int32_t>(std::ceil(1 - surely_ + shift + slack)) - 1;
            reach_[axis] = std::max(reach_[axis], highest - offset.axis[axis]);
        }
        farthest_ = std::max(farthest_, offset.axis[2]);
        const bool isKnown = std::find(offset_, offset_ + offsets_, offset) != offset_ + offsets_;
        if (!isKnown) offset_[offsets_++] = offset;
    }
}

// Layer by layer. Codes of no more layers are kept than the bounds of one are taken over.
template <class Coder>
void BoundTable::FillWith(Coder& coder) {
    BlockCodes codes(grid_, sampled_, subject_.margin, extent_, coder);
    const std::int32_t lastZ = BlocksIn(grid_.depth);
    std::int32_t next = FirstCoded(2);
    // Stretches begin in the sampled blocks, or a border block beside them.
    for (std::int32_t z = sampled_.first[2] - 1; z <= sampled_.last[2] + 1 && z < extent_.blocksZ; ++z) {
        const std::int32_t needed = std::clamp(z + farthest_, 1, lastZ) + reach_[2];
        for (; next <= needed && next <= sampled_.last[2]; ++next) {
            codes.FillLayer(next, CodeLayer(next));
            Dilate(next);
        }
        FormBounds(z);
    }
}

// Codes before the sampled blocks are wanted as far as those reach back; codes behind them are 0.
std::int32_t BoundTable::FirstCoded(int axis) const {
    return std::max(1, sampled_.first[axis] - reach_[axis]);
}

// Each code becomes the largest of its own and the following ones within reach on each axis.
void BoundTable::Dilate(std::int32_t z) const {
    const std::int32_t lastY = BlocksIn(grid_.height);
    for (std::int32_t y = sampled_.first[1]; y <= sampled_.last[1]; ++y) {
        std::uint8_t* row = CodeRow(y, z) - BlockExtent::kReach;
        for (std::int32_t pass = 0; pass < reach_[0]; ++pass)
            Merge(row, row + 1, extent_.stride);
    }
    for (std::int32_t y = FirstCoded(1); y <= sampled_.last[1]; ++y) {
        for (std::int32_t next = 1; next <= reach_[1] && y + next <= lastY; ++next)
            MergeRow(CodeRow(y, z), CodeRow(y + next, z));
    }
    for (std::int32_t before = std::max(FirstCoded(2), z - reach_[2]); before < z; ++before) {
        for (std::int32_t y = FirstCoded(1); y <= sampled_.last[1]; ++y)
            MergeRow(CodeRow(y, before), CodeRow(y, z));
    }
}

// A row of bounds is the largest of the rows of codes at the offsets that a stretch can reach.
void BoundTable::FormBounds(std::int32_t z) const {
    const std::int32_t lastY = BlocksIn(grid_.height);
    const std::int32_t lastZ = BlocksIn(grid_.depth);
    for (std::int32_t y = sampled_.first[1] - 1; y <= sampled_.last[1] + 1 && y < extent_.blocksY; ++y) {
        const std::uint8_t* from[kSamples];
        int count = 0;
        for (int index = 0; index < offsets_; ++index) {
            const Offset& offset = offset_[index];
            const std::int32_t layer = std::clamp(z + offset.axis[2], 1, lastZ);
            if (layer < FirstCoded(2) || layer > sampled_.last[2]) continue;
            from[count++] = CodeRow(std::clamp(y + offset.axis[1], 1, lastY), layer) + offset.axis[0];
        }
        std::uint8_t* to = bounds_ + static_cast<std::size_t>(z) * extent_.boundsLayer
                           + static_cast<std::size_t>(y) * extent_.boundsStride;
        for (std::int32_t x = 0; x < extent_.blocksX; x += 64)
            StoreLargest(from, count, x, to);
    }
}

std::uint8_t* BoundTable::CodeLayer(std::int32_t z) const {
    return codes_ + static_cast<std::size_t>(z % extent_.layers) * extent_.layer;
}

std::uint8_t* BoundTable::CodeRow(std::int32_t y, std::int32_t z) const {
    return CodeLayer(z) + static_cast<std::size_t>(y) * extent_.stride;
}

void BoundTable::MergeRow(std::uint8_t* row, const std::uint8_t* next) const {
    Merge(row - BlockExtent::kReach, next - BlockExtent::kReach, extent_.stride);
}

} // namespace z3d::render
