// GetRGBImage: which files become what, and what the host hears about it.
#include "support/RgbImage.h"

#include "support/RecordingHost.h"
#include "support/Stacks.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <string>

namespace {

using namespace z3d;
using namespace z3d::test;

using Bytes = std::vector<std::uint8_t>;
using Floats = std::vector<float>;

TEST(RgbImage, ComposesThreeFiles) {
    const TemporaryFile red(Bytes{0, 10});
    const TemporaryFile green(Bytes{20, 255});
    const TemporaryFile blue(Bytes{40, 50});

    const ImageResult result = GetImage(Request(red.Name(), green.Name(), blue.Name(), 2, 1, 1));

    EXPECT_TRUE(HasSamples(result.volume.get(), RgbStack(2, 1, 1, {0, 20, 40, 10, 255, 50})));
    ExpectRange(result, 255, 0);
    // Grey (1365 * 60) >> 12 = 19 and (1365 * 315) >> 12 = 104, which becomes 105.
    ExpectDisplay(result, 315, 57);
}

// The bytes of all channels go from 10 to 30, so 0 stands for 10 and 255 for 30: 20 is 11.57, 30 is 12.35.
TEST(RgbImage, MapsAllChannelsThroughTheirCommonRange) {
    const TemporaryFile red(Bytes{10, 20});
    const TemporaryFile green(Bytes{30, 30});

    const ImageResult result = GetImage(Request(red.Name(), green.Name(), nullptr, 2, 1, 1));

    EXPECT_TRUE(HasSamples(result.volume.get(), RgbStack(2, 1, 1, {11, 12, 10, 12, 12, 10})));
    ExpectRange(result, 30, 10);
}

TEST(RgbImage, ComposesFloats) {
    const TemporaryFile red(Floats{-1, 3});
    const TemporaryFile blue(Floats{1, 0});
    compose::RgbImageRequest request = Request(red.Name(), "", blue.Name(), 1, 1, 2);
    request.is8bit = false;

    const ImageResult result = GetImage(request);

    // From -1 to 3: 0 is 63.75, 1 is 127.5.
    EXPECT_TRUE(HasSamples(result.volume.get(), RgbStack(1, 1, 2, {0, 64, 128, 255, 64, 64})));
    ExpectRange(result, 3, -1);
}

TEST(RgbImage, ReturnsOneFileOfBytesAsItIs) {
    const TemporaryFile file(Bytes{7, 9, 8, 30});
    RecordingHost host;

    const ImageResult result = GetImage(Request(file.Name(), file.Name(), file.Name(), 1, 2, 2), host.Get());

    EXPECT_TRUE(HasSamples(result.volume.get(), ByteStack(1, 2, 2, {7, 9, 8, 30})));
    ExpectDisplay(result, 30, 7);
    ExpectRange(result, 30, 7);
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(50), Percent(100)}));
}

TEST(RgbImage, ConvertsOneFileOfFloatsToGrey) {
    const TemporaryFile file(Floats{-1, 0, 1, 3});
    compose::RgbImageRequest request = Request(file.Name(), file.Name(), file.Name(), 2, 1, 2);
    request.is8bit = false;
    RecordingHost host;

    const ImageResult result = GetImage(request, host.Get());

    EXPECT_TRUE(HasSamples(result.volume.get(), ByteStack(2, 1, 2, {0, 64, 128, 255})));
    ExpectDisplay(result, 255, 0);
    ExpectRange(result, 3, -1);
    // One load, then the conversion without a start.
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(50), Percent(100), Percent(50), Percent(100)}));
}

TEST(RgbImage, LoadsASharedFileOnce) {
    const TemporaryFile shared(Bytes{1, 2});
    const TemporaryFile green(Bytes{0, 255});
    RecordingHost host;

    const ImageResult result =
        GetImage(Request(shared.Name(), green.Name(), shared.Name(), 2, 1, 1), host.Get());

    EXPECT_TRUE(HasSamples(result.volume.get(), RgbStack(2, 1, 1, {1, 0, 1, 2, 255, 2})));
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(100), Start(), Percent(100), Percent(100)}));
}

TEST(RgbImage, SharesTheRedFileWithGreenAlone) {
    const TemporaryFile shared(Bytes{0, 255});
    RecordingHost host;

    const ImageResult result = GetImage(Request(shared.Name(), shared.Name(), nullptr, 2, 1, 1), host.Get());

    EXPECT_TRUE(HasSamples(result.volume.get(), RgbStack(2, 1, 1, {0, 0, 0, 255, 255, 0})));
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(100), Percent(100)}));
}

TEST(RgbImage, LoadsAFileAgainThatIsNotTheRedOne) {
    const TemporaryFile file(Bytes{0, 255});
    RecordingHost host;

    const ImageResult result = GetImage(Request("", file.Name(), file.Name(), 2, 1, 1), host.Get());

    EXPECT_TRUE(HasSamples(result.volume.get(), RgbStack(2, 1, 1, {0, 0, 0, 0, 255, 255})));
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(100), Start(), Percent(100), Percent(100)}));
}

TEST(RgbImage, KeepsChannelsApartWhenAsked) {
    const TemporaryFile file(Bytes{0, 255});
    compose::RgbImageRequest request = Request(file.Name(), file.Name(), file.Name(), 2, 1, 1);
    request.keepChannelsApart = true;
    RecordingHost host;

    const ImageResult result = GetImage(request, host.Get());

    EXPECT_TRUE(HasSamples(result.volume.get(), RgbStack(2, 1, 1, {0, 0, 0, 255, 255, 255})));
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(100), Start(), Percent(100), Start(), Percent(100),
                                         Percent(100)}));
}

