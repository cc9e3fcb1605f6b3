// The plain form of the whole renderer: all seven modes, grey and colour, one sample after another.
// It is what every faster form is compared with bit for bit, so it is written to be read and never to be
// fast: float storage, double intermediates, one rounding per store, sums in the order written.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace z3d::reference {

// Sizes of at least 1. The slices follow one another, each of width * height * bytesPerVoxel bytes, rows of
// voxels without padding. 3 bytes per voxel are a colour; any other number is rendered as grey.
struct Volume {
    int width;
    int height;
    int depth;
    int bytesPerVoxel;
    std::vector<std::uint8_t> voxels;
};

struct Request {
    // Row-major; row r is view axis r in volume axes.
    std::array<float, 9> rotation;
    // A RenderMode, or any other number that a host may pass.
    std::int16_t mode;
    // Crop box in voxels, 1-based, both ends inclusive.
    std::int16_t x0, x1, y0, y1, z0, z1;
    float high;
    float low;
    // The bits of a float: attenuation of layered surfaces, transparency of blends.
    std::uint32_t extraBits;
};

// Sizes of 0 mean that the rotation has no bounding box of whole voxels (not finite, or too large).
// `rendered` is also false, with the sizes known, for an unknown mode, for pixels of 4 GiB and more, and for a third
// row longer than 1024.
struct Projection {
    int width = 0;
    int height = 0;
    int depth = 0;
    bool rendered = false;
    // width * height pixels of three floats, top row of the view first; empty unless rendered.
    std::vector<float> pixels;
};

Projection Render(const Volume& volume, const Request& request);

} // namespace z3d::reference
