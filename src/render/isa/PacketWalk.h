// The walk for every view: 4 x 4 neighbouring rays at a time, 16 samples at a time. Stretches that cannot change
// any ray of the packet are passed over.
#pragma once

#include "render/isa/PacketRays.h"
#include "render/isa/SkipTable.h"

namespace z3d::render::Z3D_ISA {

template <class Rule>
class PacketWalk {
public:
    // Samples come from `grid`. `skips` may be null: then everything is looked at.
    PacketWalk(const ProjectionJob& job, const Rule& rule, typename Rule::Format::Grid grid,
               const SkipTable* skips)
        : grid_(grid),
          job_(job),
          geometry_(job.geometry),
          rule_(rule),
          rays_(job, RayShapeOf(rule)),
          walk_(job, Rule::kBackToFront, rule.Margin()),
          skips_(skips) {}

    // Rows of packets from the top of the view, where y is largest, or from a lower row on.
    void Render(std::int32_t firstRow = Rule::kBorder) {
        const std::int32_t height = geometry_.outputHeight;
        for (std::int32_t top = firstRow; top < height - Rule::kBorder; top += kPacketSide) {
            rays_.TrimRows(top);
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

    void RenderPacket(std::int32_t top, std::int32_t left) {
        Packet packet;
        rays_.Gather(left, packet);
        typename Rule::Lanes lanes{};
        if (packet.longest > 0) Walk(packet, top, left, lanes);
        for (int ray = 0; ray < kRays; ++ray) {
            const std::int32_t row = top + ray / kPacketSide;
            const std::int32_t column = left + ray % kPacketSide;
            if (row >= geometry_.outputHeight - Rule::kBorder
                || column >= geometry_.outputWidth - Rule::kBorder)
                continue;
            float* pixel =
                job_.pixels
                + 3
                      * (static_cast<std::size_t>(row) * static_cast<std::size_t>(geometry_.outputWidth)
                         + static_cast<std::size_t>(column));
            pixel[0] = pixel[1] = pixel[2] = Rule::kInitial;
            if (packet.count[ray] > 0) rule_.Finish(lanes, ray, pixel);
        }
    }

    void Walk(const Packet& packet, std::int32_t top, std::int32_t left, typename Rule::Lanes& lanes) {
        Positions positions;
        rays_.PlaceStarts(packet, top, left, positions);
        for (std::int32_t done = 0; done < packet.longest; done += kSamples) {
            const int samples = packet.longest - done < kSamples ? packet.longest - done : kSamples;
            const Bytes remaining = RemainingOf(packet, done);
            if (skips_ && !IsWanted(positions, remaining, lanes)) {
                rule_.PassOver(lanes);
                walk_.Skip(positions);
                continue;
            }
            walk_.template NextStretch<Rule::kUsesPositions>(positions, samples, indexes_);
            Fetch(grid_, indexes_, samples, stretch_);
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

    Z3D_INLINE bool IsWanted(const Positions& positions, Bytes remaining, const typename Rule::Lanes& lanes) {
        const Bytes wanted = rule_.Wants(skips_->BoundsAt(positions), lanes);
        const bool isWanted = AnySet(wanted & ~AreEqual(remaining, Bytes{}));
        ++seen_;
        looked_ += isWanted;
        return isWanted;
    }

    const typename Rule::Format::Grid grid_;
    const ProjectionJob& job_;
    const RayGeometry& geometry_;
    const Rule rule_;
    PacketRays rays_;
    const IndexWalk walk_;
    const SkipTable* skips_;
    std::int64_t seen_ = 0;
    std::int64_t looked_ = 0;
    Indexes indexes_;
    typename Rule::Format::Stretch stretch_;
};

} // namespace z3d::render::Z3D_ISA
