#include "render/kernels/walks/BestFirstWalk.h"

#include "render/kernels/vector/Gathers.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr std::int64_t kBandTrial = 4096; // stretches after which the walk may be given up
constexpr int kWorthALook = 8;            // rays of a packet: fewer are left to the queue

// The rays with a stretch ahead that can change them.
Z3D_INLINE Bytes Wants(Bytes bound, const GreyExtreme::State& state) {
    return AreAbove(bound, ReachedBound(state.largest[0], state.isFound));
}

// How many bytes of a mask are set.
Z3D_INLINE int CountOf(Bytes mask) { return SumOf(mask & AllBytes(1)); }

// The bytes of a packet's pixels, which are four rows of four.
template <int kColumns>
Z3D_INLINE Bytes LoadSquare(const std::uint8_t (&pixels)[kTileSide][kColumns], std::int32_t row,
                            std::int32_t column) {
    static_assert(kPacketSide == 4);
    std::int32_t line[kPacketSide];
    for (int index = 0; index < kPacketSide; ++index)
        __builtin_memcpy(&line[index], pixels[row + index] + column, kPacketSide);
    return ToBytes(_mm_set_epi32(line[3], line[2], line[1], line[0]));
}

template <int kColumns>
Z3D_INLINE void StoreSquare(Bytes square, std::uint8_t (&pixels)[kTileSide][kColumns], std::int32_t row,
                            std::int32_t column) {
    std::uint8_t bytes[kRays];
    __builtin_memcpy(bytes, &square, sizeof square);
    for (int index = 0; index < kPacketSide; ++index)
        __builtin_memcpy(pixels[row + index] + column, bytes + kPacketSide * index, kPacketSide);
}

std::uint8_t SamplesOf(const Packet& packet, int ray, std::int32_t done, int stretch) {
    return static_cast<std::uint8_t>(Fewer(packet.count[ray] - done - stretch * kSamples, kSamples));
}

} // namespace

BestFirstWalk::BestFirstWalk(const Projection& projection, const Rule& rule, const GreyExtreme& mode)
    : projection_(projection),
      mode_(mode),
      rays_(projection.view, rule.shape),
      stepper_(projection, rule.shape),
      table_(projection, rule.subject),
      bounds_(table_, projection.grid) {}

std::int32_t BestFirstWalk::Render() {
    for (std::int32_t band = 0; band < rays_.Bottom(); band += kTileSide) {
        // Rays that look at more than half of their stretches after all do so sooner in packets.
        const bool isOptional = projection_.skipPolicy == SkipPolicy::WhereItPays;
        if (isOptional && asked_ >= kBandTrial && looked_ * 2 > asked_) return band;
        const std::int32_t rows = Fewer(kTileSide, rays_.Bottom() - band);
        rays_.StartBand(band, rows);
        for (std::int32_t left = 0; left < rays_.Right(); left += kSpan)
            RenderSpan(band, rows, left, Fewer(kSpan, rays_.Right() - left));
    }
    return rays_.Bottom();
}

void BestFirstWalk::RenderSpan(std::int32_t band, std::int32_t rows, std::int32_t left,
                               std::int32_t columns) {
    // The queue holds rays of the whole span, so their results are kept until it is empty.
    top_ = band;
    left_ = left;
    __builtin_memset(rank_, 0, sizeof rank_);
    __builtin_memset(isFound_, 0, sizeof isFound_);

    // Rays are trimmed a tile at a time, as those of packets are.
    for (std::int32_t tile = 0; tile < columns; tile += kTileSide) {
        const std::int32_t tileColumns = Fewer(kTileSide, columns - tile);
        if (!rays_.Trim(left + tile, tileColumns)) continue;
        for (std::int32_t row = 0; row < rows; row += kPacketSide) {
            for (std::int32_t column = 0; column < tileColumns; column += kPacketSide) {
                Packet packet;
                rays_.Gather(row, column, packet);
                if (packet.longest > 0) LookAtPacket(packet, row, tile + column);
            }
        }
    }
    LookAtQueue();
    FinishSpan(rows, columns);
}

