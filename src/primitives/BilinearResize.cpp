#include "primitives/BilinearResize.h"

#include "primitives/Region.h"

#include <algorithm>
#include <utility>

namespace z3d::primitives {
namespace {

std::size_t PaddedCount(const Axis& axis) {
    const std::size_t padded = (static_cast<std::size_t>(axis.written) + kPadding - 1) / kPadding * kPadding;
    return std::max(padded, kLeastCount);
}

} // namespace

template <class Passes>
ResizeColumns<Passes>::ResizeColumns(const Axis& axis)
    : padded_(PaddedCount(axis)), left_(padded_), weights_(padded_) {
    if (blendGroups_ != nullptr) groups_ = platform::HeapArray<Group>(padded_ / Group::kColumns);
    if (!*this) return;

    AxisWalk walk(axis);
    for (std::size_t x = 0; x < padded_; ++x) {
        const AxisSample column = walk.NextPair();
        left_[x] = column.lower;
        weights_[x] = Passes::WeightOfColumn(column.fraction);
    }
    if (!FormGroups(axis.sourceLength)) blendGroups_ = nullptr;
}

// False when the processor cannot, or when the pairs of some group lie too far apart.
template <class Passes>
bool ResizeColumns<Passes>::FormGroups(std::int32_t rowLength) {
    if (blendGroups_ == nullptr || rowLength < Group::kLoaded) return false;
    for (std::size_t x = 0; x < padded_; x += Group::kColumns) {
        // Nothing beyond the row is read: at its end the load moves to the left.
        const std::int32_t first = std::min(left_[x], rowLength - Group::kLoaded);
        std::uint8_t offsets[Group::kColumns];
        for (std::size_t column = 0; column < Group::kColumns; ++column) {
            const std::int32_t offset = left_[x + column] - first;
            if (offset < 0 || offset + 1 >= Group::kLoaded) return false;
            offsets[column] = static_cast<std::uint8_t>(offset);
        }
        groups_[x / Group::kColumns] = Passes::GroupOf(first, offsets);
    }
    return true;
}

template <class Passes>
void ResizeColumns<Passes>::Blend(const std::uint8_t* row, typename Passes::Intermediate* to) const {
    if (blendGroups_ != nullptr) {
        blendGroups_(row, groups_.Get(), weights_.Get(), to, padded_);
    } else {
        Passes::Horizontal(row, left_.Get(), weights_.Get(), to, padded_);
    }
}

template <class Passes>
BilinearResize<Passes>::BilinearResize(const Axis& columns, const Axis& rows)
    : width_(static_cast<std::size_t>(columns.written)),
      rows_(rows),
      columns_(columns),
      upper_{-1, platform::HeapArray<typename Passes::Intermediate>(columns_.Padded())},
      lower_{-1, platform::HeapArray<typename Passes::Intermediate>(columns_.Padded())} {}

template <class Passes>
void BilinearResize<Passes>::Hold(BlendedRow& row, std::int32_t wanted, const void* source,
                                  std::int32_t sourceStep) const {
    if (row.row == wanted) return;
    columns_.Blend(RowAt(source, sourceStep, wanted), row.values.Get());
    row.row = wanted;
}

// Blends each destination row from two source rows, the lower one often serving as the next upper one.
template <class Passes>
void BilinearResize<Passes>::Run(const void* source, std::int32_t sourceStep, void* destination,
                                 std::int32_t destinationStep) {
    upper_.row = lower_.row = -1; // of another image
    AxisWalk rows(rows_);
    for (std::int32_t y = 0; y < rows_.written; ++y) {
        const AxisSample pair = rows.NextPair();
        if (lower_.row == pair.lower) std::swap(upper_, lower_);
        Hold(upper_, pair.lower, source, sourceStep);
        Hold(lower_, pair.lower + 1, source, sourceStep);
        Passes::Vertical(upper_.values.Get(), lower_.values.Get(), Passes::WeightOfRow(pair.fraction),
                         RowAt(destination, destinationStep, y), width_);
    }
}

template class BilinearResize<BytePasses>;
template class BilinearResize<FloatPasses>;

} // namespace z3d::primitives
