#include "render/kernels/walks/RowWalk.h"

namespace z3d::render::Z3D_ISA {

// With these elements exactly 1 and 0, view x is volume x, and no other coordinate of a ray depends on its
// column: px * 0 adds nothing to a sum. The output is then as wide as the volume, and column i samples x = i.
// Up to 2^24 depth indexes are exact in single precision, and no ray has more samples than the output is deep.
bool RowWalk::Fits(const Projection& projection) {
    const ProjectionRenderer& view = projection.view;
    return view.Inverse(0, 0) == 1 && view.Inverse(0, 1) == 0 && view.Inverse(0, 2) == 0
           && view.Inverse(1, 0) == 0 && view.Inverse(2, 0) == 0 && view.ViewAxis(0) == 0
           && view.outputWidth == projection.grid.width && view.outputDepth <= (1 << 24);
}

RowWalk::RowWalk(const Projection& projection, const Rule& rule)
    : projection_(projection),
      view_(projection.view),
      rule_(rule),
      stepper_(projection, rule.shape),
      // Sixteen rows of states have to fit.
      mostGroups_(static_cast<std::size_t>(rule.stateBytes) * kRays * kMostGroups <= kStateBytes
                      ? kMostGroups
                      : kMostGroups / 2) {}

void RowWalk::Render() {
    FindLiveColumns();
    const std::int32_t border = rule_.shape.border;
    const std::int32_t end = view_.outputHeight - border;
    for (std::int32_t top = border; top < end; top += kRays) {
        const std::int32_t rows = end - top < kRays ? end - top : kRays;
        StartRays(top, rows);
        FillAround(top, rows);
        for (std::int32_t left = firstColumn_; left <= lastColumn_; left += mostGroups_ * kRays) {
            ReduceColumns(left);
            FinishColumns(top);
        }
    }
}

// Columns whose rays lie within the crop box on x, bounds inclusive.
void RowWalk::FindLiveColumns() {
    firstColumn_ = rule_.shape.border;
    lastColumn_ = view_.outputWidth - 1 - rule_.shape.border;
    const auto x = [&](std::int32_t i) {
        return static_cast<float>(i - static_cast<double>(view_.outputHalfSize[0]));
    };
    while (firstColumn_ <= lastColumn_ && x(firstColumn_) < view_.CropLow(0))
        ++firstColumn_;
    while (firstColumn_ <= lastColumn_ && x(lastColumn_) > view_.CropHigh(0))
        --lastColumn_;
}

// Pixels whose rays have no samples.
void RowWalk::FillAround(std::int32_t top, std::int32_t rows) {
    const std::int32_t border = rule_.shape.border;
    for (std::int32_t row = 0; row < rows; ++row) {
        const bool isLive = samples_[row] > 0;
        const std::int32_t end = view_.outputWidth - border;
        FillWithInitial(projection_, rule_, top + row, border, isLive ? firstColumn_ : end);
        if (isLive) FillWithInitial(projection_, rule_, top + row, lastColumn_ + 1, end);
    }
}

// One exact ray for each of the rows: its first sample point, in column 0, and its number of samples.
void RowWalk::StartRays(std::int32_t top, std::int32_t rows) {
    const RaySetup setup(view_);
    const RayShape& shape = rule_.shape;
    starts_ = {};
    __builtin_memset(samples_, 0, sizeof samples_);
    longest_ = 0;
    for (std::int32_t row = 0; row < rows && firstColumn_ <= lastColumn_; ++row) {
        std::int32_t first[kDoubleLanes];
        std::int32_t count[kDoubleLanes];
        const std::int32_t j = view_.outputHeight - 1 - top - row;
        setup.TrimColumns(j, firstColumn_, first, count);
        if (count[0] == 0) continue;
        const double py = j - static_cast<double>(view_.outputHalfSize[1]);
        const double depth = (shape.backToFront ? first[0] + count[0] - 1 : first[0])
                             - static_cast<double>(view_.outputHalfSize[2]);
        for (int axis = 1; axis < 3; ++axis) {
            starts_.axis[axis][row] = static_cast<float>(
                depth * view_.Inverse(axis, 2) + py * view_.Inverse(axis, 1) + view_.volumeCentre[axis]);
        }
        const std::int32_t samples = count[0] + shape.samplesPastEnd;
        samples_[row] = samples < shape.sampleLimit ? samples : shape.sampleLimit;
        if (samples_[row] > longest_) longest_ = samples_[row];
    }
}

void RowWalk::ReduceColumns(std::int32_t left) {
    // Choose the columns of each group. The last ones of a row overlap those before them rather than reading beyond
    // the row.
    const std::int32_t width = projection_.grid.width;
    const std::int32_t live = lastColumn_ - left + 1;
    const std::int32_t needed = (live + kRays - 1) / kRays;
    const std::int32_t together = rule_.groupsTogether;
    groups_ = needed < mostGroups_ ? (needed + together - 1) / together * together : mostGroups_;
    for (std::int32_t group = 0; group < groups_; ++group) {
        const std::int32_t column = left + group * kRays;
        base_[group] = column + kRays <= width ? column : (width < kRays ? 0 : width - kRays);
    }

    // Follow the rays.
    __builtin_memset(states_, 0,
                     std::size_t{kRays} * static_cast<std::size_t>(groups_)
                         * static_cast<std::size_t>(rule_.stateBytes));
    Positions positions = starts_;
    bool isLive = true;
    for (std::int32_t done = 0; done < longest_ && isLive; done += kSamples) {
        stepper_.NextStretch(positions, kSamples, indexes_, false);
        isLive = false;
        for (int row = 0; row < kRays; ++row) {
            const std::int32_t remaining = samples_[row] - done;
            if (remaining <= 0) continue;
            const int samples = remaining < kSamples ? remaining : kSamples;
            FindVoxels(row, samples);
            isLive |= rule_.reduceRows(rule_, voxels_, samples, base_, groups_, StatesOf(row));
        }
    }
}

// The row of voxels of each sample. Short ones are copied to where sixteen voxels can be read.
void RowWalk::FindVoxels(int row, int samples) {
    const auto bytes = static_cast<std::size_t>(rule_.voxelBytes);
    const auto width = static_cast<std::size_t>(projection_.grid.width);
    for (int sample = 0; sample < samples; ++sample) {
        voxels_[sample] =
            projection_.grid.slices[indexes_.z[sample][row]] + bytes * indexes_.plane[sample][row];
    }
    if (width >= kRays) return;
    for (int sample = 0; sample < samples; ++sample) {
        __builtin_memcpy(shortRows_[sample], voxels_[sample], bytes * width);
        voxels_[sample] = shortRows_[sample];
    }
}

void RowWalk::FinishColumns(std::int32_t top) {
    for (int row = 0; row < kRays; ++row) {
        if (samples_[row] <= 0) continue;
        for (std::int32_t group = 0; group < groups_; ++group)
            FinishGroup(top + row, base_[group], StatesOf(row) + group * rule_.stateBytes);
    }
}

// Sixteen columns from column `base` on, of which those outside the crop box keep the initial value.
void RowWalk::FinishGroup(std::int32_t row, std::int32_t base, const std::byte* state) {
    const std::int32_t first = base < firstColumn_ ? firstColumn_ : base;
    const std::int32_t end = base + kRays > lastColumn_ + 1 ? lastColumn_ + 1 : base + kRays;
    if (end - first == kRays) {
        rule_.finish(rule_, state, {projection_.PixelAt(row, base), kQuadsInARow});
        return;
    }
    float pixels[3 * kRays];
    rule_.finish(rule_, state, {pixels, kQuadsInARow});
    if (first >= end) return;
    __builtin_memcpy(projection_.PixelAt(row, first), pixels + 3 * (first - base),
                     static_cast<std::size_t>(end - first) * 3 * sizeof(float));
}

} // namespace z3d::render::Z3D_ISA
