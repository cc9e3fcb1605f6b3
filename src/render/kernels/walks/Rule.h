// What walks know of a mode: plain data, and three functions that know the mode's types (see RuleOf).
#pragma once

#include "render/Projection.h"
#include "render/kernels/rays/PacketRays.h"
#include "render/kernels/vector/RayFloats.h"
#include "render/tables/BoundTable.h"

#include <cstddef>

namespace z3d::render::Z3D_ISA {

// What a mode says of itself beyond the rays' shape.
struct Looks {
    float initial = kLowestFloat; // the pixel before, and without, a contribution
    Measure measure = Measure::Presence;
    bool isBestFirst = false; // packets look at their most promising stretches first: order does not matter
    int first = kSamples;     // samples that a packet takes before it asks which rays have ended
    int later = kSamples;     // and between later questions
};

constexpr std::size_t kMostStateBytes = 512;

// What sixteen rays carry from sample to sample.
struct alignas(64) RayStates {
    // No measure of the volume is above it, by channel.
    Bytes highest[3] = {AllBytes(255), AllBytes(255), AllBytes(255)};
    // Stretches with bounds up to this change nothing; at 255 a ray has ended.
    Bytes settled;
    // Rays whose last sample the window accepted; none after stretches that were passed over.
    Bytes wasAccepted;
    // The mode's own, a `State`.
    alignas(64) std::byte own[kMostStateBytes];
};

constexpr std::int32_t kMostGroups = 32; // of sixteen voxels side by side, reduced in one go

// The samples of groups of sixteen columns of rays: sample s of group g is the sixteen voxels that begin at
// voxels[s] + offsets[g].
struct VoxelRows {
    const std::uint8_t* voxels[kSamples];
    int samples;
    std::int32_t offsets[kMostGroups]; // in bytes
    std::int32_t groups;
    std::size_t
        channelBytes; // from channel to channel of sixteen colours; 0 where they lie voxel after voxel
};

// Mode and voxels are those that the rule was made of; they must outlive it.
struct Rule {
    const void* mode;
    const void* voxels;

    RayShape shape;
    Looks looks;
    bool isEmpty;        // the window accepts no value
    bool keepsPositions; // samples need their unrounded positions
    TableSubject subject;
    std::int32_t voxelBytes; // of rows that can be reduced; else 0
    std::int32_t stateBytes;
    std::int32_t groupsTogether; // the number of groups is a multiple of this

    // What up to 16 samples do to the rays that have as many `remaining`.
    void (*lookAt)(const Rule& rule, const Indexes& indexes, int samples, Bytes remaining, RayStates& states);

    // What samples do to the states of groups. False when no further sample can change any of them. Null where the mode
    // has to know where its voxels lie.
    bool (*reduceRows)(const Rule& rule, const VoxelRows& rows, std::byte* states);

    // Writes the pixels of sixteen rays.
    void (*finish)(const Rule& rule, const std::byte* state, const PixelTarget& target);
};

// The image without any contribution, in a part of a row.
[[gnu::noinline]] inline void FillWithInitial(const Projection& projection, const Rule& rule,
                                              std::int32_t row, std::int32_t first, std::int32_t end) {
    float* pixels = projection.PixelAt(row, 0);
    const Floats initial = AllFloats(rule.looks.initial);
    std::int32_t index = 3 * first;
    for (; index + kFloatLanes <= 3 * end; index += kFloatLanes)
        Store(pixels + index, initial);
    for (; index < 3 * end; ++index)
        pixels[index] = rule.looks.initial;
}

} // namespace z3d::render::Z3D_ISA
