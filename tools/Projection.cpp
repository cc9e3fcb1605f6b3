#include "Projection.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "Clock.h"
#include "Failure.h"
#include "Text.h"
#include "Volume.h"

namespace z3d::tools {

namespace {

struct Size {
    unsigned short width, height;
};

float* CallLibrary(Volume3D& volume, const std::array<float, 9>& rotation, const ProjectionRequest& request,
                   Size& size) {
    const CropBox& crop = request.crop;
    return GetRotProjection(&volume, rotation.data(), request.mode, crop.x0, crop.x1, crop.y0, crop.y1,
                            crop.z0, crop.z1, request.window.high, request.window.low, request.extra,
                            &size.width, &size.height, 0);
}

// The library says null for a mode it lacks and for scarce memory alike; a volume of one voxel tells which.
bool LibraryHasMode(short mode) {
    constexpr std::array<float, 9> kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    const VolumeOwner voxel = MakeVolume({1, 1, 1}, VoxelType::Grey8);
    Size size = {};
    const ProjectionRequest request = {mode, "", {1, 1, 1, 1, 1, 1}, {0, 255}, 0};
    return ProjectionOwner(CallLibrary(*voxel, kIdentity, request, size)) != nullptr;
}

} // namespace

Rotation MakeRotation(const AxisOrder& order, const std::array<float, 3>& angles) {
    Rotation rotation = {};
    CreateRotateMatrix(rotation.data(), &order, angles[0], angles[1], angles[2]);
    return rotation;
}

Rotation TurnAboutViewAxis(const Rotation& rotation, short axis, float degrees) {
    std::array<float, 3> angles = {};
    angles[static_cast<size_t>(axis)] = degrees;
    const Rotation turn = MakeRotation(AxisOrder{{0, 1, 2}}, angles);
    Rotation product = {};
    for (size_t row = 0; row < 3; ++row)
        for (size_t column = 0; column < 3; ++column)
            for (size_t k = 0; k < 3; ++k)
                product[row * 3 + column] += turn[row * 3 + k] * rotation[k * 3 + column];
    return product;
}

Projection Project(Volume3D& volume, const Rotation& rotation, const ProjectionRequest& request) {
    // The projection takes floats where the rotation matrix has doubles.
    std::array<float, 9> rounded = {};
    std::ranges::transform(rotation, rounded.begin(),
                           [](double element) { return static_cast<float>(element); });

    Size size = {};
    const double start = SecondsNow();
    ProjectionOwner pixels(CallLibrary(volume, rounded, request, size));
    const double seconds = SecondsNow() - start;
    if (pixels == nullptr) {
        if (!LibraryHasMode(request.mode))
            throw Failure(Format("this Zentra3DRendering.dll does not render the mode %s", request.modeName));
        throw Failure(Format("not enough memory for a projection of %dx%d", size.width, size.height));
    }
    return {std::move(pixels), size.width, size.height, seconds};
}

bool IsSentinel(float value) {
    const auto bits = std::bit_cast<uint32_t>(value);
    return bits == 0xFF7FFFFF || bits == 0x7F7FFFFF;
}

} // namespace z3d::tools
