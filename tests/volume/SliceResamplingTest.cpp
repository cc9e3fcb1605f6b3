#include "volume/SliceResampling.h"

#include "frame/LockedImage.h"
#include "support/Refusals.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;
using namespace z3d::test;
using frame::OwnedImage;
using frame::OwnedVolume;

// The one slice of a stack, resampled, as a stack again.
OwnedVolume Resampled(const reference::Volume& stack, int newWidth, int newHeight) {
    const OwnedVolume source = ToVolume(stack);
    OwnedVolume result(frame::GlobalAlloc3D(static_cast<std::uint32_t>(newWidth),
                                            static_cast<std::uint32_t>(newHeight), 1, 0));
    volume::SliceResampler resampler({stack.width, stack.height}, {newWidth, newHeight},
                                     source->slices[0]->bytesPerPixel);
    result->slices[0] = resampler.Resample(source->slices[0]).release();
    EXPECT_TRUE(HasSamples(source.get(), stack)) << "the source has changed";
    return result;
}

// The size stays in one direction: columns 1 and 2 of 3 move to the left end, the third stays zero; of 2 rows
// stretched to 4 only row 1 contributes, to the first trunc(4 / 2) of them.
TEST(SliceResampling, StartsOneColumnAndOneRowIn) {
    const OwnedVolume result = Resampled(ByteStack(3, 2, 1, {1, 2, 3, 4, 5, 6}), 3, 4);

    EXPECT_TRUE(HasSamples(result.get(), ByteStack(3, 4, 1, {5, 6, 0, 5, 6, 0, 0, 0, 0, 0, 0, 0})));
}

TEST(SliceResampling, InterpolatesFloats) {
    // Three of the four columns and one of the two rows span 3 / 4 * 12 = 9 columns and 1 row.
    const OwnedVolume result = Resampled(FloatStack(4, 2, 1, {9, 9, 9, 9, 9, -4, 0, 8}), 12, 2);

    const std::vector<float> expected = {-4, -3, -2, -1, 0, 2, 4, 6, 8, 0, 0, 0, // row 0
                                         0,  0,  0,  0,  0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(HasSamples(result.get(), FloatStack(12, 2, 1, expected)));
}

TEST(SliceResampling, GivesZeroesForASliceOfOneColumnOrRow) {
    EXPECT_TRUE(
        HasSamples(Resampled(ByteStack(1, 3, 1, {1, 2, 3}), 2, 2).get(), ByteStack(2, 2, 1, {0, 0, 0, 0})));
    EXPECT_TRUE(
        HasSamples(Resampled(FloatStack(3, 1, 1, {1, 2, 3}), 2, 1).get(), FloatStack(2, 1, 1, {0, 0})));
}

TEST(SliceResampling, GivesNullWhenAnythingIsRefused) {
    ForEveryRefusal([](bool refused) {
        const OwnedImage source(frame::GlobalAlloc2D(5, 4, 1));
        if (!source) return;
        volume::SliceResampler resampler({5, 4}, {3, 6}, 1);
        const OwnedImage result = resampler.Resample(source.get());
        EXPECT_EQ(result == nullptr, refused);
        EXPECT_EQ(source->rows, nullptr);
    });
}

TEST(SliceResampling, DoesNotMixTheSlicesOfAStack) {
    const OwnedVolume slices = ToVolume(FloatStack(3, 2, 2, {0, 0, 0, 0, 8, 9, 0, 0, 0, 0, 2, 4}));
    volume::SliceResampler resampler({3, 2}, {3, 2}, 4);

    for (const float first : {8.0f, 2.0f}) {
        const OwnedImage result = resampler.Resample(slices->slices[first == 8.0f ? 0 : 1]);
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(frame::LockedImage(result.get()).Floats()[0], first);
    }
}

} // namespace
