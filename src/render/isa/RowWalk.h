// Views in which output columns are volume columns (the identity, and turns about x alone): all rays of an
// output row take the same rows of voxels, so whole rows are reduced, sixteen columns at a time.
#pragma once

#include "render/isa/RaySetup.h"
#include "render/isa/Rules.h"
#include "render/isa/Stretch.h"

namespace z3d::render::Z3D_ISA {

// With these elements exactly 1 and 0, view x is volume x, and no other coordinate of a ray depends on its
// column: px * 0 adds nothing to a sum. The output is then as wide as the volume, and column i samples x = i.
// Up to 2^24 depth indexes are exact in single precision, and no ray has more samples than the output is deep.
inline bool HasVolumeColumns(const ProjectionJob& job) {
    const float* inverse = job.geometry.inverse;
    return inverse[0] == 1 && inverse[1] == 0 && inverse[2] == 0 && inverse[3] == 0 && inverse[6] == 0
           && job.geometry.view[0] == 0 && job.geometry.outputWidth == job.grid.width
           && job.geometry.outputDepth <= (1 << 24);
}

template <class Rule>
class RowWalk {
public:
    RowWalk(const ProjectionJob& job, const Rule& rule)
        : job_(job), geometry_(job.geometry), rule_(rule), nearest_(job, rule.Margin()) {}

    void Render() {
        const RaySetup setup(geometry_);
        FindLiveColumns();
        for (std::int32_t row = Rule::kBorder; row < geometry_.outputHeight - Rule::kBorder; ++row) {
            float* pixels = PixelsOf(row);
            for (std::int32_t i = Rule::kBorder; i < geometry_.outputWidth - Rule::kBorder; ++i) {
                for (int c = 0; c < 3; ++c)
                    pixels[3 * i + c] = Rule::kInitial;
            }
            if (firstColumn_ > lastColumn_) continue;
            // One exact ray speaks for all live columns.
            std::int32_t first[kDoubleLanes];
            std::int32_t count[kDoubleLanes];
            const std::int32_t j = geometry_.outputHeight - 1 - row;
            setup.TrimColumns(j, firstColumn_, first, count);
            if (count[0] == 0) continue;
            const std::int32_t samples = Follow(j, first[0], count[0]);
            for (std::int32_t left = firstColumn_; left <= lastColumn_; left += kRays) {
                ReduceColumns(left, samples, pixels);
            }
        }
        LeaveVectorCode();
    }

private:
    float* PixelsOf(std::int32_t row) const {
        return job_.pixels
               + 3 * static_cast<std::size_t>(row) * static_cast<std::size_t>(geometry_.outputWidth);
    }

    // Columns whose rays lie within the crop box on x, bounds inclusive.
    void FindLiveColumns() {
        firstColumn_ = Rule::kBorder;
        lastColumn_ = geometry_.outputWidth - 1 - Rule::kBorder;
        const auto x = [&](std::int32_t i) {
            return static_cast<float>(i - static_cast<double>(geometry_.halfSize[0]));
        };
        while (firstColumn_ <= lastColumn_ && x(firstColumn_) < geometry_.cropLow[0])
            ++firstColumn_;
        while (firstColumn_ <= lastColumn_ && x(lastColumn_) > geometry_.cropHigh[0])
            --lastColumn_;
    }

    // Writes the voxel rows that the rays take, in the order of the samples; returns their number.
    std::int32_t Follow(std::int32_t j, std::int32_t first, std::int32_t count) const {
        const std::int32_t start = Rule::kBackToFront ? first + count - 1 : first;
        const double py = j - static_cast<double>(geometry_.halfSize[1]);
        const double depth = start - static_cast<double>(geometry_.halfSize[2]);
        float at[2];
        float step[2];
        for (int axis = 0; axis < 2; ++axis) {
            const float* row = geometry_.inverse + 3 * (axis + 1);
            at[axis] = static_cast<float>(depth * row[2] + py * row[1] + geometry_.centre[axis + 1]);
            step[axis] = Rule::kBackToFront ? -row[2] : row[2];
        }
        std::int32_t samples = count + Rule::kSamplesPastEnd;
        if (samples > rule_.SampleLimit()) samples = rule_.SampleLimit();
        for (std::int32_t sample = 0; sample < samples; ++sample) {
            job_.rayRows[sample] = {nearest_.Index(at[0], 1), nearest_.Index(at[1], 2), at[0], at[1]};
            at[0] += step[0];
            at[1] += step[1];
        }
        return samples;
    }

    void ReduceColumns(std::int32_t left, std::int32_t samples, float* pixels) {
        using Format = typename Rule::Format;
        // The last block of a row overlaps the one before it rather than reading beyond the row.
        const std::int32_t width = job_.grid.width;
        const std::int32_t base = left + kRays <= width ? left : (width < kRays ? 0 : width - kRays);
        const std::int32_t columns = width - base < kRays ? width - base : kRays;
        typename Rule::Lanes lanes{};
        for (std::int32_t sample = 0; sample < samples; ++sample) {
            const RayRow& row = job_.rayRows[sample];
            const int slot = sample % kSamples;
            const std::size_t plane = static_cast<std::size_t>(row.y) * static_cast<std::size_t>(width)
                                      + static_cast<std::size_t>(base);
            if constexpr (Rule::kUsesIndexes) Describe(row, base, columns, slot);
            const std::uint8_t* voxels = job_.grid.slices[row.z] + plane * Format::kBytes;
            rule_.Sample(LoadRow<Format>(voxels, columns, {&indexes_, slot}), AllBytes(0xFF), lanes);
            if (slot == kSamples - 1) {
                rule_.EndStretch(lanes);
                if (!AnySet(~rule_.Ended(lanes))) break;
            }
        }
        rule_.EndStretch(lanes);
        for (std::int32_t ray = 0; ray < columns; ++ray) {
            const std::int32_t column = base + ray;
            if (column >= firstColumn_ && column <= lastColumn_)
                rule_.Finish(lanes, ray, pixels + 3 * column);
        }
    }

    void Describe(const RayRow& row, std::int32_t base, std::int32_t columns, int slot) {
        for (std::int32_t ray = 0; ray < kRays; ++ray) {
            const std::int32_t column = nearest_.Clamp(base + (ray < columns ? ray : columns - 1), 0);
            indexes_.z[slot][ray] = static_cast<std::uint32_t>(row.z);
            indexes_.plane[slot][ray] =
                static_cast<std::uint32_t>(row.y) * static_cast<std::uint32_t>(job_.grid.width)
                + static_cast<std::uint32_t>(column);
            if constexpr (Rule::kUsesPositions) {
                indexes_.position[0][slot][ray] = static_cast<float>(base + ray);
                indexes_.position[1][slot][ray] = row.yAt;
                indexes_.position[2][slot][ray] = row.zAt;
            }
        }
    }

    const ProjectionJob& job_;
    const RayGeometry& geometry_;
    const Rule rule_;
    const NearestIndex nearest_;
    std::int32_t firstColumn_ = 0;
    std::int32_t lastColumn_ = -1;
    Indexes indexes_;
};

} // namespace z3d::render::Z3D_ISA
