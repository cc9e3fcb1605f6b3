#include "primitives/Resize.h"

#include "primitives/Regions.h"
#include "support/Refusals.h"
#include "support/SpecialValues.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kInfinity;
using test::kLargestInt;
using test::kNaN;

using Bytes = std::vector<std::uint8_t>;
using Floats = std::vector<float>;

// A dense source resized the way slices are: the rectangle begins one pixel in, the factors are the
// quotients.
template <class Resize, class T>
Status ResizeSlice(Resize resize, const std::vector<T>& source, ImageSize from, std::vector<T>& destination,
                   ImageSize to) {
    const auto pixelBytes = static_cast<std::int32_t>(sizeof(T));
    return resize(source.data(), from, from.width * pixelBytes, {1, 1, from.width, from.height},
                  destination.data(), to.width * pixelBytes, to, static_cast<double>(to.width) / from.width,
                  static_cast<double>(to.height) / from.height, 2);
}

// A dense source resized from its first pixel.
template <class Resize, class T>
Status ResizeWhole(Resize resize, const std::vector<T>& source, ImageSize from, std::vector<T>& destination,
                   ImageSize to, std::int32_t interpolation = 2) {
    const auto pixelBytes = static_cast<std::int32_t>(sizeof(T));
    return resize(source.data(), from, from.width * pixelBytes, {0, 0, from.width, from.height},
                  destination.data(), to.width * pixelBytes, to, static_cast<double>(to.width) / from.width,
                  static_cast<double>(to.height) / from.height, interpolation);
}

template <class T>
std::vector<T> Counting(std::size_t count) {
    std::vector<T> values(count);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = static_cast<T>(i);
    return values;
}

template <class T, class Resize>
void ExpectShiftByOnePixel(Resize resize) {
    std::vector<T> destination(16, 99);

    EXPECT_EQ(ResizeSlice(resize, Counting<T>(16), {4, 4}, destination, {4, 4}), StatusNoError);

    const std::vector<T> expected = {5, 6, 7, 99, 9, 10, 11, 99, 13, 14, 15, 99, 99, 99, 99, 99};
    EXPECT_EQ(destination, expected);
}

TEST(Resize, OfASliceToItsOwnSizeShiftsItByOnePixel) {
    ExpectShiftByOnePixel<std::uint8_t>(Resize8uC1);
    ExpectShiftByOnePixel<float>(Resize32fC1);
}

// How many of the columns and rows of a slice are written, seen on a destination that held 255.
ImageSize WrittenSize(std::int32_t from, std::int32_t to) {
    const auto pixels = [](std::int32_t n) {
        return static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
    };
    const Bytes source(pixels(from), 0);
    Bytes destination(pixels(to), 255);
    EXPECT_EQ(ResizeSlice(Resize8uC1, source, {from, from}, destination, {to, to}), StatusNoError);
    ImageSize written{0, 0};
    while (written.width < to && destination[static_cast<std::size_t>(written.width)] == 0)
        ++written.width;
    while (written.height < to && destination[static_cast<std::size_t>(written.height * to)] == 0)
        ++written.height;
    std::int32_t zeroes = 0;
    for (const std::uint8_t byte : destination)
        zeroes += byte == 0;
    EXPECT_EQ(zeroes, written.width * written.height);
    return written;
}

TEST(Resize, LeavesTheLastColumnsAndRowsUnwritten) {
    const std::int32_t kCases[][3] = {{512, 256, 255}, {256, 512, 510}, {3, 2, 1}, {2, 3, 1},
                                      {2, 9, 4},       {100, 1, 1},     {7, 7, 6}, {257, 255, 254}};
    for (const auto& [from, to, written] : kCases) {
        const ImageSize size = WrittenSize(from, to);
        EXPECT_EQ(size.width, written) << from << " to " << to;
        EXPECT_EQ(size.height, written) << from << " to " << to;
    }
}

