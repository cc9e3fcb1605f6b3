// The walk for a largest rank, where the order of samples does not matter: each ray first looks at the stretch
// that promises most, and then only at stretches whose bound is above what it has. The rays of a packet do so together
// while many of them have such stretches; what is left is collected from many packets until sixteen rays can be looked
// at together.
#pragma once

#include "render/kernels/modes/Extreme.h"
#include "render/kernels/sampling/BoundLookup.h"
#include "render/kernels/sampling/SampleStepper.h"

namespace z3d::render::Z3D_ISA {

class BestFirstWalk {
public:
    BestFirstWalk(const Projection& projection, const Rule& rule, const GreyExtreme& mode);

    // Makes the table of bounds; false where there can be none.
    bool Prepare() { return table_.IsPossible() && table_.Make(); }

    // Renders from the top on. Returns the number of rows rendered: fewer than the image has where looking at the table
    // turned out not to pay.
    std::int32_t Render();

private:
    static constexpr int kChunk = 64; // stretches of a packet whose order is chosen together
    static constexpr std::int32_t kSpan = 8 * kTileSide; // columns of a band that are rendered together

    // Stretches that rays have to look at, until there are sixteen.
    struct Queue {
        Positions positions;
        std::int32_t row[kRays]; // of the pixel, within the span
        std::int32_t column[kRays];
        alignas(16) std::uint8_t samples[kRays];
        int size = 0;
    };

    void RenderSpan(std::int32_t band, std::int32_t rows, std::int32_t left, std::int32_t columns);
    void LookAtPacket(const Packet& packet, std::int32_t row, std::int32_t column);
    int FindBounds(const Packet& packet, std::int32_t done, Positions& positions);
    bool LookAtBest(const Packet& packet, std::int32_t done, int stretches, int fewest,
                    GreyExtreme::State& state);
    void PlaceBest(Bytes best, Positions& positions) const;
    void LookAt(Positions& positions, Bytes samples, GreyExtreme::State& state);
    void Enqueue(const Packet& packet, std::int32_t row, std::int32_t column, std::int32_t done, int stretch,
                 Bytes wanted);
    void LookAtQueue();
    void MergePacket(std::int32_t row, std::int32_t column, const GreyExtreme::State& state);
    void FinishSpan(std::int32_t rows, std::int32_t columns) const;

    const Projection& projection_;
    const GreyExtreme& mode_;
    PacketRays rays_;
    const SampleStepper stepper_;
    BoundTable table_;
    const BoundLookup bounds_;
    std::int64_t asked_ = 0; // stretches of rays whose bounds were looked up
    std::int64_t looked_ = 0;
    std::int32_t top_ = 0;  // of the band, in the image
    std::int32_t left_ = 0; // of the span
    Queue queue_;
    Positions starts_[kChunk];
    Bytes bound_[kChunk];
    Indexes indexes_;
    // Of the span's pixels so far: ranks, and whether there is one, 0 or 0xFF.
    std::uint8_t rank_[kTileSide][kSpan];
    std::uint8_t isFound_[kTileSide][kSpan];
};

} // namespace z3d::render::Z3D_ISA
