#include <gtest/gtest.h>

#include "MemoryFiles.h"

namespace z3d::files {

namespace {

using Ints = std::vector<int>;

class Nrrd : public testing::Test {
protected:
    VolumeReader Reader(const Bytes& bytes, const char* name = "a.nrrd") {
        files_.Put(name, bytes);
        return VolumeReader({{name}, {}, {}}, files_);
    }
    std::string RefusalOf(const Bytes& bytes, const char* name = "a.nrrd") {
        files_.Put(name, bytes);
        return Refusal(files_, name);
    }

    MemoryFiles files_;
};

const Bytes kBytes = "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 2 2 1\nencoding: raw\n";

TEST_F(Nrrd, TakesAttachedSamples) {
    EXPECT_EQ(Voxels(Reader(kBytes + "\nabcd")), (Ints{'a', 'b', 'c', 'd'}));
}

TEST_F(Nrrd, TakesDetachedSamplesBesideTheHeader) {
    files_.Put("x/data.bin", "__abcd");

    EXPECT_EQ(Voxels(Reader(kBytes + "byte skip: 2\ndata file: data.bin\n", "x/a.nhdr")),
              (Ints{'a', 'b', 'c', 'd'}));
}

TEST_F(Nrrd, TakesTheLastSamplesOfAFile) {
    files_.Put("data.bin", "_____abcd");

    EXPECT_EQ(Voxels(Reader(kBytes + "byteskip: -1\ndatafile: data.bin\n", "a.nhdr")),
              (Ints{'a', 'b', 'c', 'd'}));
}

TEST_F(Nrrd, UnpacksGzipAttachedAndDetached) {
    const Bytes header = "NRRD0005\ntype: uint8\ndimension: 3\nsizes: 2 2 1\nencoding: gzip\n";
    files_.Put("data.raw.gz", Gzipped("__abcd"));

    EXPECT_EQ(Voxels(Reader(header + "\n" + Gzipped("abcd"))), (Ints{'a', 'b', 'c', 'd'}));
    EXPECT_EQ(Voxels(Reader(header + "byte skip: 2\ndata file: data.raw.gz\n", "a.nhdr")),
              (Ints{'a', 'b', 'c', 'd'}));
}

TEST_F(Nrrd, TakesWiderTypesInTheByteOrderThatItNames) {
    const auto voxels = [&](const Bytes& type, const Bytes& samples) {
        return Voxels(
            Reader("NRRD0004\ntype: " + type + "\ndimension: 3\nsizes: 3 1 1\nencoding: raw\n\n" + samples),
            {0, 255});
    };
    EXPECT_EQ(voxels("short\nendian: big", Packed<int16_t>({-1, 2, 256}, true)), (Ints{0, 2, 255}));
    EXPECT_EQ(voxels("unsigned short\nendian: little", Packed<uint16_t>({0, 2, 256})), (Ints{0, 2, 255}));
    EXPECT_EQ(voxels("float\nendian: little", Packed<float>({0, 2, 256})), (Ints{0, 2, 255}));
    EXPECT_EQ(voxels("int8", Packed<int8_t>({-1, 2, 127})), (Ints{0, 2, 127}));
}

TEST_F(Nrrd, TakesSpacingsAndLengthsOfDirections) {
    const Spacing spacings = Reader(kBytes + "spacings: 1 2 nan\n\nabcd").Facts().spacing;
    const Spacing directions =
        Reader(kBytes + "space directions: (0,3, 4) (0.5,0,0) (0,0,-2)\n\nabcd").Facts().spacing;

    EXPECT_EQ(std::vector<double>({spacings.x, spacings.y, spacings.z}), std::vector<double>({1, 2, 1}));
    EXPECT_EQ(std::vector<double>({directions.x, directions.y, directions.z}),
              std::vector<double>({5, 0.5, 2}));
}

TEST_F(Nrrd, AColourVolumeHasNoDirectionForItsChannels) {
    const VolumeReader reader = Reader("NRRD0004\ntype: uint8\ndimension: 4\nsizes: 3 1 1 1\nencoding: raw\n"
                                       "space directions: none (1,0,0) (0,1,0) (0,0,7)\n\nRGB");

    EXPECT_EQ(Voxels(reader, FitRequest{FitRequest::Cubes::Never, 0}), (Ints{'R', 'G', 'B'}));
    EXPECT_EQ(reader.Facts().spacing.z, 7);
}

TEST_F(Nrrd, TakesTheFirstOfSeveralVolumes) {
    const VolumeReader reader = Reader("NRRD0004\ntype: uint8\ndimension: 4\nsizes: 2 1 1 3\nencoding: raw\n"
                                       "kinds: space space space time\n\nabcdef");

    EXPECT_EQ(Voxels(reader), (Ints{'a', 'b'}));
    EXPECT_EQ(reader.Facts().remark, "a.nrrd holds 3 volumes: the first is taken");
}

TEST_F(Nrrd, RefusesWhatItCannotRead) {
    const auto header = [](const Bytes& type, const Bytes& sizes, const Bytes& more) {
        return "NRRD0004\ntype: " + type + "\ndimension: 3\nsizes: " + sizes + "\n" + more + "\n\nabcd";
    };
    EXPECT_EQ(RefusalOf("NRRE"), "cannot use a.nrrd: it is not a NRRD file");
    EXPECT_EQ(RefusalOf(header("block", "2 2 1", "")),
              "cannot use a.nrrd: its type 'block' is none of uint8, int8, uint16, int16, uint32, int32, "
              "float, double");
    EXPECT_EQ(RefusalOf(header("uint8", "2 2 99999999999999999999", "")),
              "cannot use a.nrrd: '99999999999999999999' is not a whole number from 1 to 32767");
    EXPECT_EQ(RefusalOf(header("uint8", "2 2 1", "encoding: bzip2")),
              "cannot use a.nrrd: its encoding is 'bzip2', only raw and gzip can be read");
    EXPECT_EQ(RefusalOf(header("short", "2 1 1", "encoding: raw")),
              "cannot use a.nrrd: it does not say whether its bytes are little or big endian");
    EXPECT_EQ(RefusalOf(header("uint8", "2 2 1", "encoding: raw\nbyte skip: -2")),
              "cannot use a.nrrd: its byte skip '-2' cannot be");
    EXPECT_EQ(RefusalOf(header("uint8", "2 2 1", "encoding: raw\ndata file: a\x01")),
              "cannot use a.nrrd: the name of its data file is not valid");
    EXPECT_EQ(RefusalOf(header("uint8", "2 2 1", "encoding: raw\ndata file: a\xFF")),
              "cannot use a.nrrd: the name of its data file is not valid");
    EXPECT_EQ(RefusalOf(kBytes), "cannot use a.nrrd: its header has no end");
    EXPECT_EQ(RefusalOf(header("uint8", "32767 32767 32767", "encoding: raw")).substr(0, 19),
              "a.nrrd is too short");
}

} // namespace

} // namespace z3d::files
