// The walk for every view: 4 x 4 neighbouring rays at a time, up to 16 samples at a time. Stretches that cannot
// change any ray of the packet are passed over.
#pragma once

#include "render/isa/PacketRays.h"
#include "render/isa/SkipTable.h"

namespace z3d::render::Z3D_ISA {

template <class Rule>
class PacketWalk {
public:
    // Samples come from `grid`.
    PacketWalk(const ProjectionJob& job, const Rule& rule, typename Rule::Format::Grid grid)
        : grid_(grid),
          job_(job),
          geometry_(job.geometry),
          rule_(rule),
          rays_(job, RayShapeOf(rule)),
          walk_(job, Rule::kBackToFront, rule.Margin()),
          skips_(job, Rule::kBackToFront) {}

    // Rows of packets from the top of the view, where y is largest, or from a lower row on.
    void Render(std::int32_t firstRow = Rule::kBorder) {
        const std::int32_t bottom = geometry_.outputHeight - Rule::kBorder;
        const std::int32_t right = geometry_.outputWidth - Rule::kBorder;
        for (std::int32_t band = firstRow; band < bottom; band += kTileSide) {
            rays_.TrimRows(band, kTileSide);
            for (std::int32_t tile = Rule::kBorder; tile < right; tile += kTileSide) {
                for (std::int32_t row = 0; row < kTileSide && band + row < bottom; row += kPacketSide) {
                    for (std::int32_t left = tile; left < tile + kTileSide && left < right;
                         left += kPacketSide) {
                        RenderPacket(band, row, left);
                    }
                }
                // Where most stretches have to be looked at anyway, asking first costs more than it saves.
                if (IsOptional() && seen_ >= kTrial && looked_ * 4 > seen_ * 3) isSkipping_ = false;
            }
        }
        LeaveVectorCode();
    }

    // Before Render: has a table of bounds made if it promises to save more than it costs.
    void PrepareSkipping() {
        if (!SkipTable::IsUsable(job_)) return;
        if (IsOptional() && EstimateFruitless() * kVoxelsPerSample < skips_.Voxels()) return;
        skips_.Make(job_.grid, rule_.window, Rule::kMeasure, rule_.Margin());
        if constexpr (requires { rule_.highest; }) {
            for (int c = 0; c < Rule::kChannels; ++c)
                rule_.highest[c] = AllBytes(skips_.Highest(c));
        }
        isSkipping_ = true;
    }

private:
    static constexpr std::int64_t kTrial = 256; // stretches after which skipping may be given up
    static constexpr std::int32_t kProbedStrips = 5;
    static constexpr std::int32_t kProbedPackets = 4; // one of so many
    // A sample of a packet takes as long as the table for so many voxels.
    static constexpr double kVoxelsPerSample = 64;

    bool IsOptional() const { return job_.skipPolicy == SkipPolicy::WhereItPays; }

    // Samples of packets that change no ray, in the whole image: found by rendering a few packets here and there.
    double EstimateFruitless() {
        const std::int32_t strips =
            (geometry_.outputHeight - 2 * Rule::kBorder + kPacketSide - 1) / kPacketSide;
        const std::int32_t packets =
            (geometry_.outputWidth - 2 * Rule::kBorder + kPacketSide - 1) / kPacketSide;
        const std::int32_t probes = strips / 8 + 1 < kProbedStrips ? strips / 8 + 1 : kProbedStrips;
        std::int64_t probed = 0;
        isProbing_ = true;
        for (std::int32_t probe = 0; probe < probes; ++probe) {
            const std::int32_t top = Rule::kBorder + (2 * probe + 1) * strips / (2 * probes) * kPacketSide;
            if (top >= geometry_.outputHeight - Rule::kBorder) break;
            rays_.TrimRows(top, kPacketSide);
            for (std::int32_t packet = probe % kProbedPackets; packet < packets; packet += kProbedPackets) {
                RenderPacket(top, 0, Rule::kBorder + packet * kPacketSide);
                ++probed;
            }
        }
        isProbing_ = false;
        if (probed == 0) return 0;
        return static_cast<double>(fruitless_) * strips * packets / static_cast<double>(probed);
    }

