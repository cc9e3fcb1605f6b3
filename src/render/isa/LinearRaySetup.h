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

#include "render/isa/RaySetup.h"
#include "render/isa/ViewProducts.h"

namespace z3d::render::Z3D_ISA {

class LinearRaySetup {
public:
    explicit LinearRaySetup(const RayGeometry& geometry)
        : geometry_(geometry), reach_(static_cast<double>(geometry.halfSize[2]) + 1) {
        const ViewProducts products(geometry);
        across_ = products.column[0];
        along_ = products.column[2];
        isUsable_ = products.AreNearlyThoseOfARotation() && FindSlack();
    }

    // False for views that have too many doubtful rays, or that the argument above does not cover.
    bool IsUsable() const { return isUsable_; }

    // One output row: the depths at which its rays enter and leave the crop box, as functions of the column.
    class Row {
    public:
        Row(const LinearRaySetup& setup, double py) : setup_(setup) {
            const float* view = setup.geometry_.view;
            double base[3];
            for (int axis = 0; axis < 3; ++axis) {
                const float* row = setup.geometry_.inverse + 3 * axis;
                base[axis] = py * row[1];
                const double step = row[2];
                if (setup.isParallel_[axis]) continue;
                const double low = setup.geometry_.cropLow[axis];
                const double high = setup.geometry_.cropHigh[axis];
                near_[axis] = ((step > 0 ? low : high) - base[axis]) / step;
                far_[axis] = ((step > 0 ? high : low) - base[axis]) / step;
                slope_[axis] = -row[0] / step;
            }
            for (int axis = 0; axis < 3; ++axis)
                beside_[axis] = base[axis];
            depth_ = view[0] * base[0] + view[1] * base[1] + view[2] * base[2] + setup.geometry_.halfSize[2];
        }

        // Writes first depth index and number of samples of the columns px. False where one of them is in doubt;
        // nothing useful is written then.
        Z3D_INLINE bool Trim(Doubles px, std::int32_t* first, std::int32_t* count) const {
            const Doubles slack = AllDoubles(setup_.slack_);
            Doubles near[3];
            Doubles far[3];
            LongMask isOutside = {};
            LongMask isDoubtful = {};
            for (int axis = 0; axis < 3; ++axis) {
                if (setup_.isParallel_[axis]) {
                    near[axis] = AllDoubles(-kBeyond);
                    far[axis] = AllDoubles(kBeyond);
                    const Doubles at = px * static_cast<double>(setup_.geometry_.inverse[3 * axis])
                                       + AllDoubles(beside_[axis]);
                    // How far inside the two faces the ray runs.
                    const Doubles inside =
                        MinDoubles(at - static_cast<double>(setup_.geometry_.cropLow[axis]),
                                   static_cast<double>(setup_.geometry_.cropHigh[axis]) - at);
                    isOutside |= inside < -setup_.parallelSlack_;
                    isDoubtful |= (inside >= -setup_.parallelSlack_) & (inside <= setup_.parallelSlack_);
                } else {
                    const Doubles along = px * slope_[axis];
                    near[axis] = along + near_[axis];
                    far[axis] = along + far_[axis];
                }
            }
            const Doubles entry = MaxDoubles(MaxDoubles(near[0], near[1]), near[2]);
            const Doubles exit = MinDoubles(MinDoubles(far[0], far[1]), far[2]);
            isOutside |= entry - exit > slack + slack;
            if (!AnySet(~isOutside)) {
                StoreTruncated(first, Doubles{});
                StoreTruncated(count, Doubles{});
                return true;
            }

            // Entry and exit each belong to one face, surely.
            Doubles clearance = MinDoubles(entry - MiddleOf(near), MiddleOf(far) - exit);
            clearance = MinDoubles(clearance, exit - entry);
            clearance = MinDoubles(clearance, MinDoubles(entry + setup_.reach_, setup_.reach_ - exit));

            // View depth to output depth index.
            const Doubles depth = px * setup_.across_ + depth_;
            const Doubles start = depth + entry * setup_.along_;
            const Doubles end = depth + exit * setup_.along_;
            const Doubles wholeStart = Whole(start);
            const Doubles wholeEnd = Whole(end);
            clearance = MinDoubles(clearance, FromWhole(start - wholeStart));
            clearance = MinDoubles(clearance, FromWhole(end - wholeEnd));
            isDoubtful |= ~(clearance > slack);
            if (AnySet(isDoubtful & ~isOutside)) return false;

            const Doubles last = AllDoubles(setup_.lastDepth_);
            isOutside |= (start > last) | (end < 0.0);
            const Doubles from = MaxDoubles(wholeStart, Doubles{});
            const Doubles to = MinDoubles(wholeEnd, last);
            StoreTruncated(first, Select(isOutside, Doubles{}, from));
            StoreTruncated(count, Select(isOutside, Doubles{}, to - from + 1.0));
            return true;
        }

    private:
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

        const LinearRaySetup& setup_;
        double near_[3] = {}; // depth of the nearer and the farther face of each axis at px = 0
        double far_[3] = {};
        double slope_[3] = {};
        double beside_[3]; // coordinates at px = 0 and depth 0
        double depth_;
    };

private:
    static constexpr double kBeyond = 1e9;         // deeper than any face
    static constexpr double kMostSlack = 1.0 / 64; // beyond, too many rays are in doubt

    static double MaxOf(double a, double b) { return a > b ? a : b; }
    static double Size(double value) { return __builtin_fabs(value); }

    bool FindSlack() {
        lastDepth_ = geometry_.outputDepth - 1;
        double largest = geometry_.outputDepth;
        double steepest = 1;
        for (int axis = 0; axis < 3; ++axis) {
            const float* row = geometry_.inverse + 3 * axis;
            const double low = geometry_.cropLow[axis];
            const double high = geometry_.cropHigh[axis];
            if (!(low <= high)) return false;
            const double end = Size(row[0]) * geometry_.halfSize[0] + Size(row[1]) * geometry_.halfSize[1]
                               + Size(row[2]) * reach_;
            largest = MaxOf(MaxOf(largest, end), MaxOf(Size(low), Size(high)));

            // So little that both ends, rounded, are sure to count as one: the ray never crosses these faces.
            isParallel_[axis] = 2 * reach_ * Size(row[2]) < kParallel * 0.4;
            if (!isParallel_[axis] && Size(row[2]) < steepest) steepest = Size(row[2]);
        }
        const double rounding = largest * 0x1p-24;
        slack_ = 16 * rounding / steepest;
        parallelSlack_ = 16 * rounding + kParallel;
        return slack_ <= kMostSlack;
    }

    const RayGeometry& geometry_;
    const double reach_;
    bool isUsable_;
    bool isParallel_[3];
    double slack_;         // of depths
    double parallelSlack_; // of coordinates
    double across_;        // view depth per column
    double along_;         // and per voxel along the ray: 1, but for rounding
    double lastDepth_;
};

} // namespace z3d::render::Z3D_ISA
