#include "render/RenderExamples.h"

namespace {

using namespace z3d;
using namespace z3d::test;

INSTANTIATE_TEST_SUITE_P(Reference, RenderExamples,
                         ::testing::Values(RendererUnderTest{"Reference", &reference::Render}),
                         ::testing::PrintToStringParamName());

} // namespace