// Step (5 - 1) / (9 - 1): every second column is the mean of its neighbours.
TEST(Resize, MeetsBothEndsOfTheRectangle) {
    const Floats source = {0, 10, 20, 40, 80, /**/ 0, 10, 20, 40, 80};
    Floats destination(9);

    EXPECT_EQ(
        Resize32fC1(source.data(), {5, 2}, 20, {0, 0, 5, 2}, destination.data(), 36, {9, 1}, 1.8, 0.5, 2),
        StatusNoError);

    EXPECT_EQ(destination, (Floats{0, 5, 10, 15, 20, 30, 40, 60, 80}));
}

// 0 and 255 at weight 8192 give 8160 in units of 1/64, which is 127.5, and 128.
TEST(Resize, RoundsTheMeanOfBytesUp) {
    const Bytes source = {0, 255, 0, 255};
    Bytes destination(3);

    EXPECT_EQ(Resize8uC1(source.data(), {2, 2}, 2, {0, 0, 2, 2}, destination.data(), 3, {3, 1}, 1.5, 0.5, 2),
              StatusNoError);

    EXPECT_EQ(destination, (Bytes{0, 128, 255}));
}

// Across 1 to 2: half is 96 of 64ths, exactly; down 96 and 160: 128 of 64ths.
TEST(Resize, BlendsAcrossThenDown) {
    const Bytes bytes = {1, 2, 2, 3};
    const Floats floats = {1, 2, 2, 3};
    Bytes smallBytes(9);
    Floats smallFloats(9);

    EXPECT_EQ(ResizeWhole(Resize8uC1, bytes, {2, 2}, smallBytes, {3, 3}), StatusNoError);
    EXPECT_EQ(ResizeWhole(Resize32fC1, floats, {2, 2}, smallFloats, {3, 3}), StatusNoError);

    EXPECT_EQ(smallBytes, (Bytes{1, 2, 2, 2, 2, 3, 2, 3, 3}));
    EXPECT_EQ(smallFloats, (Floats{1, 1.5f, 2, 1.5f, 2, 2.5f, 2, 2.5f, 3}));
}

TEST(Resize, OfASliceTwoWideRepeatsItsSecondColumn) {
    const Bytes source = {7, 50, 7, 60, 7, 70};
    Bytes destination(8 * 3, 99);

    EXPECT_EQ(ResizeSlice(Resize8uC1, source, {2, 3}, destination, {8, 3}), StatusNoError);

    const Bytes expected = {60, 60, 60, 60, 99, 99, 99, 99, 70, 70, 70, 70,
                            99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99};
    EXPECT_EQ(destination, expected);
}

TEST(Resize, WithAnExtentOfOneOrLessSamplesTheFirstPixel) {
    const Floats source = {1, 2, 3, 4, 5, 6};
    Floats destination(4, 99.0f);

    EXPECT_EQ(
        Resize32fC1(source.data(), {3, 2}, 12, {0, 0, 3, 2}, destination.data(), 8, {2, 2}, 0.3, 1e-300, 2),
        StatusNoError);

    EXPECT_EQ(destination, (Floats{1, 99, 99, 99}));
}

TEST(Resize, OfALineTakesTheNearestPixel) {
    const Bytes column = {10, 20, 30};
    Bytes destination(5);

    EXPECT_EQ(ResizeWhole(Resize8uC1, column, {1, 3}, destination, {1, 5}), StatusNoError);

    EXPECT_EQ(destination, (Bytes{10, 20, 20, 30, 30})); // positions 0, 0.5, 1, 1.5, 2
}

TEST(Resize, OfASliceOnePixelWideOrHighDoesNothing) {
    const Bytes source(5, 1);
    Bytes destination(9, 99);

    EXPECT_EQ(ResizeSlice(Resize8uC1, source, {1, 5}, destination, {3, 3}), StatusNoOverlap);
    EXPECT_EQ(ResizeSlice(Resize8uC1, source, {5, 1}, destination, {3, 3}), StatusNoOverlap);

    EXPECT_EQ(destination, Bytes(9, 99));
}

