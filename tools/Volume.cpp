#include "Volume.h"

#include "Failure.h"
#include "Text.h"

#include <cstring>

#include "files/VolumeReader.h"

namespace z3d::tools {

namespace {

// Beyond that no 32-bit process holds a volume, whatever the machine.
constexpr uint64_t kMostBytes = uint64_t{3584} << 20;

Failure TooLarge(const files::Fitted& volume) {
    const std::string needs = Format("%dx%dx%d voxels need %s bytes", volume.size.width, volume.size.height,
                                     volume.size.depth, Grouped(volume.ByteCount()).c_str());
    const std::string why = volume.ByteCount() > kMostBytes
                                ? ", more than a 32-bit process can have"
                                : ", more memory than there is left for this process";
    return Failure(needs + why);
}

VolumeOwner TryMakeVolume(const VolumeSize& size, VoxelType type) {
    return VolumeOwner(GlobalAlloc3D(static_cast<unsigned int>(size.width),
                                     static_cast<unsigned int>(size.height),
                                     static_cast<unsigned int>(size.depth), BytesPerVoxel(type)));
}

} // namespace

VolumeOwner MakeVolume(const VolumeSize& size, VoxelType type) {
    const files::Fitted wanted = {size, type, false};
    if (wanted.ByteCount() > kMostBytes) throw TooLarge(wanted);
    VolumeOwner volume = TryMakeVolume(size, type);
    if (volume == nullptr) throw TooLarge(wanted);
    return volume;
}

VolumeOwner CopyOf(Volume3D& volume) {
    const VolumeSize size = SizeOf(volume);
    const VoxelType type = TypeOf(volume);
    VolumeOwner copy = TryMakeVolume(size, type);
    if (copy == nullptr) return nullptr;
    const VolumeLock from(volume);
    const VolumeLock to(*copy);
    if (!from.Held() || !to.Held()) return nullptr;
    const size_t sliceBytes =
        static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * BytesPerVoxel(type);
    for (int z = 0; z < size.depth; ++z)
        std::memcpy(to.Slice(z), from.Slice(z), sliceBytes);
    return copy;
}

VoxelType TypeOf(const Volume3D& volume) {
    return volume.slices[0]->bytesPerPixel == 3 ? VoxelType::Rgb8 : VoxelType::Grey8;
}

VolumeSize SizeOf(const Volume3D& volume) { return {volume.width, volume.height, volume.depth}; }

} // namespace z3d::tools
