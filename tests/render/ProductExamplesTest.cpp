// The worked examples on the product, once per instruction set.
#include "render/InstructionSet.h"
#include "render/ProjectionRenderer.h"
#include "render/RenderExamples.h"
#include "support/HostVolume.h"
#include "support/ProductRenderer.h"

namespace {

using namespace z3d;
using namespace z3d::test;

// Hosts are not told the depth of a projection: it comes from the renderer itself.
int DepthOf(::Volume3D* volume, const reference::Request& request) {
    const render::CropBox wholeVolume = {0, volume->width - 1, 0, volume->height - 1, 0, volume->depth - 1};
    return render::ProjectionRenderer(volume, request.rotation.data(), wholeVolume, 0).outputDepth;
}

template <render::InstructionSet set>
reference::Projection RenderWith(const reference::Volume& volume, const reference::Request& request) {
    const HostVolume hostVolume(volume);
    render::ForceInstructionSet(set);
    reference::Projection projection = RenderProduct(hostVolume.Get(), request);
    render::ForceInstructionSet(render::BestInstructionSet());
    projection.depth = DepthOf(hostVolume.Get(), request);
    return projection;
}

template <render::InstructionSet set>
RendererUnderTest Product(const char* name) {
    return {name, &RenderWith<set>, set <= render::BestInstructionSet()};
}

INSTANTIATE_TEST_SUITE_P(Product, RenderExamples,
                         ::testing::Values(Product<render::InstructionSet::Sse2>("Sse2"),
                                           Product<render::InstructionSet::Avx2>("Avx2"),
                                           Product<render::InstructionSet::Avx512>("Avx512"),
                                           Product<render::InstructionSet::Avx512Gather>("Avx512Gather")),
                         ::testing::PrintToStringParamName());

} // namespace
