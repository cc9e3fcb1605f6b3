// How many images are alive while GetRGBImage works: part of what a 32-bit host can rely on.
#include "support/RgbImage.h"

#include "support/RecordingHost.h"
#include "support/Refusals.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;
using namespace z3d::test;
using platform::Resource;

using Counts = std::vector<std::int64_t>;

// Images alive at each call of the callback, and the most at any time.
struct ImageCounts {
    Counts atCalls;
    std::int64_t peak;
};

ImageCounts CountImages(const compose::RgbImageRequest& request) {
    ImageCounts counts;
    const std::int64_t before = Outstanding(Resource::Block);
    RecordingHost host;
    host.atEachEvent = [&] { counts.atCalls.push_back(Outstanding(Resource::Block) - before); };
    RefuseNothing();
    const ImageResult result = GetImage(request, host.Get());
    EXPECT_TRUE(result.volume);
    EXPECT_EQ(Outstanding(Resource::Block) - before, result.volume->depth);
    counts.peak = PeakOutstanding(Resource::Block) - before;
    return counts;
}

const std::vector<std::uint8_t> kThrees(4 * 4 * 4, 3);

TEST(RgbImageMemory, OfThreeFilesIsTheThreeChannelsAndOneSlice) {
    const TemporaryFile red(kThrees);
    const TemporaryFile green(kThrees);
    const TemporaryFile blue(kThrees);

    const ImageCounts counts = CountImages(Request(red.Name(), green.Name(), blue.Name(), 4, 4, 4));

    EXPECT_EQ(counts.atCalls, (Counts{0, 1, 2, 3, 4, 4, 5, 6, 7, 8, 8, 9, 10, 11, 12, 12, 10, 8, 6}));
    EXPECT_EQ(counts.peak, 13);
}

TEST(RgbImageMemory, OfOneFileOfBytesIsTheResult) {
    const TemporaryFile file(kThrees);

    const ImageCounts counts = CountImages(Request(file.Name(), file.Name(), file.Name(), 4, 4, 4));

    EXPECT_EQ(counts.atCalls, (Counts{0, 1, 2, 3, 4}));
    EXPECT_EQ(counts.peak, 4);
}

TEST(RgbImageMemory, OfOneFileOfFloatsIsTheFileAndOneSlice) {
    const TemporaryFile file(kThrees);
    compose::RgbImageRequest request = Request(file.Name(), file.Name(), file.Name(), 4, 4, 4);
    request.is8bit = false;

    const ImageCounts counts = CountImages(request);

    EXPECT_EQ(counts.atCalls, (Counts{0, 1, 2, 3, 4, 4, 4, 4, 4}));
    EXPECT_EQ(counts.peak, 5);
}

// 4 x 4 x 4 becomes 2 x 2 x 2: each slice is resized as it is read, so the full size is there once at a time.
TEST(RgbImageMemory, OfAResampledFileIsItsSmallSlices) {
    const TemporaryFile file(kThrees);
    compose::RgbImageRequest request = Request(file.Name(), file.Name(), file.Name(), 4, 4, 4);
    request.maxDiagonal = 4;

    const ImageCounts counts = CountImages(request);

    EXPECT_EQ(counts.atCalls, (Counts{0, 1, 2, 3, 4, 4, 4 + 1, 2 + 2}));
    EXPECT_EQ(counts.peak, 5);
}

// At the calls between slices nothing else is held: the volumes' handles and tables, and the images' handles.
TEST(RgbImageMemory, OfScratchIsNoneBetweenSlices) {
    const TemporaryFile red(kThrees);
    const std::int64_t before = Outstanding(Resource::Heap);
    RecordingHost host;
    Counts heap;
    host.atEachEvent = [&] { heap.push_back(Outstanding(Resource::Heap) - before); };

    GetImage(Request(red.Name(), nullptr, nullptr, 4, 4, 4), host.Get());

    EXPECT_EQ(heap, (Counts{0, 2 + 1, 2 + 2, 2 + 3, 2 + 4, 4 + 4, 4 + 4, 4 + 4, 4 + 4}));
}

} // namespace
