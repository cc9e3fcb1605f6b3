// Makes a rule from a mode. A mode is a small class that says, and has to say, all of this:
//
//   Format         Grey, Rgb, or its own: what a sample is, and where samples come from
//   State          what sixteen rays carry from sample to sample; starts from zeroes
//   kCounts        whether Sample is told of every accepted sample, or only where rays enter the window
//   kEndsRays      whether Settled can become 255 (early ray termination)
//   kReducesRows   whether whole rows of voxels may be handed to Sample, which then has no place
//   shape, looks   how its rays run, and how its pixels begin
//   window         the voxel values that can contribute at all
//   Sample         what one sample does to the rays of the mask
//   Fold           void; or what a stretch of colours comes to before it changes the state, by AddTo and Merge, where
//                  MayFold says that the result is the same
//   EndStretch     what is left to do after 16 samples
//   Settled        the bounds up to which stretches ahead change nothing, by ray
//   Finish         the pixels of the rays; the initial value for those without a contribution
//
// Each ray does what it would do by itself, in the same order, so results are the same to the last bit whatever the
// packet and the instruction set. What is misspelt or left out does not compile. One thing more may be said:
//
//   Outer          the outer ones of two colours' bytes, of modes that keep extremes
#pragma once

#include "render/kernels/sampling/Formats.h"
#include "render/kernels/walks/Rule.h"

#include <concepts>
#include <type_traits>

