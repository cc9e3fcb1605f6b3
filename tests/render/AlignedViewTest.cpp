// Views by lines where the scratch memory of lines cannot be had. Others by lines are topics of the table of views.
#include "render/KernelDifferential.h"

#include "frame/Image2D.h"
#include "support/ProductRenderer.h"
#include "support/Refusals.h"
#include "support/SameBits.h"

namespace {

using namespace z3d;
using namespace z3d::test;

class AlignedViews : public KernelDifferential {};

// Rendering is slower and the same.
TEST_P(AlignedViews, WhereMemoryIsShort) {
    RandomSource random(4);
    const reference::Volume volume = RandomVolume(random, Size(9, 21, 18));
    const HostVolume host(volume);
    for (int axis = 0; axis < 3; ++axis) {
        const reference::Request request =
            ViewOf(volume, Turntable(axis, FromHalfTangent(0.3), 5, kCosinesOf90[1], true));
        const reference::Projection expected = reference::Render(volume, request);
        int rendered = 0;
        ForEveryRefusal([&](bool) {
            const reference::Projection projection = RenderProduct(host.Get(), request);
            // The slice whose lock was refused keeps its unfilled row table until it is unlocked.
            for (std::size_t z = 0; z < 18; ++z)
                frame::GlobalUnlock2D(host->slices[z]);
            if (!projection.rendered) return;
            ++rendered;
            EXPECT_TRUE(SameBits(expected, projection));
        });
        // By lines, and once more without each of their allocations.
        const bool hasLines = request.mode <= RenderModeSum || request.mode == RenderModeBlend
                              || request.mode == RenderModeFirstHit;
        EXPECT_GE(rendered, hasLines ? 3 : 1);
    }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, AlignedViews, ::testing::ValuesIn(AllKernels()),
                         [](const auto& kernel) { return std::string(kernel.param.name); });

} // namespace
