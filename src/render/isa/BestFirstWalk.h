// The walk for a largest rank, where the order of samples does not matter: each ray first looks at the stretch
// that promises most, and then only at stretches whose bound is above what it has. The latter are collected from
// many rays until sixteen can be looked at together.
#pragma once

#include "render/isa/Extreme.h"
#include "render/isa/PacketRays.h"
#include "render/isa/SkipTable.h"

namespace z3d::render::Z3D_ISA {

template <class Rule>
class BestFirstWalk {
public:
    // There must be memory for a table of bounds.
    BestFirstWalk(const ProjectionJob& job, const Rule& rule)
        : job_(job),
          geometry_(job.geometry),
          rule_(rule),
          rays_(job, RayShapeOf(rule)),
          walk_(job, Rule::kBackToFront, rule.Margin()),
          skips_(job, Rule::kBackToFront) {
        skips_.Make(job.grid, rule.window, Rule::kMeasure, rule.Margin());
    }

    // False when it was given up for lack of use; the rows from `nextRow` on are then still to be rendered.
    bool Render(std::int32_t& nextRow) {
        const std::int32_t bottom = geometry_.outputHeight;
        const std::int32_t right = geometry_.outputWidth;
        for (nextRow = 0; nextRow < bottom; nextRow += kTileSide) {
            const bool isOptional = job_.skipPolicy == SkipPolicy::WhereItPays;
            if (isOptional && seen_ >= kTrial && looked_ * 2 > seen_) return false;
            __builtin_memset(job_.stripScratch, 0, StripScratchBytes(right));
            rays_.TrimRows(nextRow, kTileSide);
            for (std::int32_t tile = 0; tile < right; tile += kTileSide) {
                for (std::int32_t row = 0; row < kTileSide && nextRow + row < bottom; row += kPacketSide) {
                    for (std::int32_t left = tile; left < tile + kTileSide && left < right;
                         left += kPacketSide) {
                        Packet packet;
                        rays_.Gather(row, left, packet);
                        if (packet.longest > 0) LookAtPacket(packet, nextRow, row, left);
                    }
                }
            }
            LookAtQueue();
            FinishRows(nextRow);
        }
        LeaveVectorCode();
        return true;
    }

private:
    static constexpr std::int64_t kTrial = 4096; // stretches after which skipping may be given up
    static constexpr int kChunk = 64;            // stretches of a packet whose order is chosen together

    // Stretches that rays have to look at, until there are sixteen.
    struct Queue {
        Positions positions;
        std::int32_t pixel[kRays]; // of the band
        alignas(16) std::uint8_t samples[kRays];
        int size = 0;
    };

    // Ranks so far of the rows of the band, and whether there is one: 0 or 0xFF.
    std::uint8_t* Ranks() const { return job_.stripScratch; }
    std::uint8_t* Found() const { return job_.stripScratch + StripScratchBytes(geometry_.outputWidth) / 2; }
    std::int32_t PixelOf(std::int32_t row, std::int32_t left, int ray) const {
        return (row + ray / kPacketSide) * geometry_.outputWidth + left + ray % kPacketSide;
    }

    void Merge(std::int32_t pixel, std::uint8_t rank, std::uint8_t isFound) {
        Found()[pixel] |= isFound;
        if (rank > Ranks()[pixel]) Ranks()[pixel] = rank;
    }

    void LookAtPacket(const Packet& packet, std::int32_t band, std::int32_t row, std::int32_t left) {
        GreyExtremeLanes lanes{};
        Positions positions;
        rays_.PlaceStarts(packet, band + row, left, positions);
        for (std::int32_t done = 0; done < packet.longest; done += kChunk * kSamples) {
            const int stretches = FindBounds(packet, done, positions);
            LookAtBest(packet, done, stretches, lanes);
            for (int stretch = 0; stretch < stretches; ++stretch) {
                Enqueue(packet, row, left, done, stretch, rule_.Wants(bounds_[stretch], lanes));
            }
        }
        for (int ray = 0; ray < kRays; ++ray) {
            if (packet.count[ray] > 0)
                Merge(PixelOf(row, left, ray), lanes.largest[0][ray], lanes.isFound[ray]);
        }
    }

    // Marches through the next stretches, up to a chunk: where each starts, and the bound of each ray there; 0
    // for a ray that has ended.
    int FindBounds(const Packet& packet, std::int32_t done, Positions& positions) {
        int stretches = 0;
        for (; stretches < kChunk && done < packet.longest; ++stretches, done += kSamples) {
            const Bytes remaining = RemainingOf(packet, done);
            starts_[stretches] = positions;
            bounds_[stretches] = skips_.BoundsAt(positions) & ~AreEqual(remaining, Bytes{});
            walk_.Skip(positions);
            seen_ += kRays;
        }
        return stretches;
    }

