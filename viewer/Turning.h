// Rotations of a view by hand: what a drag on the picture does to the volume.
#pragma once

#include "Projection.h"

namespace z3d::viewer {

using Angles = std::array<float, 3>; // degrees about x, y and z: the matrix is R(x) * R(y) * R(z)

tools::Rotation RotationOf(const Angles& angles);
Angles AnglesOf(const tools::Rotation& rotation);

// As on a ball of that radius, in pixels: the point of the volume that faces the viewer follows the pointer.
// Right and up are positive.
tools::Rotation DragBall(const tools::Rotation& start, double right, double up, double radius);

// About the viewing direction, anticlockwise.
tools::Rotation Roll(const tools::Rotation& start, double degrees);

// Rows of unit length, at right angles: what many turns have rounded away is put right.
tools::Rotation Straightened(const tools::Rotation& rotation);

} // namespace z3d::viewer
