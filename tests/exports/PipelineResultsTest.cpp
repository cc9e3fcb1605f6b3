// What becomes of files: the header's statements on resampling, ranges and colours.
#include "exports/ImageCall.h"
#include "exports/Library.h"

#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

using namespace z3d::test;

using Bytes = std::vector<std::uint8_t>;
using Floats = std::vector<float>;

ImageCall CallForGrey(const TemporaryFile& file, std::uint32_t width, std::uint32_t height,
                      std::uint32_t depth) {
    return {.red = file.Name(),
            .green = file.Name(),
            .blue = file.Name(),
            .width = width,
            .height = height,
            .depth = depth};
}

// 8 x 8 x 1 of 50s into a diagonal of 7: 4 x 4 x 1.
TEST(PipelineResults, LastColumnsAndRowsAreZeroWhereTheDepthStays) {
    const TemporaryFile file(Bytes(64, 50));
    ImageCall call = CallForGrey(file, 8, 8, 1);
    call.maxDiagonal = 7;

    const Image image = TakeImage(call.Run());

    EXPECT_EQ(image.bytes, (Bytes{50, 50, 50, 0, 50, 50, 50, 0, 50, 50, 50, 0, 0, 0, 0, 0}));
    EXPECT_EQ(call.rangeMin, 0) << "the zeroes count";
}

// 8 x 8 x 8 of 50s into a diagonal of 7: 4 x 4 x 4. The depth changes, so every sample is clamped to 50..50.
TEST(PipelineResults, LastColumnsAndRowsAreClampedToTheFilesRangeWhereTheDepthChanges) {
    const TemporaryFile file(Bytes(512, 50));
    ImageCall call = CallForGrey(file, 8, 8, 8);
    call.maxDiagonal = 7;

    const Image image = TakeImage(call.Run());

    EXPECT_EQ(image.width, 4);
    EXPECT_EQ(image.bytes, Bytes(64, 50));
    EXPECT_EQ(call.rangeMin, 50);
}

TEST(PipelineResults, AGreyFileOfOneFloatHoldsItsLow8Bits) {
    const TemporaryFile file(Floats(4, 300.7f));
    ImageCall call = CallForGrey(file, 2, 2, 1);
    call.is8bit = 0;

    EXPECT_EQ(TakeImage(call.Run()).bytes, Bytes(4, 300 - 256));
    EXPECT_EQ(call.outMax, 300.7f);
    EXPECT_EQ(call.outMin, 300.7f);
    EXPECT_EQ(call.rangeMax, 300.7f);
}

TEST(PipelineResults, ColoursOfOneSingleValueAreBlack) {
    const TemporaryFile bytes(Bytes(2, 77));
    const TemporaryFile floats(Floats(2, 77));
    for (const bool is8bit : {true, false}) {
        const TemporaryFile& file = is8bit ? bytes : floats;
        ImageCall call = CallForGrey(file, 2, 1, 1);
        call.is8bit = is8bit;
        call.keepChannelsApart = 1;

        EXPECT_EQ(TakeImage(call.Run()).bytes, Bytes(6, 0));
        EXPECT_EQ(call.rangeMax, 77);
        EXPECT_EQ(call.outMax, 3);
        EXPECT_EQ(call.outMin, 0);
    }
}

// Labels 0 to 3 in red: v becomes 0 + v * 3 / 255, which rounds to 0. With 255 among them they stay.
TEST(PipelineResults, BytesOfAColourStandForTheCommonRange) {
    const TemporaryFile labels(Bytes{0, 1, 2, 3});
    ImageCall call = {.red = labels.Name(), .width = 4};
    EXPECT_EQ(TakeImage(call.Run()).bytes, Bytes(12, 0));

    const TemporaryFile labelsAndWhite(Bytes{0, 1, 2, 255});
    call.red = labelsAndWhite.Name();
    EXPECT_EQ(TakeImage(call.Run()).bytes, (Bytes{0, 0, 0, 1, 0, 0, 2, 0, 0, 255, 0, 0}));

    ImageCall grey = CallForGrey(labels, 4, 1, 1);
    EXPECT_EQ(TakeImage(grey.Run()).bytes, (Bytes{0, 1, 2, 3}));
}

TEST(PipelineResults, AFileEndsInZeroesWhereItIsTooShortAndIsCutOffWhereItIsTooLong) {
    for (const Bytes& stored : {Bytes{1, 2, 3, 4, 5}, Bytes{1, 2, 3, 4, 5, 0, 0, 0, 9, 9}}) {
        const TemporaryFile file(stored);
        ImageCall call = CallForGrey(file, 2, 2, 2);

        EXPECT_EQ(TakeImage(call.Run()).bytes, (Bytes{1, 2, 3, 4, 5, 0, 0, 0}));
        EXPECT_EQ(call.rangeMax, 5);
    }
}

