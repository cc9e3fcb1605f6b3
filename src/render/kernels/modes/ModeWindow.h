// The window of a mode.
#pragma once

#include "render/Projection.h"
#include "render/kernels/sampling/Formats.h"

namespace z3d::render::Z3D_ISA {

// Colour tests windows on channel sums.
template <class Format>
typename Format::Window WindowOf(const Projection& projection, WindowTest test) {
    const RenderArguments& arguments = projection.arguments;
    return typename Format::Window(AcceptedValues(Format::kLargest, test, arguments.low, arguments.high));
}

} // namespace z3d::render::Z3D_ISA
