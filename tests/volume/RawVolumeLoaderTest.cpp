#include "volume/RawVolumeLoader.h"

#include "reference/PlainPipeline.h"
#include "support/RandomSource.h"
#include "support/RecordingHost.h"
#include "support/Stacks.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>

namespace {

using namespace z3d;
using namespace z3d::test;
using frame::OwnedVolume;
using primitives::ValueRange;
using volume::VolumeSize;

struct LoadResult {
    OwnedVolume volume;
    ValueRange running;
    ValueRange range;
    Transcript events;
};

LoadResult Load(const TemporaryFile& file, const VolumeSize& stored, bool is8bit, const VolumeSize& size,
                const ValueRange& running = {}) {
    LoadResult result;
    result.running = running;
    RecordingHost host;
    result.volume =
        volume::LoadRawVolume({file.Name(), stored, is8bit}, size, result.running, result.range, host.Get());
    result.events = host.Events();
    return result;
}

std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

void ExpectRange(const ValueRange& range, float max, float min) {
    EXPECT_EQ(Bits(range.max), Bits(max));
    EXPECT_EQ(Bits(range.min), Bits(min));
}

TEST(RawVolumeLoader, ReturnsTheFilesSlicesAtTheirOwnSize) {
    const TemporaryFile file(std::vector<std::uint8_t>{5, 6, 7, 8, 9, 10, 11, 12});

    const LoadResult result = Load(file, {2, 2, 2}, true, {2, 2, 2});

    EXPECT_TRUE(HasSamples(result.volume.get(), ByteStack(2, 2, 2, {5, 6, 7, 8, 9, 10, 11, 12})));
    ExpectRange(result.range, 12, 5);
    ExpectRange(result.running, 12, 5);
    EXPECT_EQ(result.events, (Transcript{Start(), Percent(50), Percent(100)}));
}

TEST(RawVolumeLoader, ReadsFloatsInTheirByteOrder) {
    const TemporaryFile file(std::vector<std::uint8_t>{0, 0, 0x80, 0x3F, 0, 0, 0x20, 0xC1});

    const LoadResult result = Load(file, {2, 1, 1}, false, {2, 1, 1});

    EXPECT_TRUE(HasSamples(result.volume.get(), FloatStack(2, 1, 1, {1, -10})));
    ExpectRange(result.range, 1, -10);
}

TEST(RawVolumeLoader, IgnoresWhatIsBeyondTheLastSlice) {
    const TemporaryFile file(std::vector<std::uint8_t>{5, 6, 200, 0});

    const LoadResult result = Load(file, {1, 1, 2}, true, {1, 1, 2});

    EXPECT_TRUE(HasSamples(result.volume.get(), ByteStack(1, 1, 2, {5, 6})));
    ExpectRange(result.range, 6, 5);
}

TEST(RawVolumeLoader, TakesWhatTheFileLacksAsZero) {
    const TemporaryFile file(std::vector<float>{4, 3, 2});

    const LoadResult result = Load(file, {2, 1, 3}, false, {2, 1, 3});

    EXPECT_TRUE(HasSamples(result.volume.get(), FloatStack(2, 1, 3, {4, 3, 2, 0, 0, 0})));
    ExpectRange(result.range, 4, 0);
}

// A float of which only two bytes are there.
TEST(RawVolumeLoader, KeepsTheStartOfASampleThatIsCutOff) {
    const TemporaryFile file(std::vector<std::uint8_t>{0, 0, 0x80, 0x3F, 1, 2});

    const LoadResult result = Load(file, {2, 1, 1}, false, {2, 1, 1});

    EXPECT_TRUE(HasSamples(result.volume.get(), FloatStack(2, 1, 1, {1, std::bit_cast<float>(0x00000201)})));
}

TEST(RawVolumeLoader, LoadsAnEmptyFileAsZeroes) {
    const TemporaryFile file(std::vector<std::uint8_t>{});

    const LoadResult result = Load(file, {2, 1, 2}, true, {2, 1, 2});

    EXPECT_TRUE(HasSamples(result.volume.get(), ByteStack(2, 1, 2, {0, 0, 0, 0})));
    ExpectRange(result.range, 0, 0);
}

TEST(RawVolumeLoader, GivesEqualSamplesARangeOfOneValue) {
    const TemporaryFile file(std::vector<float>{2.5f, 2.5f});

    ExpectRange(Load(file, {1, 1, 2}, false, {1, 1, 2}).range, 2.5f, 2.5f);
}

TEST(RawVolumeLoader, OnlyWidensTheRunningRange) {
    const TemporaryFile file(std::vector<float>{2, 8});

    const LoadResult result = Load(file, {1, 1, 2}, false, {1, 1, 2}, {5, 1});

    ExpectRange(result.range, 8, 2);
    ExpectRange(result.running, 8, 1);
}

// Row 1, column 1 of each slice goes to the top left corner; the rest stays zero and counts.
TEST(RawVolumeLoader, ResamplesInPlaneWithoutASecondPhase) {
    const TemporaryFile file(std::vector<std::uint8_t>{255, 255, 255, 4, 255, 255, 255, 6});

    const LoadResult result = Load(file, {2, 2, 2}, true, {2, 3, 2});

    EXPECT_TRUE(HasSamples(result.volume.get(), ByteStack(2, 3, 2, {4, 0, 0, 0, 0, 0, 6, 0, 0, 0, 0, 0})));
    ExpectRange(result.range, 6, 0);
    ExpectRange(result.running, 6, 0);
    EXPECT_EQ(result.events, (Transcript{Start(), Percent(50), Percent(100)}));
}

TEST(RawVolumeLoader, ResamplesInDepthAsASecondPhase) {
    const TemporaryFile file(std::vector<float>{10, 20});

    const LoadResult result = Load(file, {1, 1, 2}, false, {1, 1, 4});

    // Bounded by the file's own range, 10 to 20.
    EXPECT_TRUE(HasSamples(result.volume.get(), FloatStack(1, 1, 4, {10, 12.5f, 17.5f, 20})));
    EXPECT_EQ(result.events, (Transcript{Start(), Percent(50), Percent(100), Start(), Percent(25),
                                         Percent(50), Percent(75), Percent(100)}));
}

TEST(RawVolumeLoader, MeasuresWhatItReturnsAndNotTheFile) {
    const TemporaryFile file(std::vector<float>{-100, 100, 20, 40});

    const LoadResult result = Load(file, {1, 1, 4}, false, {1, 1, 2});

    EXPECT_TRUE(HasSamples(result.volume.get(), FloatStack(1, 1, 2, {0, 30})));
    ExpectRange(result.range, 30, 0);
    ExpectRange(result.running, 30, 0);
}

// After the resampling in plane 4 and 8 are left; the file's -5 to 9 still bounds the extrapolation to 3.
TEST(RawVolumeLoader, BoundsTheDepthByTheFilesRange) {
    const TemporaryFile file(std::vector<float>{-5, 9, 0, 4, 9, 9, 0, 8});

    const LoadResult result = Load(file, {2, 2, 2}, false, {1, 1, 4});

    EXPECT_TRUE(HasSamples(result.volume.get(), FloatStack(1, 1, 4, {3, 5, 7, 8})));
}

TEST(RawVolumeLoader, LoadsAnEmptyStack) {
    const TemporaryFile file(std::vector<std::uint8_t>{1});

    const LoadResult result = Load(file, {2, 2, 0}, true, {2, 2, 0});

    ASSERT_TRUE(result.volume);
    EXPECT_EQ(result.volume->depth, 0);
    ExpectRange(result.range, ValueRange().max, ValueRange().min);
    ExpectRange(result.running, ValueRange().max, ValueRange().min);
    EXPECT_EQ(result.events, Transcript{Start()});
}

// There is nothing to measure, so the file's range stays and the running one is not widened.
TEST(RawVolumeLoader, MeasuresNothingOfAnEmptyResult) {
    const TemporaryFile file(std::vector<float>{2, 8});

    const LoadResult result = Load(file, {1, 1, 2}, false, {1, 1, 0});

    ASSERT_TRUE(result.volume);
    EXPECT_EQ(result.volume->depth, 0);
    ExpectRange(result.range, 8, 2);
    ExpectRange(result.running, ValueRange().max, ValueRange().min);
    EXPECT_EQ(result.events, (Transcript{Start(), Percent(50), Percent(100), Start()}));
}

TEST(RawVolumeLoader, RunsToItsEndWithoutACallback) {
    const TemporaryFile file(std::vector<std::uint8_t>{1, 2});
    ValueRange running;
    ValueRange range;
    RecordingHost host;

    const OwnedVolume volume = volume::LoadRawVolume({file.Name(), {1, 1, 2}, true}, {1, 1, 4}, running,
                                                     range, host.WithoutCallback());

    EXPECT_TRUE(volume);
    EXPECT_EQ(host.Events(), Transcript{});
}

std::vector<float> RandomSamples(RandomSource& random, std::size_t count) {
    constexpr float kSpecial[] = {
        0.0f,   -0.0f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
        -1e30f, 1e-40f};
    const bool isWild = random.Chance(3);
    std::vector<float> samples(count);
    for (float& sample : samples) {
        sample = static_cast<float>(random.Within(-20, 300));
        if (isWild && random.Chance(12)) sample = kSpecial[random.Below(6)];
    }
    return samples;
}

VolumeSize RandomSizeNear(RandomSource& random, const VolumeSize& size) {
    const auto length = [&](int same) { return random.Chance(2) ? same : random.Between(1, 24); };
    return {length(size.width), length(size.height), length(size.depth)};
}

TEST(RawVolumeLoader, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 400; ++seed) {
        RandomSource random(seed);
        const VolumeSize stored = {random.Between(1, 24), random.Between(1, 24), random.Between(1, 12)};
        const VolumeSize size = RandomSizeNear(random, stored);
        const bool is8bit = random.Chance(2);
        const auto samples = static_cast<std::size_t>(stored.width * stored.height * stored.depth);
        reference::FileBytes bytes = FileBytesOf(RandomSamples(random, samples));
        bytes.resize(static_cast<std::size_t>(random.Between(0, static_cast<int>(samples * 5))));
        const ValueRange start = random.Chance(2) ? ValueRange() : ValueRange{10, 5};
        reference::Range running = {start.max, start.min};
        const reference::Loaded plain =
            reference::Load(bytes, {stored.width, stored.height, stored.depth}, is8bit,
                            {size.width, size.height, size.depth}, running);

        const LoadResult result = Load(TemporaryFile(bytes), stored, is8bit, size, start);

        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        ASSERT_TRUE(HasSamples(result.volume.get(), plain.volume));
        ExpectRange(result.range, plain.range.max, plain.range.min);
        ExpectRange(result.running, running.max, running.min);
    }
}

} // namespace
