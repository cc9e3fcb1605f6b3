// The walk for every view: 4 x 4 neighbouring rays at a time, 16 samples at a time. Stretches that cannot change
// any ray of the packet are passed over.
#pragma once

#include "render/isa/RaySetup.h"
#include "render/isa/Rules.h"
#include "render/isa/SkipTable.h"

namespace z3d::render::Z3D_ISA {

template <class Rule>
class PacketWalk {
public:
    // `skips` may be null: then everything is looked at.
    PacketWalk(const ProjectionJob& job, const Rule& rule, const SkipTable* skips)
        : job_(job),
          geometry_(job.geometry),
          rule_(rule),
          walk_(job, Rule::kBackToFront, rule.Margin()),
          skips_(skips) {}

    // Rows of packets from the top of the view, where y is largest.
    void Render() {
        const RaySetup setup(geometry_);
        const std::int32_t height = geometry_.outputHeight;
        for (std::int32_t top = Rule::kBorder; top < height - Rule::kBorder; top += kPacketSide) {
            for (std::int32_t row = 0; row < kPacketSide; ++row) {
                if (top + row < height) setup.TrimRow(height - 1 - top - row, First(row), Count(row));
            }
            for (std::int32_t left = Rule::kBorder; left < geometry_.outputWidth - Rule::kBorder;
                 left += kPacketSide) {
                RenderPacket(top, left);
            }
            // Where most stretches have to be looked at anyway, asking first costs more than it saves.
            if (seen_ >= kTrial && looked_ * 4 > seen_ * 3) skips_ = nullptr;
        }
        LeaveVectorCode();
    }

private:
    static constexpr std::int64_t kTrial = 256; // stretches after which skipping may be given up

    std::int32_t* First(std::int32_t row) const {
        return job_.rowScratch + 2 * row * (geometry_.outputWidth + kRowPadding);
    }
    std::int32_t* Count(std::int32_t row) const { return First(row) + geometry_.outputWidth + kRowPadding; }

    struct Packet {
        alignas(64) std::int32_t start[kRays]; // depth index of the first sample
        alignas(64) std::int32_t count[kRays]; // samples; 0 for a ray that is not rendered
        float* pixel[kRays];                   // null beyond the rendered part of the image
        std::int32_t longest;
    };

    void RenderPacket(std::int32_t top, std::int32_t left) {
        Packet packet;
        Gather(top, left, packet);
        typename Rule::Lanes lanes{};
        if (packet.longest > 0) Walk(packet, top, left, lanes);
        for (int ray = 0; ray < kRays; ++ray) {
            float* pixel = packet.pixel[ray];
            if (pixel == nullptr) continue;
            pixel[0] = pixel[1] = pixel[2] = Rule::kInitial;
            if (packet.count[ray] > 0) rule_.Finish(lanes, ray, pixel);
        }
    }

    void Gather(std::int32_t top, std::int32_t left, Packet& packet) const {
        packet.longest = 0;
        for (int ray = 0; ray < kRays; ++ray) {
            const std::int32_t row = top + ray / kPacketSide;
            const std::int32_t column = left + ray % kPacketSide;
            packet.pixel[ray] = nullptr;
            packet.start[ray] = 0;
            packet.count[ray] = 0;
            if (row >= geometry_.outputHeight - Rule::kBorder
                || column >= geometry_.outputWidth - Rule::kBorder) {
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
            packet.start[ray] = Rule::kBackToFront ? first + count - 1 : first;
            packet.count[ray] = count + Rule::kSamplesPastEnd;
            if (packet.count[ray] > rule_.SampleLimit()) packet.count[ray] = rule_.SampleLimit();
            if (packet.count[ray] > packet.longest) packet.longest = packet.count[ray];
        }
    }

    void Walk(const Packet& packet, std::int32_t top, std::int32_t left, typename Rule::Lanes& lanes) {
        Positions positions;
        PlaceStarts(packet, top, left, positions);
        for (std::int32_t done = 0; done < packet.longest; done += kSamples) {
            const int samples = packet.longest - done < kSamples ? packet.longest - done : kSamples;
            const Bytes remaining = RemainingOf(packet, done);
            if (skips_ && !IsWanted(positions, remaining, lanes)) {
                rule_.PassOver(lanes);
                walk_.Skip(positions, samples);
                continue;
            }
            walk_.template NextStretch<Rule::kUsesPositions>(positions, samples, indexes_);
            Fetch(job_.grid, indexes_, samples, stretch_);
            for (int sample = 0; sample < samples; ++sample) {
                const Bytes isValid =
                    ToBytes(_mm_cmpgt_epi8(Raw(remaining), _mm_set1_epi8(static_cast<char>(sample))));
                rule_.Sample(Rule::Format::SampleOf(stretch_, indexes_, sample), isValid, lanes);
            }
            rule_.EndStretch(lanes);
            // A ray goes on while it has samples left after this stretch and has not ended.
            const Bytes hasMore = AreEqual(remaining, AllBytes(kSamples));
            if (!AnySet(hasMore & ~rule_.Ended(lanes))) return;
        }
    }

    // Samples that each ray still has, up to 16.
    Z3D_INLINE static Bytes RemainingOf(const Packet& packet, std::int32_t done) {
        const __m128i taken = _mm_set1_epi32(done);
        const auto* count = reinterpret_cast<const __m128i*>(packet.count);
        const __m128i low = _mm_packs_epi32(_mm_sub_epi32(_mm_load_si128(count), taken),
                                            _mm_sub_epi32(_mm_load_si128(count + 1), taken));
        const __m128i high = _mm_packs_epi32(_mm_sub_epi32(_mm_load_si128(count + 2), taken),
                                             _mm_sub_epi32(_mm_load_si128(count + 3), taken));
        return Smaller(ToBytes(_mm_packus_epi16(low, high)), AllBytes(kSamples));
    }

    Z3D_INLINE bool IsWanted(const Positions& positions, Bytes remaining, const typename Rule::Lanes& lanes) {
        const Bytes wanted = rule_.Wants(skips_->BoundsAt(positions), lanes);
        const bool isWanted = AnySet(wanted & ~AreEqual(remaining, Bytes{}));
        ++seen_;
        looked_ += isWanted;
        return isWanted;
    }

    // The sample point at depth index k: (k - hd) T(a,2) + px T(a,0) + py T(a,1) + c(a), rounded once.
    void PlaceStarts(const Packet& packet, std::int32_t top, std::int32_t left, Positions& positions) const {
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

    const ProjectionJob& job_;
    const RayGeometry& geometry_;
    const Rule rule_;
    const IndexWalk walk_;
    const SkipTable* skips_;
    std::int64_t seen_ = 0;
    std::int64_t looked_ = 0;
    Indexes indexes_;
    typename Rule::Format::Stretch stretch_;
};

} // namespace z3d::render::Z3D_ISA
