// From a rule to pixels: which walk a view and a mode take.
#pragma once

#include "render/kernels/modes/Extreme.h"
#include "render/kernels/walks/RuleOf.h"

namespace z3d::render::Z3D_ISA {

// By whatever walk suits.
void Render(const Projection& projection, const Rule& rule);

// The same for modes whose samples may be taken in any order.
void RenderExtreme(const Projection& projection, const Rule& rule, const GreyExtreme& mode);

// By packets, without a table of bounds: for samples that are not voxels. The window must not be empty.
void RenderAllSamples(const Projection& projection, const Rule& rule);

// Again, the packets in which pixels hold this value.
void RenderAgain(const Projection& projection, const Rule& rule, float value);

} // namespace z3d::render::Z3D_ISA
