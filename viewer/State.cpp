#include "State.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace z3d::viewer {

namespace {

constexpr double kSpinDegreesPerSecond = 45;
constexpr double kZoomPerStep = 1.1;
constexpr double kLeastZoom = 0.05;
constexpr double kGreatestZoom = 32;

double Radians(double degrees) { return degrees * std::numbers::pi / 180; }

} // namespace

void ShowVolume(State& state, const Source& source, const tools::VolumeSize& size, tools::VoxelType type) {
    const bool first = state.view.size.width == 0;
    state.view = first ? FirstView(size, type) : ViewOfNext(state.view, size, type);
    state.source = source;
    state.zoom = kFitZoom;
    state.offset = {};
    state.message.clear();
}

void ResetAll(State& state) {
    Reset(state.view);
    state.zoom = kFitZoom;
    state.offset = {};
}

double FittingZoom(const View& view, double areaWidth, double areaHeight) {
    const double diagonal = std::hypot(view.size.width, view.size.height, view.size.depth);
    if (!(diagonal > 0)) return 1;
    return std::clamp(std::min(areaWidth, areaHeight) / diagonal, kLeastZoom, kGreatestZoom);
}

void ZoomBy(State& state, double steps, double fitting) {
    const double present = state.zoom == kFitZoom ? fitting : state.zoom;
    state.zoom = std::clamp(present * std::pow(kZoomPerStep, steps), kLeastZoom, kGreatestZoom);
}

void Spin(State& state, double seconds) {
    // After a pause, as when a dialog was open, it goes on from where it was.
    const double degrees = kSpinDegreesPerSecond * std::clamp(seconds, 0.0, 0.25);
    SetRotation(state.view, DragBall(state.view.rotation, Radians(degrees), 0, 1));
}

void Nudge(State& state, double right, double up) {
    SetRotation(state.view, DragBall(state.view.rotation, Radians(right), Radians(up), 1));
}

} // namespace z3d::viewer
