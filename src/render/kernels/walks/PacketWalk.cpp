#include "render/kernels/walks/PacketWalk.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr std::int64_t kSkippingTrial = 256; // stretches after which skipping may be given up
constexpr std::int32_t kProbedRows = 5;
constexpr std::int32_t kProbedPackets = 4; // one of so many in a row

// A sample of a packet takes as long as the table for so many voxels.
constexpr double kVoxelsPerSample = 64;

constexpr std::int32_t PacketsIn(std::int32_t pixels) { return (pixels + kPacketSide - 1) / kPacketSide; }

} // namespace

PacketWalk::PacketWalk(const Projection& projection, const Rule& rule)
    : projection_(projection),
      rule_(rule),
      rays_(projection.view, rule.shape),
      stepper_(projection, rule.shape),
      table_(projection, rule.subject),
      bounds_(table_, projection.grid) {}

// Tile by tile: rays of a tile ask for voxels that lie near each other, and are trimmed together.
void PacketWalk::Render(std::int32_t firstRow) {
    for (std::int32_t band = firstRow; band < rays_.Bottom(); band += kTileSide) {
        const std::int32_t rows = Fewer(kTileSide, rays_.Bottom() - band);
        rays_.StartBand(band, rows);
        for (std::int32_t tile = rule_.shape.border; tile < rays_.Right(); tile += kTileSide) {
            RenderTile(band, rows, tile, Fewer(kTileSide, rays_.Right() - tile));
            // Where most stretches have to be looked at anyway, asking first costs more than it saves.
            if (IsOptional() && asked_ >= kSkippingTrial && looked_ * 4 > asked_ * 3) isSkipping_ = false;
        }
    }
}

void PacketWalk::RenderAgain(float value) {
    isAgain_ = true;
    again_ = value;
    Render(rule_.shape.border);
    isAgain_ = false;
}

// Whether a pixel of the rectangle is one to render again.
bool PacketWalk::IsAgain(std::int32_t top, std::int32_t rows, std::int32_t left, std::int32_t columns) const {
    const std::int32_t bottom = Fewer(top + rows, rays_.Bottom());
    const std::int32_t right = Fewer(left + columns, rays_.Right());
    for (std::int32_t row = top; row < bottom; ++row) {
        for (std::int32_t column = left; column < right; ++column) {
            if (*projection_.PixelAt(row, column) == again_) return true;
        }
    }
    return false;
}

void PacketWalk::RenderTile(std::int32_t band, std::int32_t rows, std::int32_t left, std::int32_t columns) {
    if (isAgain_ && !IsAgain(band, rows, left, columns)) return;
    // Tiles that no ray through the crop box touches, as in the corners of most pictures, cost no packet.
    if (!rays_.Trim(left, columns)) {
        for (std::int32_t row = band; row < band + rows; ++row)
            FillWithInitial(projection_, rule_, row, left, left + columns);
        return;
    }
    for (std::int32_t row = 0; row < rows; row += kPacketSide) {
        for (std::int32_t column = 0; column < columns; column += kPacketSide)
            RenderPacket(band, row, left, column);
    }
}

bool PacketWalk::HasMuchToSkip() {
    return !IsOptional() || EstimateFruitless() * kVoxelsPerSample >= table_.SampledVoxels();
}

void PacketWalk::PrepareSkipping() {
    if (!table_.IsPossible()) return;
    // The table takes time of its own. It is made where what it can save at most is more than that.
    if (!HasMuchToSkip()) return;
    isSkipping_ = table_.Make();
    // A ray that has the highest value there is has ended, whether or not stretches are passed over.
    for (int c = 0; c < 3; ++c)
        states_.highest[c] = AllBytes(table_.Highest(c));
}

