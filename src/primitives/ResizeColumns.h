// What the horizontal pass of a resize keeps per column, and per group of columns.
#pragma once

#include <cstdint>

namespace z3d::primitives {

// Of a pair of neighbours, in units of 1/16384, adding up to 16384.
struct ByteColumnWeight {
    std::int16_t left, right;
};

// Columns whose pairs lie within 16 bytes of the row.
struct ByteColumnGroup {
    static constexpr int kColumns = 8;
    static constexpr int kLoaded = 16; // samples

    std::int32_t first; // of the loaded samples
    // For each column two 16-bit words, the pair: which loaded byte is the lower half of a word, and that the upper
    // one is zero.
    std::uint8_t shuffle[4 * kColumns];
};

// Columns whose pairs lie within eight floats.
struct FloatColumnGroup {
    static constexpr int kColumns = 4;
    static constexpr int kLoaded = 8;

    std::int32_t first;
    // Which loaded floats are the left samples of the columns, and then which are the right ones.
    std::int32_t permutation[2 * kColumns];
};

} // namespace z3d::primitives
