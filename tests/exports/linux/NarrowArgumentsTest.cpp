// Numbers narrower than the register or the stack slot that they come in: what a host leaves above them does not count.
// Compilers differ in what they expect there, so the rule is the library's own.
#include "exports/ExportedVolume.h"
#include "exports/Library.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace z3d::test;

// As a host passes an integer of 16 or 32 bits that knows nothing of their width.
using Wide = std::uint64_t;

constexpr Wide kAbove16[] = {0, 0xFFFFFFFF'FFFF0000, 0xDEADBEEF'7FFF0000, 0x00010000};
constexpr Wide kAbove32[] = {0, 0xFFFFFFFF'00000000, 0xDEADBEEF'00000000};

template <class Function>
Function* As(const char* name) {
    return reinterpret_cast<Function*>(const_cast<void*>(AddressOf(name)));
}

TEST(NarrowArguments, OfAProjection) {
    const ExportedVolume volume(6, 5, 4, 1);
    const auto project = As<float*(Volume3D*, const float*, Wide, Wide, Wide, Wide, Wide, Wide, Wide, float,
                                   float, float, unsigned short*, unsigned short*, Wide)>("GetRotProjection");
    std::vector<std::vector<float>> images;

    for (const Wide above : kAbove16) {
        unsigned short size[2] = {};
        float* pixels = project(volume.Get(), kOblique, above | 0, above | 2, above | 6, above | 1, above | 4,
                                above | 2, above | 4, 200.0f, 50.0f, 0.0f, &size[0], &size[1], above);
        ASSERT_NE(pixels, nullptr) << std::hex << above;
        images.emplace_back(pixels, pixels + 3 * size[0] * size[1]);
        EXPECT_TRUE(ReleaseProjection(pixels));
    }

    for (const auto& image : images)
        EXPECT_EQ(image, images[0]);
}

TEST(NarrowArguments, OfTheSizeOfAProjection) {
    const ExportedVolume volume(6, 5, 4, 1);
    const auto measure = As<void(Volume3D*, const float*, Wide, Wide, Wide, Wide, Wide, Wide, unsigned short*,
                                 unsigned short*, Wide)>("GetRotDim");
    for (const Wide above : kAbove16) {
        unsigned short size[2] = {};

        measure(volume.Get(), kNotTurned, above | 1, above | 6, above | 1, above | 5, above | 1, above | 4,
                &size[0], &size[1], above);

        EXPECT_EQ(size[0], 6);
        EXPECT_EQ(size[1], 5);
    }
}

TEST(NarrowArguments, OfAnImageAndOfAVolume) {
    const auto allocateImage = As<Image2D*(Wide, Wide, Wide)>("GlobalAlloc2D");
    const auto allocateVolume = As<Volume3D*(Wide, Wide, Wide, Wide)>("GlobalAlloc3D");
    for (const Wide above : kAbove32) {
        // Of these sizes only 16 bits count, of the bytes of a pixel 32.
        const Wide size = above | 0x00010000;
        Image2D* image = allocateImage(size | 7, size | 3, above | 4);
        Volume3D* volume = allocateVolume(size | 7, size | 3, size | 2, above | 3);
        ASSERT_NE(image, nullptr);
        ASSERT_NE(volume, nullptr);

        EXPECT_EQ(std::vector<unsigned>({image->width, image->height, image->bytesPerPixel}),
                  std::vector<unsigned>({7, 3, 4}));
        EXPECT_EQ(std::vector<unsigned>(
                      {volume->width, volume->height, volume->depth, volume->slices[0]->bytesPerPixel}),
                  std::vector<unsigned>({7, 3, 2, 3}));

        TheLibrary().GlobalFree2D(image);
        TheLibrary().GlobalFree3D(volume);
    }
}