// Samples of packets that change no ray, in the whole image: found by rendering a few packets here and there.
double PacketWalk::EstimateFruitless() {
    // How many packets there are, and on how many of their rows some are tried.
    const std::int32_t border = rule_.shape.border;
    const std::int32_t packetRows = PacketsIn(rays_.Bottom() - border);
    const std::int32_t packets = PacketsIn(rays_.Right() - border);
    const std::int32_t probes = Fewer(packetRows / 8 + 1, kProbedRows);
    std::int64_t probed = 0;
    // Probed rows are spread evenly, and the packets of one stand beside those of the last: a few see all of the image.
    // They are rendered in earnest; the walk renders them again.
    isProbing_ = true;
    for (std::int32_t probe = 0; probe < probes; ++probe) {
        const std::int32_t top = border + (2 * probe + 1) * packetRows / (2 * probes) * kPacketSide;
        if (top >= rays_.Bottom()) break;
        rays_.StartBand(top, kPacketSide);
        for (std::int32_t packet = probe % kProbedPackets; packet < packets; packet += kProbedPackets) {
            const std::int32_t left = border + packet * kPacketSide;
            rays_.Trim(left, kPacketSide);
            RenderPacket(top, 0, left, 0);
            ++probed;
        }
    }
    isProbing_ = false;

    // What holds for them holds for the rest.
    if (probed == 0) return 0;
    return static_cast<double>(fruitless_) * packetRows * packets / static_cast<double>(probed);
}

void PacketWalk::RenderPacket(std::int32_t band, std::int32_t row, std::int32_t tile, std::int32_t column) {
    if (isAgain_ && !IsAgain(band + row, kPacketSide, tile + column, kPacketSide)) return;
    // Sixteen rays of the tile, which has been trimmed.
    Packet packet;
    rays_.Gather(row, column, packet);
    // Zeroes are where every mode begins. Rays without samples keep them, and become the initial value.
    states_.settled = Bytes{};
    states_.wasAccepted = Bytes{};
    __builtin_memset(states_.own, 0, static_cast<std::size_t>(rule_.stateBytes));
    if (packet.longest > 0) {
        if (isSkipping_ && rule_.looks.isBestFirst) {
            FollowBestFirst(packet, band + row, tile + column);
        } else {
            FollowRays(packet, band + row, tile + column);
        }
    }
    FinishPacket(band + row, tile + column);
}

void PacketWalk::FollowRays(const Packet& packet, std::int32_t top, std::int32_t left) {
    Positions positions;
    rays_.PlaceStarts(packet, top, left, positions);
    wasFruitless_ = false;
    int samples = 0;
    for (std::int32_t done = 0; done < packet.longest; done += samples) {
        // Pass over a stretch that changes nothing.
        const Bytes remaining = RemainingOf(packet, done);
        if (isSkipping_ && !IsWanted(positions, remaining)) {
            states_.wasAccepted = Bytes{};
            stepper_.SkipStretch(positions);
            samples = kSamples;
            continue;
        }

        // Look at the next samples.
        samples = done == 0 ? rule_.looks.first : rule_.looks.later;
        if (samples > packet.longest - done) samples = packet.longest - done;
        if (isProbing_) {
            Probe(positions, samples, remaining);
        } else {
            Look(positions, samples, remaining);
        }

        // A ray goes on while it has samples left after these and has not ended.
        const Bytes more = AllBytes(static_cast<std::uint8_t>(samples < kSamples ? samples + 1 : kSamples));
        const Bytes hasMore = AreEqual(Larger(remaining, more), remaining);
        if (!AnySet(hasMore & ~AreEqual(states_.settled, AllBytes(255)))) return;
    }
}

// Where the order of samples does not matter: what the most promising stretches hold settles many of the others.
void PacketWalk::FollowBestFirst(const Packet& packet, std::int32_t top, std::int32_t left) {
    Positions positions;
    rays_.PlaceStarts(packet, top, left, positions);
    for (std::int32_t done = 0;;) {
        // See what lies ahead, then look at what promises most until nothing ahead can change a ray.
        const int stretches = MarchOn(packet, done, positions);
        while (StretchAhead* best = MostPromising(stretches)) {
            Look(best->start, best->samples, best->remaining);
            best->bounds = Bytes{};
            ++looked_;
        }
        // Go on behind them while a ray has samples and has not ended.
        done += stretches * kSamples;
        const Bytes hasMore = ~AreEqual(RemainingOf(packet, done), Bytes{});
        if (!AnySet(hasMore & ~AreEqual(states_.settled, AllBytes(255)))) return;
        stepper_.SkipStretch(positions);
    }
}

