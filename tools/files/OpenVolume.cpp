#include <algorithm>
#include <cmath>

#include "Nifti.h"
#include "Nrrd.h"
#include "PackedSamples.h"
#include "PngSlices.h"
#include "Text.h"

namespace z3d::files {

namespace {

// Enough to tell the kinds apart: a NIfTI header.
constexpr size_t kStartBytes = 348;

bool HasOwnHeader(const std::filesystem::path& path, const FileSystem& files) {
    constexpr std::string_view kExtensions[] = {".nhdr",   ".nrrd", ".nii",    ".nii.gz", ".hdr",
                                                ".hdr.gz", ".img",  ".img.gz", ".png"};
    const std::string extension = ExtensionOf(path);
    const bool isImage = extension.starts_with(".img");
    if (isImage && !files.Exists(std::filesystem::path(path).replace_extension(".hdr"))) return false;
    return std::ranges::find(kExtensions, extension) != std::end(kExtensions);
}

std::unique_ptr<VolumeFormat> OpenRaw(const std::filesystem::path& path, const RawLayout& layout,
                                      const FileSystem& files) {
    VolumeFacts facts;
    facts.format = "raw samples";
    facts.size = layout.size;
    facts.type = layout.type;
    const bool isPacked = LowerCase(Shown(path.extension())) == ".gz";
    return OpenSamples(
        std::move(facts),
        {path, isPacked ? Packing::AsItBegins : Packing::None, 0, layout.offset, layout.bigEndian}, files);
}

std::unique_ptr<VolumeFormat> OpenByContent(const std::filesystem::path& path, const FileSystem& files) {
    const std::string extension = ExtensionOf(path);
    if (extension.starts_with(".img")) return OpenNifti(path, files);
    std::string start(kStartBytes, '\0');
    start.resize(OpenUnpacked(files, path)->Read(start.data(), start.size()));
    if (IsNrrdStart(start) || extension == ".nhdr" || extension == ".nrrd") return OpenNrrd(path, files);
    if (IsPngStart(start) || extension == ".png") return OpenPngSlices({path}, files);
    if (IsNiftiStart(start) || HasOwnHeader(path, files)) return OpenNifti(path, files);
    throw FileFailure("cannot use " + Shown(path)
                      + ": it is neither NIfTI, NRRD nor PNG; raw samples need their size and type");
}

std::unique_ptr<VolumeFormat> OpenOne(const std::filesystem::path& path,
                                      const std::optional<RawLayout>& layout, const FileSystem& files) {
    if (layout && HasOwnHeader(path, files))
        throw FileFailure("size and type are for raw samples; " + Shown(path) + " has a header");
    if (layout) return OpenRaw(path, *layout, files);
    if (files.IsFolder(path)) return OpenPngSlices(SlicesIn(path, files), files);
    const bool isPattern = Shown(path.filename()).find_first_of("*?") != std::string::npos;
    if (isPattern && !files.Exists(path)) return OpenPngSlices(SlicesOf(path, files), files);
    return OpenByContent(path, files);
}

void CheckSpacing(const Spacing& spacing) {
    for (const double distance : {spacing.x, spacing.y, spacing.z})
        if (!std::isfinite(distance) || distance <= 0)
            throw FileFailure("the spacing of voxels must be above 0");
}

} // namespace

bool DescribesItself(const std::filesystem::path& path) { return HasOwnHeader(path, Disk()); }

std::unique_ptr<VolumeFormat> OpenVolume(const VolumeSource& source, const FileSystem& files) {
    if (source.paths.empty()) throw FileFailure("there is no file to read");
    if (source.paths.size() > 1 && source.raw)
        throw FileFailure("several files are taken as PNG slices, not as raw samples");
    std::unique_ptr<VolumeFormat> volume = source.paths.size() == 1
                                               ? OpenOne(source.paths.front(), source.raw, files)
                                               : OpenPngSlices(source.paths, files);
    if (source.spacing) {
        CheckSpacing(*source.spacing);
        volume->facts.spacing = *source.spacing;
    }
    return volume;
}

} // namespace z3d::files
