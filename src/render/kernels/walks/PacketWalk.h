// The walk for every view: 4 x 4 neighbouring rays at a time, up to 16 samples at a time. Stretches that cannot
// change any ray of the packet are passed over.
#pragma once

#include "render/kernels/sampling/BoundLookup.h"
#include "render/kernels/sampling/SampleStepper.h"
#include "render/kernels/walks/Rule.h"

namespace z3d::render::Z3D_ISA {

class PacketWalk {
public:
    PacketWalk(const Projection& projection, const Rule& rule);

    // Whether samples that change no ray take more time than a table of bounds. Renders a few packets to find out.
    bool HasMuchToSkip();

    // Before Render: makes a table of bounds if it promises to save more than it costs.
    void PrepareSkipping();

    // From array row `firstRow` to the bottom of the image.
    void Render(std::int32_t firstRow);

    // Packets in which a pixel holds `value`. The others stay as they are.
    void RenderAgain(float value);

private:
    static constexpr int kChunk = 32; // stretches of a packet whose order is chosen together

    // One that is not looked at yet: where its samples begin, what it can hold, and how many of them each ray has.
    struct StretchAhead {
        Positions start;
        Bytes bounds; // 0 for rays without samples, and once it has been looked at
        Bytes remaining;
        int samples; // at most
    };

    bool IsOptional() const { return projection_.skipPolicy == SkipPolicy::WhereItPays; }
    double EstimateFruitless();
    void RenderTile(std::int32_t band, std::int32_t rows, std::int32_t left, std::int32_t columns);
    [[gnu::noinline]] bool IsAgain(std::int32_t top, std::int32_t rows, std::int32_t left,
                                   std::int32_t columns) const;
    [[gnu::noinline]] void RenderPacket(std::int32_t band, std::int32_t row, std::int32_t tile,
                                        std::int32_t column);
    void FollowRays(const Packet& packet, std::int32_t top, std::int32_t left);
    [[gnu::noinline]] void FollowBestFirst(const Packet& packet, std::int32_t top, std::int32_t left);
    int MarchOn(const Packet& packet, std::int32_t done, Positions& positions);
    StretchAhead* MostPromising(int stretches);
    void FinishPacket(std::int32_t top, std::int32_t left);
    void Probe(Positions& positions, int samples, Bytes remaining);
    void Look(Positions& positions, int samples, Bytes remaining);
    bool IsWanted(const Positions& positions, Bytes remaining);

    const Projection& projection_;
    const Rule& rule_;
    PacketRays rays_;
    const SampleStepper stepper_;
    BoundTable table_;
    const BoundLookup bounds_;
    bool isAgain_ = false;
    float again_ = 0; // then the only value that is rendered
    bool isSkipping_ = false;
    bool isProbing_ = false;
    bool wasFruitless_ = false;
    std::int64_t fruitless_ = 0; // samples that changed no ray, while probing
    std::int64_t asked_ = 0;     // stretches whose bounds were looked up
    std::int64_t looked_ = 0;    // and those that had to be looked at all the same
    Indexes indexes_;
    RayStates states_;
    StretchAhead ahead_[kChunk];
};

} // namespace z3d::render::Z3D_ISA
