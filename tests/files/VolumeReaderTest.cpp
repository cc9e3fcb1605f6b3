#include "files/VolumeReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "MemoryFiles.h"

namespace z3d::files {

namespace {

using Ints = std::vector<int>;

class Volumes : public testing::Test {
protected:
    VolumeReader Raw(const Bytes& bytes, const VolumeSize& size, SampleType type,
                     Spacing spacing = {1, 1, 1}) {
        files_.Put("a.raw", bytes);
        return VolumeReader({{"a.raw"}, RawLayout{size, type}, spacing}, files_);
    }

    MemoryFiles files_;
};

TEST_F(Volumes, RawSamplesHaveAnOffsetAndAByteOrder) {
    files_.Put("a.raw", "__" + Packed<int16_t>({0, 100, 255}, true) + "!");
    const VolumeReader reader({{"a.raw"}, RawLayout{{3, 1, 1}, SampleType::Int16, 2, true}, {}}, files_);

    EXPECT_EQ(Voxels(reader, {0, 255}), (Ints{0, 100, 255}));
    EXPECT_EQ(reader.Facts().remark,
              "a.raw is longer than its voxels: it has 9 bytes, 3x1x1 voxels of 2 bytes "
              "after 2 bytes need 8; the rest is ignored");
}

TEST_F(Volumes, RawSamplesMayBePacked) {
    files_.Put("a.raw.gz", Gzipped("abc"));

    EXPECT_EQ(Voxels(VolumeReader({{"a.raw.gz"}, RawLayout{{3, 1, 1}, SampleType::Uint8}, {}}, files_)),
              (Ints{'a', 'b', 'c'}));
}

TEST_F(Volumes, WhatIsUnknownAsksForItsSize) {
    files_.Put("a.dat", "abc");

    EXPECT_EQ(Refusal(files_, "a.dat"),
              "cannot use a.dat: it is neither NIfTI, NRRD nor PNG; raw samples need their size and type");
}

TEST_F(Volumes, PercentilesLeaveOutAHalfPerCentAtEachEnd) {
    std::vector<int16_t> samples;
    for (int16_t i = 0; i < 1000; ++i)
        samples.push_back(i);
    samples.back() = 30000;
    const ValueRange range = Raw(Packed(samples), {1000, 1, 1}, SampleType::Int16).Percentiles({});

    EXPECT_EQ(range.low, 5);
    EXPECT_EQ(range.high, 994);
}

TEST_F(Volumes, PercentilesOfFloatsAreWithinAnEightThousandthAndIgnoreWhatIsNoNumber) {
    std::vector<float> samples(10, std::numeric_limits<float>::infinity());
    samples.resize(20, std::nanf(""));
    for (int i = 0; i < 1000; ++i)
        samples.push_back(static_cast<float>(i) * 0.5f - 200);
    const ValueRange range = Raw(Packed(samples), {1020, 1, 1}, SampleType::Float32).Percentiles({});

    EXPECT_LE(range.low, -197.5);
    EXPECT_GE(range.low, -197.5 * (1 + 1.0 / 4096));
    EXPECT_GE(range.high, 297);
    EXPECT_LE(range.high, 297 * (1 + 1.0 / 4096));
}

TEST_F(Volumes, AMaskThatIsNearlyEmptyUsesItsExtremes) {
    std::vector<uint16_t> samples(1000);
    samples[7] = 40;
    const VolumeReader reader = Raw(Packed(samples), {1000, 1, 1}, SampleType::Uint16);

    EXPECT_EQ(reader.Percentiles({}).high, 40);
    EXPECT_EQ(Voxels(reader)[7], 255);
}

TEST_F(Volumes, OneValueEverywhereIsFull) {
    EXPECT_EQ(Voxels(Raw(Packed<uint16_t>({9, 9}), {2, 1, 1}, SampleType::Uint16)), (Ints{255, 255}));
    EXPECT_EQ(Voxels(Raw(Packed<uint16_t>({0, 0}), {2, 1, 1}, SampleType::Uint16)), (Ints{0, 0}));
}

TEST_F(Volumes, ValuesAreMappedLinearlyRoundedAndSaturated) {
    const Bytes samples = Packed<float>({-1, 10, 10.01f, 15, 20, 1e30f, std::nanf(""), -INFINITY, INFINITY});

    EXPECT_EQ(Voxels(Raw(samples, {9, 1, 1}, SampleType::Float32), {10, 20}),
              (Ints{0, 0, 0, 128, 255, 255, 0, 0, 255}));
}

TEST_F(Volumes, AnEmptyOrInfiniteInputRangeIsRefused) {
    const VolumeReader reader = Raw("ab", {2, 1, 1}, SampleType::Uint8);

    EXPECT_THROW(Voxels(reader, {3, 3}), FileFailure);
    EXPECT_THROW(Voxels(reader, {3, std::nan("")}), FileFailure);
    EXPECT_THROW(Voxels(reader, {-INFINITY, INFINITY}), FileFailure);
}

TEST_F(Volumes, UnequalSpacingBecomesThatOfTheFinestAxis) {
    const VolumeReader reader = Raw(Bytes("\x00\x64", 2), {1, 1, 2}, SampleType::Uint8, {1, 1, 2});

    EXPECT_EQ(reader.Fit({}).size, (VolumeSize{1, 1, 4}));
    EXPECT_EQ(Voxels(reader), (Ints{0, 25, 75, 100}));
    EXPECT_EQ(Voxels(reader, FitRequest{FitRequest::Cubes::Never, 0}), (Ints{0, 100}));
}

TEST_F(Volumes, SpacingWithinOnePerCentIsLeftAlone) {
    const VolumeReader reader = Raw(Bytes(200, 'a'), {1, 1, 200}, SampleType::Uint8, {1, 1, 1.01});

    EXPECT_FALSE(reader.Fit({}).resampled);
    EXPECT_EQ(reader.Fit({FitRequest::Cubes::Always, 0}).size.depth, 202);
}

TEST_F(Volumes, ADiagonalShrinksAsTheLibraryDoes) {
    const Fitted fitted = Raw(Bytes(8000, 'a'), {20, 20, 20}, SampleType::Uint8).Fit({{}, 20});

    EXPECT_EQ(fitted.size, (VolumeSize{11, 11, 11}));
    EXPECT_TRUE(fitted.resampled);
}

TEST_F(Volumes, ShrinkingAveragesAndKeepsColoursApart) {
    const Bytes samples = Bytes("\x00\x0A\x14", 3) + Bytes("\x64\x0A\x28", 3);
    const VolumeReader reader = Raw(samples, {2, 1, 1}, SampleType::Rgb8);

    EXPECT_EQ(Voxels(reader, FitRequest{FitRequest::Cubes::Never, 1}), (Ints{50, 10, 30}));
}

TEST_F(Volumes, AConstantVolumeStaysConstant) {
    const VolumeReader reader = Raw(Bytes(7 * 5 * 6, '\xC8'), {7, 5, 6}, SampleType::Uint8, {1, 1.7, 2.9});
    const Ints voxels = Voxels(reader);

    EXPECT_EQ(reader.Fit({}).size, (VolumeSize{7, 9, 17}));
    EXPECT_EQ(voxels, Ints(voxels.size(), 200));
}

TEST_F(Volumes, CubesThatCannotBeAddressedAreRefused) {
    const VolumeReader reader = Raw("ab", {1, 1, 2}, SampleType::Uint8, {1e-6, 1, 1e6});

    EXPECT_THROW(reader.Fit({}), FileFailure);
    EXPECT_NO_THROW(reader.Fit({FitRequest::Cubes::WhereNeeded, 100}));
}

TEST_F(Volumes, ProgressRisesToTheEndAndCanCancel) {
    const VolumeReader reader = Raw(Bytes(1000000, 'a'), {100, 100, 100}, SampleType::Uint8);
    std::vector<double> parts;
    reader.Percentiles([&](double done) {
        parts.push_back(done);
        return true;
    });

    EXPECT_TRUE(std::is_sorted(parts.begin(), parts.end()));
    EXPECT_EQ(parts.back(), 1);
    EXPECT_THROW(reader.Percentiles([](double done) { return done < 0.5; }), Cancelled);
}

TEST_F(Volumes, AProposedDiagonalFits) {
    const Fitted large = {{1500, 2000, 2000}, VoxelType::Grey8, false};

    EXPECT_EQ(large.ByteCount(), 6000000000u);
    EXPECT_EQ(ProposedDiagonal(large), 1100);
}

} // namespace

} // namespace z3d::files
