// Views in which output columns are volume columns (the identity, and turns about x alone): all rays of an
// output row take the same rows of voxels, so whole rows are reduced, sixteen columns at a time.
//
// What is reduced next lies near in memory: sixteen output rows go side by side, sixteen samples deep, over up
// to 256 columns. One of their rays is followed per output row, and speaks for all of its columns.
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

// For rules that do not ask where their voxels lie.
template <class Rule>
class RowWalk {
public:
    RowWalk(const ProjectionJob& job, const Rule& rule)
        : job_(job), geometry_(job.geometry), rule_(rule), walk_(job, Rule::kBackToFront, rule.Margin()) {}

    void Render() {
        FindLiveColumns();
        const std::int32_t end = geometry_.outputHeight - Rule::kBorder;
        for (std::int32_t top = Rule::kBorder; top < end; top += kRays) {
            const std::int32_t rows = end - top < kRays ? end - top : kRays;
            for (std::int32_t row = top; row < top + rows; ++row)
                FillRowWithInitial<Rule>(job_, row);
            TrimStrip(top, rows);
            for (std::int32_t left = firstColumn_; left <= lastColumn_; left += kGroups * kRays) {
                ReduceColumns(left);
                FinishColumns(top);
            }
        }
        LeaveVectorCode();
    }

private:
    using Format = typename Rule::Format;
    using Lanes = typename Rule::Lanes;

    // Groups of sixteen columns that are reduced in one go, so that large lanes, too, have room on a stack.
    static constexpr std::int32_t kGroups = sizeof(Lanes) <= 256 ? 16 : 8;
    // Groups whose lanes are in registers together.
    static constexpr std::int32_t kTogether = sizeof(Lanes) <= 32 ? 4 : 1;

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

    // One exact ray for each of the rows: its first sample point, in column 0, and its number of samples.
    void TrimStrip(std::int32_t top, std::int32_t rows) {
        const RaySetup setup(geometry_);
        strip_ = {};
        for (std::int32_t row = 0; row < rows && firstColumn_ <= lastColumn_; ++row) {
            std::int32_t first[kDoubleLanes];
            std::int32_t count[kDoubleLanes];
            const std::int32_t j = geometry_.outputHeight - 1 - top - row;
            setup.TrimColumns(j, firstColumn_, first, count);
            if (count[0] == 0) continue;
            const double py = j - static_cast<double>(geometry_.halfSize[1]);
            const double depth = (Rule::kBackToFront ? first[0] + count[0] - 1 : first[0])
                                 - static_cast<double>(geometry_.halfSize[2]);
            for (int axis = 1; axis < 3; ++axis) {
                const float* from = geometry_.inverse + 3 * axis;
                strip_.starts.axis[axis][row] =
                    static_cast<float>(depth * from[2] + py * from[1] + geometry_.centre[axis]);
            }
            const std::int32_t samples = count[0] + Rule::kSamplesPastEnd;
            strip_.samples[row] = samples < rule_.SampleLimit() ? samples : rule_.SampleLimit();
            if (strip_.samples[row] > strip_.longest) strip_.longest = strip_.samples[row];
        }
    }

    // Chooses the columns of each group from column `left` on. The last ones of a row overlap those before them
    // rather than reading beyond the row.
    void ReduceColumns(std::int32_t left) {
        const std::int32_t width = job_.grid.width;
        const std::int32_t live = lastColumn_ - left + 1;
        const std::int32_t needed = (live + kRays - 1) / kRays;
        groups_ = needed < kGroups ? (needed + kTogether - 1) / kTogether * kTogether : kGroups;
        for (std::int32_t group = 0; group < groups_; ++group) {
            const std::int32_t column = left + group * kRays;
            base_[group] = column + kRays <= width ? column : (width < kRays ? 0 : width - kRays);
        }
        for (auto& row : lanes_) {
            for (std::int32_t group = 0; group < groups_; ++group)
                row[group] = Lanes{};
        }
        if constexpr (TakesAccepted<Rule>) {
            if (rule_.window.IsFull()) return ReduceStretches<true>();
        }
        ReduceStretches<false>();
    }

