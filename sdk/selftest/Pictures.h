// The pictures that the samples and the self-test make of the balls, and how two of them are compared.
#pragma once

#include <bit>
#include <cstdint>
#include <span>

namespace z3d::sdk {

struct Picture {
    const char* name;
    std::int16_t mode;
    float low;
    float high;
    float extra;
};

inline constexpr Picture kPictures[] = {
    {"maximum", 0, 0, 255, 0},  {"minimum", 1, 1, 255, 0},    {"sum", 2, 0, 255, 0},
    {"surface", 3, 60, 256, 0}, {"layers", 3, 60, 256, 0.5f}, {"blend", 4, 0, 255, 0.5f},
    {"contrast", 5, 0, 256, 0}, {"first hit", 6, 60, 255, 0},
};

// Of the colour volume: the window tests the sum of the channels.
inline constexpr Picture kColourPicture = {"colour", 0, 0, 765, 0};

// Degrees about X, Y and Z, in the axis order X, Y, Z.
inline constexpr float kTurn[] = {30, 40, 50};

// The colour volume is fitted into a diagonal of 60 voxels: 41 x 34 x 27.
inline constexpr std::int16_t kColourDiagonal = 60;

// FNV-1a, 32 bits, over the bytes of the pixels' floats from the low byte to the high one.
inline std::uint32_t Checksum(std::span<const float> pixels) {
    std::uint32_t checksum = 0x811C9DC5;
    for (const float value : pixels) {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        for (unsigned shift = 0; shift < 32; shift += 8)
            checksum = (checksum ^ ((bits >> shift) & 0xFF)) * 0x01000193;
    }
    return checksum;
}

} // namespace z3d::sdk
