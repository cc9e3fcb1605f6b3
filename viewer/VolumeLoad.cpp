#include "VolumeLoad.h"

#include "Failure.h"
#include "Phantom.h"
#include "Text.h"
#include "files/VolumeReader.h"

namespace z3d::viewer {

using namespace tools;

namespace {

VolumeSize SizeOf(const files::Fitted& fitted) {
    return {fitted.size.width, fitted.size.height, fitted.size.depth};
}

VoxelType TypeOf(const files::Fitted& fitted) {
    return fitted.type == files::VoxelType::Rgb8 ? VoxelType::Rgb8 : VoxelType::Grey8;
}

void AddRemark(LoadedVolume& loaded, const std::string& sentence) {
    loaded.remark += (loaded.remark.empty() ? "" : "; ") + sentence;
}

// A volume that fits the memory there is: as large as the file has it, or shrunk.
files::Fitted MakeRoom(const files::VolumeReader& reader, LoadedVolume& loaded) {
    files::Fitted fitted = reader.Fit({});
    try {
        loaded.volume = MakeVolume(SizeOf(fitted), TypeOf(fitted));
    } catch (const Failure&) {
        loaded.source.maxDiagonal = files::ProposedDiagonal(fitted);
        fitted = reader.Fit({.maxDiagonal = loaded.source.maxDiagonal});
        loaded.volume = MakeVolume(SizeOf(fitted), TypeOf(fitted));
        AddRemark(loaded, Format("too large for a 32-bit program: shrunk to a diagonal of %d voxels",
                                 loaded.source.maxDiagonal));
    }
    return fitted;
}

// Passes on parts of a part of the work.
Progress Within(const Progress& progress, double from, double to) {
    return [&progress, from, to](double done) { return progress(from + (to - from) * done); };
}

LoadedVolume LoadFile(const Source& source, const Progress& progress) {
    const files::VolumeReader reader({.paths = source.paths, .raw = {}, .spacing = {}});
    LoadedVolume loaded = {source, nullptr, {}, {}, reader.Facts().files, reader.Facts().remark};
    const files::Fitted fitted = MakeRoom(reader, loaded);
    loaded.size = SizeOf(fitted);
    loaded.type = TypeOf(fitted);
    const files::ValueRange input = reader.ProposedInput(Within(progress, 0, 0.4));
    const VolumeLock lock(*loaded.volume);
    if (!lock.Held()) throw Failure("not enough memory to fill the volume");
    reader.Read(
        fitted, input, [&lock](int z) { return lock.Slice(z); }, Within(progress, 0.4, 1));
    return loaded;
}

} // namespace

std::string Source::Name() const {
    if (IsPhantom()) return "A made-up head";
    // "C:\" has no file name.
    const std::filesystem::path& path = paths.front();
    return Shown(path.has_filename() ? path.filename() : path);
}

LoadedVolume LoadVolume(const Source& source, const Progress& progress) {
    if (!source.IsPhantom()) return LoadFile(source, progress);
    return {source, MakePhantom(kPhantomSize, VoxelType::Grey8, progress), kPhantomSize, VoxelType::Grey8, {},
            ""};
}

} // namespace z3d::viewer
