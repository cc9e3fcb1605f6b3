// The rays of 4 x 4 neighbouring pixels: how many samples each has, and where the first one lies.
#pragma once

#include "render/isa/RaySetup.h"
#include "render/isa/Rules.h"

namespace z3d::render::Z3D_ISA {

struct Packet {
    alignas(64) std::int32_t start[kRays]; // depth index of the first sample
    alignas(64) std::int32_t count[kRays]; // samples; 0 for a ray that is not rendered
    float* pixel[kRays];                   // null beyond the rendered part of the image
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
        : job_(job), geometry_(job.geometry), setup_(job.geometry), shape_(shape) {}

    // Trims the rays of the four rows from array row `top` on.
    [[gnu::noinline]] void TrimRows(std::int32_t top) const {
        const std::int32_t height = geometry_.outputHeight;
        for (std::int32_t row = 0; row < kPacketSide && top + row < height; ++row) {
            setup_.TrimRow(height - 1 - top - row, First(row), Count(row));
        }
    }

    [[gnu::noinline]] void Gather(std::int32_t top, std::int32_t left, Packet& packet) const {
        packet.longest = 0;
        for (int ray = 0; ray < kRays; ++ray) {
            const std::int32_t row = top + ray / kPacketSide;
            const std::int32_t column = left + ray % kPacketSide;
            packet.pixel[ray] = nullptr;
            packet.start[ray] = 0;
            packet.count[ray] = 0;
            if (row >= geometry_.outputHeight - shape_.border
                || column >= geometry_.outputWidth - shape_.border) {
                continue;
            }
            packet.pixel[ray] =
                job_.pixels
                + 3
                      * (static_cast<std::size_t>(row) * static_cast<std::size_t>(geometry_.outputWidth)
                         + static_cast<std::size_t>(column));
            const std::int32_t count = Count(ray / kPacketSide)[column];
            if (count == 0) continue;
            const std::int32_t first = First(ray / kPacketSide)[column];
            packet.start[ray] = shape_.backToFront ? first + count - 1 : first;
            packet.count[ray] = count + shape_.samplesPastEnd;
            if (packet.count[ray] > shape_.sampleLimit) packet.count[ray] = shape_.sampleLimit;
            if (packet.count[ray] > packet.longest) packet.longest = packet.count[ray];
        }
    }

    // The sample point at depth index k: (k - hd) T(a,2) + px T(a,0) + py T(a,1) + c(a), rounded once.
    [[gnu::noinline]] void PlaceStarts(const Packet& packet, std::int32_t top, std::int32_t left,
                                       Positions& positions) const {
        alignas(64) double px[kRays];
        alignas(64) double py[kRays];
        for (int ray = 0; ray < kRays; ++ray) {
            px[ray] = left + ray % kPacketSide - static_cast<double>(geometry_.halfSize[0]);
            py[ray] = geometry_.outputHeight - 1 - top - ray / kPacketSide
                      - static_cast<double>(geometry_.halfSize[1]);
        }
        for (int axis = 0; axis < 3; ++axis) {
            const float* row = geometry_.inverse + 3 * axis;
            for (int ray = 0; ray < kRays; ray += kDoubleLanes) {
                Doubles x;
                Doubles y;
                __builtin_memcpy(&x, px + ray, sizeof x);
                __builtin_memcpy(&y, py + ray, sizeof y);
                const Doubles depth =
                    LoadAsDoubles(packet.start + ray) - static_cast<double>(geometry_.halfSize[2]);
                StoreSingle(positions.axis[axis] + ray, depth * static_cast<double>(row[2])
                                                            + x * static_cast<double>(row[0])
                                                            + y * static_cast<double>(row[1])
                                                            + static_cast<double>(geometry_.centre[axis]));
            }
        }
    }

private:
    std::int32_t* First(std::int32_t row) const {
        return job_.rowScratch + 2 * row * (geometry_.outputWidth + kRowPadding);
    }
    std::int32_t* Count(std::int32_t row) const { return First(row) + geometry_.outputWidth + kRowPadding; }

    const ProjectionJob& job_;
    const RayGeometry& geometry_;
    const RaySetup setup_;
    const RayShape shape_;
};

} // namespace z3d::render::Z3D_ISA
