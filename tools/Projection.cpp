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

// The projection takes floats where the rotation matrix has doubles.
std::array<float, 9> Rounded(const Rotation& rotation) {
    std::array<float, 9> rounded = {};
    std::ranges::transform(rotation, rounded.begin(),
                           [](double element) { return static_cast<float>(element); });
    return rounded;
}

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

PictureSize SizeOfView(Volume3D& volume, const Rotation& rotation) {
    Size size = {};
    GetRotDim(&volume, Rounded(rotation).data(), 1, 1, 1, 1, 1, 1, &size.width, &size.height, 0);
    return {size.width, size.height};
}

Projection Padded(Projection projection, PictureSize size, float empty) {
    if (projection.width >= size.width && projection.height >= size.height) return projection;
    const size_t floats = size_t{3} * static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, floats * sizeof(float));
    if (block == nullptr)
        throw Failure(Format("not enough memory for a picture of %dx%d", size.width, size.height));
    Projection padded = {ProjectionOwner(static_cast<float*>(GlobalLock(block))), size.width, size.height,
                         projection.seconds};
    std::fill_n(padded.pixels.get(), floats, empty);
    const int left = (size.width - projection.width) / 2;
    const int top = (size.height - projection.height) / 2;
    for (int row = 0; row < projection.height; ++row)
        std::copy_n(projection.Row(row), 3 * projection.width,
                    padded.pixels.get() + (padded.Row(top + row) - padded.Row(0)) + 3 * left);
    return padded;
}

Projection Project(Volume3D& volume, const Rotation& rotation, const ProjectionRequest& request) {
    Size size = {};
    const double start = SecondsNow();
    ProjectionOwner pixels(CallLibrary(volume, Rounded(rotation), request, size));
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
