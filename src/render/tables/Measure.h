// What tables of bounds are about.
#pragma once

namespace z3d::render {

// Large values, small values, or only whether any voxel lies in the window.
enum class Measure { Presence, Largeness, Smallness };

} // namespace z3d::render
