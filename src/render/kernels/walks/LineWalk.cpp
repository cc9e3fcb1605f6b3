#include "render/kernels/walks/LineWalk.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr int kAxisX = 0;
constexpr int kAxisY = 1;

std::int32_t SizeOf(const VoxelGrid& grid, int axis) {
    return axis == 0 ? grid.width : axis == 1 ? grid.height : grid.depth;
}

} // namespace

// Voxels of y and z lie far apart. Laying all of them out takes longer than picking out one for each ray.
LineWalk::Source LineWalk::SourceOf(const Rule& rule, const ViewLines& lines) {
    if (lines.Axis() == kAxisX) return Source::Rows;
    return rule.shape.sampleLimit == 1 ? Source::Picked : Source::Slab;
}

// As many as sixteen lines of states have room for, in whole numbers of what is reduced together. Sixteen colours lie
// three times as far apart as sixteen grey voxels.
std::int32_t LineWalk::MostGroupsOf(const Rule& rule) {
    static_assert(kStateBytes / (kMostStateBytes * kRays) >= kGroupStep);
    const auto fit =
        static_cast<std::int32_t>(kStateBytes / (static_cast<std::size_t>(rule.stateBytes) * kRays));
    const std::int32_t most = rule.voxelBytes == 1 ? kMostGroups : kMostGroups / 2;
    return fit < most ? fit / kGroupStep * kGroupStep : most;
}

// Through a grid that has on its first axis what lies side by side, then the two others.
SampleStepper LineWalk::StepperOf(const Projection& projection, const Rule& rule, const ViewLines& lines) {
    const Source source = SourceOf(rule, lines);
    const std::int32_t width = source == Source::Rows   ? projection.grid.width
                               : source == Source::Slab ? VoxelSlab::LanesOf(rule.voxelBytes)
                                                        : 1;
    const VoxelGrid grid = {nullptr, width, SizeOf(projection.grid, lines.Across(0)),
                            SizeOf(projection.grid, lines.Across(1))};
    const float steps[3] = {0, projection.view.Inverse(lines.Across(0), 2),
                            projection.view.Inverse(lines.Across(1), 2)};
    return {grid, rule.shape, steps};
}

LineWalk::LineWalk(const Projection& projection, const Rule& rule, const ViewLines& lines)
    : projection_(projection),
      rule_(rule),
      lines_(lines),
      source_(SourceOf(rule, lines)),
      mostGroups_(MostGroupsOf(rule)),
      slab_(projection.grid, lines.Axis(), rule.voxelBytes, ExtentOf(projection, rule, lines)),
      stepper_(StepperOf(projection, rule, lines)) {
    const std::int32_t first = lines.VoxelAt(lines.First());
    const std::int32_t last = lines.VoxelAt(lines.Last());
    firstVoxel_ = first < last ? first : last;
    lastVoxel_ = first < last ? last : first;
}

// What lines can sample on the two other axes. A position strays from where it would be without rounding by less than
// half the distance of floats at each step; where that adds up to more than half a voxel, all of the axis counts.
VoxelSlab::Extent LineWalk::ExtentOf(const Projection& projection, const Rule& rule, const ViewLines& lines) {
    VoxelSlab::Extent extent;
    // The two ends of each line bound what lies between them, because a line takes equal steps.
    for (int number = 0; number < 2; ++number) {
        const int axis = lines.Across(number);
        const std::int32_t last = SizeOf(projection.grid, axis) - 1;
        const double step = projection.view.Inverse(axis, 2) * (rule.shape.backToFront ? -1.0 : 1.0);
        double low = last;
        double high = 0;
        for (std::int32_t line = lines.FirstLine(); line <= lines.LastLine(); ++line) {
            const double samples = lines.Line(line).samples;
            if (samples == 0) continue;
            const double start = lines.Line(line).start[number];
            const double end = start + step * samples;
            const double stray = 1 + samples * 0x1p-24 * (__builtin_fabs(start) + __builtin_fabs(end) + 1);
            low = __builtin_fmin(low, __builtin_fmin(start, end) - stray);
            high = __builtin_fmax(high, __builtin_fmax(start, end) + stray);
        }

        // Cut to the volume; indexes are whole, so the upper end is rounded up.
        extent.first[number] = low > 0 ? static_cast<std::int32_t>(low) : 0;
        extent.last[number] = high < last ? static_cast<std::int32_t>(high) + 1 : last;
        if (extent.first[number] > extent.last[number]) extent.first[number] = extent.last[number];
    }
    return extent;
}

