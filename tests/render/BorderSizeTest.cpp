// Sides of 8, 16, 32 and 64 voxels, one less and one more: where a last block, stretch or vector is just full.
#include "render/KernelDifferential.h"

#include <bit>

namespace {

using namespace z3d;
using namespace z3d::test;

class BorderSizes : public KernelDifferential {
protected:
    static void ExpectAlike(const VolumeSize& size, RandomSource& random, int requests) {
        const ComparedVolume compared(RandomVolume(random, size));
        for (int index = 0; index < requests; ++index) {
            reference::Request request = RandomRequest(random, compared.Plain(), GetParam().mode);
            request.extraBits = std::bit_cast<std::uint32_t>(GetParam().extra);
            ASSERT_TRUE(compared.IsRenderedAlike(request)) << "request " << index;
        }
    }
};

constexpr std::array<int, 12> kSides = {7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65};

TEST_P(BorderSizes, OnOneAxis) {
    RandomSource random(1);
    for (const int side : kSides) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            std::array<int, 3> sides = {random.Between(1, 6), random.Between(1, 6), random.Between(1, 6)};
            sides[axis] = side;
            ASSERT_NO_FATAL_FAILURE(ExpectAlike(Size(sides[0], sides[1], sides[2]), random, 8))
                << "side " << side << " on axis " << axis;
        }
    }
}

TEST_P(BorderSizes, OnAllAxes) {
    RandomSource random(2);
    const auto side = [&](int last) { return kSides[static_cast<std::size_t>(random.Below(last))]; };
    for (int index = 0; index < 30; ++index) {
        const VolumeSize size = Size(side(9), side(9), side(9));
        ASSERT_NO_FATAL_FAILURE(ExpectAlike(size, random, 4)) << "volume " << index;
    }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, BorderSizes, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
