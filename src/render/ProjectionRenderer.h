// What all rays of one projection share: the rotation, the volume's centre, the size of the output image and
// the crop box. Lives for one exported call.
//
// Spaces. Volume index space: x along a row, y along the rows of a slice, z across slices. Centred volume
// space: index minus volumeCentre. View space: v = rotation * centred point; view x and y become output
// columns and rows, view z is depth along the ray. Output index space: view coordinates plus outputHalfSize.
#pragma once

#include "Zentra3DRendering.h"

#include "render/voxels/Inline.h"

#include <cstddef>
#include <cstdint>

namespace z3d::render {

struct ModeKernels;

// Crop bounds in voxels, 0-based and inclusive.
struct CropBox {
    std::int32_t x0, x1, y0, y1, z0, z1;
};

// The intensity window, and the argument that modes 3 and 4 read as a float.
struct RenderArguments {
    float high;
    float low;
    float extra;
};

class ProjectionRenderer {
public:
    // Both pointers are borrowed and must be valid; the values behind them may be anything.
    ProjectionRenderer(::Volume3D* volume, const float* rotation, const CropBox& crop, std::int32_t reserved);
    virtual ~ProjectionRenderer();
    ProjectionRenderer(const ProjectionRenderer&) = delete;
    ProjectionRenderer& operator=(const ProjectionRenderer&) = delete;

    // The platform's heap; null when it is exhausted, and then nothing is constructed.
    static void* operator new(std::size_t bytes) noexcept;
    static void operator delete(void* memory) noexcept;

    // False when the rotation is not finite or so large that a size or a depth index does not fit 32 bits.
    // The sizes are then 0, and nothing may be rendered.
    bool HasValidSize() const { return outputWidth > 0; }

    // Stores the size (low 16 bits), then renders one mode: the locked pixels, or null. A mode that exists leaves the
    // volume unlocked in every case, whoever had locked it.
    float* Render(std::int32_t mode, const RenderArguments& arguments, std::uint16_t* width,
                  std::uint16_t* height);

    // Stores the size where the pointers are there.
    void StoreSize(std::uint16_t* width, std::uint16_t* height) const;

    float rotation[9];         // R, row by row; row 2 is the viewing direction in volume axes
    float inverseRotation[9];  // R transposed; column 2 is a ray's step in volume axes
    float inverseRotation2[9]; // a copy
    float rotation2[9];        // a copy
    float volumeCentre[3];     // x, y, z; also the half extents of the volume
    float outputHalfSize[3];   // of width, height and depth
    float cropLow[3];          // centred volume space, in the order z, y, x: see CropLow
    float cropHigh[3];
    ::Volume3D* volume;
    std::int32_t reserved;
    std::int32_t volumeWidth, volumeHeight, volumeDepth;
    std::int32_t outputWidth, outputHeight, outputDepth;

    // What kernels read. Axes are 0, 1, 2 for x, y, z.
    Z3D_INLINE float CropLow(int axis) const { return cropLow[2 - axis]; }
    Z3D_INLINE float CropHigh(int axis) const { return cropHigh[2 - axis]; }
    // Element of the map from view space to centred volume space; column 2 is the step of a ray.
    Z3D_INLINE float Inverse(int axis, int column) const { return inverseRotation2[3 * axis + column]; }
    // The viewing direction in volume axes.
    Z3D_INLINE float ViewAxis(int axis) const { return rotation2[6 + axis]; }

private:
    bool HasRenderableDepth() const;
    float* RenderWith(const ModeKernels& kernels, bool isGathered, const RenderArguments& arguments) const;
    void LoadRotation(const float* source);
    void SizeOutput();
    void LoadCrop(const CropBox& crop);
};

// Brings one axis's crop interval into order, to a width of at least one voxel, and into [-halfExtent,
// halfExtent]. All three in centred volume space.
void ClampCropInterval(float& low, float& high, float halfExtent);

} // namespace z3d::render
