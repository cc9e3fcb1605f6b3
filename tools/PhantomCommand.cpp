// zentra phantom: writes a made-up head.
#include <memory>

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "Options.h"
#include "Phantom.h"
#include "Text.h"
#include "VolumeFiles.h"

namespace z3d::tools {

namespace {

struct PhantomOptions {
    VolumeSize size = {};
    VoxelType type = VoxelType::Grey8;
    std::string output;
    bool quiet = false;
};

void RunPhantom(const PhantomOptions& options) {
    const std::filesystem::path path = PathOf(options.output);
    VolumeFilesOf(path);
    const VolumeOwner volume = MakePhantom(options.size, options.type);
    WriteVolume(path, *volume, options.type);
    if (options.quiet) return;
    PrintError(Format("%dx%dx%d voxels:", options.size.width, options.size.height, options.size.depth));
    for (const auto& file : VolumeFilesOf(path))
        PrintError(" " + Shown(file));
    PrintError("\n");
}

} // namespace

void AddPhantomCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("phantom", "write a made-up head to try things with");
    const auto options = std::make_shared<PhantomOptions>();
    AddParsed(command, "--size", options->size, ParseSize, "WxHxD", "voxels per axis, e.g. 181x217x181")
        ->required();
    AddParsed(command, "--type", options->type, ParseVoxelType, "uint8|rgb8",
              "grey or colour (default uint8)");
    command
        .add_option("-o,--output", options->output, "file to write: .raw voxels alone, .nhdr with a header")
        ->required()
        ->type_name("FILE");
    command.add_flag("-q,--quiet", options->quiet, "say nothing on success");
    command.callback([options] { RunPhantom(*options); });
}

} // namespace z3d::tools