// Samples of 0 and 1 stand for 0 + v / 255, which rounds to black; 254 and 255 stand for 254 + v / 255: white.
TEST(PipelineResults, TheDisplayRangeIs0To3OfBlackAnd762To765OfWhite) {
    const TemporaryFile dark(Bytes{0, 1});
    const TemporaryFile bright(Bytes{254, 255});
    ImageCall black = CallForGrey(dark, 2, 1, 1);
    ImageCall white = CallForGrey(bright, 2, 1, 1);
    black.keepChannelsApart = white.keepChannelsApart = 1;

    EXPECT_EQ(TakeImage(black.Run()).bytes, Bytes(6, 0));
    EXPECT_EQ(black.outMin, 0);
    EXPECT_EQ(black.outMax, 3);
    EXPECT_EQ(TakeImage(white.Run()).bytes, Bytes(6, 255));
    EXPECT_EQ(white.outMin, 762);
    EXPECT_EQ(white.outMax, 765);
}

TEST(PipelineResults, AFileThatIsNamedOnceIsAColour) {
    const TemporaryFile file(Bytes{0, 255});
    ImageCall red = {.red = file.Name(), .width = 2};
    EXPECT_EQ(TakeImage(red.Run()).bytes, (Bytes{0, 0, 0, 255, 0, 0}));

    ImageCall grey = CallForGrey(file, 2, 1, 1);
    EXPECT_EQ(TakeImage(grey.Run()).bytesPerPixel, 1u);
}

TEST(PipelineResults, WithoutADiagonalThereIsOneVoxel) {
    const TemporaryFile file(Bytes(27, 9));
    for (const std::uint32_t diagonal : {0u, 0xFFFFFFFFu, 0x8000u}) {
        ImageCall call = CallForGrey(file, 3, 3, 3);
        call.maxDiagonal = diagonal;
        const Image image = TakeImage(call.Run());
        EXPECT_EQ(image.width * image.height * image.depth, 1);
    }
}

// Calls with 101 and, for the result, those behind the last 100 percent.
int CountPhases(const CallbackLog& log) {
    int phases = 0;
    for (const CallbackCall& call : log.calls)
        phases += call.code == 102 && call.value == 0x42C80000;
    return phases;
}

TEST(PipelineResults, PhasesAreOneOrTwoPerFileAndOneForTheResult) {
    const TemporaryFile a(Bytes(8, 1));
    const TemporaryFile b(Bytes(8, 2));
    const TemporaryFile c(Bytes(8, 3));
    const auto phases = [](ImageCall call) {
        CallbackLog log;
        call.log = &log;
        EXPECT_NE(TakeImage(call.Run()).width, 0);
        return CountPhases(log);
    };
    ImageCall rgb = {
        .red = a.Name(), .green = b.Name(), .blue = c.Name(), .width = 2, .height = 2, .depth = 2};
    ImageCall grey = CallForGrey(a, 2, 2, 2);

    EXPECT_EQ(phases(rgb), 3 + 1);
    EXPECT_EQ(phases(grey), 1);
    rgb.maxDiagonal = grey.maxDiagonal = 2;
    EXPECT_EQ(phases(rgb), 3 * 2 + 1);
    EXPECT_EQ(phases(grey), 2);
    grey.is8bit = 0;
    EXPECT_EQ(phases(grey), 2 + 1);
}

// The display range of a colour is of sums: as a window it accepts every voxel.
TEST(PipelineResults, TheDisplayRangeOfAColourHoldsEverySum) {
    for (int seed = 0; seed < 64; ++seed) {
        const auto sample = [seed](int i) { return static_cast<std::uint8_t>(seed * 37 + i * 101); };
        const TemporaryFile red(Bytes{sample(0), sample(1)});
        const TemporaryFile green(Bytes{sample(2), sample(3)});
        ImageCall call = {.red = red.Name(), .green = green.Name(), .width = 2};

        const Bytes bytes = TakeImage(call.Run()).bytes;
        for (std::size_t voxel = 0; voxel < bytes.size(); voxel += 3) {
            const int sum = bytes[voxel] + bytes[voxel + 1] + bytes[voxel + 2];
            EXPECT_GE(static_cast<float>(sum), call.outMin);
            EXPECT_LE(static_cast<float>(sum), call.outMax);
        }
    }
}

} // namespace
