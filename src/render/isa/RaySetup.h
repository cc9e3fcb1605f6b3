// The rays of one output row: which samples each takes, for a vector of columns at a time. The arithmetic of
// every lane is that of one ray by itself: doubles inside a step, single precision where a value is kept.
#pragma once

#include "render/ProjectionJob.h"
#include "render/isa/Vector.h"

namespace z3d::render::Z3D_ISA {

constexpr double kHighestSingle = 3.4028234663852886e38;

// A ray that moves less than this along an axis runs parallel to that axis's faces.
constexpr double kParallel = 0.00001;

class RaySetup {
public:
    explicit RaySetup(const RayGeometry& geometry)
        : geometry_(geometry), reach_(static_cast<double>(geometry.halfSize[2]) + 1) {}

    // For output row j, writes the first depth index and the number of samples of each column. The arrays have
    // room for kDoubleLanes - 1 entries beyond the width.
    void TrimRow(std::int32_t j, std::int32_t* first, std::int32_t* count) const {
        for (std::int32_t i = 0; i < geometry_.outputWidth; i += kDoubleLanes) {
            TrimColumns(j, i, first + i, count + i);
        }
    }

    // The same for the kDoubleLanes columns from column i on.
    [[gnu::noinline]] void TrimColumns(std::int32_t j, std::int32_t i, std::int32_t* first,
                                       std::int32_t* count) const {
        Doubles column;
        for (int lane = 0; lane < kDoubleLanes; ++lane)
            column[lane] = lane;
        const double px = i - static_cast<double>(geometry_.halfSize[0]);
        TrimRays(column + px, j - static_cast<double>(geometry_.halfSize[1]), first, count);
    }

private:
    struct Ends {
        Doubles entry[3]; // one voxel before the view box, in centred volume space: x, y, z
        Doubles exit[3];  // one voxel behind it
    };

    Z3D_INLINE void TrimRays(Doubles px, double py, std::int32_t* first, std::int32_t* count) const {
        Ends ends;
        LongMask missed = {};
        for (int axis = 0; axis < 3; ++axis) {
            const float* row = geometry_.inverse + 3 * axis;
            const double across = row[2];
            const Doubles entry =
                RoundToSingle(px * static_cast<double>(row[0]) + py * row[1] - reach_ * across);
            const Doubles exit = RoundToSingle(entry + 2 * reach_ * across);
            const double low = geometry_.cropLow[axis];
            const double high = geometry_.cropHigh[axis];
            // Both ends beyond the same face.
            missed |= ((entry < low) & (exit < low)) | ((entry > high) & (exit > high));
            ends.entry[axis] = entry;
            ends.exit[axis] = exit;
        }

        Doubles start = AllDoubles(kHighestSingle);
        Doubles end = AllDoubles(-kHighestSingle);
        for (int axis = 0; axis < 3; ++axis) {
            ClipAtFace(ends, axis, geometry_.cropLow[axis], start, end);
            ClipAtFace(ends, axis, geometry_.cropHigh[axis], start, end);
        }

        // View depth to output depth index; a ray without a hit starts beyond the last one.
        const double halfDepth = geometry_.halfSize[2];
        const double last = static_cast<double>(static_cast<float>(geometry_.outputDepth - 1));
        start = RoundToSingle(RoundToSingle(start) + halfDepth);
        end = RoundToSingle(RoundToSingle(end) + halfDepth);
        missed |= (start > last) | (end < 0.0);
        start = MaxDoubles(start, Doubles{});
        end = MinDoubles(end, AllDoubles(last));
        missed |= start > end;
        start = Select(missed, Doubles{}, start);
        end = Select(missed, Doubles{}, end);

        StoreTruncated(first, start);
        std::int32_t lastIndex[kDoubleLanes];
        StoreTruncated(lastIndex, end);
        for (int lane = 0; lane < kDoubleLanes; ++lane) {
            count[lane] = missed[lane] ? 0 : lastIndex[lane] - first[lane] + 1;
        }
    }

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
        for (int other = 0; other < 3; ++other) {
            if (other == axis) continue;
            const Doubles from = ends.entry[other];
            point[other] = RoundToSingle(from + (from - ends.exit[other]) * (face - entry) / advance);
            const double low = geometry_.cropLow[other];
            const double high = geometry_.cropHigh[other];
            hit &= ~((point[other] < low) | (point[other] > high));
        }

        const float* view = geometry_.view;
        const Doubles depth = static_cast<double>(view[0]) * point[0]
                              + static_cast<double>(view[1]) * point[1]
                              + static_cast<double>(view[2]) * point[2];
        start = Select(hit, MinDoubles(depth, start), start);
        end = Select(hit, MaxDoubles(depth, end), end);
    }

    const RayGeometry& geometry_;
    const double reach_;
};

} // namespace z3d::render::Z3D_ISA
