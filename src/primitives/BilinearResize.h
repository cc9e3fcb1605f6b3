// The bilinear resize of one image after another, all of the same geometry: tables and scratch are made once.
#pragma once

#include "platform/Heap.h"
#include "primitives/ResizeAxis.h"
#include "primitives/ResizePasses.h"

#include <cstddef>
#include <cstdint>

namespace z3d::primitives {

// The table of columns: for each written column the index of its left pixel and its weight. The padding at
// the end walks on: its pairs lie within the source as all do, and what comes of them is not written.
template <class Passes>
class ResizeColumns {
public:
    explicit ResizeColumns(const Axis& axis);

    // Empty when memory is short.
    explicit operator bool() const { return left_ && weights_ && (blendGroups_ == nullptr || groups_); }
    std::size_t Padded() const { return padded_; }

    // One row of the source into Padded() intermediates.
    void Blend(const std::uint8_t* row, typename Passes::Intermediate* to) const;

private:
    using Group = typename Passes::ColumnGroup;

    bool FormGroups(std::int32_t rowLength);

    std::size_t padded_;
    platform::HeapArray<std::int32_t> left_;
    platform::HeapArray<typename Passes::ColumnWeight> weights_;
    platform::HeapArray<Group> groups_;
    decltype(Passes::HorizontalGroups()) blendGroups_ = Passes::HorizontalGroups(); // null: one by one
};

// `Passes` is BytePasses or FloatPasses. The source is at least 2 x 2 pixels.
template <class Passes>
class BilinearResize {
public:
    BilinearResize(const Axis& columns, const Axis& rows);

    // Empty when memory is short: then it must not run.
    explicit operator bool() const { return columns_ && upper_.values && lower_.values; }

    // Source and destination at their first pixels, steps in bytes. Writes the axes' columns and rows, no more.
    void Run(const void* source, std::int32_t sourceStep, void* destination, std::int32_t destinationStep);

private:
    // A source row after its horizontal pass.
    struct BlendedRow {
        std::int32_t row; // -1: none yet
        platform::HeapArray<typename Passes::Intermediate> values;
    };
    void Hold(BlendedRow& row, std::int32_t wanted, const void* source, std::int32_t sourceStep) const;

    std::size_t width_;
    Axis rows_;
    ResizeColumns<Passes> columns_;
    BlendedRow upper_, lower_;
};

extern template class BilinearResize<BytePasses>;
extern template class BilinearResize<FloatPasses>;

} // namespace z3d::primitives
