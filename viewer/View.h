// What a picture of a volume depends on, apart from the voxels. Plain data and what changes it; no window.
#pragma once

#include <array>

#include "DisplayRange.h"
#include "Modes.h"
#include "Palette.h"
#include "Picture.h"
#include "Turning.h"
#include "Volume.h"

namespace z3d::viewer {

inline constexpr size_t kModeCount = 8;

// Every mode keeps its own: a threshold for surfaces is no window for a sum.
struct ModeSettings {
    tools::Interval window; // voxels that count
    float extra;            // transparency or attenuation
    tools::RangeChoice range;
};

enum class Side { Front, Back, Left, Right, Top, Bottom };
inline constexpr size_t kSideCount = 6;

struct View {
    tools::VolumeSize size;
    tools::VoxelType type;
    size_t mode; // index into tools::Modes()
    std::array<ModeSettings, kModeCount> settings;
    Angles angles;
    tools::Rotation rotation; // as turned; what is rendered is the matrix of the angles
    tools::CropBox crop;
    tools::Palette palette;

    const tools::Mode& Mode() const { return tools::Modes()[mode]; }
    ModeSettings& Settings() { return settings[mode]; }
    const ModeSettings& Settings() const { return settings[mode]; }
    bool Colour() const { return type == tools::VoxelType::Rgb8; }
};

// A surface, seen from a little above and aside.
View FirstView(const tools::VolumeSize& size, tools::VoxelType type);

// The whole of another volume, looked at from where the present one was, in the same mode and palette.
View ViewOfNext(const View& present, const tools::VolumeSize& size, tools::VoxelType type);

// Everything but mode and palette as in the first view. Settings of the other modes stay.
void Reset(View& view);

void LookFrom(View& view, Side side);
void SetAngles(View& view, const Angles& angles);
void SetRotation(View& view, const tools::Rotation& rotation);

// Brightest value that the window's sliders reach. Windows of surfaces are open: 256 lets 255 in.
float WindowTop(const View& view);

// Ends are brought within 0 and WindowTop; where they cross, the one that was not moved gives way.
void SetWindowLow(View& view, float low);
void SetWindowHigh(View& view, float high);

// The range of black to white, in values of the picture; kept apart by a little at least.
void SetRange(View& view, tools::Interval range);

// Sides of the crop box in the order x0, x1, y0, y1, z0, z1; voxels from 1. The opposite side gives way.
inline constexpr size_t kCropSideCount = 6;
short CropSide(const View& view, size_t side);
void SetCropSide(View& view, size_t side, int voxel);
int AxisLength(const View& view, size_t axis);
bool IsCropped(const View& view);

// The request that renders the view, and what its pixels become.
tools::ProjectionRequest RequestOf(const View& view);
tools::Rotation RenderedRotation(const View& view);

// Whether both views of one volume are rendered the same, and whether they look the same.
bool SameProjection(const View& a, const View& b);
bool SamePicture(const View& a, const View& b);

} // namespace z3d::viewer