void LineWalk::Render() {
    FillAround();
    if (lines_.FirstLine() > lines_.LastLine()) return;
    if (source_ == Source::Slab) {
        RenderSlabs();
    } else {
        RenderRows();
    }
}

// Rows of the volume, all blocks of the same ones: what is read next lies near in memory.
void LineWalk::RenderRows() {
    for (std::int32_t line = lines_.FirstLine(); line <= lines_.LastLine(); line += kRays) {
        StartLines(line);
        for (std::int32_t first = firstVoxel_; first <= lastVoxel_; first += mostGroups_ * kRays) {
            ChooseGroups(first, mostGroups_ * kRays);
            ReduceLines();
            FinishLines(line);
        }
    }
}

// Slab after slab, each laid out once.
void LineWalk::RenderSlabs() {
    for (std::int32_t first = firstVoxel_; first <= lastVoxel_; first += slab_.Lanes()) {
        ChooseGroups(first, slab_.Lanes());
        slab_.Fill(blockFirst_, blockLast_);
        for (std::int32_t line = lines_.FirstLine(); line <= lines_.LastLine(); line += kRays) {
            StartLines(line);
            ReduceLines();
            FinishLines(line);
        }
    }
}

// Pixels outside the rectangle of lines with samples, and of places that are rendered.
void LineWalk::FillAround() {
    const std::int32_t width = projection_.view.outputWidth;
    const bool isEmpty = lines_.FirstLine() > lines_.LastLine();
    const LinePixel first = {lines_.FirstLine(), lines_.First()};
    const LinePixel last = {lines_.LastLine(), lines_.Last()};

    // Rows above and below that rectangle are filled whole, the others to its left and to its right.
    for (std::int32_t row = 0; row < projection_.view.outputHeight; ++row) {
        const bool isAround = isEmpty || row < lines_.Row(first) || row > lines_.Row(last);
        FillWithInitial(projection_, rule_, row, 0, isAround ? width : lines_.Column(first));
        if (!isAround) FillWithInitial(projection_, rule_, row, lines_.Column(last) + 1, width);
    }
}

// The voxels of each group of a block: up to `most` voxels from `first` on. The last ones of a row overlap those before
// them rather than reading beyond the row.
void LineWalk::ChooseGroups(std::int32_t first, std::int32_t most) {
    const std::int32_t width = projection_.grid.width;
    const std::int32_t last = lastVoxel_ - first < most ? lastVoxel_ : first + most - 1;
    const std::int32_t needed = (last - first + kRays) / kRays;
    const std::int32_t together = rule_.groupsTogether;
    blockFirst_ = first;
    blockLast_ = last;

    // Rules that reduce several groups at once get whole numbers of them; what is too many is not shown.
    rows_.groups = (needed + together - 1) / together * together;
    // A slab keeps each channel of a voxel by itself; the others hold whole voxels.
    const bool isPlanar = source_ == Source::Slab && rule_.voxelBytes > 1;
    rows_.channelBytes = isPlanar ? static_cast<std::size_t>(slab_.Lanes()) : 0;
    for (std::int32_t group = 0; group < rows_.groups; ++group) {
        base_[group] = first + group * kRays;
        rows_.offsets[group] = group * kRays * (isPlanar ? 1 : rule_.voxelBytes);
        if (source_ != Source::Rows) continue;
        if (base_[group] + kRays > width) base_[group] = width < kRays ? 0 : width - kRays;
        rows_.offsets[group] = base_[group] * rule_.voxelBytes;
    }
}

void LineWalk::StartLines(std::int32_t line) {
    // Lines that are left over have no samples, and are not finished.
    starts_ = {};
    longest_ = 0;
    for (int row = 0; row < kRays; ++row) {
        samples_[row] = 0;
        if (line + row > lines_.LastLine()) continue;
        const ViewLine& from = lines_.Line(line + row);
        samples_[row] = from.samples;
        starts_.axis[1][row] = from.start[0];
        starts_.axis[2][row] = from.start[1];
        if (samples_[row] > longest_) longest_ = samples_[row];
    }
}

void LineWalk::ReduceLines() {
    // Zeroes are where every mode begins.
    __builtin_memset(states_, 0,
                     std::size_t{kRays} * static_cast<std::size_t>(rows_.groups)
                         * static_cast<std::size_t>(rule_.stateBytes));

    // Positions are stepped for sixteen lines at once, then each line takes its voxels. It ends early once nothing
    // can change any of them.
    Positions positions = starts_;
    bool isLive = true;
    for (std::int32_t done = 0; done < longest_ && isLive; done += kSamples) {
        stepper_.NextStretch(positions, kSamples, indexes_, false);
        isLive = false;
        for (int row = 0; row < kRays; ++row) {
            const std::int32_t remaining = samples_[row] - done;
            if (remaining <= 0) continue;
            rows_.samples = remaining < kSamples ? remaining : kSamples;
            FindVoxels(row, rows_.samples);
            isLive |= rule_.reduceRows(rule_, rows_, StatesOf(row));
        }
    }
}

