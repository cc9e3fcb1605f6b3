// The rays of 4 x 4 neighbouring pixels: how many samples each has, and where the first one lies.
#pragma once

#include "render/isa/LinearRaySetup.h"
#include "render/isa/Rules.h"

namespace z3d::render::Z3D_ISA {

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

// What a rule says about its rays.
struct RayShape {
    bool backToFront;
    std::int32_t border;
    std::int32_t samplesPastEnd;
    std::int32_t sampleLimit;
};

template <class Rule>
RayShape RayShapeOf(const Rule& rule) {
    return {Rule::kBackToFront, Rule::kBorder, Rule::kSamplesPastEnd, rule.SampleLimit()};
}

class PacketRays {
public:
    PacketRays(const ProjectionJob& job, const RayShape& shape)
        : job_(job),
          geometry_(job.geometry),
          setup_(job.geometry),
          linear_(job.geometry),
          isLinear_(linear_.IsUsable()),
          shape_(shape) {}

    // Trims the rays of `rows` rows, a tile's at most, from array row `top` on. Rays that are not rendered get no samples.
    [[gnu::noinline]] void TrimRows(std::int32_t top, std::int32_t rows) {
        const std::int32_t width = geometry_.outputWidth;
        for (std::int32_t row = 0; row < rows; ++row) {
            std::int32_t* count = Count(row);
            if (top + row >= geometry_.outputHeight - shape_.border) {
                __builtin_memset(count, 0, static_cast<std::size_t>(width + kRowPadding) * sizeof *count);
                continue;
            }
            TrimRow(geometry_.outputHeight - 1 - top - row, First(row), count);
            for (std::int32_t i = 0; i < shape_.border && i < width; ++i)
                count[i] = 0;
            for (std::int32_t i = width - shape_.border > 0 ? width - shape_.border : 0;
                 i < width + kRowPadding; ++i) {
                count[i] = 0;
            }
        }
    }

    // The rays of the packet at row `top` of the band and column `left`, in the order of the rows.
    [[gnu::noinline]] void Gather(std::int32_t top, std::int32_t left, Packet& packet) const {
        const __m128i zero = _mm_setzero_si128();
        const __m128i extra = _mm_set1_epi32(shape_.samplesPastEnd);
        const __m128i limit = _mm_set1_epi32(shape_.sampleLimit);
        __m128i longest = zero;
        for (std::int32_t row = 0; row < kPacketSide; ++row) {
            const __m128i trimmed =
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(Count(top + row) + left));
            const __m128i isRay = _mm_cmpgt_epi32(trimmed, zero);
            __m128i start = _mm_loadu_si128(reinterpret_cast<const __m128i*>(First(top + row) + left));
            if (shape_.backToFront) start = _mm_add_epi32(start, _mm_add_epi32(trimmed, isRay));
            const __m128i count = SmallerInts(_mm_add_epi32(trimmed, _mm_and_si128(extra, isRay)), limit);
            // A ray without samples starts anywhere: what its scratch memory holds is not looked at.
            _mm_store_si128(reinterpret_cast<__m128i*>(packet.start) + row, _mm_and_si128(start, isRay));
            _mm_store_si128(reinterpret_cast<__m128i*>(packet.count) + row, count);
            longest = LargerInts(longest, count);
        }
        longest = LargerInts(longest, _mm_shuffle_epi32(longest, 0x4E));
        longest = LargerInts(longest, _mm_shuffle_epi32(longest, 0xB1));
        packet.longest = _mm_cvtsi128_si32(longest);
    }

    // The sample point at depth index k: (k - hd) T(a,2) + px T(a,0) + py T(a,1) + c(a), rounded once.
    [[gnu::noinline]] void PlaceStarts(const Packet& packet, std::int32_t top, std::int32_t left,
                                       Positions& positions) const {
        const double px = left - static_cast<double>(geometry_.halfSize[0]);
        const double py = geometry_.outputHeight - 1 - top - static_cast<double>(geometry_.halfSize[1]);
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
                LoadAsDoubles(packet.start + ray) - static_cast<double>(geometry_.halfSize[2]);
            for (int axis = 0; axis < 3; ++axis) {
                const float* row = geometry_.inverse + 3 * axis;
                StoreSingle(positions.axis[axis] + ray, depth * static_cast<double>(row[2])
                                                            + x * static_cast<double>(row[0])
                                                            + y * static_cast<double>(row[1])
                                                            + static_cast<double>(geometry_.centre[axis]));
            }
        }
    }

private:
    // Rows after which the linear set-up may be given up. One row by itself may lie on a face of the crop box.
    static constexpr std::int32_t kTrialRows = 8;

    Z3D_INLINE static __m128i LargerInts(__m128i a, __m128i b) {
        const __m128i isLarger = _mm_cmpgt_epi32(a, b);
        return _mm_or_si128(_mm_and_si128(isLarger, a), _mm_andnot_si128(isLarger, b));
    }
    Z3D_INLINE static __m128i SmallerInts(__m128i a, __m128i b) {
        const __m128i isLarger = _mm_cmpgt_epi32(a, b);
        return _mm_or_si128(_mm_and_si128(isLarger, b), _mm_andnot_si128(isLarger, a));
    }

    void TrimRow(std::int32_t j, std::int32_t* first, std::int32_t* count) {
        if (!isLinear_) {
            setup_.TrimRow(j, first, count);
            return;
        }
        const LinearRaySetup::Row row(linear_, j - static_cast<double>(geometry_.halfSize[1]));
        Doubles column;
        for (int lane = 0; lane < kDoubleLanes; ++lane)
            column[lane] = lane;
        column -= static_cast<double>(geometry_.halfSize[0]);
        for (std::int32_t i = 0; i < geometry_.outputWidth; i += kDoubleLanes) {
            ++trimmed_;
            if (!row.Trim(column + static_cast<double>(i), first + i, count + i)) {
                ++doubtful_;
                setup_.TrimColumns(j, i, first + i, count + i);
            }
        }
        if (++rows_ >= kTrialRows && doubtful_ * 4 > trimmed_) isLinear_ = false;
    }

    std::int32_t* First(std::int32_t row) const {
        return job_.rowScratch + 2 * row * (geometry_.outputWidth + kRowPadding);
    }
    std::int32_t* Count(std::int32_t row) const { return First(row) + geometry_.outputWidth + kRowPadding; }

    const ProjectionJob& job_;
    const RayGeometry& geometry_;
    const RaySetup setup_;
    const LinearRaySetup linear_;
    bool isLinear_;
    std::int32_t rows_ = 0;
    std::int64_t trimmed_ = 0; // vectors
    std::int64_t doubtful_ = 0;
    const RayShape shape_;
};

} // namespace z3d::render::Z3D_ISA
