// Pictures of volumes as a host takes them from the DLL, copied and released.
#pragma once

#include "exports/ExportedVolume.h"

#include "Zentra3DRendering.h"

#include <array>
#include <cstddef>
#include <functional>
#include <vector>

namespace z3d::test {

inline constexpr float kNothing = -3.4028234663852886e38f;

// What a host asks for: by default the whole volume, not turned, with every value in the window.
struct View {
    short mode = RenderModeMaximum;
    std::array<float, 9> rotation = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    // x0, x1, y0, y1, z0, z1
    std::array<short, 6> crop = {1, 32767, 1, 32767, 1, 32767};
    float high = 765;
    float low = 0;
    float extra = 0;
    // The bytes of a picture that is wider or higher than the 16 bits of its size can say.
    std::size_t wrappedBytes = 0;
};

struct Picture {
    int width = 0;
    int height = 0;
    // Whether there are pixels: three floats each, top row first.
    bool isRendered = false;
    std::vector<float> floats;

    // Row 0 is the top one.
    const float* At(int column, int row) const {
        return &floats[static_cast<std::size_t>(row * width + column) * 3];
    }
};

// Expects that pixels are released by the documented route. Sizes are the 16 bits that the host receives.
Picture TakePicture(Volume3D* volume, const View& view);

// Angles in degrees, factors in the order X, Y, Z, converted to floats as a host does.
std::array<float, 9> RotationOf(float angleX, float angleY, float angleZ);

// Gives every byte of a volume the value for its column, row, slice and channel.
void Fill(Volume3D* volume, const std::function<int(int x, int y, int z, int channel)>& value);

} // namespace z3d::test