TEST(Resize, AcceptsNearestAndCubic) {
    const Bytes source = {0, 100, 200, 0, 100, 200};
    Bytes nearest(10, 99), cubic(10, 99);

    EXPECT_EQ(ResizeWhole(Resize8uC1, source, {3, 2}, nearest, {5, 2}, 1), StatusNoError);
    EXPECT_EQ(ResizeWhole(Resize8uC1, source, {3, 2}, cubic, {5, 2}, 4), StatusNoError);

    EXPECT_EQ(nearest, (Bytes{0, 100, 100, 200, 200, 0, 100, 100, 200, 200}));
    EXPECT_EQ(cubic, (Bytes{0, 50, 100, 150, 200, 0, 50, 100, 150, 200}));
}

// The blend of the last column keeps both neighbours: an infinity to the left shows.
TEST(Resize, KeepsTheFormulaInTheLastColumn) {
    const float infinity = std::numeric_limits<float>::infinity();
    const Floats source = {0, infinity, 5, 0, infinity, 5};
    Floats destination(2 * 2, 99.0f);

    EXPECT_EQ(
        Resize32fC1(source.data(), {3, 2}, 12, {2, 0, 1, 2}, destination.data(), 8, {2, 2}, 1.0, 1.0, 2),
        StatusNoError);

    EXPECT_TRUE(std::isnan(destination[0]));
    EXPECT_EQ(destination[1], 99.0f);
}

// A product of 1.99999995 counts as two columns, whose step of (W - 1) * 1.00000005 ends beyond the source.
TEST(Resize, StaysWithinAWideSourceWhenTheExtentIsJustShort) {
    constexpr std::int32_t kWidth = 30000000;
    Bytes source(kWidth + 1, 1); // two rows, one byte apart
    source.front() = 50;
    source.back() = 200;
    source[kWidth - 1] = 200;
    Bytes destination(3, 99);

    EXPECT_EQ(Resize8uC1(source.data(), {kWidth, 2}, 1, {0, 0, kLargestInt, 1}, destination.data(), 3, {3, 1},
                         1.99999995 / kWidth, 1.0, 2),
              StatusNoError);

    EXPECT_EQ(destination, (Bytes{50, 200, 99}));
}

TEST(Resize, CountsFloatStepsInWholeFloats) {
    const Floats source = {1, 2, 3, 4};
    Floats destination(4, 99.0f);

    EXPECT_EQ(Resize32fC1(source.data(), {2, 2}, 8 + 3, {0, 0, 2, 2}, destination.data(), 8 + 1, {2, 2}, 1.0,
                          1.0, 2),
              StatusNoError);

    EXPECT_EQ(destination, (Floats{1, 2, 3, 4}));
}

TEST(Resize, AcceptsHugeFactors) {
    const Bytes source = {10, 20, 30, 40};
    for (const double factor : {1e10, 1e300, double{kInfinity}, std::numeric_limits<double>::max()}) {
        Bytes destination(9, 99);

        EXPECT_EQ(Resize8uC1(source.data(), {2, 2}, 2, {0, 0, 2, 2}, destination.data(), 3, {3, 3}, factor,
                             factor, 2),
                  StatusNoError);

        EXPECT_EQ(destination, Bytes(9, 10));
    }
}

template <class T, class Resize>
void ExpectNothingWithoutMemory(Resize resize, std::int32_t interpolation) {
    test::ForEveryRefusal([&](bool refused) {
        std::vector<T> destination(25, 99);
        EXPECT_EQ(ResizeWhole(resize, Counting<T>(9), {3, 3}, destination, {5, 5}, interpolation),
                  refused ? StatusMemoryError : StatusNoError);
        if (refused) {
            EXPECT_EQ(destination, std::vector<T>(25, 99));
        }
    });
}

TEST(Resize, WithoutMemoryWritesNothing) {
    for (const std::int32_t interpolation : {1, 2, 4}) {
        ExpectNothingWithoutMemory<std::uint8_t>(Resize8uC1, interpolation);
        ExpectNothingWithoutMemory<float>(Resize32fC1, interpolation);
    }
}

