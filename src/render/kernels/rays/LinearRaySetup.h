// The rays of one output row at a fraction of the cost: in real numbers, the depth at which a ray meets a face is
// linear in the output column. Rays whose trimmed range could depend on how single precision rounds are left to
// the exact arithmetic.
//
// Why the others are safe. Let u bound the rounding error of any coordinate: 2^-24 of the largest one. Both ends
// of a ray lie within 2u of the real line, so a crossing with a face of axis a is computed within 2u / |T(a,2)|
// of its real depth; there, coordinate b is computed within 3u + 2u |T(b,2)| / |T(a,2)|. The view depth of a
// crossing adds up to less than 11u / |T(a,2)|, roundings included. With `slack` 16u / min |T(a,2)|, a face is
// surely missed when another axis's faces bound the ray more tightly by `slack`, the tightest two are surely
// hit, and the integer part of a depth is sure when it clears whole numbers by `slack`.
#pragma once

#include "render/ViewProducts.h"
#include "render/kernels/rays/RaySetup.h"

namespace z3d::render::Z3D_ISA {

// One output row: where its rays meet the faces of the crop box, at px = 0.
struct LinearRow {
    double near[3]; // depth of the nearer and the farther face of each axis
    double far[3];
    double beside[3]; // coordinates at depth 0
    double depth;     // output depth index there
};

class LinearRaySetup {
public:
    explicit LinearRaySetup(const ProjectionRenderer& view)
        : view_(view), reach_(static_cast<double>(view.outputHalfSize[2]) + 1) {
        const ViewProducts products(view);
        across_ = products.column[0];
        along_ = products.column[2];
        isUsable_ = products.AreNearlyThoseOfARotation() && FindSlack();
        for (int axis = 0; axis < 3; ++axis)
            slope_[axis] = isUsable_ && !isParallel_[axis] ? -view.Inverse(axis, 0) / Step(axis) : 0;
    }

    // False for views that have too many doubtful rays, or that the argument above does not cover.
    bool IsUsable() const { return isUsable_; }

    LinearRow RowAt(double py) const {
        LinearRow row = {};
        row.depth = view_.outputHalfSize[2];
        for (int axis = 0; axis < 3; ++axis) {
            const double base = py * view_.Inverse(axis, 1);
            row.beside[axis] = base;
            row.depth += view_.ViewAxis(axis) * base;
            if (isParallel_[axis]) continue;
            const double low = (view_.CropLow(axis) - base) / Step(axis);
            const double high = (view_.CropHigh(axis) - base) / Step(axis);
            row.near[axis] = Step(axis) > 0 ? low : high;
            row.far[axis] = Step(axis) > 0 ? high : low;
        }
        return row;
    }

    // Writes first depth index and number of samples of the columns px. False where one of them is in doubt; nothing
    // useful is written then.
    Z3D_INLINE bool Trim(const LinearRow& row, Doubles px, std::int32_t* first, std::int32_t* count) const {
        const Doubles slack = AllDoubles(slack_);
        LongMask isOutside = {};
        LongMask isDoubtful = {};

        // Meet the two faces of every axis. A ray that runs parallel to them lies between them, or misses the box.
        Doubles near[3];
        Doubles far[3];
        for (int axis = 0; axis < 3; ++axis) {
            if (isParallel_[axis]) {
                near[axis] = AllDoubles(-kBeyond);
                far[axis] = AllDoubles(kBeyond);
                const Doubles inside = InsideOf(axis, px, row.beside[axis]);
                isOutside |= inside < -parallelSlack_;
                isDoubtful |= (inside >= -parallelSlack_) & (inside <= parallelSlack_);
            } else {
                const Doubles along = px * slope_[axis];
                near[axis] = along + row.near[axis];
                far[axis] = along + row.far[axis];
            }
        }

        // Enter at the last of the near faces and leave at the first of the far ones.
        const Doubles entry = MaxDoubles(MaxDoubles(near[0], near[1]), near[2]);
        const Doubles exit = MinDoubles(MinDoubles(far[0], far[1]), far[2]);
        isOutside |= entry - exit > slack + slack;
        if (!AnySet(~isOutside)) {
            StoreTruncated(first, Doubles{});
            StoreTruncated(count, Doubles{});
            return true;
        }

        // Make sure that entry and exit each belong to one face, and lie within the reach of the ray.
        Doubles clearance = MinDoubles(entry - MiddleOf(near), MiddleOf(far) - exit);
        clearance = MinDoubles(clearance, exit - entry);
        clearance = MinDoubles(clearance, MinDoubles(entry + reach_, reach_ - exit));

        // Turn view depths into output depth indexes, whose integer parts have to be sure as well.
        const Doubles depth = px * across_ + row.depth;
        const Doubles start = depth + entry * along_;
        const Doubles end = depth + exit * along_;
        const Doubles wholeStart = Whole(start);
        const Doubles wholeEnd = Whole(end);
        clearance = MinDoubles(clearance, FromWhole(start - wholeStart));
        clearance = MinDoubles(clearance, FromWhole(end - wholeEnd));
        isDoubtful |= ~(clearance > slack);
        if (AnySet(isDoubtful & ~isOutside)) return false;

        // Cut the range off at the first and last depth index.
        const Doubles last = AllDoubles(lastDepth_);
        isOutside |= (start > last) | (end < 0.0);
        const Doubles from = MaxDoubles(wholeStart, Doubles{});
        const Doubles to = MinDoubles(wholeEnd, last);
        StoreTruncated(first, Select(isOutside, Doubles{}, from));
        StoreTruncated(count, Select(isOutside, Doubles{}, to - from + 1.0));
        return true;
    }

private:
    static constexpr double kBeyond = 1e9;         // deeper than any face
    static constexpr double kMostSlack = 1.0 / 64; // beyond, too many rays are in doubt

