// Images from files through the DLL: arguments, results and the callback.
#include "exports/HeapUse.h"
#include "exports/ImageCall.h"
#include "exports/Library.h"
#include "exports/Picture.h"

#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cfloat>
#include <cstring>

namespace {

using namespace z3d::test;

using Bytes = std::vector<std::uint8_t>;
using Floats = std::vector<float>;
using Calls = std::vector<CallbackCall>;

constexpr CallbackCall kStart = {101, 0};
constexpr CallbackCall kHalf = {102, 0x42480000};
constexpr CallbackCall kWhole = {102, 0x42C80000};
constexpr CallbackCall kCannotRun = {200, 0x42C80000};

TEST(PipelineExports, ComposeChannelsIntoAVolumeOfTheHosts) {
    const TemporaryFile red(Bytes{0, 1});
    const TemporaryFile green(Bytes{20, 255});
    ImageCall call = {.red = red.Name(), .green = green.Name(), .blue = "", .width = 2};

    const Image image = TakeImage(call.Run());

    EXPECT_EQ(image.bytesPerPixel, 3u);
    EXPECT_EQ(image.bytes, (Bytes{0, 20, 0, 1, 255, 0}));
    EXPECT_EQ(call.rangeMax, 255);
    EXPECT_EQ(call.rangeMin, 0);
    // Grey (1365 * 20) >> 12 = 6 and (1365 * 256) >> 12 = 85, which becomes 86.
    EXPECT_EQ(call.outMin, 18);
    EXPECT_EQ(call.outMax, 258);
}

TEST(PipelineExports, ConvertOneFileOfFloatsToGrey) {
    const TemporaryFile file(Floats{0, 0.5f, 1, 0.25f});
    ImageCall call = {
        .red = file.Name(), .green = file.Name(), .blue = file.Name(), .width = 2, .height = 2, .is8bit = 0};

    const Image image = TakeImage(call.Run());

    EXPECT_EQ(image.bytesPerPixel, 1u);
    EXPECT_EQ(image.bytes, (Bytes{0, 128, 255, 64}));
    EXPECT_EQ(call.outMax, 255);
    EXPECT_EQ(call.outMin, 0);
}

TEST(PipelineExports, FitACubeOf100IntoADiagonalOf100) {
    const TemporaryFile file(Bytes(1000, 9));
    ImageCall call = {.red = file.Name(), .width = 100, .height = 100, .depth = 100, .maxDiagonal = 100};

    const Image image = TakeImage(call.Run());

    EXPECT_EQ(image.width, 57);
    EXPECT_EQ(image.height, 57);
    EXPECT_EQ(image.depth, 57);
}

TEST(PipelineExports, LookAtTheLow16BitsOfShortArguments) {
    const TemporaryFile file(Bytes{1, 2, 3, 4, 5, 6, 7, 8});
    ImageCall call = {.red = file.Name(),
                      .green = file.Name(),
                      .blue = file.Name(),
                      .width = 0xABCD0002,
                      .height = 0xFFFF0002,
                      .depth = 0x12340002,
                      .is8bit = 0x80000001,
                      .maxDiagonal = 0x7FFF7FFF};

    const Image image = TakeImage(call.Run());

    EXPECT_EQ(image.bytes, (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));

    // No bit of the low half: floats.
    call.is8bit = 0xFFFF0000;
    call.depth = 0x00010001;
    EXPECT_EQ(TakeImage(call.Run()).bytes.size(), 4u);
    EXPECT_LT(call.rangeMax, 1e-30f);
}

TEST(PipelineExports, LookAtTheLowByteOfKeepChannelsApart) {
    const TemporaryFile file(Bytes{1});
    ImageCall call = {.red = file.Name(), .green = file.Name(), .blue = file.Name()};

    call.keepChannelsApart = 0xFFFFFF00;
    EXPECT_EQ(TakeImage(call.Run()).bytesPerPixel, 1u);
    call.keepChannelsApart = 0x80;
    EXPECT_EQ(TakeImage(call.Run()).bytesPerPixel, 3u);
}

TEST(PipelineExports, TellTheCallbackOfEveryPhase) {
    const TemporaryFile red(Bytes{1, 2});
    const TemporaryFile blue(Bytes{3, 4});
    CallbackLog log;
    ImageCall call = {.red = red.Name(), .blue = blue.Name(), .depth = 2, .maxDiagonal = 1, .log = &log};

    const Image image = TakeImage(call.Run());

    EXPECT_EQ(image.depth, 1);
    const Calls load = {kStart, kHalf, kWhole, kStart, kWhole};
    Calls expected = load;
    expected.insert(expected.end(), load.begin(), load.end());
    expected.push_back(kWhole);
    EXPECT_EQ(log.calls, expected);
}

TEST(PipelineExports, StopWhenTheCallbackReturns200InTheLow16Bits) {
    const TemporaryFile file(Bytes{1, 2});
    for (const int result : {200, 65736, static_cast<int>(0xFFFF00C8)}) {
        CallbackLog log;
        log.cancelAt = 1;
        log.cancelResult = result;
        ImageCall call = {.red = file.Name(), .depth = 2, .log = &log};
        EXPECT_EQ(call.Run(), nullptr);
        EXPECT_EQ(log.calls, (Calls{kStart, kHalf, kNoResult}));
    }
}

TEST(PipelineExports, GoOnWhenTheCallbackReturns200Elsewhere) {
    const TemporaryFile file(Bytes{1, 2});
    for (const int result : {200 << 16, 201, -200}) {
        CallbackLog log;
        log.cancelAt = 0;
        log.cancelResult = result;
        ImageCall call = {.red = file.Name(), .depth = 2, .log = &log};
        EXPECT_EQ(TakeImage(call.Run()).depth, 2);
    }
}

TEST(PipelineExports, HaveNoImageOfNoFiles) {
    CallbackLog log;
    ImageCall call = {.is8bit = 0, .log = &log};
    EXPECT_EQ(call.Run(), nullptr);
    EXPECT_EQ(log.calls, (Calls{kCannotRun, kNoResult}));

    log.calls.clear();
    call.is8bit = 1;
    EXPECT_EQ(call.Run(), nullptr);
    EXPECT_EQ(log.calls, Calls{kNoResult});
    EXPECT_EQ(call.rangeMax, -FLT_MAX);
    EXPECT_EQ(call.rangeMin, FLT_MAX);
}

TEST(PipelineExports, TakeNoOutputsAndNoCallback) {
    const TemporaryFile file(Bytes{1, 2});

    Volume3D* volume = TheLibrary().GetRGBImage(file.Name(), nullptr, nullptr, 2, 1, 1, 0, 0, 0, 1, 9,
                                                nullptr, nullptr, nullptr, nullptr, 0, nullptr, 0);

    EXPECT_EQ(TakeImage(volume).bytes.size(), 6u);
}

TEST(PipelineExports, OpenFilesByTheSystemsCodePage) {
    const TemporaryFile file(Bytes{42});
    const std::string name = std::string(file.Name()) + "-caf\xE9";
    ASSERT_NE(CopyFileA(file.Name(), name.c_str(), FALSE), FALSE);
    ImageCall call = {.red = name.c_str(), .green = name.c_str(), .blue = name.c_str()};

    EXPECT_EQ(TakeImage(call.Run()).bytes, Bytes{42});

    DeleteFileA(name.c_str());
}

HANDLE Open(const char* name, DWORD share) {
    return CreateFileA(name, GENERIC_READ, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

TEST(PipelineExports, LetOthersReadTheFileMeanwhile) {
    static const TemporaryFile* file = nullptr;
    static int opened = 0;
    const TemporaryFile bytes(Bytes{1});
    file = &bytes;
    CallbackLog log;
    log.atEachCall = [](CallbackLog&) {
        const HANDLE other = Open(file->Name(), FILE_SHARE_READ);
        opened += other != INVALID_HANDLE_VALUE;
        CloseHandle(other);
    };
    const HANDLE before = Open(bytes.Name(), FILE_SHARE_READ);
    ImageCall call = {.red = bytes.Name(), .log = &log};

    EXPECT_EQ(TakeImage(call.Run()).depth, 1);
    EXPECT_EQ(opened, 3);

    CloseHandle(before);
}

// Loads another file, renders it and makes a matrix.
bool CallsTheLibrary(const char* name) {
    Volume3D* volume = TheLibrary().GetRGBImage(name, name, name, 4, 1, 1, 0, 0, 0, 1, 30000, nullptr,
                                                nullptr, nullptr, nullptr, 0, nullptr, 0);
    if (volume == nullptr) return false;
    const Picture picture = TakePicture(volume, {.mode = RenderModeFirstHit});
    TheLibrary().Free3DData(volume);
    return picture.isRendered && *picture.At(3, 0) == 40 && RotationOf(0, 0, 90)[1] == -1;
}

TEST(PipelineExports, LetTheCallbackCallTheLibrary) {
    static const TemporaryFile* other = nullptr;
    static int steps;
    const TemporaryFile bytes(Bytes{10, 20, 30, 40});
    const TemporaryFile file(Bytes{0, 255});
    other = &bytes;
    steps = 0;
    CallbackLog log;
    log.atEachCall = [](CallbackLog&) { steps += CallsTheLibrary(other->Name()); };
    ImageCall call = {.red = file.Name(), .width = 2, .log = &log};

    EXPECT_EQ(TakeImage(call.RunUnwatched()).bytes, (Bytes{0, 0, 0, 255, 0, 0}))
        << "its own flags are raised";
    EXPECT_EQ(steps, 3) << "the start, the slice and the result";
}

void OneRound(int round, const char* bytes, const char* floats) {
    CallbackLog log;
    log.cancelAt = round % 9;
    ImageCall call = {.red = bytes,
                      .green = floats,
                      .blue = bytes,
                      .width = 2,
                      .height = 2,
                      .depth = 3,
                      .is8bit = round % 2 == 0,
                      .maxDiagonal = round % 3 == 0 ? 2u : 9u,
                      .log = &log};
    Volume3D* volume = call.Run();
    if (volume != nullptr) TheLibrary().Free3DData(volume);
    TheLibrary().SetRenderMsgTitle(round % 2 == 0 ? "a longer title of the host" : "short");
}

TEST(PipelineExports, KeepNothingOverManyCalls) {
    const TemporaryFile bytes(Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    const TemporaryFile floats(Floats{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    for (int round = 0; round < 100; ++round)
        OneRound(round, bytes.Name(), floats.Name());
    const HeapUse before = MeasureHeaps();

    for (int round = 0; round < 1800; ++round)
        OneRound(round, bytes.Name(), floats.Name());

    EXPECT_EQ(MeasureHeaps(), before);
}

} // namespace
