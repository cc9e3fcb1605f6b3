// The samples of the SDK print the same text in every language. Its checksums come from the plain form, never
// from the product.
#include "reference/PlainPipeline.h"
#include "reference/ReferenceRenderer.h"
#include "sdk/selftest/Balls.h"
#include "sdk/selftest/Pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <numbers>
#include <string>

namespace {

using namespace z3d;

// R(X) * R(Y) * R(Z), multiplied out. A positive X angle turns Y towards Z, a positive Z angle X towards Y, and a
// positive Y angle Z towards -X.
std::array<float, 9> Rotation() {
    const auto sine = [](int axis) { return std::sin(sdk::kTurn[axis] * std::numbers::pi / 180); };
    const auto cosine = [](int axis) { return std::cos(sdk::kTurn[axis] * std::numbers::pi / 180); };
    const double sx = sine(0), sy = sine(1), sz = sine(2);
    const double cx = cosine(0), cy = cosine(1), cz = cosine(2);
    const double matrix[] = {cy * cz,
                             -cy * sz,
                             -sy,
                             cx * sz - sx * sy * cz,
                             cx * cz + sx * sy * sz,
                             -sx * cy,
                             sx * sz + cx * sy * cz,
                             sx * cz - cx * sy * sz,
                             cx * cy};
    std::array<float, 9> rotation = {};
    std::ranges::transform(matrix, rotation.begin(), [](double m) { return static_cast<float>(m); });
    return rotation;
}

template <class... Values>
std::string Line(const char* format, Values... values) {
    char text[200];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string PictureLine(const reference::Volume& volume, const sdk::Picture& picture) {
    const auto whole = [](int length) { return static_cast<std::int16_t>(length); };
    const reference::Request request = {Rotation(),
                                        picture.mode,
                                        1,
                                        whole(volume.width),
                                        1,
                                        whole(volume.height),
                                        1,
                                        whole(volume.depth),
                                        picture.high,
                                        picture.low,
                                        std::bit_cast<std::uint32_t>(picture.extra)};
    const reference::Projection projection = reference::Render(volume, request);
    return Line("%-9s %2d x %2d  %08X\n", picture.name, projection.width, projection.height,
                static_cast<unsigned int>(sdk::Checksum(projection.pixels)));
}

reference::RgbImage ColourBalls() {
    const reference::FileBytes channels[] = {sdk::BallChannel(0), sdk::BallChannel(1), sdk::BallChannel(2)};
    return reference::MakeRgbImage({&channels[0],
                                    &channels[1],
                                    &channels[2],
                                    {sdk::kBallsWidth, sdk::kBallsHeight, sdk::kBallsDepth},
                                    true,
                                    sdk::kColourDiagonal});
}

std::string SampleOutput() {
    const reference::Volume grey = {sdk::kBallsWidth, sdk::kBallsHeight, sdk::kBallsDepth, 1,
                                    sdk::GreyBalls()};
    std::string text;
    for (const sdk::Picture& picture : sdk::kPictures) {
        text += PictureLine(grey, picture);
    }
    const reference::RgbImage colour = ColourBalls();
    text += Line("loaded    %d x %d x %d, display range %.0f to %.0f\n", colour.volume.width,
                 colour.volume.height, colour.volume.depth, static_cast<double>(colour.display.min),
                 static_cast<double>(colour.display.max));
    text += PictureLine(colour.volume, sdk::kColourPicture);
    return text + "cancelled at 50 %\n";
}

TEST(SampleOutput, IsWhatThePlainFormShows) {
    std::ifstream file(EXPECTED_OUTPUT, std::ios::binary);
    const std::string expected{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};

    EXPECT_EQ(SampleOutput(), expected);
}

} // namespace