// The line of voxels of each sample.
void LineWalk::FindVoxels(int row, int samples) {
    // Rays that end with their first sample have one line of voxels, picked out of the volume.
    if (source_ == Source::Picked) {
        const auto x = static_cast<std::int32_t>(indexes_.plane[0][row]);
        const auto other = static_cast<std::int32_t>(indexes_.z[0][row]);
        rows_.voxels[0] = picked_;
        return rule_.voxelBytes == 1 ? PickVoxels<1>(x, other) : PickVoxels<3>(x, other);
    }
    // Of others each sample has a line that lies ready, in the volume or in the slab.
    const auto bytes = static_cast<std::size_t>(rule_.voxelBytes);
    for (int sample = 0; sample < samples; ++sample) {
        const std::uint32_t layer = indexes_.z[sample][row];
        const std::uint8_t* voxels =
            source_ == Source::Rows ? projection_.grid.slices[layer] : slab_.LanesAt(layer);
        rows_.voxels[sample] = voxels + bytes * indexes_.plane[sample][row];
    }
    if (source_ == Source::Rows && projection_.grid.width < kRays) FindShortRows(samples);
}

// Short rows are copied to where sixteen voxels can be read.
void LineWalk::FindShortRows(int samples) {
    const auto bytes =
        static_cast<std::size_t>(projection_.grid.width) * static_cast<std::size_t>(rule_.voxelBytes);
    for (int sample = 0; sample < samples; ++sample) {
        __builtin_memcpy(shortRows_[sample], rows_.voxels[sample], bytes);
        rows_.voxels[sample] = shortRows_[sample];
    }
}

// Those of the block at x and at an index on the axis that is left.
template <int kBytes>
void LineWalk::PickVoxels(std::int32_t x, std::int32_t other) {
    std::uint8_t* to = picked_;
    for (std::int32_t voxel = blockFirst_; voxel <= blockLast_; ++voxel, to += kBytes) {
        const std::uint8_t* from = lines_.Axis() == kAxisY ? projection_.grid.At<kBytes>(x, voxel, other)
                                                           : projection_.grid.At<kBytes>(x, other, voxel);
        __builtin_memcpy(to, from, kBytes);
    }
}

// Lines beyond the last one have states, but no pixels.
void LineWalk::FinishLines(std::int32_t line) {
    const std::int32_t left = lines_.LastLine() - line + 1;
    const int count = left < kRays ? left : kRays;
    for (std::int32_t group = 0; group < rows_.groups; ++group) {
        for (int row = 0; row < count; ++row)
            FinishGroup(line + row, group, StatesOf(row) + group * rule_.stateBytes);
    }
}

void LineWalk::FinishGroup(std::int32_t line, std::int32_t group, const std::byte* state) {
    // Those of the sixteen voxels that belong to the block.
    const std::int32_t base = base_[group];
    const std::int32_t first = base < blockFirst_ ? blockFirst_ : base;
    const std::int32_t last = base + kRays - 1 > blockLast_ ? blockLast_ : base + kRays - 1;
    const bool isStraight = lines_.Along() == 0 && !lines_.IsReversed();
    if (isStraight && last - first == kRays - 1) {
        rule_.finish(rule_, state, {projection_.PixelAt(line, lines_.PlaceOf(base)), kQuadsInARow});
        return;
    }
    if (first > last) return;

    // All others go through a buffer: pixels may run downwards, or from right to left.
    float pixels[3 * kRays];
    rule_.finish(rule_, state, {pixels, kQuadsInARow});
    const float* from = pixels + 3 * (first - base);
    const LinePixel place = {line, lines_.PlaceOf(first)};
    float* to = projection_.PixelAt(lines_.Row(place), lines_.Column(place));
    const std::ptrdiff_t pixel =
        lines_.Along() == 0 ? 3 : 3 * static_cast<std::ptrdiff_t>(projection_.view.outputWidth);
    const std::ptrdiff_t next = lines_.IsReversed() ? -pixel : pixel;
    for (std::int32_t voxel = first; voxel <= last; ++voxel, from += 3, to += next)
        __builtin_memcpy(to, from, 3 * sizeof(float));
}

} // namespace z3d::render::Z3D_ISA
