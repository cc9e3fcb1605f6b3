// GetRGBImage without a result: what the host hears, and that nothing is left over.
#include "support/RgbImage.h"

#include "support/RecordingHost.h"
#include "support/Refusals.h"
#include "support/Stacks.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <limits>
#include <string>

namespace {

using namespace z3d;
using namespace z3d::test;
using compose::RgbImageRequest;
using platform::Resource;

using Bytes = std::vector<std::uint8_t>;

const Bytes kSamples = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};

// Requests that take every path there is: three, two and one file, shared and apart, bytes and floats, with and
// without resampling in plane and in depth.
class EveryPath : public ::testing::Test {
protected:
    EveryPath() : red_(kSamples), green_(kSamples), blue_(kSamples) {
        const char* r = red_.Name();
        const char* g = green_.Name();
        const char* b = blue_.Name();
        for (const bool is8bit : {true, false}) {
            for (const std::int16_t maxDiagonal : {std::int16_t{99}, std::int16_t{4}, std::int16_t{1}}) {
                for (const bool apart : {true, false})
                    Add(r, r, r, is8bit, maxDiagonal, apart);
                Add(r, g, b, is8bit, maxDiagonal, false);
                Add(r, g, r, is8bit, maxDiagonal, false);
                Add(r, r, b, is8bit, maxDiagonal, false);
                Add(nullptr, g, g, is8bit, maxDiagonal, false);
                Add(r, nullptr, nullptr, is8bit, maxDiagonal, false);
            }
        }
    }

    std::vector<RgbImageRequest> requests_;

private:
    // A stored diagonal of 4.69, so that a limit of 4 leaves 2 x 2 x 1.
    void Add(const char* r, const char* g, const char* b, bool is8bit, std::int16_t maxDiagonal, bool apart) {
        RgbImageRequest request = Request(r, g, b, 3, 3, 2);
        request.is8bit = is8bit;
        request.maxDiagonal = maxDiagonal;
        request.keepChannelsApart = apart;
        requests_.push_back(request);
    }

    TemporaryFile red_;
    TemporaryFile green_;
    TemporaryFile blue_;
};

using RgbImageFailure = EveryPath;

TEST_F(RgbImageFailure, CanBeCancelledAtEveryCall) {
    for (const RgbImageRequest& request : requests_) {
        RecordingHost whole;
        ASSERT_TRUE(GetImage(request, whole.Get()).volume);
        for (int call = 0; call < whole.Calls(); ++call) {
            const std::int64_t before = OutstandingInTotal();
            RecordingHost host(call, call % 2 == 0 ? 200 : 65536 + 200);
            EXPECT_EQ(GetImage(request, host.Get()).volume, nullptr);
            Transcript expected(whole.Events().begin(), whole.Events().begin() + call + 1);
            expected.push_back(NoResult());
            EXPECT_EQ(host.Events(), expected);
            EXPECT_EQ(OutstandingInTotal(), before);
        }
    }
}

TEST_F(RgbImageFailure, FailsForEveryRefusedRequestExceptReads) {
    for (const RgbImageRequest& request : requests_) {
        int survived = 0;
        ForEveryRefusal([&](bool refused) {
            RecordingHost host;
            const ImageResult result = GetImage(request, host.Get());
            if (result.volume) {
                survived += refused ? 1 : 0;
                return;
            }
            EXPECT_EQ(host.Events().back(), NoResult());
        });
        EXPECT_EQ(survived % 2, 0); // two slices per file
        EXPECT_GE(survived, 2);
        EXPECT_LE(survived, 6);
    }
}

TEST_F(RgbImageFailure, HasFreedEverythingBeforeTheLastCall) {
    for (const RgbImageRequest& request : requests_) {
        const std::int64_t before = OutstandingInTotal();
        ForEveryRefusal([&](bool) {
            RecordingHost host;
            std::int64_t left = 0;
            host.atEachEvent = [&] { left = OutstandingInTotal() - before; };
            const ImageResult result = GetImage(request, host.Get());
            EXPECT_TRUE(result.volume || left == 0) << left;
        });
    }
}