namespace z3d::render::Z3D_ISA {

enum class Counts { EverySample, Entries };

template <class M>
concept Mode = requires(const M& mode, const typename M::Format::Sample& sample, const SamplePlace& place,
                        Bytes bytes, typename M::State& state, const Bytes (&highest)[3],
                        RayPixels<M::Format::kChannels> pixels) {
    { M::kCounts } -> std::same_as<const Counts&>;
    { M::kEndsRays } -> std::same_as<const bool&>;
    { M::kReducesRows } -> std::same_as<const bool&>;
    typename M::Fold;
    { mode.shape } -> std::same_as<const RayShape&>;
    { mode.looks } -> std::same_as<const Looks&>;
    { mode.Sample(sample, place, bytes, state) } -> std::same_as<void>;
    { mode.EndStretch(state) } -> std::same_as<void>;
    bytes = mode.Settled(state, highest);
    pixels = mode.Finish(state);
};

// For modes that keep nothing that has to be tidied up after a stretch.
struct NothingPending {
    using Fold = void;
    template <class State>
    Z3D_INLINE void EndStretch(State&) const {}
};

// The rays whose sample of this number exists.
Z3D_INLINE Bytes AreAboveNumber(Bytes remaining, int sample) {
    return ToBytes(_mm_cmpgt_epi8(Raw(remaining), _mm_set1_epi8(static_cast<char>(sample))));
}

// Modes whose Sample need not be told of every colour of a stretch.
template <class M>
concept Folds = !std::is_void_v<typename M::Fold>;

// The stretch comes to something by itself before it changes the state.
template <Folds M>
Z3D_INLINE void FoldStretch(const M& mode, const typename M::Format::Samples& stretch, int samples,
                            Bytes remaining, typename M::State& state) {
    const auto window = mode.window;
    typename M::Fold fold;
    Bytes isFound = {};
    for (int sample = 0; sample < samples; ++sample) {
        const Bytes accepted =
            M::Format::Accepts(window, stretch, sample) & AreAboveNumber(remaining, sample);
        mode.AddTo(fold, stretch.sample[sample], accepted);
        isFound |= accepted;
    }
    mode.Merge(fold, isFound, state);
}

// Every sample changes the state by itself.
template <Mode M>
Z3D_INLINE void TakeStretch(const M& mode, const typename M::Format::Samples& stretch, int samples,
                            const Indexes& indexes, Bytes remaining, typename M::State& state,
                            Bytes& wasAccepted) {
    const auto window = mode.window;
    for (int sample = 0; sample < samples; ++sample) {
        Bytes accepted = M::Format::Accepts(window, stretch, sample) & AreAboveNumber(remaining, sample);
        if constexpr (M::kCounts == Counts::Entries) {
            const Bytes before = wasAccepted;
            wasAccepted = accepted;
            accepted &= ~before;
        }
        const auto& voxels = M::Format::SampleOf(stretch, sample);
        mode.Sample(voxels, {&indexes, sample}, accepted, state);
    }
}

// Windows are local variables there: vectors may alias anything else, and would be loaded again at every sample.
template <Mode M>
void LookAt(const Rule& rule, const Indexes& indexes, int samples, Bytes remaining, RayStates& states) {
    const M& mode = *static_cast<const M*>(rule.mode);
    auto& state = *reinterpret_cast<typename M::State*>(states.own);
    alignas(64) typename M::Format::Samples stretch;
    Fetch(*static_cast<const typename M::Format::Source*>(rule.voxels), indexes, samples, stretch);
    bool isFolded = false;
    if constexpr (Folds<M>) {
        isFolded = mode.MayFold();
        if (isFolded) FoldStretch(mode, stretch, samples, remaining, state);
    }
    if (!isFolded) TakeStretch(mode, stretch, samples, indexes, remaining, state, states.wasAccepted);
    mode.EndStretch(state);
    states.settled = mode.Settled(state, states.highest);
}

template <Mode M>
void Finish(const Rule& rule, const std::byte* own, const PixelTarget& target) {
    const M& mode = *static_cast<const M*>(rule.mode);
    StorePixels(mode.Finish(*reinterpret_cast<const typename M::State*>(own)), target);
}

constexpr std::size_t kSmallState = 128;
constexpr std::size_t kThreeVectors = 3 * Z3D_VECTOR_BYTES;
constexpr std::size_t kFewRegisters = kSmallState > kThreeVectors ? kSmallState : kThreeVectors;

// Groups that are reduced together, at least: finding a sample serves for all of them, and arithmetic on few vectors
// need not wait for itself. And at most, where their states are in registers.
template <Mode M>
constexpr bool kIsLarge = sizeof(typename M::State) > kFewRegisters;
template <Mode M>
constexpr std::int32_t kGroupsTogether = M::Format::kChannels > 1 || kIsLarge<M> ? 1 : 2;
template <Mode M, bool kIsFull>
constexpr std::int32_t kMostTogether = (kIsFull && !M::kEndsRays && sizeof(typename M::State) <= 32)
                                           ? 2 * kGroupsTogether<M>
                                           : kGroupsTogether<M>;

// Sixteen colours are channel after channel where they were laid out for that.
template <class Format, bool kIsPlanar>
Z3D_INLINE typename Format::Sample LoadRow(const std::uint8_t* from,
                                           [[maybe_unused]] std::size_t channelBytes) {
    if constexpr (Format::kBytes == 3) {
        if (kIsPlanar || channelBytes != 0) {
            return {{LoadBytes(from), LoadBytes(from + channelBytes), LoadBytes(from + 2 * channelBytes)}};
        }
    }
    return LoadVoxels<Format::kBytes>(from);
}

// Modes that take the extremes of several colours for all of these, channel by channel, where all are accepted.
template <class M>
concept TakesExtremes = requires(Bytes bytes) {
    bytes = M::Outer(bytes, bytes);
};

// False when all of their rays have ended.
template <Mode M, bool kIsFull, int kTogether>
Z3D_INLINE bool ReduceGroups(const M& mode, const VoxelRows& rows, std::int32_t group,
                             typename M::State* kept) {
    // Extremes of whole colours have a loop of their own.
    constexpr bool kIsPlanar = kIsFull && TakesExtremes<M>;

    // Load the states, unless all of their rays have ended.
    const Bytes highest[3] = {AllBytes(255), AllBytes(255), AllBytes(255)};
    typename M::State state[kTogether];
    std::ptrdiff_t offset[kTogether];
    Bytes settled = AllBytes(255);
#pragma GCC unroll 4
    for (int part = 0; part < kTogether; ++part) {
        state[part] = kept[part];
        offset[part] = rows.offsets[group + part];
        if constexpr (M::kEndsRays) settled &= mode.Settled(state[part], highest);
    }
    if (M::kEndsRays && !AnySet(~settled)) return false;

    // Reduce the samples.
    for (int sample = 0; sample < rows.samples; ++sample) {
#pragma GCC unroll 4
        for (int part = 0; part < kTogether; ++part) {
            const auto sixteen =
                LoadRow<typename M::Format, kIsPlanar>(rows.voxels[sample] + offset[part], rows.channelBytes);
            const Bytes accepted = kIsFull ? AllBytes(255) : mode.window.Accepts(sixteen);
            mode.Sample(sixteen, {nullptr, 0}, accepted, state[part]);
        }
    }

    // Keep the states.
#pragma GCC unroll 4
    for (int part = 0; part < kTogether; ++part) {
        mode.EndStretch(state[part]);
        kept[part] = state[part];
    }
    return true;
}

// Extremes of the bytes as they lie, voxel after voxel: only these are sorted into channels.
template <TakesExtremes M>
Z3D_INLINE void ReduceColours(const M& mode, const VoxelRows& rows, std::int32_t group,
                              typename M::State& state) {
    const std::ptrdiff_t offset = rows.offsets[group];
    Bytes outer[3];
    LoadBytes(rows.voxels[0] + offset, outer);
    for (int sample = 1; sample < rows.samples; ++sample) {
        const std::uint8_t* from = rows.voxels[sample] + offset;
#pragma GCC unroll 3
        for (int part = 0; part < 3; ++part)
            outer[part] = M::Outer(outer[part], LoadBytes(from + 16 * part));
    }
    SplitChannels(outer);
    mode.Sample({{outer[0], outer[1], outer[2]}}, {nullptr, 0}, AllBytes(255), state);
}

template <Mode M, bool kIsFull>
Z3D_INLINE bool ReduceAllGroups(const Rule& rule, const VoxelRows& rows, std::byte* own) {
    const M& mode = *static_cast<const M*>(rule.mode);
    auto* states = reinterpret_cast<typename M::State*>(own);
    constexpr std::int32_t kTogether = kGroupsTogether<M>;
    constexpr std::int32_t kMost = kMostTogether<M, kIsFull>;
    if constexpr (kIsFull && TakesExtremes<M> && M::Format::kBytes == 3) {
        if (rows.channelBytes == 0) {
            for (std::int32_t group = 0; group < rows.groups; ++group)
                ReduceColours(mode, rows, group, states[group]);
            return true;
        }
    }
    bool isLive = false;
    std::int32_t group = 0;
    for (; group + kMost <= rows.groups; group += kMost)
        isLive |= ReduceGroups<M, kIsFull, kMost>(mode, rows, group, states + group);
    if constexpr (kTogether < kMost) {
        if (group < rows.groups)
            isLive |= ReduceGroups<M, kIsFull, kTogether>(mode, rows, group, states + group);
    }
    return isLive;
}

template <Mode M>
bool ReduceRows(const Rule& rule, const VoxelRows& rows, std::byte* own) {
    static_assert(M::kReducesRows && M::kCounts == Counts::EverySample);
    // Worth its size where a sample costs little beside the window test.
    if constexpr (sizeof(typename M::State) <= kSmallState) {
        if (static_cast<const M*>(rule.mode)->window.IsFull())
            return ReduceAllGroups<M, true>(rule, rows, own);
    }
    return ReduceAllGroups<M, false>(rule, rows, own);
}

template <Mode M>
Z3D_INLINE Rule RuleOf(const M& mode, const typename M::Format::Source& voxels) {
    static_assert(sizeof(typename M::State) <= kMostStateBytes);
    // Slabs are two groups wide, and those of colours one.
    static_assert(kGroupsTogether<M> <= (M::Format::kChannels == 1 ? 2 : 1));
    Rule rule = {.mode = &mode,
                 .voxels = &voxels,
                 .shape = mode.shape,
                 .looks = mode.looks,
                 .isEmpty = mode.window.IsEmpty(),
                 .keepsPositions = M::Format::kKeepsPositions,
                 .subject = {.isColour = M::Format::kChannels == 3,
                             .accepted = mode.window.Accepted(),
                             .measure = mode.looks.measure,
                             .backToFront = mode.shape.backToFront,
                             .margin = mode.shape.margin},
                 .voxelBytes = 0,
                 .stateBytes = sizeof(typename M::State),
                 .groupsTogether = 1,
                 .lookAt = LookAt<M>,
                 .reduceRows = nullptr,
                 .finish = Finish<M>};
    if constexpr (M::kReducesRows) {
        rule.voxelBytes = M::Format::kBytes;
        rule.groupsTogether = kGroupsTogether<M>;
        rule.reduceRows = ReduceRows<M>;
    }
    return rule;
}

} // namespace z3d::render::Z3D_ISA
