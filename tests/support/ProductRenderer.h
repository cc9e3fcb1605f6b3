// The product's renderer behind the interface of the plain form.
#pragma once

#include "reference/ReferenceRenderer.h"

#include "Zentra3DRendering.h"

#include <cstdint>

namespace z3d::test {

// Renders a volume of the host. The size is the 16 bits that the host receives; depth is not reported.
reference::Projection RenderProduct(::Volume3D* volume, const reference::Request& request);

// The same from a plain volume, copied into a host's volume for the call.
reference::Projection RenderProduct(const reference::Volume& volume, const reference::Request& request);

// As a host gets it: the locked pixels, which the caller frees, or null. The size is stored in both cases.
float* RenderPixels(::Volume3D* volume, const reference::Request& request, std::uint16_t& width,
                    std::uint16_t& height);

// Releases a projection as a host does.
void FreeProjection(float* pixels);

} // namespace z3d::test
