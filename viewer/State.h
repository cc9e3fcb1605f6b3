// All that the window shows, as plain data. The window only shows it; everything that changes it is a function
// that needs no window.
#pragma once

#include <string>

#include "Gesture.h"
#include "VolumeLoad.h"

namespace z3d::viewer {

inline constexpr double kFitZoom = 0; // as large as the window allows, whatever the view

struct State {
    View view = {}; // of size 0 before there is a volume
    Source source;
    double zoom = kFitZoom; // pixels of the screen for a voxel's length
    Point offset = {};      // of the picture's centre from the middle of the window, in pixels of the screen
    bool spinning = false;
    double spunSeconds = 0; // since the view was last turned by the spin
    std::string message;    // one sentence, until the next thing happens
};

// Another volume takes the place of the present one, if there is any.
void ShowVolume(State& state, const Source& source, const tools::VolumeSize& size, tools::VoxelType type);

// Reset of the view, with zoom and place.
void ResetAll(State& state);

// The zoom at which the volume fits an area from every side.
double FittingZoom(const View& view, double areaWidth, double areaHeight);

// `steps` notches of the wheel, larger with positive ones.
void ZoomBy(State& state, double steps, double fitting);

// Turns on about the screen's upright axis by what the time that has passed is worth.
void Spin(State& state, double seconds);

// Turns by whole degrees about the screen's axes, as with the arrow keys.
void Nudge(State& state, double right, double up);

} // namespace z3d::viewer
