// Rays whose voxels are the last sample of one stretch and the first of a later one, with nothing between: what is
// passed over in between has to count as empty.
#include "render/KernelDifferential.h"

#include "reference/ReferenceSample.h"

namespace {

using namespace z3d;
using namespace z3d::test;

class PassedStretches : public KernelDifferential {
protected:
    // Two rays that are alike but for z; the view leans from y towards x. In two slices shades are 1.
    static reference::Request LeaningView(const reference::Volume& volume, double halfTangent, int firstRow) {
        const Rotation turned = Rounded(AboutAxis(0, FromHalfTangent(halfTangent)));
        reference::Request request = ViewOf(volume, {0, 0, 1, 0, 0, 0, turned[7], turned[8], 0}, 0, 766);
        request.y0 = static_cast<std::int16_t>(firstRow);
        return request;
    }
};

// A bound leaves both voxels out where the first lies a block behind on one axis, and the second a block ahead on the
// other.
TEST_P(PassedStretches, BetweenTwoVoxelsOfARay) {
    const reference::Volume empty = EmptyVolume(Size(50, 70, 2));
    for (int angle = 150; angle <= 400; angle += 3) {
        for (int first = 1; first <= 9; ++first) {
            const reference::Request request = LeaningView(empty, -angle / 1000.0, first);
            const auto frame = reference::BuildFrame(empty, request);
            const auto ray = reference::TraceRay(*frame, 1, 0);
            ASSERT_TRUE(ray && ray->lastDepth - ray->firstDepth >= 32);

            reference::Volume volume = empty;
            reference::Point position = reference::PositionAt(*frame, *ray, ray->firstDepth);
            for (int sample = 0; sample <= 32; ++sample) {
                const reference::Voxel voxel = reference::NearestVoxel(*frame, position);
                for (int z = 0; z < 2 && (sample == 15 || sample == 32); ++z)
                    SetVoxel(volume, voxel.x, voxel.y, z, {200, 100, 50});
                reference::StepForward(*frame, position);
            }
            ASSERT_TRUE(ComparedVolume(std::move(volume)).IsRenderedAlike(request)) << "angle " << angle;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kernels, PassedStretches,
                         ::testing::Values(KernelCase{"LayersGrey", RenderModeSurface, 0.5f, 1},
                                           KernelCase{"LayersRgb", RenderModeSurface, 0.5f, 3}),
                         ::testing::PrintToStringParamName());

} // namespace
