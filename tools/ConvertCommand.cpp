// zentra convert: makes voxels of bytes of any volume that can be read.
#include <memory>

#include "Commands.h"
#include "Console.h"
#include "Options.h"
#include "Outputs.h"
#include "Text.h"
#include "VolumeFiles.h"
#include "VolumeInput.h"

namespace z3d::tools {

namespace {

constexpr char kConvertExamples[] = R"(
Examples
  zentra convert t1.nii.gz -o t1.nhdr
  zentra convert ct.nrrd --input-range -200:1000 --max-diagonal 300 -o ct.nhdr
  zentra convert slices --spacing 0.5,0.5,2 -o slices.nhdr
)";

struct ConvertOptions {
    VolumeInputOptions input;
    std::string output;
    bool quiet = false;
};

void RunConvert(const ConvertOptions& options) {
    const std::filesystem::path path = PathOf(options.output);
    const std::vector<std::filesystem::path> written = VolumeFilesOf(path);
    const VolumeInput input(options.input);
    CheckDistinct(written, input.Facts().files);
    const LoadedVolume loaded = input.Load(options.quiet);
    WriteVolume(path, *loaded.volume, input.Type());
    if (options.quiet) return;
    const VolumeSize& size = input.Size();
    PrintError(Format("%dx%dx%d %s voxels:", size.width, size.height, size.depth,
                      input.Type() == VoxelType::Rgb8 ? "colour" : "grey"));
    for (const auto& file : written)
        PrintError(" " + Shown(file));
    PrintError("\n");
}

} // namespace

void AddConvertCommand(CLI::App& program) {
    CLI::App& command =
        *program.add_subcommand("convert", "make voxels of bytes of any volume that can be read");
    const auto options = std::make_shared<ConvertOptions>();
    AddVolumeInput(command, options->input);
    command
        .add_option("-o,--output", options->output,
                    "file to write: .nhdr with the voxels in the .raw beside it, or .raw alone")
        ->required()
        ->type_name("FILE");
    command.add_flag("-q,--quiet", options->quiet, "say nothing on success");
    command.footer(std::string(VolumeInputHelp()) + kConvertExamples);
    command.callback([options] { RunConvert(*options); });
}

} // namespace z3d::tools
