// Blends of every kind of weight, in volumes of many stretches, most of which are passed over: weights that grow
// without end, that are none, and those that lead a pixel back to the initial value.
#include "render/KernelDifferential.h"

#include <bit>
#include <limits>

namespace {

using namespace z3d;
using namespace z3d::test;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLargest = std::numeric_limits<float>::max();

class BlendWeights : public KernelDifferential {
protected:
    // Black with some grey voxels of 16, and fewer of any value.
    static reference::Volume SparseGreys(std::uint32_t seed) {
        RandomSource random(seed);
        reference::Volume volume = EmptyVolume(Size(37, 29, 45));
        for (int count = 0; count < 400; ++count) {
            const int value = random.Chance(3) ? random.Below(256) : 16;
            SetVoxel(volume, random.Below(37), random.Below(29), random.Below(45), {value, value, value});
        }
        return volume;
    }

    static void ExpectAlike(const ComparedVolume& compared, float transparency, float low, float high) {
        RandomSource random(1);
        for (const RotationKind kind : {RotationKind::Identity, RotationKind::Uniform}) {
            reference::Request request = ViewOf(compared.Plain(), RandomRotation(random, kind), low, high);
            request.extraBits = std::bit_cast<std::uint32_t>(transparency);
            EXPECT_TRUE(compared.IsRenderedAlike(request));
        }
    }
};

TEST_P(BlendWeights, OfAnyTransparency) {
    const ComparedVolume compared(SparseGreys(1));
    for (const float transparency :
         {0.0f,    0.5f,    0.99999994f, 1.0000001f, 2.0f,
          3.0f,    1e10f,   1e38f,       kLargest,   kInfinity,
          -0.0f,   -1e-43f, 1e-45f,      -1.0f,      -1.1f,
          -100.0f, -1e38f,  -kLargest,   -kInfinity, std::numeric_limits<float>::quiet_NaN()}) {
        ExpectAlike(compared, transparency, 0, 765);
        ExpectAlike(compared, transparency, 1, 300);
    }
}

// See the worked examples of both numbers.
TEST_P(BlendWeights, ThatLeadToTheInitialValue) {
    const float transparency = BytesPerVoxel() == 1 ? 0x1.fdfffcp127f : 0x1.fdfffep127f;
    const ComparedVolume compared(SparseGreys(2));
    const float greys = static_cast<float>(ValueOf({16, 16, 16}, BytesPerVoxel()));
    ExpectAlike(compared, transparency, greys, greys);
    ExpectAlike(compared, transparency, 0, greys);
}

INSTANTIATE_TEST_SUITE_P(Blends, BlendWeights,
                         ::testing::Values(KernelCase{"BlendGrey", RenderModeBlend, 0, 1},
                                           KernelCase{"BlendRgb", RenderModeBlend, 0, 3}),
                         ::testing::PrintToStringParamName());

} // namespace
