// Codes of blocks, a layer at a time.
#pragma once

#include "render/tables/BlockCoders.h"
#include "render/tables/BlockExtent.h"
#include "render/tables/SampledBlocks.h"

namespace z3d::render {

// Layers have rows of bytes that leave one border block on each side (see BlockExtent). Blocks that are not sampled
// have code 0.
template <class Coder>
class BlockCodes {
public:
    BlockCodes(const VoxelGrid& grid, const SampledBlocks& blocks, std::int32_t margin,
               const BlockExtent& extent, Coder& coder)
        : grid_(grid), blocks_(blocks), margin_(margin), extent_(extent), coder_(coder) {}

    [[gnu::noinline]] void FillLayer(std::int32_t bz, std::uint8_t* layer) {
        __builtin_memset(layer, 0, extent_.layer);
        if (bz < blocks_.first[2] || bz > blocks_.last[2]) return;
        const Span z = RowsOf(bz - 1, grid_.depth);
        for (std::int32_t by = blocks_.first[1]; by <= blocks_.last[1]; ++by) {
            const Span y = RowsOf(by - 1, grid_.height);
            const std::uint8_t* row[kMostRows];
            std::uint8_t widened[kMostRows][Coder::kBytes * kColumns];
            int rows = 0;
            for (std::int32_t vz = z.first; vz <= z.last; ++vz) {
                for (std::int32_t vy = y.first; vy <= y.last; ++vy, ++rows)
                    row[rows] = RowAt(vy, vz, widened[rows]);
            }
            std::uint8_t* to = layer + static_cast<std::size_t>(by) * extent_.stride;
            FillRow(row, rows, to + 1);
            RepeatBorders(to);
        }
    }

private:
    struct Span {
        std::int32_t first;
        std::int32_t last;
    };

    static constexpr int kMostRows = kBlockSide * kBlockSide; // of voxels in a block

    // A row of voxels, or a copy with its last column repeated up to the sixteen that are coded side by side.
    const std::uint8_t* RowAt(std::int32_t y, std::int32_t z, std::uint8_t* widened) const {
        const std::uint8_t* row = grid_.At<Coder::kBytes>(0, y, z);
        if (grid_.width >= kColumns) return row;
        for (std::int32_t x = 0; x < kColumns; ++x) {
            const std::int32_t from = x < grid_.width ? x : grid_.width - 1;
            __builtin_memcpy(widened + x * Coder::kBytes, row + from * Coder::kBytes, Coder::kBytes);
        }
        return widened;
    }

    void FillRow(const std::uint8_t* const* row, int rows, std::uint8_t* to) {
        const std::int32_t width = grid_.width;
        const std::int32_t end = kBlockSide * blocks_.last[0] < width ? kBlockSide * blocks_.last[0] : width;
        std::int32_t x = kBlockSide * (blocks_.first[0] - 1);
        for (; x < end && x + kColumns <= width; x += kColumns)
            StoreBlocks(to + x / kBlockSide, CodeAt(row, rows, x));
        if (x < end) StoreBlocks(to + x / kBlockSide, CodeOfRest(row, rows, x));
    }

    // Of sixteen columns from x on, each by itself.
    [[gnu::noinline]] Bytes CodeAt(const std::uint8_t* const* row, int rows, std::int32_t x) {
        const std::size_t offset = static_cast<std::size_t>(x) * Coder::kBytes;
        auto state = coder_.First(row[0] + offset);
        if (rows == kMostRows) {
#pragma GCC unroll 5
            for (int index = 1; index < kMostRows; ++index)
                coder_.Add(state, row[index] + offset);
        } else {
            for (int index = 1; index < rows; ++index)
                coder_.Add(state, row[index] + offset);
        }
        return coder_.Code(state);
    }

    // The last columns, from x on: fewer than sixteen, so those before them are coded with them.
    Bytes CodeOfRest(const std::uint8_t* const* row, int rows, std::int32_t x) {
        const std::int32_t width = grid_.width;
        const std::int32_t columns = width < kColumns ? width : kColumns;
        std::uint8_t code[2 * kColumns] = {};
        const Bytes coded = CodeAt(row, rows, width - columns);
        __builtin_memcpy(code, &coded, sizeof coded);
        // With a margin the last column also stands for the one before it, as rows do.
        std::uint8_t* last = code + columns - 1;
        if (margin_ > 0 && width > 1 && last[-1] > *last) *last = last[-1];
        return LoadBytes(code + (x - (width - columns)));
    }

    // The largest of each four columns.
    Z3D_INLINE static void StoreBlocks(std::uint8_t* to, Bytes code) {
        const __m128i pairs = _mm_max_epu8(Raw(code), _mm_srli_epi16(Raw(code), 8));
        const __m128i fours = _mm_max_epu8(pairs, _mm_srli_epi32(pairs, 16));
        const __m128i lowest = _mm_and_si128(fours, _mm_set1_epi32(0xFF));
        const __m128i words = _mm_packs_epi32(lowest, lowest);
        const int blocks = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        __builtin_memcpy(to, &blocks, sizeof blocks);
    }

    // The rows (or slices) of a block. With a margin, what lies beyond the last inner row is sampled there: the last
    // block stands for that row even if it lies in the block before.
    Span RowsOf(std::int32_t block, std::int32_t size) const {
        const std::int32_t inner = size > margin_ ? size - 1 - margin_ : 0;
        const std::int32_t first = kBlockSide * block;
        const std::int32_t last = first + kBlockSide - 1;
        return {first < inner ? first : inner, last < size ? last : size - 1};
    }

    // Before the first and behind the last block of a row, the nearest block repeats.
    void RepeatBorders(std::uint8_t* row) const {
        const std::size_t blocksX = (static_cast<std::size_t>(grid_.width) + kBlockSide - 1) / kBlockSide;
        __builtin_memset(row - BlockExtent::kReach, row[1], BlockExtent::kReach + 1);
        __builtin_memset(row + blocksX + 1, row[blocksX], extent_.stride - BlockExtent::kReach - blocksX - 1);
    }

    const VoxelGrid& grid_;
    const SampledBlocks& blocks_;
    const std::int32_t margin_;
    const BlockExtent& extent_;
    Coder& coder_;
};

} // namespace z3d::render
