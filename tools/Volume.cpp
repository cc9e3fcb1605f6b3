#include "Volume.h"

#include "Failure.h"
#include "Text.h"

namespace z3d::tools {

VolumeOwner MakeVolume(const VolumeSize& size, VoxelType type) {
    const auto width = static_cast<unsigned int>(size.width);
    const auto height = static_cast<unsigned int>(size.height);
    const auto depth = static_cast<unsigned int>(size.depth);
    VolumeOwner volume(GlobalAlloc3D(width, height, depth, BytesPerVoxel(type)));
    if (volume == nullptr) {
        const double megabytes = 1.0 * BytesPerVoxel(type) * width * height * depth / 1048576;
        throw Failure(Format("not enough memory for a volume of %dx%dx%d (%.0f MB)", size.width, size.height,
                             size.depth, megabytes));
    }
    return volume;
}

VolumeSize SizeOf(const Volume3D& volume) { return {volume.width, volume.height, volume.depth}; }

} // namespace z3d::tools
