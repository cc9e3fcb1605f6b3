// What is known about a volume: its size, the samples in the file, the voxels made of them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace z3d::files {

// Crop bounds of the library are signed 16-bit numbers, so a longer axis could not be addressed to its end.
inline constexpr int kLongestAxis = 32767;

struct VolumeSize {
    int width, height, depth;

    bool operator==(const VolumeSize&) const = default;
};

// Voxels as the library takes them.
enum class VoxelType { Grey8, Rgb8 };

inline unsigned int BytesPerVoxel(VoxelType type) { return type == VoxelType::Rgb8 ? 3 : 1; }

// Samples as a file holds them. Rgb8 is red, green, blue: three bytes.
enum class SampleType { Uint8, Int8, Uint16, Int16, Uint32, Int32, Float32, Float64, Rgb8 };

unsigned int BytesPerSample(SampleType type);

// "uint8", "int16", ... "rgb8"
const char* NameOf(SampleType type);

// Distance between neighbouring voxels along each axis. Only the ratios count.
struct Spacing {
    double x, y, z;
};

// In a file's own units.
struct ValueRange {
    double low, high;
};

} // namespace z3d::files
