// The rays of 4 x 4 neighbouring pixels: how many samples each has, and where the first one lies.
#pragma once

#include "render/StretchIndexes.h"
#include "render/Traversal.h"
#include "render/kernels/rays/LinearRaySetup.h"
#include "render/kernels/vector/Vector.h"

namespace z3d::render::Z3D_ISA {

constexpr std::int32_t Fewer(std::int32_t a, std::int32_t b) { return a < b ? a : b; }

struct Packet {
    alignas(64) std::int32_t start[kRays]; // depth index of the first sample
    alignas(64) std::int32_t count[kRays]; // samples; 0 for a ray that is not rendered
    std::int32_t longest;
};

// Samples that each ray still has, up to 16.
Z3D_INLINE Bytes RemainingOf(const Packet& packet, std::int32_t done) {
    const __m128i taken = _mm_set1_epi32(done);
    const auto* count = reinterpret_cast<const __m128i*>(packet.count);
    const __m128i low = _mm_packs_epi32(_mm_sub_epi32(_mm_load_si128(count), taken),
                                        _mm_sub_epi32(_mm_load_si128(count + 1), taken));
    const __m128i high = _mm_packs_epi32(_mm_sub_epi32(_mm_load_si128(count + 2), taken),
                                         _mm_sub_epi32(_mm_load_si128(count + 3), taken));
    return Smaller(ToBytes(_mm_packus_epi16(low, high)), AllBytes(kSamples));
}

// How the rays of a mode run, apart from the view.
struct RayShape {
    bool backToFront = false;
    std::int32_t border = 0; // output pixels at each edge that are not rendered
    std::int32_t margin = 0; // smallest voxel index that is sampled; the largest lies as far from the end
    std::int32_t samplesPastEnd = 0;      // samples beyond the trimmed range
    std::int32_t sampleLimit = INT32_MAX; // samples that count at most
};

// Rays are trimmed for a tile at a time, within a band of rows.
class PacketRays {
public:
    PacketRays(const ProjectionRenderer& view, const RayShape& shape)
        : view_(view),
          shape_(shape),
          bottom_(view.outputHeight - shape.border),
          right_(view.outputWidth - shape.border),
          exact_(view),
          linear_(view),
          isLinear_(linear_.IsUsable()) {}

    std::int32_t Bottom() const { return bottom_; }
    std::int32_t Right() const { return right_; }

    // Goes to the `rows` rows, a tile's at most, from array row `top` on.
    [[gnu::noinline]] void StartBand(std::int32_t top, std::int32_t rows) {
        top_ = top;
        rows_ = rows < bottom_ - top ? rows : bottom_ - top;
        if (!isLinear_) return;
        for (std::int32_t row = 0; row < rows_; ++row)
            row_[row] = linear_.RowAt(ViewRow(row) - static_cast<double>(view_.outputHalfSize[1]));
    }

    // Trims the rays of the band in `columns` columns, a tile's at most, from column `left` on. Those beyond the rows
    // or columns that are rendered get no samples. False when no ray has any.
    [[gnu::noinline]] bool Trim(std::int32_t left, std::int32_t columns) {
        left_ = left;
        __m128i any = _mm_setzero_si128();
        const std::int32_t end = columns < right_ - left ? columns : right_ - left;
        for (std::int32_t row = 0; row < rows_; ++row) {
            for (std::int32_t column = 0; column < end; column += kDoubleLanes)
                TrimColumns(row, column);
            for (std::int32_t column = end; column < kTileSide; ++column)
                count_[row][column] = 0;
            for (std::int32_t column = 0; column < columns; column += 4)
                any = _mm_or_si128(any, _mm_load_si128(reinterpret_cast<__m128i*>(count_[row] + column)));
        }
        const std::int32_t packedRows = (rows_ + kPacketSide - 1) / kPacketSide * kPacketSide;
        __builtin_memset(count_[rows_], 0, static_cast<std::size_t>(packedRows - rows_) * sizeof count_[0]);
        // Judged after a tile of rows: one by itself may lie on a face of the crop box.
        if (trimmed_ >= kTrial && doubtful_ * 4 > trimmed_) isLinear_ = false;
        return AnySet(ToBytes(_mm_cmpgt_epi32(any, _mm_setzero_si128())));
    }

