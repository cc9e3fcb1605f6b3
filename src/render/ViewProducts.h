// How the view direction lies to the columns of the inverse rotation: for a rotation it is the third column, across
// the other two.
#pragma once

#include "render/ProjectionRenderer.h"

namespace z3d::render {

struct ViewProducts {
    // Hosts pass rotations in single precision, and products of them: they deviate by a few 1e-7.
    static constexpr double kDeviation = 1e-3;

    double column[3] = {}; // view depth per output column, per output row, and per voxel along the ray
    double longest = 0;    // element of either, without its sign

    Z3D_INLINE explicit ViewProducts(const ProjectionRenderer& view) {
        for (int number = 0; number < 3; ++number) {
            for (int axis = 0; axis < 3; ++axis) {
                const double along = view.ViewAxis(axis);
                const double element = view.Inverse(axis, number);
                column[number] += along * element;
                if (!(__builtin_fabs(along) <= longest)) longest = __builtin_fabs(along);
                if (!(__builtin_fabs(element) <= longest)) longest = __builtin_fabs(element);
            }
        }
    }

    // False for NaN, too.
    Z3D_INLINE bool AreNearlyThoseOfARotation() const {
        return longest <= 1 + kDeviation && __builtin_fabs(column[0]) < kDeviation
               && __builtin_fabs(column[1]) < kDeviation && __builtin_fabs(column[2] - 1) < kDeviation;
    }
};

} // namespace z3d::render
