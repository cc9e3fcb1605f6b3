// The two passes of the bilinear blend, for bytes and for floats.
//
// Each struct names its sample, the weight kept per column and per row, and the value between the passes:
//   Horizontal        one source row into a row of `count` intermediates, each from the pair at its left index;
//   HorizontalGroups  the same by whole groups of columns, on processors that can: each group takes its pairs from
//                     one load of kLoaded samples;
//   Vertical          two rows of intermediates into `count` samples of the destination.
// Tables and intermediate rows are padded to a multiple of kPadding, at least kLeastCount: the horizontal passes fill
// them whole; Vertical writes just `count` samples, and reads no more than the least count or these. The forms of the
// two blends differ on purpose and are kept to the last bit: a + (b - a) * f across, lower * f + upper * (1 - f) down.
#pragma once

#include "primitives/KernelTable.h"
#include "primitives/ResizeColumns.h"

#include <cstddef>
#include <cstdint>

namespace z3d::primitives {

inline constexpr std::size_t kPadding = 16;
inline constexpr std::size_t kLeastCount = 32;

struct BytePasses {
    using Sample = std::uint8_t;
    using ColumnWeight = ByteColumnWeight;
    using ColumnGroup = ByteColumnGroup;
    using RowWeight = std::int32_t; // of the lower row, in units of 1/16384
    using Intermediate = std::int16_t;

    static ColumnWeight WeightOfColumn(double fraction);
    static RowWeight WeightOfRow(double fraction);
    // `offsets` are those of the columns' left samples from the first loaded one.
    static ColumnGroup GroupOf(std::int32_t first, const std::uint8_t (&offsets)[ColumnGroup::kColumns]);

    static auto* HorizontalGroups() { return CurrentKernels().blendByteColumns; }
    static void Horizontal(const std::uint8_t* row, const std::int32_t* left, const ColumnWeight* weights,
                           Intermediate* to, std::size_t count);
    static void Vertical(const Intermediate* upper, const Intermediate* lower, RowWeight weight,
                         std::uint8_t* to, std::size_t count) {
        CurrentKernels().blendByteRows(upper, lower, weight, to, count);
    }
};

// Arithmetic in double, rounded when an intermediate or a sample is stored.
struct FloatPasses {
    using Sample = float;
    using ColumnGroup = FloatColumnGroup;
    // All three are rounded to floats and kept as doubles, ready for the arithmetic.
    using ColumnWeight = double; // of the right pixel
    using RowWeight = double;    // of the lower row
    using Intermediate = double;

    static ColumnWeight WeightOfColumn(double fraction) {
        return static_cast<double>(static_cast<float>(fraction));
    }
    static RowWeight WeightOfRow(double fraction) {
        return static_cast<double>(static_cast<float>(fraction));
    }
    static ColumnGroup GroupOf(std::int32_t first, const std::uint8_t (&offsets)[ColumnGroup::kColumns]);

    static auto* HorizontalGroups() { return CurrentKernels().blendFloatColumns; }
    static void Horizontal(const std::uint8_t* row, const std::int32_t* left, const ColumnWeight* weights,
                           Intermediate* to, std::size_t count);
    static void Vertical(const Intermediate* upper, const Intermediate* lower, RowWeight weight,
                         std::uint8_t* to, std::size_t count) {
        CurrentKernels().blendFloatRows(upper, lower, weight, to, count);
    }
};

} // namespace z3d::primitives
