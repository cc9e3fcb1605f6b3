#include "render/ProjectionRenderer.h"

#include "frame/Volume3D.h"
#include "platform/Heap.h"
#include "render/InstructionSet.h"
#include "render/LockedVolume.h"
#include "render/Projection.h"
#include "render/ProjectionImage.h"
#include "render/voxels/SliceOffsets.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace z3d::render {
namespace {

// Sizes are one more than the integer part of an extent, in 32 bits.
constexpr double kLargestExtent = 2147483647.0;

// A viewing direction longer than this asks for more than a thousand samples per voxel, which could take hours: it is
// no rotation, nor one with scaled axes, but most likely doubles that were passed as floats. It also keeps depth
// indexes far within 32 bits.
constexpr double kLongestStep = 1024;

struct BoundingBox {
    double low[3] = {std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
                     std::numeric_limits<double>::max()};
    double high[3] = {std::numeric_limits<double>::lowest(), std::numeric_limits<double>::lowest(),
                      std::numeric_limits<double>::lowest()};
};

// Widens the box by a centred volume point, seen in view space.
void ExtendBounds(const float* rotation, double x, double y, double z, BoundingBox& box) {
    for (int axis = 0; axis < 3; ++axis) {
        const float* row = rotation + 3 * axis;
        const double view = row[0] * x + row[1] * y + row[2] * z;
        if (view > box.high[axis]) box.high[axis] = view;
        if (view < box.low[axis]) box.low[axis] = view;
    }
}

float HalfExtent(std::int32_t size) { return static_cast<float>((size - 1) * 0.5); }

} // namespace

void* ProjectionRenderer::operator new(std::size_t bytes) noexcept { return platform::HeapAllocate(bytes); }
void ProjectionRenderer::operator delete(void* memory) noexcept { platform::HeapFree(memory); }

ProjectionRenderer::ProjectionRenderer(::Volume3D* volumeToRender, const float* rotationOfView,
                                       const CropBox& crop, std::int32_t reservedValue)
    : volume(volumeToRender),
      reserved(reservedValue),
      volumeWidth(volumeToRender->width),
      volumeHeight(volumeToRender->height),
      volumeDepth(volumeToRender->depth),
      outputWidth(0),
      outputHeight(0),
      outputDepth(0) {
    volumeCentre[0] = HalfExtent(volumeWidth);
    volumeCentre[1] = HalfExtent(volumeHeight);
    volumeCentre[2] = HalfExtent(volumeDepth);
    LoadRotation(rotationOfView);
    SizeOutput();
    LoadCrop(crop);
}

ProjectionRenderer::~ProjectionRenderer() = default;

void ProjectionRenderer::LoadRotation(const float* source) {
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            rotation[3 * row + column] = source[3 * row + column];
            inverseRotation[3 * row + column] = source[3 * column + row];
        }
    }
    std::copy_n(inverseRotation, 9, inverseRotation2);
    std::copy_n(rotation, 9, rotation2);
}

void ProjectionRenderer::SizeOutput() {
    const double ax = volumeCentre[0];
    const double ay = volumeCentre[1];
    const double az = volumeCentre[2];
    BoundingBox box;
    ExtendBounds(rotation, -ax, ay, az, box);
    ExtendBounds(rotation, ax, ay, az, box);
    ExtendBounds(rotation, ax, -ay, az, box);
    ExtendBounds(rotation, -ax, -ay, az, box);
    ExtendBounds(rotation, -ax, ay, -az, box);
    ExtendBounds(rotation, ax, ay, -az, box);
    ExtendBounds(rotation, ax, -ay, -az, box);
    ExtendBounds(rotation, -ax, -ay, -az, box);

    std::int32_t size[3];
    bool valid = std::all_of(rotation, rotation + 9, [](float element) { return std::isfinite(element); });
    for (int axis = 0; axis < 3; ++axis) {
        const double extent = box.high[axis] - box.low[axis];
        valid = valid && extent < kLargestExtent;
        size[axis] = valid ? static_cast<std::int32_t>(extent) + 1 : 0;
    }
    if (!valid) std::fill_n(size, 3, 0);
    outputWidth = size[0];
    outputHeight = size[1];
    outputDepth = size[2];
    for (int axis = 0; axis < 3; ++axis)
        outputHalfSize[axis] = HalfExtent(size[axis]);
}

