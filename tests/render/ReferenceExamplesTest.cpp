#include "render/RenderExamples.h"

namespace {

using namespace z3d;
using namespace z3d::test;

INSTANTIATE_TEST_SUITE_P(Reference, RenderExamples,
                         ::testing::Values(RendererUnderTest{"Reference", &reference::Render}),
                         ::testing::PrintToStringParamName());

TEST(ReferenceRenderer, SizesAreNotCutTo16Bits) {
    const reference::Volume volume = GreyVolume(2, 1, 1, {1, 2});

    const reference::Projection projection =
        reference::Render(volume, PlainRequest(volume, RenderModeMaximum, {70000, 0, 0, 0, 1, 0, 0, 0, 1}));

    EXPECT_EQ(projection.width, 70001);
    EXPECT_EQ(projection.pixels.size(), 70001u * 3u);
}

} // namespace
