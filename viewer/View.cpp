#include "View.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace z3d::viewer {

using namespace tools;

namespace {

constexpr Angles kFirstAngles = {-105, 0, 30};
constexpr char kFirstMode[] = "surface";

ModeSettings DefaultSettings(const tools::Mode& mode, VoxelType type) {
    const bool colour = type == VoxelType::Rgb8;
    Interval window = colour ? mode.colourWindow : mode.greyWindow;
    // The empty voxels around an object are the darkest and the first: nothing else would be seen.
    const bool showsEmptiness = mode.number == RenderModeMinimum || mode.number == RenderModeFirstHit;
    if (showsEmptiness) window.low = 1;
    return {window, mode.defaultExtra, {RangeKind::OfMode, {}}};
}

CropBox WholeBox(const VolumeSize& size) {
    return {1, static_cast<short>(size.width), 1, static_cast<short>(size.height),
            1, static_cast<short>(size.depth)};
}

// The bound on that side.
short& CropBound(CropBox& box, size_t side) {
    short* const bounds[] = {&box.x0, &box.x1, &box.y0, &box.y1, &box.z0, &box.z1};
    return *bounds[side];
}

} // namespace

View FirstView(const VolumeSize& size, VoxelType type) {
    View view = {};
    view.size = size;
    view.type = type;
    const auto modes = Modes();
    for (size_t i = 0; i < kModeCount; ++i)
        view.settings[i] = DefaultSettings(modes[i], type);
    view.mode = static_cast<size_t>(&ModeNamed(kFirstMode) - modes.data());
    view.crop = WholeBox(size);
    SetAngles(view, kFirstAngles);
    return view;
}

View ViewOfNext(const View& present, const VolumeSize& size, VoxelType type) {
    View view = FirstView(size, type);
    view.mode = present.mode;
    view.palette = present.palette;
    view.angles = present.angles;
    view.rotation = present.rotation;
    return view;
}

void Reset(View& view) {
    view.Settings() = DefaultSettings(view.Mode(), view.type);
    view.crop = WholeBox(view.size);
    SetAngles(view, kFirstAngles);
}

// Where x is the object's left, y its face and z its crown.
void LookFrom(View& view, Side side) {
    constexpr Angles kAngles[kSideCount] = {{-90, 0, 0},   {-90, 0, 180}, {-90, 0, 90},
                                            {-90, 0, -90}, {0, 180, 0},   {0, 0, 0}};
    SetAngles(view, kAngles[static_cast<size_t>(side)]);
}

void SetAngles(View& view, const Angles& angles) {
    view.angles = angles;
    view.rotation = RotationOf(angles);
}

void SetRotation(View& view, const Rotation& rotation) {
    view.rotation = rotation;
    view.angles = AnglesOf(rotation);
}

float WindowTop(const View& view) { return view.Colour() ? 766 : 256; }

void SetWindowLow(View& view, float low) {
    Interval& window = view.Settings().window;
    window.low = std::clamp(low, 0.0f, WindowTop(view));
    window.high = std::max(window.high, window.low);
}

void SetWindowHigh(View& view, float high) {
    Interval& window = view.Settings().window;
    window.high = std::clamp(high, 0.0f, WindowTop(view));
    window.low = std::min(window.low, window.high);
}

void SetRange(View& view, Interval range) {
    if (!std::isfinite(range.low) || !std::isfinite(range.high)) return;
    const float least = std::max({std::fabs(range.low), std::fabs(range.high), 1.0f}) * 1e-5f;
    range.high = std::max(range.high, range.low + least);
    if (range.low < range.high && std::isfinite(range.high - range.low))
        view.Settings().range = {RangeKind::Fixed, range};
}

short CropSide(const View& view, size_t side) {
    CropBox box = view.crop;
    return CropBound(box, side);
}

void SetCropSide(View& view, size_t side, int voxel) {
    const auto bound = static_cast<short>(std::clamp(voxel, 1, AxisLength(view, side / 2)));
    short& opposite = CropBound(view.crop, side ^ 1);
    CropBound(view.crop, side) = bound;
    opposite = side % 2 == 0 ? std::max(opposite, bound) : std::min(opposite, bound);
}

int AxisLength(const View& view, size_t axis) {
    const int lengths[] = {view.size.width, view.size.height, view.size.depth};
    return lengths[axis];
}

bool IsCropped(const View& view) { return view.crop != WholeBox(view.size); }

ProjectionRequest RequestOf(const View& view) {
    const tools::Mode& mode = view.Mode();
    return {mode.number, mode.name, view.crop, view.Settings().window, view.Settings().extra};
}

Rotation RenderedRotation(const View& view) { return RotationOf(view.angles); }

bool SameProjection(const View& a, const View& b) {
    return a.mode == b.mode && a.Settings().window == b.Settings().window
           && a.Settings().extra == b.Settings().extra && a.angles == b.angles && a.crop == b.crop;
}

bool SamePicture(const View& a, const View& b) {
    const RangeChoice& range = a.Settings().range;
    const RangeChoice& other = b.Settings().range;
    return SameProjection(a, b) && a.palette == b.palette && range.kind == other.kind
           && range.fixed == other.fixed;
}

} // namespace z3d::viewer