void BestFirstWalk::LookAtPacket(const Packet& packet, std::int32_t row, std::int32_t column) {
    GreyExtreme::State state{};
    Positions positions;
    rays_.PlaceStarts(packet, top_ + row, left_ + column, positions);
    for (std::int32_t done = 0; done < packet.longest; done += kChunk * kSamples) {
        // Sixteen rays look as fast as one, so they look together while many want to. The first look is worth it for
        // any: what it finds settles most of the others.
        const int stretches = FindBounds(packet, done, positions);
        int fewest = 1;
        while (LookAtBest(packet, done, stretches, fewest, state))
            fewest = kWorthALook;

        // The few that are left wait for rays of other packets that want to look, too.
        for (int stretch = 0; stretch < stretches; ++stretch)
            Enqueue(packet, row, column, done, stretch, Wants(bound_[stretch], state));
    }
    MergePacket(row, column, state);
}

// Marches through the next stretches, up to a chunk: where each starts, and the bound of each ray there; 0 for a ray
// that has ended.
int BestFirstWalk::FindBounds(const Packet& packet, std::int32_t done, Positions& positions) {
    int stretches = 0;
    for (; stretches < kChunk && done < packet.longest; ++stretches, done += kSamples) {
        const Bytes remaining = RemainingOf(packet, done);
        starts_[stretches] = positions;
        bound_[stretches] = bounds_.BoundsAt(positions) & ~AreEqual(remaining, Bytes{});
        stepper_.SkipStretch(positions);
        asked_ += kRays;
    }
    return stretches;
}

// Each ray looks at its stretch of the largest bound, if there are `fewest` rays that can gain by it.
bool BestFirstWalk::LookAtBest(const Packet& packet, std::int32_t done, int stretches, int fewest,
                               GreyExtreme::State& state) {
    // Find these stretches.
    Bytes largest = {};
    Bytes best = {};
    for (int stretch = 0; stretch < stretches; ++stretch) {
        const Bytes isLarger = AreAbove(bound_[stretch], largest);
        best = (best & ~isLarger) | (AllBytes(static_cast<std::uint8_t>(stretch)) & isLarger);
        largest = Larger(largest, bound_[stretch]);
    }
    const Bytes wanted = Wants(largest, state);
    if (CountOf(wanted) < fewest) return false;

    // Look at them together.
    Positions positions;
    PlaceBest(best, positions);
    Bytes samples = {};
    for (unsigned rays = BitsOf(wanted); rays != 0; rays &= rays - 1) {
        const int ray = __builtin_ctz(rays);
        const int stretch = best[ray];
        samples[ray] = SamplesOf(packet, ray, done, stretch);
        bound_[stretch][ray] = 0;
    }
    LookAt(positions, samples, state);
    return true;
}

// Where each ray's chosen stretch starts.
Z3D_INLINE void BestFirstWalk::PlaceBest(Bytes best, Positions& positions) const {
#if Z3D_VECTOR_BYTES == 64
    if (projection_.grid.isGathered) {
        const Uints lane = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
        const auto stretch = reinterpret_cast<Uints>(_mm512_cvtepu8_epi32(Raw(best)));
        const Uints place = stretch * static_cast<std::uint32_t>(sizeof(Positions)) + lane * 4;
        for (int axis = 0; axis < 3; ++axis) {
            const auto* from = reinterpret_cast<const std::uint8_t*>(starts_[0].axis[axis]);
            Store(positions.axis[axis], reinterpret_cast<Floats>(GatherWords(from, place)));
        }
        return;
    }
#endif
    for (int ray = 0; ray < kRays; ++ray) {
        const int stretch = best[ray];
        for (int axis = 0; axis < 3; ++axis)
            positions.axis[axis][ray] = starts_[stretch].axis[axis][ray];
    }
}

