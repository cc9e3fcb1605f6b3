// Viewing directions of up to 1024 samples per voxel, the longest that are rendered; and depths of output beyond the
// whole numbers that floats can tell apart.
#include "render/KernelDifferential.h"

#include "reference/ReferenceRay.h"

#include <bit>

namespace {

using namespace z3d;
using namespace z3d::test;

class LongViews : public KernelDifferential {
protected:
    static reference::Request RequestOf(const reference::Volume& volume, float length) {
        return ViewOf(volume, {1, 0, 0, 0, 1, 0, 0, 0, length});
    }
};

TEST_P(LongViews, OfAboutAThousandSamplesPerVoxel) {
    RandomSource random(1);
    for (int index = 0; index < 60; ++index) {
        const ComparedVolume compared(RandomVolume(random, RandomSize(random, 5, BytesPerVoxel())));
        reference::Request request = RandomRequest(random, compared.Plain(), GetParam().mode);
        request.extraBits = std::bit_cast<std::uint32_t>(GetParam().extra);
        request.rotation = RandomRotation(random, RotationKind::Uniform);
        for (std::size_t element = 6; element < 9; ++element)
            request.rotation[element] *= index < 30 ? 1000.0f : 1024.0f;
        ASSERT_TRUE(compared.IsRenderedAlike(request)) << "request " << index;
    }
}

// 16399 * 1023.9375 is 16791551 and a fraction: an odd number above 2^24, which no float is.
TEST_P(LongViews, WhoseDepthNoFloatIs) {
    RandomSource random(2);
    const ComparedVolume compared(RandomVolume(random, Size(3, 3, 16400)));
    reference::Request request = RequestOf(compared.Plain(), 1023.9375f);
    for (const bool nearEnd : {false, true}) {
        const int slice = nearEnd ? 1 : 16400;
        CropAxis(request, 2, slice, slice);
        EXPECT_TRUE(compared.IsRenderedAlike(request));
    }
}

// The last of 16777220 depths is 16777219, which is kept as 16777220: there, and at no other depth, one of the two rays
// meets the volume, which is a single column.
TEST_P(LongViews, ThatMeetTheVolumeAtALastDepthThatWasRoundedUp) {
    const ComparedVolume compared(NoiseVolume(Size(1, 1, 16500), 3));
    const Rotation stretching = {1, 0, 0x1.310f0cp-14f, 0, 1, 0, -0x1.f8e338p-5f, 0, 0x1.fc6e7p+9f};
    const reference::Request request = ViewOf(compared.Plain(), stretching);
    const auto frame = reference::BuildFrame(compared.Plain(), request);
    ASSERT_EQ(frame->outputSize, (std::array{2, 1, 16777220}));
    const auto ray = reference::TraceRay(*frame, 1, 0);
    ASSERT_TRUE(ray && ray->firstDepth == 16777220 && ray->lastDepth == 16777220);

    EXPECT_TRUE(compared.IsRenderedAlike(request));
}

INSTANTIATE_TEST_SUITE_P(AllKernels, LongViews, ::testing::ValuesIn(AllKernels()),
                         [](const auto& kernel) { return std::string(kernel.param.name); });

} // namespace