TEST_F(RgbImageFailure, LeavesNothingOverAfterManyCalls) {
    const std::int64_t before = OutstandingInTotal();
    for (int round = 0; round < 50; ++round) {
        for (const RgbImageRequest& request : requests_) {
            RecordingHost host(round % 2 == 0 ? RecordingHost::kNever : round % 11);
            GetImage(request, host.Get());
        }
    }
    EXPECT_EQ(OutstandingInTotal(), before);
}

TEST(RgbImageMissingFile, EndsTheCallWhereverItIs) {
    const TemporaryFile good(kSamples);
    const std::string missing = MissingFileName();
    const Transcript loaded = {Start(), Percent(100)};
    for (int channel = 0; channel < 3; ++channel) {
        const char* names[3] = {good.Name(), good.Name(), good.Name()};
        names[channel] = missing.c_str();
        RgbImageRequest request = Request(names[0], names[1], names[2], 3, 2, 1);
        request.keepChannelsApart = true;
        const std::int64_t before = OutstandingInTotal();
        RecordingHost host;

        EXPECT_EQ(GetImage(request, host.Get()).volume, nullptr);

        Transcript expected;
        for (int before2 = 0; before2 < channel; ++before2)
            expected.insert(expected.end(), loaded.begin(), loaded.end());
        expected.push_back(Warning("Cannot open file"));
        expected.push_back(NoResult());
        EXPECT_EQ(host.Events(), expected);
        EXPECT_EQ(OutstandingInTotal(), before);
    }
}

TEST(RgbImageMissingFile, IsToldWithoutACallbackToo) {
    RecordingHost host;

    EXPECT_EQ(GetImage(Request(MissingFileName().c_str(), "", "", 1, 1, 1), host.WithoutCallback()).volume,
              nullptr);

    EXPECT_EQ(host.Events(), Transcript{Warning("Cannot open file")});
}

TEST(RgbImageMissingFile, MayBeAFolderOrANameThatIsTooLong) {
    for (const std::string& name : {FolderName(), std::string(40000, 'x'), std::string("\x01\xff?*<>|")}) {
        RecordingHost host;
        EXPECT_EQ(GetImage(Request(name.c_str(), nullptr, nullptr, 1, 1, 1), host.Get()).volume, nullptr);
        EXPECT_EQ(host.Events(), (Transcript{Warning("Cannot open file"), NoResult()}));
    }
}

TEST(RgbImageWithoutFiles, HasNoResultForBytes) {
    RecordingHost host;

    EXPECT_EQ(GetImage(Request(nullptr, "", nullptr, 1, 1, 1), host.Get()).volume, nullptr);

    EXPECT_EQ(host.Events(), Transcript{NoResult()});
}

TEST(RgbImageWithoutFiles, HasNoConversionForFloats) {
    RecordingHost host;
    RgbImageRequest request = Request(nullptr, nullptr, nullptr, 1, 1, 1);
    request.is8bit = false;

    EXPECT_EQ(GetImage(request, host.Get()).volume, nullptr);
    EXPECT_EQ(host.Events(), (Transcript{CannotRun(), NoResult()}));

    EXPECT_EQ(GetImage(request, host.WithoutCallback()).volume, nullptr);
}

TEST(RgbImageOutputs, HoldTheStartOfARangeAfterAFailure) {
    RecordingHost host(0);
    const TemporaryFile file(kSamples);

    const ImageResult cancelled = GetImage(Request(file.Name(), "", "", 1, 1, 1), host.Get());

    ExpectRange(cancelled, -FLT_MAX, FLT_MAX);
}

TEST(RgbImageOutputs, HoldTheRangeWhenOnlyTheCompositionFails) {
    RecordingHost host(2); // the composition's first call
    const TemporaryFile file(Bytes{4, 7});

    const ImageResult cancelled = GetImage(Request(file.Name(), "", "", 2, 1, 1), host.Get());

    EXPECT_EQ(cancelled.volume, nullptr);
    ExpectRange(cancelled, 7, 4);
}

struct Stored {
    std::int16_t width, height, depth;
};

