// Kernels find the nearest voxel in single precision: for every coordinate that a sample can have, and any float around
// them, that is the voxel that doubles say. Sampled; `scripts/test --long` looks at every float.
#include "render/StretchProbe.h"
#include "support/InstructionSets.h"
#include "support/LongTests.h"
#include "support/RandomRequests.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <ios>

namespace {

using namespace z3d;
using namespace z3d::test;

// Bits of floats. Those below 65536, and, with their sign, above -2.
constexpr std::uint32_t kLastPositive = 0x477FFFFF;
constexpr std::uint32_t kFirstNegative = 0x80000000;
constexpr std::uint32_t kLastNegative = 0xBFFFFFFF;

// An x axis of `width` voxels and a z axis of `depth`, seen straight on.
class Axes {
public:
    Axes(std::uint16_t width, std::uint16_t depth)
        : sizes_{nullptr, nullptr, width, 1, depth},
          view_(&sizes_, kIdentity.data(), {0, width - 1, 0, 0, 0, depth - 1}, 0) {}

    // Of floats by their bits, from the first to the last one.
    void ExpectNearest(render::InstructionSet set, std::uint32_t first, std::uint32_t last,
                       std::uint32_t stride) const {
        const render::Projection projection = {
            view_, {nullptr, sizes_.width, 1, sizes_.depth}, {}, nullptr, render::SkipPolicy::WhereItPays};
        const std::int64_t wrong = ProbeOf(set).findWrongIndex(projection, first, last, stride);
        EXPECT_EQ(wrong, -1) << std::hexfloat << std::bit_cast<float>(static_cast<std::uint32_t>(wrong))
                             << " in widths of " << sizes_.width << ", depths of " << sizes_.depth;
    }

private:
    ::Volume3D sizes_;
    render::ProjectionRenderer view_;
};

class NearestIndexes : public OnInstructionSet {};

TEST_P(NearestIndexes, AreThoseOfDoublesForEveryFloat) {
    const std::uint32_t stride = AreTestsLong() ? 1 : 257;
    // Rows below and above 2^15 voxels are addressed in two ways.
    for (const std::uint16_t width : {std::uint16_t{32767}, std::uint16_t{65535}}) {
        const Axes axes(width, 65535);
        axes.ExpectNearest(GetParam(), 0, kLastPositive, stride);
        axes.ExpectNearest(GetParam(), kFirstNegative, kLastNegative, stride);
    }
}

TEST_P(NearestIndexes, AreThoseOfDoublesBesideEveryBorderBetweenTwoVoxels) {
    const Axes axes(65535, 65535);
    for (int voxel = 0; voxel < 65536; ++voxel) {
        for (const double border : {voxel + 0.51, voxel + 0.49, voxel + 0.0}) {
            const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(border));
            axes.ExpectNearest(GetParam(), bits < 8 ? 0 : bits - 8, std::min(bits + 8, kLastPositive), 1);
        }
    }
}

TEST_P(NearestIndexes, AreThoseOfDoublesOnShortAxes) {
    for (const std::uint16_t size :
         {std::uint16_t{1}, std::uint16_t{2}, std::uint16_t{3}, std::uint16_t{255}}) {
        const Axes axes(size, size);
        axes.ExpectNearest(GetParam(), 0, kLastPositive, 9973);
        axes.ExpectNearest(GetParam(), kFirstNegative, kLastNegative, 9973);
    }
}

INSTANTIATE_TEST_SUITE_P(AllInstructionSets, NearestIndexes, ::testing::ValuesIn(render::kInstructionSets),
                         [](const auto& set) { return NameOf(set.param); });

} // namespace
