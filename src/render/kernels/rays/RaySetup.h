// The rays of one output row: which samples each takes, for a vector of columns at a time. The arithmetic of
// every lane is that of one ray by itself: doubles inside a step, single precision where a value is kept.
#pragma once

#include "render/ProjectionRenderer.h"
#include "render/kernels/vector/Vector.h"

namespace z3d::render::Z3D_ISA {

constexpr double kHighestSingle = 3.4028234663852886e38;

// A ray that moves less than this along an axis runs parallel to that axis's faces.
constexpr double kParallel = 0.00001;

class RaySetup {
public:
    explicit RaySetup(const ProjectionRenderer& view)
        : view_(view), reach_(static_cast<double>(view.outputHalfSize[2]) + 1) {}

    // For output row j and the kDoubleLanes columns from column i on.
    Z3D_INLINE void TrimColumns(std::int32_t j, std::int32_t i, std::int32_t* first,
                                std::int32_t* count) const {
        Doubles column;
        for (int lane = 0; lane < kDoubleLanes; ++lane)
            column[lane] = lane;
        const double px = i - static_cast<double>(view_.outputHalfSize[0]);
        const double py = j - static_cast<double>(view_.outputHalfSize[1]);
        Trim(column + px, AllDoubles(py), first, count);
    }

    // For kDoubleLanes pixels, writes the first depth index and the number of samples of each.
    [[gnu::noinline]] void Trim(const Doubles& px, const Doubles& py, std::int32_t* first,
                                std::int32_t* count) const {
        // Form both ends of the rays, axis by axis, and see which rays pass the crop box by.
        Ends ends;
        LongMask missed = {};
        for (int axis = 0; axis < 3; ++axis) {
            const float* row = view_.inverseRotation2 + 3 * axis;
            const double across = row[2];
            const Doubles entry = RoundToSingle(px * static_cast<double>(row[0])
                                                + py * static_cast<double>(row[1]) - reach_ * across);
            const Doubles exit = RoundToSingle(entry + 2 * reach_ * across);
            const double low = view_.CropLow(axis);
            const double high = view_.CropHigh(axis);
            // Both ends beyond the same face.
            missed |= ((entry < low) & (exit < low)) | ((entry > high) & (exit > high));
            ends.entry[axis] = entry;
            ends.exit[axis] = exit;
        }

        // Intersect them with its six faces.
        Doubles start = AllDoubles(kHighestSingle);
        Doubles end = AllDoubles(-kHighestSingle);
        // Six times the same code would be a tenth of all kernels.
#pragma GCC unroll 1
        for (int axis = 0; axis < 3; ++axis) {
            const float planes[2] = {view_.CropLow(axis), view_.CropHigh(axis)};
#pragma GCC unroll 1
            for (const float plane : planes)
                ClipAtFace(ends, axis, plane, start, end);
        }

        // View depth to output depth index; a ray without a hit starts beyond the last one.
        const double halfDepth = view_.outputHalfSize[2];
        const double last = static_cast<double>(static_cast<float>(view_.outputDepth - 1));
        start = RoundToSingle(RoundToSingle(start) + halfDepth);
        end = RoundToSingle(RoundToSingle(end) + halfDepth);
        missed |= (start > last) | (end < 0.0);
        start = MaxDoubles(start, Doubles{});
        end = MinDoubles(end, AllDoubles(last));
        missed |= start > end;
        start = Select(missed, Doubles{}, start);
        end = Select(missed, Doubles{}, end);

        // Count the samples.
        StoreTruncated(first, start);
        std::int32_t lastIndex[kDoubleLanes];
        StoreTruncated(lastIndex, end);
        for (int lane = 0; lane < kDoubleLanes; ++lane) {
            count[lane] = missed[lane] ? 0 : lastIndex[lane] - first[lane] + 1;
        }
    }

private:
    struct Ends {
        Doubles entry[3]; // one voxel before the view box, in centred volume space: x, y, z
        Doubles exit[3];  // one voxel behind it
    };

    // Widens [start, end] by the view depth of the rays' hits on one face. Minimum and maximum commute with
    // the rounding to single precision, which is therefore left to the end.
    Z3D_INLINE void ClipAtFace(const Ends& ends, int axis, float plane, Doubles& start, Doubles& end) const {
        const double face = plane;
        const Doubles entry = ends.entry[axis];
        const Doubles exit = ends.exit[axis];
        const Doubles advance = entry - exit;
        LongMask hit = ~((advance < kParallel) & (advance > -kParallel));
        hit &= ~((exit - face) * (entry - face) > 0.0);

        Doubles point[3];
        point[axis] = AllDoubles(face);
        constexpr int kOthers[3][2] = {{1, 2}, {0, 2}, {0, 1}};
        for (const int other : kOthers[axis]) {
            const Doubles from = ends.entry[other];
            point[other] = RoundToSingle(from + (from - ends.exit[other]) * (face - entry) / advance);
            const double low = view_.CropLow(other);
            const double high = view_.CropHigh(other);
            hit &= ~((point[other] < low) | (point[other] > high));
        }

        const Doubles depth = static_cast<double>(view_.ViewAxis(0)) * point[0]
                              + static_cast<double>(view_.ViewAxis(1)) * point[1]
                              + static_cast<double>(view_.ViewAxis(2)) * point[2];
        start = Select(hit, MinDoubles(depth, start), start);
        end = Select(hit, MaxDoubles(depth, end), end);
    }

    const ProjectionRenderer& view_;
    const double reach_;
};

} // namespace z3d::render::Z3D_ISA