TEST(RgbImageHostile, SizesBelowOneEndAfterTheStart) {
    const TemporaryFile file(kSamples);
    constexpr std::int16_t kLowest = std::numeric_limits<std::int16_t>::min();
    constexpr Stored kSizes[] = {{0, 2, 2},  {2, 0, 2},    {2, 2, 0},
                                 {0, 0, 0},  {-1, 2, 2},   {2, -1, 2},
                                 {2, 2, -1}, {-9, -9, -9}, {kLowest, kLowest, kLowest}};
    for (const Stored& size : kSizes) {
        for (const std::int16_t maxDiagonal : {kLowest, std::int16_t{0}, std::int16_t{5}}) {
            RecordingHost host;
            RgbImageRequest request = Request(file.Name(), "", "", size.width, size.height, size.depth);
            request.maxDiagonal = maxDiagonal;
            RefuseNothing();
            EXPECT_EQ(GetImage(request, host.Get()).volume, nullptr);
            EXPECT_EQ(host.Events(), (Transcript{Start(), NoResult()}));
            EXPECT_EQ(RequestsSeen(), 1); // the file's opening
        }
    }
}

TEST(RgbImageHostile, SizesBelowOneStillOpenTheFile) {
    RecordingHost host;

    EXPECT_EQ(GetImage(Request(MissingFileName().c_str(), "", "", 0, -1, 0), host.Get()).volume, nullptr);

    EXPECT_EQ(host.Events(), (Transcript{Warning("Cannot open file"), NoResult()}));
}

// A slice of 4 GiB less 256 KiB: more than a 32-bit process has.
TEST(RgbImageHostile, SaysThatMemoryIsShortForSlicesThatCannotBeHad) {
    const TemporaryFile file(kSamples);
    RecordingHost host;
    RgbImageRequest request = Request(file.Name(), "", "", 32767, 32767, 1);
    request.is8bit = false;
    request.maxDiagonal = 3;

    // The file, the result's handle and table, the slice's handle; then its pixels.
    RefuseFrom(4);
    EXPECT_EQ(GetImage(request, host.Get()).volume, nullptr);
    RefuseNothing();

    EXPECT_EQ(host.Events(), (Transcript{Start(), Warning("Out of memmory"), NoResult()}));
}

// A process of 64 bits gets it.
#if defined(_WIN32) && !defined(_WIN64)
TEST(RgbImageHostile, SaysThatMemoryIsShortInThisProcess) {
    const TemporaryFile file(kSamples);
    RecordingHost host;
    RgbImageRequest request = Request(file.Name(), "", "", 32767, 32767, 1);
    request.is8bit = false;
    request.maxDiagonal = 3;

    EXPECT_EQ(GetImage(request, host.Get()).volume, nullptr);

    EXPECT_EQ(host.Events(), (Transcript{Start(), Warning("Out of memmory"), NoResult()}));
}
#endif

TEST(RgbImageHostile, TakesAnyFloats) {
    constexpr std::uint32_t kPatterns[] = {0x7FC00000, 0xFFC00001, 0x7F800001, 0x7F800000,
                                           0xFF800000, 0x80000000, 0x00000001, 0x7F7FFFFF,
                                           0xFF7FFFFF, 0x4F000000, 0xCF000001, 0};
    std::vector<float> samples;
    for (const std::uint32_t pattern : kPatterns)
        samples.push_back(std::bit_cast<float>(pattern));
    for (std::size_t rotation = 0; rotation < samples.size(); ++rotation) {
        std::rotate(samples.begin(), samples.begin() + 1, samples.end());
        const TemporaryFile file(samples);
        for (const std::int16_t maxDiagonal : {std::int16_t{99}, std::int16_t{3}}) {
            for (const char* green : {file.Name(), ""}) {
                RgbImageRequest request = Request(file.Name(), green, green, 2, 2, 3);
                request.is8bit = false;
                request.maxDiagonal = maxDiagonal;
                EXPECT_TRUE(GetImage(request).volume);
            }
        }
    }
}

TEST(RgbImageHostile, TakesFilesOfAnyLength) {
    for (std::size_t length = 0; length <= kSamples.size(); ++length) {
        Bytes samples = kSamples;
        samples.resize(length);
        const TemporaryFile file(samples);
        for (const bool is8bit : {true, false}) {
            RgbImageRequest request = Request(file.Name(), nullptr, nullptr, 3, 2, 2);
            request.is8bit = is8bit;
            EXPECT_TRUE(GetImage(request).volume) << length;
        }
    }
}

} // namespace