    // How far inside the two faces of an axis the rays run that are parallel to them.
    Z3D_INLINE Doubles InsideOf(int axis, Doubles px, double beside) const {
        const Doubles at = px * static_cast<double>(view_.Inverse(axis, 0)) + AllDoubles(beside);
        return MinDoubles(at - static_cast<double>(view_.CropLow(axis)),
                          static_cast<double>(view_.CropHigh(axis)) - at);
    }
    Z3D_INLINE static Doubles MiddleOf(const Doubles (&value)[3]) {
        const Doubles larger = MaxDoubles(value[0], value[1]);
        const Doubles smaller = MinDoubles(value[0], value[1]);
        return MaxDoubles(smaller, MinDoubles(larger, value[2]));
    }
    // The distance from the nearest whole number, by what a number has beyond its integer part.
    Z3D_INLINE static Doubles FromWhole(Doubles rest) {
        const Doubles size = MaxDoubles(rest, -rest);
        return MinDoubles(size, 1.0 - size);
    }

    double Step(int axis) const { return view_.Inverse(axis, 2); }
    static double MaxOf(double a, double b) { return a > b ? a : b; }
    static double Size(double value) { return __builtin_fabs(value); }

    bool FindSlack() {
        // Find the largest number that occurs, whose rounding bounds all others.
        lastDepth_ = view_.outputDepth - 1;
        double largest = view_.outputDepth;
        double steepest = 1;
        for (int axis = 0; axis < 3; ++axis) {
            const double low = view_.CropLow(axis);
            const double high = view_.CropHigh(axis);
            if (!(low <= high)) return false;
            const double end = Size(view_.Inverse(axis, 0)) * view_.outputHalfSize[0]
                               + Size(view_.Inverse(axis, 1)) * view_.outputHalfSize[1]
                               + Size(Step(axis)) * reach_;
            largest = MaxOf(MaxOf(largest, end), MaxOf(Size(low), Size(high)));

            // So little that both ends, rounded, are sure to count as one: the ray never crosses these faces.
            isParallel_[axis] = 2 * reach_ * Size(Step(axis)) < kParallel * 0.4;
            if (!isParallel_[axis] && Size(Step(axis)) < steepest) steepest = Size(Step(axis));
        }
        const double rounding = largest * 0x1p-24;
        slack_ = 16 * rounding / steepest;
        parallelSlack_ = 16 * rounding + kParallel;
        return slack_ <= kMostSlack;
    }

    const ProjectionRenderer& view_;
    const double reach_;
    bool isUsable_;
    bool isParallel_[3] = {};
    double slope_[3];      // depth per output column of the faces of each axis
    double slack_;         // of depths
    double parallelSlack_; // of coordinates
    double across_;        // view depth per column
    double along_;         // and per voxel along the ray: 1, but for rounding
    double lastDepth_;
};

} // namespace z3d::render::Z3D_ISA