// The same file by another path is still another name.
TEST(RgbImage, TakesAnotherSpellingAsAnotherFile) {
    const TemporaryFile file(Bytes{0, 255});
    std::string spelling = file.Name();
    const std::size_t slash = spelling.find_last_of("/\\");
    spelling.insert(slash, "/.");
    RecordingHost host;

    const ImageResult result =
        GetImage(Request(file.Name(), spelling.c_str(), spelling.c_str(), 2, 1, 1), host.Get());

    EXPECT_TRUE(HasSamples(result.volume.get(), RgbStack(2, 1, 1, {0, 0, 0, 255, 255, 255})));
    EXPECT_EQ(host.Events().size(), 7u);
}

TEST(RgbImage, FitsTheDiagonal) {
    const TemporaryFile file(Bytes(6 * 3 * 2, 9));
    compose::RgbImageRequest request = Request(file.Name(), file.Name(), file.Name(), 6, 3, 2);
    request.maxDiagonal = 6; // of 7

    const ImageResult result = GetImage(request);

    ASSERT_TRUE(result.volume);
    EXPECT_EQ(result.volume->width, 5);
    EXPECT_EQ(result.volume->height, 2);
    EXPECT_EQ(result.volume->depth, 1);
}

TEST(RgbImage, BecomesOneVoxelWithoutADiagonal) {
    const TemporaryFile file(Bytes(8, 9));
    compose::RgbImageRequest request = Request(file.Name(), file.Name(), file.Name(), 2, 2, 2);
    request.maxDiagonal = -3;
    RecordingHost host;

    const ImageResult result = GetImage(request, host.Get());

    EXPECT_TRUE(HasSamples(result.volume.get(), ByteStack(1, 1, 1, {9})));
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(50), Percent(100), Start(), Percent(100)}));
}

TEST(RgbImage, HasPhasesForEveryFileAndTheResult) {
    const TemporaryFile red(Bytes(8, 9));
    const TemporaryFile green(Bytes(8, 5));
    compose::RgbImageRequest request = Request(red.Name(), green.Name(), nullptr, 2, 2, 2);
    request.maxDiagonal = 2; // of 3.46: one voxel
    RecordingHost host;

    const ImageResult result = GetImage(request, host.Get());

    EXPECT_TRUE(result.volume);
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(50), Percent(100), Start(), Percent(100), //
                                         Start(), Percent(50), Percent(100), Start(), Percent(100), //
                                         Percent(100)}));
}

TEST(RgbImage, RunsToItsEndWithoutACallback) {
    const TemporaryFile red(Floats{1, 2});
    const TemporaryFile green(Floats{3, 4});
    compose::RgbImageRequest request = Request(red.Name(), green.Name(), nullptr, 1, 1, 2);
    request.is8bit = false;
    RecordingHost host(0);

    EXPECT_TRUE(GetImage(request, host.WithoutCallback()).volume);
    EXPECT_EQ(host.Events(), Transcript{});
}

TEST(RgbImage, SkipsOutputsThatAreNotWanted) {
    const TemporaryFile bytes(Bytes{1, 2});
    const TemporaryFile floats(Floats{3, 4});
    RecordingHost host;
    compose::RgbImageRequest grey = Request(floats.Name(), floats.Name(), floats.Name(), 1, 1, 2);
    grey.is8bit = false;

    for (const auto& request : {Request(bytes.Name(), nullptr, nullptr, 1, 1, 2),
                                Request(bytes.Name(), bytes.Name(), bytes.Name(), 1, 1, 2), grey}) {
        const frame::OwnedVolume volume(compose::GetRGBImage(request, host.Get()));
        EXPECT_TRUE(volume);
    }
}

// Only both together receive the range; one alone keeps the start of a range.
TEST(RgbImage, StoresTheRangeForBothOutputsOnly) {
    const TemporaryFile file(Bytes{1, 2});
    RecordingHost host;
    compose::RgbImageRequest request = Request(file.Name(), nullptr, nullptr, 1, 1, 2);
    float alone = kUntouched;

    request.rangeMaxOut = &alone;
    EXPECT_TRUE(frame::OwnedVolume(compose::GetRGBImage(request, host.Get())));
    EXPECT_EQ(alone, -FLT_MAX);

    request.rangeMaxOut = nullptr;
    request.rangeMinOut = &alone;
    EXPECT_TRUE(frame::OwnedVolume(compose::GetRGBImage(request, host.Get())));
    EXPECT_EQ(alone, FLT_MAX);
}

TEST(RgbImage, HasARangeOfAllChannelsAfterResampling) {
    const TemporaryFile red(Bytes{255, 255, 255, 40});
    const TemporaryFile green(Bytes{255, 255, 255, 60});
    const TemporaryFile blue(Bytes{255, 255, 255, 50});
    compose::RgbImageRequest request = Request(red.Name(), green.Name(), blue.Name(), 2, 2, 1);
    request.maxDiagonal = 2; // of 3: one voxel, column 1 and row 1 of each file

    const ImageResult result = GetImage(request);

    ExpectRange(result, 60, 40);
}

} // namespace
