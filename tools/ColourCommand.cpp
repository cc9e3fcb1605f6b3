// zentra colour: makes one volume of raw channel files.
#include <array>
#include <memory>

#include "ChannelFiles.h"
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Options.h"
#include "Outputs.h"
#include "Text.h"
#include "VolumeFiles.h"
#include "files/VolumeReader.h"

namespace z3d::tools {

namespace {

constexpr int kLongestDiagonal = 32767;

constexpr char kColourHelp[] = R"(
Channels
  A raw file holds slices of rows of samples, without a header: bytes, or 32-bit little-endian floats. Up to
  three of the same size are given; - stands for a channel without samples. zentra convert makes raw files of
  other volumes. All channels are mapped through their common range to 0..255. A file that is given again,
  in the same spelling, is loaded once; three times the same one makes a grey volume, unless --separate is
  given.

Size
  With --max-diagonal N a longer volume shrinks to a diagonal of N voxels, in plane and in depth.

Examples
  zentra convert t1.nii.gz -o t1.raw
  zentra colour head.raw brain.raw regions.raw --size 181x217x181 --type uint8 -o head.nhdr
  zentra colour t1.raw - t2.raw --size 256x256x124 --type float32 --max-diagonal 200 -o both.nhdr
  zentra colour t1.raw t1.raw t1.raw --size 256x256x124 --type float32 -o grey.nhdr
  zentra project head.nhdr --mode blend --rotate -90,0,30 -o head.png
)";

struct ColourOptions {
    std::array<std::string, 3> channels; // red, green, blue
    VolumeSize size = {};
    SampleType type = SampleType::Uint8;
    int maxDiagonal = kLongestDiagonal;
    bool separate = false;
    std::string output;
    bool quiet = false;
};

SampleType ParseSampleType(std::string_view text) {
    const std::string lower = LowerCase(text);
    if (lower == "uint8") return SampleType::Uint8;
    if (lower == "float32") return SampleType::Float32;
    throw BadArgument("'" + std::string(text) + "' is neither uint8 nor float32");
}

// Such a file may well be long enough; its header and packed samples would be taken for voxels.
void RefuseHeader(const std::filesystem::path& path) {
    if (files::DescribesItself(path))
        throw Failure("channels are raw files, and " + Shown(path)
                      + " has a header: zentra convert makes a raw file of it");
}

ChannelRequest ChannelRequestOf(const ColourOptions& options) {
    ChannelRequest request = {
        {}, options.size, options.type, static_cast<short>(options.maxDiagonal), options.separate};
    bool any = false;
    for (size_t i = 0; i < 3; ++i) {
        if (options.channels[i].empty() || options.channels[i] == "-") continue;
        request.files[i] = PathOf(options.channels[i]);
        RefuseHeader(request.files[i]);
        any = true;
    }
    if (!any) throw BadArgument("no channel has a file");
    return request;
}

void Describe(const ChannelImage& image, const std::filesystem::path& path) {
    const VolumeSize size = SizeOf(*image.volume);
    PrintError(Format("%dx%dx%d %s voxels in %.1f ms:", size.width, size.height, size.depth,
                      image.type == VoxelType::Rgb8 ? "colour" : "grey", image.seconds * 1000));
    for (const auto& file : VolumeFilesOf(path))
        PrintError(" " + Shown(file));
    PrintError(Format("\nsamples from %.9g to %.9g, display range from %.9g to %.9g\n",
                      double{image.samples.low}, double{image.samples.high}, double{image.display.low},
                      double{image.display.high}));
}

void RunColour(const ColourOptions& options) {
    const std::filesystem::path path = PathOf(options.output);
    const ChannelRequest request = ChannelRequestOf(options);
    CheckDistinct(VolumeFilesOf(path), {request.files.begin(), request.files.end()});
    const OpenChannels channels(request);
    if (!options.quiet) PrintError(channels.Remarks());
    const ChannelImage image = channels.Load();
    WriteVolume(path, *image.volume, image.type);
    if (!options.quiet) Describe(image, path);
}

} // namespace

void AddColourCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("colour", "make one volume of up to three raw channel files");
    const auto options = std::make_shared<ColourOptions>();
    command.add_option("RED", options->channels[0], "raw file of the red channel; - or \"\" for none")
        ->required()
        ->type_name("");
    command.add_option("GREEN", options->channels[1], "the same for green (default: none)")->type_name("");
    command.add_option("BLUE", options->channels[2], "the same for blue (default: none)")->type_name("");
    AddParsed(command, "--size", options->size, ParseSize, "WxHxD",
              "samples per axis of every file, e.g. 181x217x181")
        ->required();
    AddParsed(command, "--type", options->type, ParseSampleType, "uint8|float32", "samples of every file")
        ->required();
    AddParsed(
        command, "--max-diagonal", options->maxDiagonal,
        [](std::string_view text) { return ParseWhole(text, 1, kLongestDiagonal); }, "N",
        "shrink a volume whose diagonal is longer, in voxels");
    command.add_flag("--separate", options->separate,
                     "load every file by itself, also one that is given again: always in colour");
    command
        .add_option("-o,--output", options->output,
                    "file to write: .nhdr with the voxels in the .raw beside it, or .raw alone")
        ->required()
        ->type_name("FILE");
    command.add_flag("-q,--quiet", options->quiet, "say nothing on success");
    command.footer(kColourHelp);
    command.callback([options] { RunColour(*options); });
}

} // namespace z3d::tools
