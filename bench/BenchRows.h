// What the benchmarks render: volumes, and for each the views, modes and windows to measure.
#pragma once

#include "reference/ReferenceRenderer.h"
#include "support/RandomRequests.h"

#include "Zentra3DRendering.h"

#include <functional>
#include <string>
#include <vector>

namespace z3d::bench {

struct Row {
    std::string name;
    RenderMode mode;
    // Degrees about each axis, for the axis order x, y, z.
    float x, y, z;
    float low, high;
    float extra;
};

// A volume is made only where one of its rows is wanted.
struct VolumeRows {
    std::string volume;
    std::vector<Row> rows;
    std::function<reference::Volume()> make;

    std::string NameOf(const Row& row) const { return volume + ": " + row.name; }
};

// All volumes that are measured, by name. The head has to outlive them.
std::vector<VolumeRows> AllRows(const reference::Volume& head);

// The row of a volume under the rotation matrix of its angles.
reference::Request RequestOf(const reference::Volume& volume, const Row& row, const test::Rotation& rotation);

// A matrix of doubles as a projection takes it.
test::Rotation RotationOf(const double (&matrix)[9]);

} // namespace z3d::bench