    // Each ray looks at its stretch of the largest bound.
    void LookAtBest(const Packet& packet, std::int32_t done, int stretches, GreyExtremeLanes& lanes) {
        Bytes largest = {};
        Bytes best = {};
        for (int stretch = 0; stretch < stretches; ++stretch) {
            const Bytes isNotLarger = AreEqual(Larger(bounds_[stretch], largest), largest);
            best = (best & isNotLarger) | (AllBytes(static_cast<std::uint8_t>(stretch)) & ~isNotLarger);
            largest = Larger(largest, bounds_[stretch]);
        }
        const Bytes wanted = rule_.Wants(largest, lanes);
        if (!AnySet(wanted)) return;

        Positions positions;
        Bytes samples = {};
        for (int ray = 0; ray < kRays; ++ray) {
            const int stretch = best[ray];
            for (int axis = 0; axis < 3; ++axis)
                positions.axis[axis][ray] = starts_[stretch].axis[axis][ray];
            if (!wanted[ray]) continue;
            samples[ray] = SamplesOf(packet, ray, done, stretch);
            bounds_[stretch][ray] = 0;
        }
        LookAt(positions, samples, lanes);
    }

    static std::uint8_t SamplesOf(const Packet& packet, int ray, std::int32_t done, int stretch) {
        const std::int32_t left = packet.count[ray] - done - stretch * kSamples;
        return static_cast<std::uint8_t>(left < kSamples ? left : kSamples);
    }

    // One stretch of each ray.
    void LookAt(Positions& positions, Bytes samples, GreyExtremeLanes& lanes) {
        looked_ += kRays;
        walk_.template NextStretch<false>(positions, kSamples, indexes_);
        Fetch(job_.grid, indexes_, kSamples, stretch_);
        for (int sample = 0; sample < kSamples; ++sample) {
            const Bytes isValid =
                ToBytes(_mm_cmpgt_epi8(Raw(samples), _mm_set1_epi8(static_cast<char>(sample))));
            rule_.Sample(Grey::SampleOf(stretch_, indexes_, sample), isValid, lanes);
        }
    }

    void Enqueue(const Packet& packet, std::int32_t row, std::int32_t left, std::int32_t done, int stretch,
                 Bytes wanted) {
        for (unsigned rays = BitsOf(wanted); rays != 0; rays &= rays - 1) {
            const int ray = __builtin_ctz(rays);
            const int slot = queue_.size++;
            for (int axis = 0; axis < 3; ++axis) {
                queue_.positions.axis[axis][slot] = starts_[stretch].axis[axis][ray];
            }
            queue_.pixel[slot] = PixelOf(row, left, ray);
            queue_.samples[slot] = SamplesOf(packet, ray, done, stretch);
            if (queue_.size == kRays) LookAtQueue();
        }
    }

    void LookAtQueue() {
        if (queue_.size == 0) return;
        for (int slot = queue_.size; slot < kRays; ++slot) {
            for (auto& axis : queue_.positions.axis)
                axis[slot] = axis[0];
            queue_.samples[slot] = 0;
        }
        Bytes samples;
        __builtin_memcpy(&samples, queue_.samples, sizeof samples);
        GreyExtremeLanes lanes{};
        LookAt(queue_.positions, samples, lanes);
        for (int slot = 0; slot < queue_.size; ++slot) {
            Merge(queue_.pixel[slot], lanes.largest[0][slot], lanes.isFound[slot]);
        }
        queue_.size = 0;
    }

    void FinishRows(std::int32_t top) {
        for (std::int32_t row = top; row < top + kTileSide && row < geometry_.outputHeight; ++row) {
            const std::size_t width = static_cast<std::size_t>(geometry_.outputWidth);
            float* pixel = job_.pixels + 3 * static_cast<std::size_t>(row) * width;
            const std::uint8_t* ranks = Ranks() + static_cast<std::size_t>(row - top) * width;
            const std::uint8_t* found = Found() + static_cast<std::size_t>(row - top) * width;
            for (std::size_t i = 0; i < width; ++i, pixel += 3) {
                pixel[0] = pixel[1] = pixel[2] = found[i] ? Rule::ValueOf(ranks[i]) : Rule::kInitial;
            }
        }
    }

    const ProjectionJob& job_;
    const RayGeometry& geometry_;
    const Rule rule_;
    PacketRays rays_;
    const IndexWalk walk_;
    SkipTable skips_;
    std::int64_t seen_ = 0;
    std::int64_t looked_ = 0;
    Queue queue_;
    Positions starts_[kChunk];
    Bytes bounds_[kChunk];
    Indexes indexes_;
    GreyStretch stretch_;
};

} // namespace z3d::render::Z3D_ISA