TEST(NarrowArguments, OfALoad) {
    const TemporaryFile file(std::vector<std::uint8_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255});
    const auto load =
        As<Volume3D*(const char*, const char*, const char*, Wide, Wide, Wide, Wide, Wide, Wide, Wide, Wide,
                     float*, float*, float*, float*, std::size_t, ProgressCallback, Wide)>("GetRGBImage");
    for (const Wide above : kAbove16) {
        // Neither samples of bytes nor channels that are kept apart.
        float high = 0;
        float low = 0;
        Volume3D* volume =
            load(file.Name(), file.Name(), file.Name(), above | 3, above | 2, above | 2, above, above, above,
                 above | 1, above | 100, &high, &low, nullptr, nullptr, 0, nullptr, above);
        ASSERT_NE(volume, nullptr) << std::hex << above;

        EXPECT_EQ(std::vector<int>({volume->width, volume->height, volume->depth}),
                  std::vector<int>({3, 2, 2}));
        EXPECT_EQ(volume->slices[0]->bytesPerPixel, 1u) << "grey: the channels are not kept apart";
        EXPECT_EQ(high, 255.0f);
        EXPECT_EQ(low, 0.0f);
        TheLibrary().Free3DData(volume);
    }
}

TEST(NarrowArguments, OfAFlagOf16BitsThatIsZero) {
    const TemporaryFile file(std::vector<float>{-1.0f, 3.0f});
    const auto load =
        As<Volume3D*(const char*, const char*, const char*, Wide, Wide, Wide, Wide, Wide, Wide, Wide, Wide,
                     float*, float*, float*, float*, std::size_t, ProgressCallback, Wide)>("GetRGBImage");
    for (const Wide above : kAbove16) {
        Volume3D* volume = load(file.Name(), file.Name(), file.Name(), 2, 1, 1, 0, 0, 0, above, 100, nullptr,
                                nullptr, nullptr, nullptr, 0, nullptr, 0);
        ASSERT_NE(volume, nullptr);

        unsigned char*** slices = TheLibrary().GlobalLock3D(volume);
        EXPECT_EQ(slices[0][0][0], 0) << "samples are floats";
        EXPECT_EQ(slices[0][0][1], 255);
        TheLibrary().Free3DData(volume);
    }
}

// What a callback of the host's returns is as wide as an int, and of it 16 bits count.
template <Wide Answer>
Wide AnswerWith(std::size_t, Wide, Wide) {
    return Answer;
}

TEST(NarrowArguments, OfTheAnswerOfACallback) {
    const TemporaryFile file(std::vector<std::uint8_t>{1, 2});
    const auto load = [&file](Wide (*callback)(std::size_t, Wide, Wide)) {
        const auto progress = reinterpret_cast<ProgressCallback>(reinterpret_cast<void*>(callback));
        Volume3D* volume = TheLibrary().GetRGBImage(file.Name(), nullptr, nullptr, 2, 1, 1, 0, 0, 0, 1, 100,
                                                    nullptr, nullptr, nullptr, nullptr, 0, progress, 0);
        const bool isLoaded = volume != nullptr;
        TheLibrary().Free3DData(volume);
        return isLoaded;
    };
    EXPECT_FALSE(load(&AnswerWith<0xDEADBEEF'ABCD0000 | ProgressCancel>));
    EXPECT_TRUE(load(&AnswerWith<0xDEADBEEF'ABCD0001 | ProgressCancel>));
    EXPECT_TRUE(load(&AnswerWith<(Wide{ProgressCancel} << 16) | (Wide{ProgressCancel} << 32)>));
}

TEST(NarrowArguments, OfAConvertedCoordinate) {
    const auto convert = As<short(Wide, Wide, Wide, Wide)>("SubvolumeConvert");
    for (const Wide above : kAbove32) {
        EXPECT_EQ(convert(above | 5, above | 100, above | 300, above), 1);
        EXPECT_EQ(convert(above | 5, above | 100, above | 300, above | 1), 2);
        EXPECT_EQ(convert(above | 5, above | 100, above | 300, above | 0x7FFF0000), 1)
            << "of the last 16 bits count";
        EXPECT_EQ(convert(above | 5, above | 100, above | 300, above | 0x8001FFFF), 1)
            << "and they have a sign";
        EXPECT_EQ(convert(above | 5, above | 100, above | 300, above | 0x80000001), 2);
    }
}

} // namespace