    template <bool kAccepted>
    void ReduceStretches() {
        Positions positions = strip_.starts;
        bool isLive = true;
        for (std::int32_t done = 0; done < strip_.longest && isLive; done += kSamples) {
            walk_.template NextStretch<false>(positions, kSamples, indexes_);
            isLive = false;
            for (int row = 0; row < kRays; ++row) {
                const std::int32_t left = strip_.samples[row] - done;
                if (left <= 0) continue;
                const int samples = left < kSamples ? left : kSamples;
                FindVoxels(row, samples);
                for (std::int32_t group = 0; group < groups_; group += kTogether)
                    isLive |= ReduceStretch<kAccepted>(row, group, samples);
            }
        }
    }

    // The row of voxels of each sample. Short ones are copied to where sixteen voxels can be read.
    Z3D_INLINE void FindVoxels(int row, int samples) {
        const auto width = static_cast<std::size_t>(job_.grid.width);
        for (int sample = 0; sample < samples; ++sample) {
            voxels_[sample] = job_.grid.slices[indexes_.z[sample][row]]
                              + std::size_t{Format::kBytes} * indexes_.plane[sample][row];
        }
        if (width >= kRays) return;
        for (int sample = 0; sample < samples; ++sample) {
            __builtin_memcpy(shortRows_[sample], voxels_[sample], Format::kBytes * width);
            voxels_[sample] = shortRows_[sample];
        }
    }

    // False when no further sample can change these rays.
    template <bool kAccepted>
    Z3D_INLINE bool ReduceStretch(int row, std::int32_t group, int samples) {
        Lanes lanes[kTogether];
        std::int32_t base[kTogether];
        Bytes isLive = {};
#pragma GCC unroll 4
        for (int part = 0; part < kTogether; ++part) {
            lanes[part] = lanes_[row][group + part];
            base[part] = base_[group + part];
            isLive |= ~rule_.Ended(lanes[part]);
        }
        if (!AnySet(isLive)) return false;
        for (int sample = 0; sample < samples; ++sample) {
#pragma GCC unroll 4
            for (int part = 0; part < kTogether; ++part) {
                const auto voxels = LoadSixteen<Format>(voxels_[sample] + base[part] * Format::kBytes);
                if constexpr (kAccepted) {
                    rule_.Sample(AcceptedGrey{voxels.value}, AllBytes(0xFF), lanes[part]);
                } else {
                    rule_.Sample(voxels, AllBytes(0xFF), lanes[part]);
                }
            }
        }
#pragma GCC unroll 4
        for (int part = 0; part < kTogether; ++part) {
            rule_.EndStretch(lanes[part]);
            lanes_[row][group + part] = lanes[part];
        }
        return true;
    }

    void FinishColumns(std::int32_t top) {
        for (int row = 0; row < kRays; ++row) {
            if (strip_.samples[row] <= 0) continue;
            float* pixels = PixelsOf(top + row);
            for (std::int32_t group = 0; group < groups_; ++group) {
                for (std::int32_t ray = 0; ray < kRays; ++ray) {
                    const std::int32_t column = base_[group] + ray;
                    if (column >= firstColumn_ && column <= lastColumn_)
                        rule_.Finish(lanes_[row][group], ray, pixels + 3 * column);
                }
            }
        }
    }

    struct Strip {
        Positions starts;
        std::int32_t samples[kRays]; // 0 for a row without
        std::int32_t longest;
    };

    const ProjectionJob& job_;
    const RayGeometry& geometry_;
    const Rule rule_;
    const IndexWalk walk_;
    std::int32_t firstColumn_ = 0;
    std::int32_t lastColumn_ = -1;
    Strip strip_ = {};
    std::int32_t groups_ = 0;
    std::int32_t base_[kGroups]; // first column
    Indexes indexes_;            // of column 0; here a lane is an output row
    const std::uint8_t* voxels_[kSamples];
    std::uint8_t shortRows_[kSamples][kRays * Format::kBytes] = {};
    Lanes lanes_[kRays][kGroups];
};

} // namespace z3d::render::Z3D_ISA
