#include "VolumeFiles.h"

#include <optional>

#include "Failure.h"
#include "File.h"
#include "Interrupt.h"
#include "Text.h"

namespace z3d::tools {

namespace {

std::string HeaderText(const VolumeSize& size, VoxelType type, const std::filesystem::path& dataPath) {
    const bool colour = type == VoxelType::Rgb8;
    return Format("NRRD0004\n"
                  "type: uint8\n"
                  "dimension: %d\n"
                  "sizes:%s %d %d %d\n"
                  "kinds:%s domain domain domain\n"
                  "encoding: raw\n"
                  "data file: %s\n",
                  colour ? 4 : 3, colour ? " 3" : "", size.width, size.height, size.depth,
                  colour ? " RGB-color" : "", Shown(dataPath.filename()).c_str());
}

} // namespace

std::vector<std::filesystem::path> VolumeFilesOf(const std::filesystem::path& path) {
    const std::string extension = LowerCase(Shown(path.extension()));
    if (extension == ".raw") return {path};
    if (extension == ".nhdr") return {std::filesystem::path(path).replace_extension(L".raw"), path};
    throw BadArgument("'" + Shown(path) + "' ends in neither .raw nor .nhdr");
}

void WriteVolume(const std::filesystem::path& path, Volume3D& volume, VoxelType type) {
    const std::vector<std::filesystem::path> files = VolumeFilesOf(path);
    const VolumeSize size = SizeOf(volume);
    const VolumeLock lock(volume);
    if (!lock.Held()) throw Failure("not enough memory to read the volume");
    // Of a pair neither file is kept before both are whole.
    OutputFile data(files.front());
    std::optional<OutputFile> header;
    if (files.size() == 2) header.emplace(files.back()).Write(HeaderText(size, type, files.front()));
    const size_t sliceBytes =
        static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * BytesPerVoxel(type);
    for (int z = 0; z < size.depth; ++z) {
        StopIfInterrupted();
        data.Write(lock.Slice(z), sliceBytes);
    }
    data.Commit();
    if (header) header->Commit();
}

} // namespace z3d::tools