// The arguments of a call, each valid until a test spoils it.
template <class T>
struct Call {
    const T* source;
    ImageSize sourceSize{3, 3};
    std::int32_t sourceStep = 3 * sizeof(T);
    ImageRect rectangle{0, 0, 3, 3};
    T* destination;
    std::int32_t destinationStep = 3 * sizeof(T);
    ImageSize destinationSize{3, 3};
    double xFactor = 1.0, yFactor = 1.0;
    std::int32_t interpolation = 2;

    template <class Resize>
    Status Make(Resize resize) const {
        return resize(source, sourceSize, sourceStep, rectangle, destination, destinationStep,
                      destinationSize, xFactor, yFactor, interpolation);
    }
};

// From the last check to the first, every fault is added to the ones before, and decides.
template <class T, class Resize>
void ExpectResizeChecksInOrder(Resize resize) {
    const std::vector<T> source(9, 1);
    std::vector<T> destination(9, 99);
    Call<T> call{.source = source.data(), .destination = destination.data()};
    const auto expect = [&](auto spoil, Status status) {
        spoil(call);
        EXPECT_EQ(call.Make(resize), status);
    };
    expect([](auto& c) { c.interpolation = 3; }, StatusInterpolationError);
    expect([](auto& c) { c.interpolation = 0; }, StatusInterpolationError);
    expect([](auto& c) { c.yFactor = 0.0; }, StatusFactorError);
    expect([](auto& c) { c.yFactor = 1.0, c.xFactor = -1.0; }, StatusFactorError);
    expect([](auto& c) { c.xFactor = kNaN; }, StatusFactorError);
    expect([](auto& c) { c.xFactor = 1.0, c.yFactor = kNaN; }, StatusFactorError);
    expect([](auto& c) { c.rectangle.y = 3; }, StatusNoOverlap);
    expect([](auto& c) { c.rectangle.y = 0, c.rectangle.x = kLargestInt; }, StatusNoOverlap);
    expect([](auto& c) { c.destinationSize.height = 0; }, StatusSizeError);
    expect([](auto& c) { c.destinationSize = {-1, 3}; }, StatusSizeError);
    expect([](auto& c) { c.destinationStep = 0; }, StatusStepError);
    expect([](auto& c) { c.destinationStep = 3, c.sourceStep = -3; }, StatusStepError);
    expect([](auto& c) { c.sourceSize.height = 0; }, StatusSizeError);
    expect([](auto& c) { c.sourceSize = {-5, 3}; }, StatusSizeError);
    expect([](auto& c) { c.destination = nullptr; }, StatusNullPointer);
    expect([&](auto& c) { c.destination = destination.data(), c.source = nullptr; }, StatusNullPointer);
    EXPECT_EQ(destination, std::vector<T>(9, 99));
}

TEST(Resize, ChecksItsArgumentsInOrder) {
    ExpectResizeChecksInOrder<std::uint8_t>(Resize8uC1);
    ExpectResizeChecksInOrder<float>(Resize32fC1);
}

TEST(Resize, RefusesRectanglesWithoutAPlaceOrSize) {
    const Bytes source(9, 1);
    Bytes destination(9, 99);
    const ImageRect kRectangles[] = {{-1, 0, 3, 3}, {0, -1, 3, 3}, {0, 0, 0, 3},
                                     {0, 0, 3, 0},  {0, 0, -3, 3}, {-kLargestInt - 1, 5, 3, 3},
                                     {5, 5, 0, 3}};
    for (const ImageRect& rectangle : kRectangles) {
        Call<std::uint8_t> call{
            .source = source.data(), .rectangle = rectangle, .destination = destination.data()};
        EXPECT_EQ(call.Make(Resize8uC1), StatusSizeError);
    }
    EXPECT_EQ(destination, Bytes(9, 99));
}

} // namespace
