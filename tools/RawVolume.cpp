#include "RawVolume.h"

#include "Failure.h"
#include "File.h"
#include "Interrupt.h"
#include "Text.h"

namespace z3d::tools {

namespace {

void CheckLength(const RawSource& source, uint64_t fileBytes, uint64_t voxelBytes) {
    if (source.offset <= fileBytes && voxelBytes <= fileBytes - source.offset) return;
    throw Failure(Format(
        "%s is too short: it has %llu bytes, but %dx%dx%d voxels of %u byte%s after %llu bytes need %llu",
        Shown(source.path).c_str(), static_cast<unsigned long long>(fileBytes), source.size.width,
        source.size.height, source.size.depth, BytesPerVoxel(source.type),
        source.type == VoxelType::Grey8 ? "" : "s", static_cast<unsigned long long>(source.offset),
        static_cast<unsigned long long>(source.offset + voxelBytes)));
}

} // namespace

VolumeOwner ReadRawVolume(const RawSource& source) {
    // Axes of at most 32767 voxels keep a slice within 32 bits.
    const uint32_t sliceBytes = static_cast<uint32_t>(source.size.width)
                                * static_cast<uint32_t>(source.size.height) * BytesPerVoxel(source.type);
    InputFile file(source.path);
    CheckLength(source, file.Size(), uint64_t{sliceBytes} * static_cast<uint64_t>(source.size.depth));

    VolumeOwner volume = MakeVolume(source.size, source.type);
    const VolumeLock lock(*volume);
    if (!lock.Held()) throw Failure("not enough memory to fill the volume");
    file.Seek(source.offset);
    for (int z = 0; z < source.size.depth; ++z) {
        StopIfInterrupted();
        file.Read(lock.Slice(z), sliceBytes);
    }
    return volume;
}

} // namespace z3d::tools