    void RenderPacket(std::int32_t band, std::int32_t rowInBand, std::int32_t left) {
        const std::int32_t top = band + rowInBand;
        Packet packet;
        rays_.Gather(rowInBand, left, packet);
        typename Rule::Lanes lanes{};
        if (packet.longest > 0) Walk(packet, top, left, lanes);
        for (int ray = 0; ray < kRays; ++ray) {
            const std::int32_t row = top + ray / kPacketSide;
            const std::int32_t column = left + ray % kPacketSide;
            if (row >= geometry_.outputHeight - Rule::kBorder
                || column >= geometry_.outputWidth - Rule::kBorder) {
                continue;
            }
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
        wasFruitless_ = false;
        int samples = Rule::kFirstLook;
        for (std::int32_t done = 0; done < packet.longest; done += samples) {
            const Bytes remaining = RemainingOf(packet, done);
            if (isSkipping_ && !IsWanted(positions, remaining, lanes)) {
                rule_.PassOver(lanes);
                walk_.Skip(positions);
                samples = kSamples;
                continue;
            }
            samples = done == 0 ? Rule::kFirstLook : Rule::kLook;
            if (samples > packet.longest - done) samples = packet.longest - done;
            if (isProbing_) {
                Probe(positions, samples, remaining, lanes);
            } else {
                Look(positions, samples, remaining, lanes);
            }
            // A ray goes on while it has samples left after these and has not ended.
            const Bytes more =
                AllBytes(static_cast<std::uint8_t>(samples < kSamples ? samples + 1 : kSamples));
            const Bytes hasMore = AreEqual(Larger(remaining, more), remaining);
            if (!AnySet(hasMore & ~rule_.Ended(lanes))) return;
        }
    }

    // Counts the samples that changed no ray. A look by itself does not count: bounds reach beyond their stretch.
    void Probe(Positions& positions, int samples, Bytes remaining, typename Rule::Lanes& lanes) {
        const typename Rule::Lanes before = lanes;
        Look(positions, samples, remaining, lanes);
        const bool isFruitless = rule_.AreSame(before, lanes);
        if (isFruitless && wasFruitless_) fruitless_ += samples;
        wasFruitless_ = isFruitless;
    }

    [[gnu::noinline]] void Look(Positions& positions, int samples, Bytes remaining,
                                typename Rule::Lanes& lanes) {
        walk_.template NextStretch<Rule::kUsesPositions>(positions, samples, indexes_);
        Fetch(grid_, indexes_, samples, stretch_);
        for (int sample = 0; sample < samples; ++sample) {
            const Bytes isValid =
                ToBytes(_mm_cmpgt_epi8(Raw(remaining), _mm_set1_epi8(static_cast<char>(sample))));
            rule_.Sample(Rule::Format::SampleOf(stretch_, indexes_, sample), isValid, lanes);
        }
        rule_.EndStretch(lanes);
    }

    Z3D_INLINE bool IsWanted(const Positions& positions, Bytes remaining, const typename Rule::Lanes& lanes) {
        const Bytes wanted = rule_.Wants(skips_.BoundsAt(positions), lanes);
        const bool isWanted = AnySet(wanted & ~AreEqual(remaining, Bytes{}));
        ++seen_;
        looked_ += isWanted;
        return isWanted;
    }

    const typename Rule::Format::Grid grid_;
    const ProjectionJob& job_;
    const RayGeometry& geometry_;
    Rule rule_;
    PacketRays rays_;
    const IndexWalk walk_;
    SkipTable skips_;
    bool isSkipping_ = false;
    bool isProbing_ = false;
    bool wasFruitless_ = false;
    std::int64_t fruitless_ = 0; // samples that changed no ray, while probing
    std::int64_t seen_ = 0;
    std::int64_t looked_ = 0;
    Indexes indexes_;
    typename Rule::Format::Stretch stretch_;
};

} // namespace z3d::render::Z3D_ISA
