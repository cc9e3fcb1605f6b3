// Pixels of a view in lines whose rays are not like their neighbours': sixteen at a time, each by itself.
#pragma once

#include "render/kernels/walks/Rule.h"
#include "render/tables/ViewLines.h"

namespace z3d::render::Z3D_ISA {

void RenderLoneRays(const Projection& projection, const Rule& rule, const ViewLines& lines);

} // namespace z3d::render::Z3D_ISA
