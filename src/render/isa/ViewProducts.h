// How the view direction lies to the columns of the inverse rotation: for a rotation it is the third column, across
// the other two.
#pragma once

#include "render/ProjectionJob.h"
#include "render/isa/Vector.h"

namespace z3d::render::Z3D_ISA {

struct ViewProducts {
    // Hosts pass rotations in single precision, and products of them: they deviate by a few 1e-7.
    static constexpr double kDeviation = 1e-3;

    double column[3] = {}; // view depth per output column, per output row, and per voxel along the ray
    double longest = 0;    // element of either, without its sign

    explicit ViewProducts(const RayGeometry& geometry) {
        for (int number = 0; number < 3; ++number) {
            for (int axis = 0; axis < 3; ++axis) {
                const double view = geometry.view[axis];
                const double element = geometry.inverse[3 * axis + number];
                column[number] += view * element;
                if (!(__builtin_fabs(view) <= longest)) longest = __builtin_fabs(view);
                if (!(__builtin_fabs(element) <= longest)) longest = __builtin_fabs(element);
            }
        }
    }

    // False for numbers that are none, too.
    bool AreNearlyThoseOfARotation() const {
        return longest <= 1 + kDeviation && __builtin_fabs(column[0]) < kDeviation
               && __builtin_fabs(column[1]) < kDeviation && __builtin_fabs(column[2] - 1) < kDeviation;
    }
};

} // namespace z3d::render::Z3D_ISA
