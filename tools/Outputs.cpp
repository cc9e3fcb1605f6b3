#include "Outputs.h"

#include <algorithm>

#include "Failure.h"
#include "File.h"
#include "ImageFiles.h"
#include "Text.h"

namespace z3d::tools {

namespace {

OutputKind KindOf(const std::filesystem::path& path) {
    const std::string extension = LowerCase(Shown(path.extension()));
    if (extension == ".png") return OutputKind::Png;
    if (extension == ".apng") return OutputKind::Apng;
    if (extension == ".pfm") return OutputKind::Pfm;
    if (extension == ".nhdr") return OutputKind::Nrrd;
    throw BadArgument("'" + Shown(path) + "' does not end in .png, .apng, .pfm or .nhdr");
}

std::filesystem::path Numbered(const std::filesystem::path& path, PictureNumber picture) {
    if (picture.digits == 0) return path;
    std::filesystem::path name = path.stem();
    name += Wide(Format("-%0*d", picture.digits, picture.number));
    name += path.extension();
    return path.parent_path() / name;
}

std::filesystem::path DataFileOf(const std::filesystem::path& headerPath) {
    return std::filesystem::path(headerPath).replace_extension(L".raw");
}

} // namespace

std::vector<Output> ParseOutputs(const std::vector<std::string>& names) {
    std::vector<Output> outputs;
    for (const std::string& name : names)
        outputs.push_back({KindOf(PathOf(name)), PathOf(name)});
    return outputs;
}

bool AnyOf(const std::vector<Output>& outputs, OutputKind kind) {
    return std::ranges::any_of(outputs, [kind](const Output& output) { return output.kind == kind; });
}

std::vector<std::filesystem::path> FilesOf(const std::vector<Output>& outputs, PictureNumber picture) {
    std::vector<std::filesystem::path> files;
    for (const Output& output : outputs) {
        files.push_back(output.kind == OutputKind::Apng ? output.path : Numbered(output.path, picture));
        if (output.kind == OutputKind::Nrrd) files.push_back(DataFileOf(files.back()));
    }
    return files;
}

void CheckDistinct(const std::vector<std::filesystem::path>& files,
                   const std::vector<std::filesystem::path>& inputs) {
    for (size_t i = 0; i < files.size(); ++i) {
        for (const auto& input : inputs)
            if (SameFile(files[i], input))
                throw BadArgument("writing " + Shown(files[i]) + " would destroy the input");
        for (size_t k = 0; k < i; ++k)
            if (SameFile(files[i], files[k])) throw BadArgument(Shown(files[i]) + " would be written twice");
    }
}

void WriteOutput(const Output& output, PictureNumber picture, const Projection& projection,
                 const std::string& png) {
    const std::filesystem::path path = Numbered(output.path, picture);
    switch (output.kind) {
    case OutputKind::Png: {
        OutputFile file(path);
        file.Write(png);
        file.Commit();
        break;
    }
    case OutputKind::Apng:
        break;
    case OutputKind::Pfm:
        WritePfm(path, projection);
        break;
    case OutputKind::Nrrd:
        WriteNrrd(path, DataFileOf(path), projection);
        break;
    }
}

} // namespace z3d::tools
