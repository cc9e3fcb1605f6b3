#include <gtest/gtest.h>

#include "MemoryFiles.h"
#include "files/PngSlices.h"

namespace z3d::files {

namespace {

using Ints = std::vector<int>;
using Paths = std::vector<std::filesystem::path>;

VolumeReader Reader(const MemoryFiles& files, const Paths& paths) {
    return VolumeReader({paths, {}, {}}, files);
}

TEST(SliceNames, GoByNumbersAndIgnoreOtherFiles) {
    MemoryFiles files;
    for (const char* name : {"s/10.png", "s/2.png", "s/1.PNG", "s/notes.txt", "s/x003.png", "s/x20.png"})
        files.Put(name, "");

    EXPECT_EQ(SlicesIn("s", files), (Paths{"s/1.PNG", "s/2.png", "s/10.png", "s/x003.png", "s/x20.png"}));
    EXPECT_EQ(SlicesOf("s/x*.png", files), (Paths{"s/x003.png", "s/x20.png"}));
    EXPECT_EQ(SlicesOf("s/?.png", files), (Paths{"s/1.PNG", "s/2.png"}));
    EXPECT_EQ(SlicesOf("s/*0*", files), (Paths{"s/10.png", "s/x003.png", "s/x20.png"}));
}

TEST(PngSlices, AFolderIsAVolumeWithTopRowsFirst) {
    MemoryFiles files;
    files.Put("s/2.png", Png(2, 2, 1, 8, "efgh"));
    files.Put("s/1.png", Png(2, 2, 1, 8, "abcd"));
    const VolumeReader reader = Reader(files, {"s"});

    EXPECT_EQ(reader.Facts().size, (VolumeSize{2, 2, 2}));
    EXPECT_EQ(Voxels(reader), (Ints{'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'}));
    EXPECT_EQ(Voxels(Reader(files, {"s/?.png"})), Voxels(reader));
    EXPECT_EQ(Voxels(Reader(files, {"s/2.png", "s/1.png"})), (Ints{'e', 'f', 'g', 'h', 'a', 'b', 'c', 'd'}));
}

TEST(PngSlices, SixteenBitsAreKept) {
    MemoryFiles files;
    files.Put("a.png", Png(3, 1, 1, 16, Packed<uint16_t>({0, 1000, 2000}, true)));
    const VolumeReader reader = Reader(files, {"a.png"});

    EXPECT_EQ(reader.Facts().type, SampleType::Uint16);
    EXPECT_EQ(Voxels(reader, {0, 2000}), (Ints{0, 128, 255}));
}

TEST(PngSlices, ColourStaysInOrder) {
    MemoryFiles files;
    files.Put("a.png", Png(1, 1, 3, 8, "RGB"));

    EXPECT_EQ(Voxels(Reader(files, {"a.png"})), (Ints{'R', 'G', 'B'}));
}

TEST(PngSlices, RefusesSlicesThatDiffer) {
    MemoryFiles files;
    files.Put("1.png", Png(2, 2, 1, 8, "abcd"));
    files.Put("2.png", Png(2, 1, 1, 16, "abcd"));

    EXPECT_THROW(Voxels(Reader(files, {"1.png", "2.png"})), FileFailure);
    EXPECT_EQ(Refusal(files, "?.png"), "cannot use 2.png: it has 2x1 pixels of uint16, the first slice 2x2 "
                                       "pixels of uint8");
}

TEST(PngSlices, AHeaderThatPromisesTooMuchIsRefusedBeforeItCostsMemory) {
    MemoryFiles files;
    Bytes png = Png(2, 2, 1, 8, "abcd");
    png.replace(16, 8, Packed<uint32_t>({32767, 32767}, true));
    files.Put("a.png", png);
    files.Put("flat.png", Png(2000, 2000, 1, 8, Bytes(4000000, '\0')));

    EXPECT_EQ(Refusal(files, "a.png"), "cannot use a.png: it is damaged, or no PNG picture");
    EXPECT_EQ(Reader(files, {"flat.png"}).Facts().size.width, 2000);
}

// The pixels' chunk, whose length stands behind the signature and the first chunk of 25 bytes.
TEST(PngSlices, AChunkThatIsLongerThanTheFileIsRefusedWithoutDecoding) {
    MemoryFiles files;
    Bytes png = Png(2, 2, 1, 8, "abcd");
    ASSERT_EQ(png.substr(37, 4), "IDAT");
    png.replace(33, 4, Packed<uint32_t>({0x7F000000}, true));
    files.Put("a.png", png);

    EXPECT_THROW(Reader(files, {"a.png"}), FileFailure);
}

TEST(PngSlices, WhatStandsBehindTheLastChunkIsIgnored) {
    MemoryFiles files;
    files.Put("a.png", Png(1, 1, 1, 8, "a") + Bytes(20, '\xFF'));

    EXPECT_EQ(Voxels(Reader(files, {"a.png"})), Ints{'a'});
}

TEST(PngSlices, RefusesWhatIsNoPicture) {
    MemoryFiles files;
    const Bytes png = Png(2, 2, 1, 8, "abcd");
    files.Put("a.png", png.substr(0, 20));
    files.Put("b.png", png.substr(0, png.size() - 20));
    files.Put("s/readme", "");

    EXPECT_EQ(Refusal(files, "a.png"), "cannot use a.png: it is damaged, or no PNG picture");
    EXPECT_EQ(Refusal(files, "b.png"), "cannot use b.png: it is damaged, or no PNG picture");
    EXPECT_EQ(Refusal(files, "s"), "cannot use s: the folder has no .png files");
    EXPECT_EQ(Refusal(files, "q*.png"), "cannot open q*.png: no file is named so");
}

} // namespace

} // namespace z3d::files