// Marches through the next stretches, up to a chunk, or to one that promises as much as any can. Returns how many there
// are; `positions` are those of the last one.
int PacketWalk::MarchOn(const Packet& packet, std::int32_t done, Positions& positions) {
    int stretches = 0;
    Bytes lacks = AllBytes(255);
    for (; stretches < kChunk && done < packet.longest && AnySet(lacks); done += kSamples) {
        // Write down where the stretch begins, and what is left of its rays.
        if (stretches > 0) stepper_.SkipStretch(positions);
        StretchAhead& ahead = ahead_[stretches++];
        ahead.start = positions;
        ahead.remaining = RemainingOf(packet, done);
        ahead.samples = Fewer(packet.longest - done, kSamples);
        // Rays that have ended promise nothing. Those that may find the highest value here need not know what follows.
        const Bytes hasMore = ~AreEqual(ahead.remaining, Bytes{});
        ahead.bounds = bounds_.BoundsAt(positions) & hasMore;
        lacks = hasMore & ~AreEqual(ahead.bounds, AllBytes(255));
    }
    asked_ += stretches;
    return stretches;
}

// The stretch of the largest bounds among those that can change a ray; null without any. Bounds of all sixteen rays are
// summed, because a look is one for all of them.
PacketWalk::StretchAhead* PacketWalk::MostPromising(int stretches) {
    StretchAhead* best = nullptr;
    std::int32_t most = 0;
    for (StretchAhead* ahead = ahead_; ahead < ahead_ + stretches; ++ahead) {
        if (!AnySet(AreAbove(ahead->bounds, states_.settled))) continue;
        const std::int32_t promise = SumOf(ahead->bounds);
        if (promise <= most) continue;
        most = promise;
        best = ahead;
    }
    return best;
}

void PacketWalk::FinishPacket(std::int32_t top, std::int32_t left) {
    const std::int32_t rows = rays_.Bottom() - top;
    const std::int32_t columns = rays_.Right() - left;
    // Nearly all packets lie within the image, and go there without a detour.
    if (rows >= kPacketSide && columns >= kPacketSide) {
        const std::ptrdiff_t row = 3 * static_cast<std::ptrdiff_t>(projection_.view.outputWidth);
        rule_.finish(rule_, states_.own, {projection_.PixelAt(top, left), row});
        return;
    }
    // The packet reaches beyond the image: only a part of it is copied.
    float pixels[kPacketSide][3 * kPacketSide];
    rule_.finish(rule_, states_.own, {pixels[0], 3 * kPacketSide});
    const std::size_t floats = std::size_t{3} * static_cast<std::size_t>(Fewer(columns, kPacketSide));
    for (std::int32_t row = 0; row < Fewer(rows, kPacketSide); ++row)
        __builtin_memcpy(projection_.PixelAt(top + row, left), pixels[row], floats * sizeof(float));
}

// Counts the samples that changed no ray. A look by itself does not count: bounds reach beyond their stretch.
void PacketWalk::Probe(Positions& positions, int samples, Bytes remaining) {
    float before[3 * kRays];
    float after[3 * kRays];
    const Bytes acceptedBefore = states_.wasAccepted;
    rule_.finish(rule_, states_.own, {before, kQuadsInARow});
    Look(positions, samples, remaining);
    rule_.finish(rule_, states_.own, {after, kQuadsInARow});
    const bool isFruitless =
        __builtin_memcmp(before, after, sizeof after) == 0 && !AnySet(acceptedBefore ^ states_.wasAccepted);
    if (isFruitless && wasFruitless_) fruitless_ += samples;
    wasFruitless_ = isFruitless;
}

// Finds the voxels of the next samples, and lets the mode take them.
void PacketWalk::Look(Positions& positions, int samples, Bytes remaining) {
    stepper_.NextStretch(positions, samples, indexes_, rule_.keepsPositions);
    rule_.lookAt(rule_, indexes_, samples, remaining, states_);
}

// Whether a ray with samples left could change in a stretch. Bounds and what is settled are numbers of one scale.
bool PacketWalk::IsWanted(const Positions& positions, Bytes remaining) {
    const Bytes wanted = AreAbove(bounds_.BoundsAt(positions), states_.settled);
    const bool isWanted = AnySet(wanted & ~AreEqual(remaining, Bytes{}));
    ++asked_;
    looked_ += isWanted;
    return isWanted;
}

} // namespace z3d::render::Z3D_ISA
