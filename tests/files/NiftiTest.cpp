#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "MemoryFiles.h"

namespace z3d::files {

namespace {

using Ints = std::vector<int>;

class Nifti : public testing::Test {
protected:
    VolumeReader Reader(const Bytes& bytes) {
        files_.Put("a.nii", bytes);
        return VolumeReader({{"a.nii"}, {}, {}}, files_);
    }
    std::string RefusalOf(const Bytes& bytes) {
        files_.Put("a.nii", bytes);
        return Refusal(files_, "a.nii");
    }

    MemoryFiles files_;
    NiftiFields fields_;
};

TEST_F(Nifti, TakesBytesAsTheyAre) {
    const VolumeReader reader = Reader(NiftiHeader(fields_) + Bytes("\x00\x07\x80\xFF", 4));

    EXPECT_EQ(Voxels(reader), (Ints{0, 7, 128, 255}));
    EXPECT_EQ(reader.Facts().format, "NIfTI-1");
    EXPECT_EQ(reader.Facts().size, (VolumeSize{2, 2, 1}));
}

TEST_F(Nifti, UnpacksGzipWhateverTheName) {
    EXPECT_EQ(Voxels(Reader(Gzipped(NiftiHeader(fields_) + "abcd"))), (Ints{'a', 'b', 'c', 'd'}));
}

TEST_F(Nifti, UnpacksSeveralMembers) {
    const Bytes packed = Gzipped(NiftiHeader(fields_) + "ab") + Gzipped("cd");

    EXPECT_EQ(Voxels(Reader(packed)), (Ints{'a', 'b', 'c', 'd'}));
}

TEST_F(Nifti, TakesEveryTypeInBothByteOrders) {
    for (const bool big : {false, true}) {
        fields_.bigEndian = big;
        const auto voxels = [&](int16_t type, const Bytes& samples) {
            fields_.type = type;
            return Voxels(Reader(NiftiHeader(fields_) + samples), {0, 255});
        };
        const Ints expected = {0, 1, 100, 255};
        EXPECT_EQ(voxels(4, Packed<int16_t>({-5, 1, 100, 300}, big)), expected);
        EXPECT_EQ(voxels(8, Packed<int32_t>({-5, 1, 100, 70000}, big)), expected);
        EXPECT_EQ(voxels(16, Packed<float>({-5.0f, 1.2f, 99.5f, 1e9f}, big)), expected);
        EXPECT_EQ(voxels(64, Packed<double>({-5.0, 1.2, 99.5, 1e300}, big)), expected);
        EXPECT_EQ(voxels(256, Packed<int8_t>({-5, 1, 100, 127}, big)), (Ints{0, 1, 100, 127}));
        EXPECT_EQ(voxels(512, Packed<uint16_t>({0, 1, 100, 65535}, big)), expected);
        EXPECT_EQ(voxels(768, Packed<uint32_t>({0, 1, 100, 4000000000u}, big)), expected);
    }
}

TEST_F(Nifti, TakesColour) {
    fields_.dim = {3, 1, 2, 1};
    fields_.type = 128;
    const VolumeReader reader = Reader(NiftiHeader(fields_) + "RGBrgb");

    EXPECT_EQ(Voxels(reader), (Ints{'R', 'G', 'B', 'r', 'g', 'b'}));
    EXPECT_EQ(reader.Fit({}).type, VoxelType::Rgb8);
}

TEST_F(Nifti, AppliesSlopeAndIntercept) {
    fields_.slope = 2;
    fields_.intercept = -100;
    const VolumeReader reader = Reader(NiftiHeader(fields_) + Bytes("\x00\x32\x64\xC8", 4));

    // Values -100, 0, 100, 300.
    EXPECT_EQ(Voxels(reader, {0, 100}), (Ints{0, 0, 255, 255}));
    const ValueRange bytes = reader.ProposedInput({});
    EXPECT_EQ(bytes.low, -100);
    EXPECT_EQ(bytes.high, 410);
    EXPECT_EQ(Voxels(reader), (Ints{0, 50, 100, 200}));
}

TEST_F(Nifti, ANegativeSlopeTurnsTheOrderRound) {
    fields_.slope = -1;
    fields_.type = 4;
    const VolumeReader reader = Reader(NiftiHeader(fields_) + Packed<int16_t>({0, 1, 2, 3}));

    EXPECT_EQ(reader.Percentiles({}).low, -3);
    EXPECT_EQ(reader.Percentiles({}).high, 0);
    EXPECT_EQ(Voxels(reader), (Ints{255, 170, 85, 0}));
}

// 1000 and a little are the same double, whatever is stored.
TEST_F(Nifti, AScaleThatBringsAllToOneValueIsFull) {
    fields_.slope = 1e-30f;
    fields_.intercept = 1000;
    EXPECT_EQ(Voxels(Reader(NiftiHeader(fields_) + "abcd")), (Ints{255, 255, 255, 255}));

    fields_.type = 4;
    EXPECT_EQ(Voxels(Reader(NiftiHeader(fields_) + Packed<int16_t>({0, 1, 2, 3}))),
              (Ints{255, 255, 255, 255}));
}

TEST_F(Nifti, ASlopeThatIsNoNumberScalesNothing) {
    fields_.slope = std::nanf("");
    fields_.intercept = std::nanf("");

    EXPECT_EQ(Voxels(Reader(NiftiHeader(fields_) + "abcd")), (Ints{'a', 'b', 'c', 'd'}));
}

TEST_F(Nifti, ReadsTheFirstOfSeveralVolumesAndSaysSo) {
    fields_.dim = {4, 2, 1, 1, 3};
    const VolumeReader reader = Reader(NiftiHeader(fields_) + "abcdef");

    EXPECT_EQ(Voxels(reader), (Ints{'a', 'b'}));
    EXPECT_EQ(reader.Facts().remark, "a.nii holds 3 volumes: the first is taken");
}

TEST_F(Nifti, APairIsKnownByEitherName) {
    fields_.magic = std::string("ni1\0", 4);
    fields_.offset = 0;
    files_.Put("b.hdr", NiftiHeader(fields_));
    files_.Put("b.img.gz", Gzipped("abcd"));

    EXPECT_EQ(Voxels(VolumeReader({{"b.hdr"}, {}, {}}, files_)), (Ints{'a', 'b', 'c', 'd'}));
    EXPECT_EQ(Voxels(VolumeReader({{"b.img.gz"}, {}, {}}, files_)), (Ints{'a', 'b', 'c', 'd'}));
}

TEST_F(Nifti, RefusesWhatAHeaderCannotMean) {
    const auto refusal = [&](const auto& change) {
        NiftiFields fields;
        change(fields);
        return RefusalOf(NiftiHeader(fields) + "abcd");
    };
    EXPECT_EQ(refusal([](NiftiFields& f) { f.type = 32; }),
              "cannot use a.nii: its data type 32 is none of uint8, int8, uint16, int16, uint32, int32, "
              "float32, float64, RGB24");
    EXPECT_EQ(refusal([](NiftiFields& f) {
                  f.dim = {3, 2, -2, 1};
              }),
              "cannot use a.nii: axis 2 has -2 voxels");
    EXPECT_EQ(refusal([](NiftiFields& f) { f.dim = {0}; }), "cannot use a.nii: it has 0 axes, not 1 to 7");
    EXPECT_EQ(refusal([](NiftiFields& f) { f.offset = 100; }),
              "cannot use a.nii: its voxels cannot begin at byte 100");
    EXPECT_EQ(refusal([](NiftiFields& f) { f.offset = std::numeric_limits<float>::infinity(); }),
              "cannot use a.nii: its voxels cannot begin at byte inf");
    EXPECT_EQ(refusal([](NiftiFields& f) { f.length = 540; }),
              "cannot use a.nii: it is NIfTI-2, only NIfTI-1 can be read");
    EXPECT_EQ(refusal([](NiftiFields& f) { f.magic = std::string(4, '\0'); }),
              "cannot use a.nii: it is not a NIfTI-1 file");
    EXPECT_EQ(refusal([](NiftiFields& f) { f.slope = 1, f.intercept = std::nanf(""); }),
              "cannot use a.nii: its intercept is no finite number");
}

TEST_F(Nifti, RefusesSizesBeyondTheFile) {
    fields_.dim = {3, 32767, 32767, 32767};
    fields_.type = 64;

    EXPECT_EQ(RefusalOf(NiftiHeader(fields_) + "abcd"),
              "a.nii is too short: it has 356 bytes, but 32767x32767x32767 voxels of 8 bytes after 352 bytes "
              "need 281449207693656");
    fields_.offset = 1e15f;
    fields_.dim = {1, 1};
    EXPECT_NE(RefusalOf(NiftiHeader(fields_)).find("is too short"), std::string::npos);
}

TEST_F(Nifti, RefusesTruncatedAndDamagedGzip) {
    const Bytes packed = Gzipped(NiftiHeader(fields_) + "abcd");
    Bytes damaged = packed;
    damaged[damaged.size() - 8] = static_cast<char>(~damaged[damaged.size() - 8]);

    EXPECT_EQ(RefusalOf(packed.substr(0, packed.size() - 12)),
              "cannot read a.nii: its compressed data ends early");
    EXPECT_EQ(RefusalOf(Gzipped(NiftiHeader(fields_) + "abc")),
              "cannot read a.nii: it ends before its last voxel");
    EXPECT_EQ(RefusalOf(Gzipped(NiftiHeader(fields_).substr(0, 350))),
              "cannot read a.nii: it ends before its first voxel");
    EXPECT_NE(RefusalOf(damaged), "");
}

TEST_F(Nifti, VoxelsWithoutANumberAreARefusal) {
    fields_.type = 16;
    const Bytes nothing = Packed<float>(std::vector<float>(4, std::nanf("")));

    EXPECT_EQ(RefusalOf(NiftiHeader(fields_) + nothing), "cannot use a.nii: no voxel holds a number");
}

} // namespace

} // namespace z3d::files
