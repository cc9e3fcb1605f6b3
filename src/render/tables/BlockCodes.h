// Codes of blocks, a layer at a time.
#pragma once

#include "render/tables/BlockCoders.h"
#include "render/tables/BlockExtent.h"
#include "render/tables/SampledBlocks.h"

namespace z3d::render {

// Layers have rows of bytes that leave one border block on each side (see BlockExtent). Blocks that are not sampled have
// code 0.
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
            // At most three by three rows of voxels, where a margin widens a block.
            const std::uint8_t* row[9];
            int rows = 0;
            for (std::int32_t vz = z.first; vz <= z.last; ++vz) {
                for (std::int32_t vy = y.first; vy <= y.last; ++vy)
                    row[rows++] = grid_.At<Coder::kBytes>(0, vy, vz);
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

    Z3D_INLINE void FillRow(const std::uint8_t* const* row, int rows, std::uint8_t* to) {
        const std::int32_t width = grid_.width;
        const std::int32_t end = 2 * blocks_.last[0] < width ? 2 * blocks_.last[0] : width;
        std::int32_t x = 2 * (blocks_.first[0] - 1);
        if (rows == 4) {
            for (; x < end && x + kColumns <= width; x += kColumns) {
                const std::size_t offset = static_cast<std::size_t>(x) * Coder::kBytes;
                auto state = coder_.First(row[0] + offset, kColumns);
#pragma GCC unroll 3
                for (int index = 1; index < 4; ++index)
                    coder_.Add(state, row[index] + offset, kColumns);
                StorePairs(to + x / 2, coder_.Code(state));
            }
        } else {
            for (; x < end && x + kColumns <= width; x += kColumns)
                StorePairs(to + x / 2, CodeAt(row, rows, x, kColumns));
        }
        if (x < end) StorePairs(to + x / 2, CodeAt(row, rows, x, width - x));
        if (margin_ > 0 && width > 1 && end == width) {
            // The last column stands for the one before it too.
            const Bytes before = CodeAt(row, rows, width - 2, 1);
            std::uint8_t& last = to[(width - 1) / 2];
            last = before[0] > last ? before[0] : last;
        }
    }

    [[gnu::noinline]] Bytes CodeAt(const std::uint8_t* const* row, int rows, std::int32_t x,
                                   std::int32_t columns) {
        const std::size_t offset = static_cast<std::size_t>(x) * Coder::kBytes;
        auto state = coder_.First(row[0] + offset, columns);
        for (int index = 1; index < rows; ++index)
            coder_.Add(state, row[index] + offset, columns);
        return coder_.Code(state);
    }

    // The larger of each two neighbouring columns.
    Z3D_INLINE static void StorePairs(std::uint8_t* to, Bytes code) {
        const __m128i odd = _mm_srli_epi16(Raw(code), 8);
        const __m128i even = _mm_and_si128(Raw(code), _mm_set1_epi16(0xFF));
        const __m128i pairs = _mm_max_epi16(odd, even);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(pairs, pairs));
    }

    // The rows (or slices) of a block. With a margin the last block also stands for the row before it, which is
    // sampled in place of the border.
    Span RowsOf(std::int32_t block, std::int32_t size) const {
        Span span = {2 * block, 2 * block + 1 < size ? 2 * block + 1 : size - 1};
        if (span.last == size - 1) {
            span.first -= margin_;
            if (span.first < 0) span.first = 0;
        }
        return span;
    }

    // Before the first and behind the last block of a row, the nearest block repeats.
    void RepeatBorders(std::uint8_t* row) const {
        const std::size_t blocksX = static_cast<std::size_t>(grid_.width + 1) / 2;
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
