// The volume that the samples and the self-test render: three soft balls, one per colour channel. The rule is
// whole numbers only, so that every language makes the same bytes. sdk/samples/data/make_data.py follows it too.
#pragma once

#include <cstdint>
#include <vector>

namespace z3d::sdk {

inline constexpr int kBallsWidth = 48;
inline constexpr int kBallsHeight = 40;
inline constexpr int kBallsDepth = 32;

struct Ball {
    int x, y, z, radius; // in voxels, 0-based
};

inline constexpr Ball kBalls[] = {{16, 14, 12, 15}, {31, 22, 16, 17}, {24, 30, 20, 13}}; // red, green, blue

// 255 at the centre, falling with the square of the distance to 0 at the radius.
inline std::uint8_t BallValue(const Ball& ball, int x, int y, int z) {
    const int dx = x - ball.x;
    const int dy = y - ball.y;
    const int dz = z - ball.z;
    const int square = ball.radius * ball.radius;
    const int distance = dx * dx + dy * dy + dz * dz;
    return static_cast<std::uint8_t>(distance >= square ? 0 : 255 - 255 * distance / square);
}

// `value` of every voxel, x fastest, then y, then z.
template <class Value>
std::vector<std::uint8_t> BallVoxels(Value value) {
    std::vector<std::uint8_t> voxels;
    voxels.reserve(std::size_t{kBallsWidth} * kBallsHeight * kBallsDepth);
    for (int z = 0; z < kBallsDepth; ++z)
        for (int y = 0; y < kBallsHeight; ++y)
            for (int x = 0; x < kBallsWidth; ++x)
                voxels.push_back(value(x, y, z));
    return voxels;
}

// One channel: 0 red, 1 green, 2 blue.
inline std::vector<std::uint8_t> BallChannel(int channel) {
    return BallVoxels([&](int x, int y, int z) { return BallValue(kBalls[channel], x, y, z); });
}

// All balls in grey: the brightest of the three.
inline std::vector<std::uint8_t> GreyBalls() {
    return BallVoxels([](int x, int y, int z) {
        std::uint8_t brightest = 0;
        for (const Ball& ball : kBalls) {
            const std::uint8_t value = BallValue(ball, x, y, z);
            if (value > brightest) brightest = value;
        }
        return brightest;
    });
}

} // namespace z3d::sdk