void ProjectionRenderer::LoadCrop(const CropBox& crop) {
    const std::int32_t first[3] = {crop.z0, crop.y0, crop.x0};
    const std::int32_t last[3] = {crop.z1, crop.y1, crop.x1};
    for (int axis = 0; axis < 3; ++axis) {
        const float halfExtent = volumeCentre[2 - axis];
        cropLow[axis] = static_cast<float>(first[axis] - static_cast<double>(halfExtent));
        cropHigh[axis] = static_cast<float>(last[axis] - static_cast<double>(halfExtent));
        ClampCropInterval(cropLow[axis], cropHigh[axis], halfExtent);
    }
}

void ClampCropInterval(float& low, float& high, float halfExtent) {
    // Order the ends, and give the interval at least one voxel.
    double middle = (static_cast<double>(low) + high) * 0.5;
    double half = std::max(std::fabs(low - middle), std::fabs(high - middle));
    half = std::max(half, 0.5);

    // Move its middle into the volume, then cut off what sticks out.
    const double limit = halfExtent;
    middle = std::min(std::max(middle, -limit), limit);
    low = static_cast<float>(middle - half);
    high = static_cast<float>(middle + half);
    for (float* end : {&low, &high}) {
        if (*end < -halfExtent) *end = -halfExtent;
        if (*end > halfExtent) *end = halfExtent;
    }
}

void ProjectionRenderer::StoreSize(std::uint16_t* width, std::uint16_t* height) const {
    if (width != nullptr) *width = static_cast<std::uint16_t>(outputWidth);
    if (height != nullptr) *height = static_cast<std::uint16_t>(outputHeight);
}

bool ProjectionRenderer::HasRenderableDepth() const {
    const double x = ViewAxis(0);
    const double y = ViewAxis(1);
    const double z = ViewAxis(2);
    return x * x + y * y + z * z <= kLongestStep * kLongestStep;
}

float* ProjectionRenderer::Render(std::int32_t mode, const RenderArguments& arguments, std::uint16_t* width,
                                  std::uint16_t* height) {
    StoreSize(width, height);
    const InstructionSet set = platform::CurrentInstructionSet();
    const ModeKernels* kernels = KernelsOfMode(KernelsOf(set), mode, arguments.extra);
    if (kernels == nullptr) return nullptr;
    if (HasValidSize() && HasRenderableDepth() && width != nullptr && height != nullptr)
        return RenderWith(*kernels, set == InstructionSet::Avx512Gather, arguments);
    frame::GlobalUnlock3D(volume);
    return nullptr;
}

float* ProjectionRenderer::RenderWith(const ModeKernels& kernels, bool isGathered,
                                      const RenderArguments& arguments) const {
    const LockedVolume locked(*volume);
    if (!locked) return nullptr;
    ProjectionImage image(outputWidth, outputHeight);
    if (!image) return nullptr;

    SliceOffsets offsets;
    if (isGathered) {
        const std::uint64_t voxelBytes = locked.IsColour() ? 3 : 1;
        offsets = SliceOffsets(locked.Slices(), volumeDepth, voxelBytes * volume->width * volume->height);
    }
    const Projection projection = {
        .view = *this,
        .grid = {locked.Slices(), volumeWidth, volumeHeight, volumeDepth, isGathered, offsets.Get()},
        .arguments = arguments,
        .pixels = image.Pixels(),
        .skipPolicy = CurrentSkipPolicy()};
    (locked.IsColour() ? kernels.colour : kernels.grey)(projection);
    return image.Release();
}

} // namespace z3d::render