// One stretch of each ray.
void BestFirstWalk::LookAt(Positions& positions, Bytes samples, GreyExtreme::State& state) {
    // Fetch what the rays are at, then take sample by sample what the window accepts.
    looked_ += kRays;
    stepper_.NextStretch(positions, kSamples, indexes_, false);
    alignas(64) Stretch<1> stretch;
    Fetch(projection_.grid, indexes_, kSamples, stretch);
    for (int sample = 0; sample < kSamples; ++sample) {
        const GreyVoxels& voxels = stretch.sample[sample];
        const Bytes accepted = mode_.window.Accepts(voxels) & AreAboveNumber(samples, sample);
        mode_.Sample(voxels, {&indexes_, sample}, accepted, state);
    }
}

void BestFirstWalk::Enqueue(const Packet& packet, std::int32_t row, std::int32_t column, std::int32_t done,
                            int stretch, Bytes wanted) {
    for (unsigned rays = BitsOf(wanted); rays != 0; rays &= rays - 1) {
        const int ray = __builtin_ctz(rays);
        const int slot = queue_.size++;
        // A slot is a ray with all that a look needs to know of it, and the pixel that its result belongs to.
        for (int axis = 0; axis < 3; ++axis)
            queue_.positions.axis[axis][slot] = starts_[stretch].axis[axis][ray];
        queue_.row[slot] = row + ray / kPacketSide;
        queue_.column[slot] = column + ray % kPacketSide;
        queue_.samples[slot] = SamplesOf(packet, ray, done, stretch);
        if (queue_.size == kRays) LookAtQueue();
    }
}

void BestFirstWalk::LookAtQueue() {
    if (queue_.size == 0) return;
    // What slots are left over repeat the first one, without samples.
    for (int slot = queue_.size; slot < kRays; ++slot) {
        for (auto& axis : queue_.positions.axis)
            axis[slot] = axis[0];
        queue_.samples[slot] = 0;
    }

    // A slot begins anew: an extreme of extremes needs nothing of what its ray has found before.
    GreyExtreme::State state{};
    LookAt(queue_.positions, LoadBytes(queue_.samples), state);
    for (int slot = 0; slot < queue_.size; ++slot) {
        std::uint8_t& rank = rank_[queue_.row[slot]][queue_.column[slot]];
        const std::uint8_t other = state.largest[0][slot];
        isFound_[queue_.row[slot]][queue_.column[slot]] |= state.isFound[slot];
        if (other > rank) rank = other;
    }
    queue_.size = 0;
}

// The queue may have found something for these pixels before. Rays without samples change nothing.
void BestFirstWalk::MergePacket(std::int32_t row, std::int32_t column, const GreyExtreme::State& state) {
    StoreSquare(Larger(LoadSquare(rank_, row, column), state.largest[0]), rank_, row, column);
    StoreSquare(LoadSquare(isFound_, row, column) | state.isFound, isFound_, row, column);
}

// Ranks become pixels as the mode would make them of its own states.
void BestFirstWalk::FinishSpan(std::int32_t rows, std::int32_t columns) const {
    for (std::int32_t row = 0; row < rows; ++row) {
        for (std::int32_t column = 0; column < columns; column += kRays) {
            const GreyExtreme::State state = {{LoadBytes(rank_[row] + column)},
                                              LoadBytes(isFound_[row] + column)};
            // The last pixels of a row may be fewer than sixteen: what would lie beyond it is cut off in a buffer.
            float* to = projection_.PixelAt(top_ + row, left_ + column);
            const auto pixels = static_cast<std::size_t>(Fewer(columns - column, kRays));
            float finished[3 * kRays];
            StorePixels(mode_.Finish(state), {pixels == kRays ? to : finished, kQuadsInARow});
            if (pixels < kRays) __builtin_memcpy(to, finished, pixels * 3 * sizeof(float));
        }
    }
}

} // namespace z3d::render::Z3D_ISA
