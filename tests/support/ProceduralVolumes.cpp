#include "support/ProceduralVolumes.h"

#include <algorithm>
#include <array>
#include <vector>

namespace z3d::test {

namespace {

// Sets every byte to rule(x, y, z, channel), in the order of storage.
template <class Rule>
reference::Volume FilledVolume(const VolumeSize& size, Rule rule) {
    reference::Volume volume = EmptyVolume(size);
    std::size_t byte = 0;
    for (int z = 0; z < size.depth; ++z) {
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                for (int channel = 0; channel < size.bytesPerVoxel; ++channel) {
                    volume.voxels[byte] = rule(x, y, z, channel);
                    ++byte;
                }
            }
        }
    }
    return volume;
}

struct Blob {
    std::array<double, 3> centre;
    double radius;
    double height;
    int channel;
};

std::vector<Blob> RandomBlobs(const VolumeSize& size, RandomSource& random) {
    std::vector<Blob> blobs(static_cast<std::size_t>(random.Between(3, 6)));
    const int longest = std::max({size.width, size.height, size.depth});
    for (Blob& blob : blobs) {
        blob.centre[0] = random.Within(0.0, size.width);
        blob.centre[1] = random.Within(0.0, size.height);
        blob.centre[2] = random.Within(0.0, size.depth);
        blob.radius = random.Within(0.08, 0.3) * longest;
        blob.height = random.Within(60.0, 250.0);
        blob.channel = random.Below(size.bytesPerVoxel);
    }
    return blobs;
}

// A rational bell: no exponential, whose last bit differs between C libraries.
double BlobValue(const Blob& blob, int x, int y, int z, int channel) {
    const double dx = x - blob.centre[0];
    const double dy = y - blob.centre[1];
    const double dz = z - blob.centre[2];
    const double ratio = (dx * dx + dy * dy + dz * dz) / (blob.radius * blob.radius);
    const double share = channel == blob.channel ? 1.0 : 0.4;
    return share * blob.height / (1.0 + ratio * ratio);
}

bool IsInside(int index, int side) { return index >= side / 4 && index < side - side / 4; }

} // namespace

reference::Volume EmptyVolume(const VolumeSize& size) {
    const std::size_t bytes = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height)
                              * static_cast<std::size_t>(size.depth)
                              * static_cast<std::size_t>(size.bytesPerVoxel);
    return {size.width, size.height, size.depth, size.bytesPerVoxel, std::vector<std::uint8_t>(bytes)};
}

std::uint8_t& VoxelByte(reference::Volume& volume, int x, int y, int z, int channel) {
    const int row = z * volume.height + y;
    const std::size_t voxel =
        static_cast<std::size_t>(row) * static_cast<std::size_t>(volume.width) + static_cast<std::size_t>(x);
    return volume
        .voxels[voxel * static_cast<std::size_t>(volume.bytesPerVoxel) + static_cast<std::size_t>(channel)];
}

reference::Volume ConstantVolume(const VolumeSize& size, std::uint8_t value) {
    return FilledVolume(size, [value](int, int, int, int) { return value; });
}

reference::Volume NoiseVolume(const VolumeSize& size, std::uint32_t seed) {
    RandomSource random(seed);
    return FilledVolume(
        size, [&random](int, int, int, int) { return static_cast<std::uint8_t>(random.Below(256)); });
}

reference::Volume SparseVolume(const VolumeSize& size, std::uint32_t seed) {
    RandomSource random(seed);
    bool bright = false;
    return FilledVolume(size, [&random, &bright](int, int, int, int channel) {
        if (channel == 0) bright = random.Chance(16);
        return static_cast<std::uint8_t>(bright ? random.Between(128, 255) : 0);
    });
}

reference::Volume BlobVolume(const VolumeSize& size, std::uint32_t seed) {
    RandomSource random(seed);
    const std::vector<Blob> blobs = RandomBlobs(size, random);
    return FilledVolume(size, [&blobs](int x, int y, int z, int channel) {
        double value = 8.0;
        for (const Blob& blob : blobs) {
            value += BlobValue(blob, x, y, z, channel);
        }
        return static_cast<std::uint8_t>(std::min(value, 255.0));
    });
}

reference::Volume RampVolume(const VolumeSize& size, int axis) {
    const int side = std::array<int, 3>{size.width, size.height, size.depth}[static_cast<std::size_t>(axis)];
    return FilledVolume(size, [axis, side](int x, int y, int z, int channel) {
        const int index = std::array<int, 3>{x, y, z}[static_cast<std::size_t>(axis)];
        const int value = side > 1 ? index * 255 / (side - 1) : 255;
        if (channel == 1) return static_cast<std::uint8_t>(255 - value);
        if (channel == 2) return static_cast<std::uint8_t>(value / 2);
        return static_cast<std::uint8_t>(value);
    });
}

reference::Volume StepVolume(const VolumeSize& size, std::uint8_t border, std::uint8_t inside) {
    return FilledVolume(size, [&size, border, inside](int x, int y, int z, int) {
        return IsInside(x, size.width) && IsInside(y, size.height) && IsInside(z, size.depth) ? inside
                                                                                              : border;
    });
}

reference::Volume CheckerboardVolume(const VolumeSize& size, int cellSide) {
    return FilledVolume(size, [cellSide](int x, int y, int z, int channel) {
        const int cells = (x + channel) / cellSide + y / cellSide + z / cellSide;
        return static_cast<std::uint8_t>(cells % 2 == 0 ? 0 : 255);
    });
}

reference::Volume RandomVolume(RandomSource& random, const VolumeSize& size) {
    const std::uint32_t seed = random.Bits();
    switch (random.Below(8)) {
    case 0:
        return SparseVolume(size, seed);
    case 1:
        return RampVolume(size, static_cast<int>(seed % 3));
    case 2:
        return StepVolume(size, static_cast<std::uint8_t>(seed % 64), static_cast<std::uint8_t>(seed >> 24));
    case 3:
        return ConstantVolume(size, static_cast<std::uint8_t>(seed >> 24));
    case 4:
        return CheckerboardVolume(size, 1 + static_cast<int>(seed % 3));
    case 5:
    case 6:
        return BlobVolume(size, seed);
    default:
        return NoiseVolume(size, seed);
    }
}

VolumeSize RandomSize(RandomSource& random, int maxSide, int bytesPerVoxel) {
    std::array<int, 3> sides = {};
    for (int& side : sides) {
        side = random.Chance(12) ? random.Between(1, std::min(3, maxSide)) : random.Between(1, maxSide);
    }
    return {sides[0], sides[1], sides[2], bytesPerVoxel};
}

std::string Describe(const reference::Volume& volume) {
    return std::to_string(volume.width) + " x " + std::to_string(volume.height) + " x "
           + std::to_string(volume.depth) + ", " + std::to_string(volume.bytesPerVoxel) + " bytes per voxel";
}

} // namespace z3d::test