    // The rays of the packet at row `row` of the band and column `column` of the trimmed ones, in the order of the
    // rows.
    [[gnu::noinline]] void Gather(std::int32_t row, std::int32_t column, Packet& packet) const {
        const __m128i zero = _mm_setzero_si128();
        const __m128i extra = _mm_set1_epi32(shape_.samplesPastEnd);
        const __m128i limit = _mm_set1_epi32(shape_.sampleLimit);
        __m128i longest = zero;
        for (std::int32_t side = 0; side < kPacketSide; ++side) {
            const __m128i trimmed =
                _mm_load_si128(reinterpret_cast<const __m128i*>(count_[row + side] + column));
            const __m128i isRay = _mm_cmpgt_epi32(trimmed, zero);
            __m128i start = _mm_load_si128(reinterpret_cast<const __m128i*>(first_[row + side] + column));
            if (shape_.backToFront) start = _mm_add_epi32(start, _mm_add_epi32(trimmed, isRay));
            const __m128i count = SmallerInts(_mm_add_epi32(trimmed, _mm_and_si128(extra, isRay)), limit);
            // A ray without samples starts anywhere: what memory holds there is not looked at.
            _mm_store_si128(reinterpret_cast<__m128i*>(packet.start) + side, _mm_and_si128(start, isRay));
            _mm_store_si128(reinterpret_cast<__m128i*>(packet.count) + side, count);
            longest = LargerInts(longest, count);
        }
        longest = LargerInts(longest, _mm_shuffle_epi32(longest, 0x4E));
        longest = LargerInts(longest, _mm_shuffle_epi32(longest, 0xB1));
        packet.longest = _mm_cvtsi128_si32(longest);
    }

    // The sample point at depth index k: (k - hd) T(a,2) + px T(a,0) + py T(a,1) + c(a), rounded once. For the packet
    // at array row `top` and output column `left`.
    [[gnu::noinline]] void PlaceStarts(const Packet& packet, std::int32_t top, std::int32_t left,
                                       Positions& positions) const {
        const double px = left - static_cast<double>(view_.outputHalfSize[0]);
        const double py = view_.outputHeight - 1 - top - static_cast<double>(view_.outputHalfSize[1]);
        for (int ray = 0; ray < kRays; ray += kDoubleLanes) {
            // Whole and half numbers: exact in any order.
            Doubles x;
            Doubles y;
            for (int lane = 0; lane < kDoubleLanes; ++lane) {
                x[lane] = lane % kPacketSide;
                y[lane] = lane / kPacketSide;
            }
            x += px + ray % kPacketSide;
            y = py - ray / kPacketSide - y;
            const Doubles depth =
                LoadAsDoubles(packet.start + ray) - static_cast<double>(view_.outputHalfSize[2]);
            for (int axis = 0; axis < 3; ++axis) {
                StoreSingle(positions.axis[axis] + ray, depth * static_cast<double>(view_.Inverse(axis, 2))
                                                            + x * static_cast<double>(view_.Inverse(axis, 0))
                                                            + y * static_cast<double>(view_.Inverse(axis, 1))
                                                            + static_cast<double>(view_.volumeCentre[axis]));
            }
        }
    }

private:
    // Vectors of rays after which the linear set-up may be given up.
    static constexpr std::int64_t kTrial = kTileSide * kTileSide / kDoubleLanes;

    Z3D_INLINE static __m128i LargerInts(__m128i a, __m128i b) {
        const __m128i isLarger = _mm_cmpgt_epi32(a, b);
        return _mm_or_si128(_mm_and_si128(isLarger, a), _mm_andnot_si128(isLarger, b));
    }
    Z3D_INLINE static __m128i SmallerInts(__m128i a, __m128i b) {
        const __m128i isLarger = _mm_cmpgt_epi32(a, b);
        return _mm_or_si128(_mm_and_si128(isLarger, b), _mm_andnot_si128(isLarger, a));
    }

    // View row, where y grows upward, of a row of the band.
    std::int32_t ViewRow(std::int32_t row) const { return view_.outputHeight - 1 - top_ - row; }

    Z3D_INLINE void TrimColumns(std::int32_t row, std::int32_t column) {
        std::int32_t* first = first_[row] + column;
        std::int32_t* count = count_[row] + column;
        ++trimmed_;
        if (isLinear_) {
            Doubles px;
            for (int lane = 0; lane < kDoubleLanes; ++lane)
                px[lane] = lane;
            px += left_ + column - static_cast<double>(view_.outputHalfSize[0]);
            if (linear_.Trim(row_[row], px, first, count)) return;
            ++doubtful_;
        }
        exact_.TrimColumns(ViewRow(row), left_ + column, first, count);
    }

    const ProjectionRenderer& view_;
    const RayShape shape_;
    const std::int32_t bottom_; // first row and column behind those that are rendered
    const std::int32_t right_;
    const RaySetup exact_;
    const LinearRaySetup linear_;
    bool isLinear_;
    std::int64_t trimmed_ = 0; // vectors
    std::int64_t doubtful_ = 0;
    std::int32_t top_ = 0;
    std::int32_t rows_ = 0;
    std::int32_t left_ = 0;
    LinearRow row_[kTileSide];
    alignas(64) std::int32_t first_[kTileSide][kTileSide];
    alignas(64) std::int32_t count_[kTileSide + kPacketSide][kTileSide];
};

} // namespace z3d::render::Z3D_ISA
