// zentra project: renders a volume file to pictures.
#include <memory>
#include <optional>

#include "Commands.h"
#include "DisplayRange.h"
#include "Interrupt.h"
#include "Modes.h"
#include "NrrdHeader.h"
#include "Options.h"
#include "Outputs.h"
#include "Picture.h"
#include "ProjectHelp.h"
#include "Report.h"
#include "Text.h"

namespace z3d::tools {

namespace {

constexpr int kMostFrames = 100000;

struct Options {
    std::string input;
    std::optional<VolumeSize> size;
    std::optional<VoxelType> type;
    std::optional<uint64_t> offset;
    const Mode* mode = nullptr;
    std::array<float, 3> angles = {};
    AxisOrder order = {{0, 1, 2}};
    std::optional<CropBox> crop;
    std::optional<Interval> window;
    std::optional<float> transparency;
    std::optional<float> attenuation;
    RangeChoice range = {};
    Colour background = {};
    std::optional<Palette> palette;
    int frames = 0;
    std::optional<short> turnAxis;
    std::vector<std::string> outputs;
    bool quiet = false;
};

RawSource SourceOf(const Options& options) {
    const std::filesystem::path path = PathOf(options.input);
    const bool describesItself = IsNrrdName(path);
    if (describesItself && (options.size || options.type || options.offset))
        throw BadArgument("--size, --type and --offset are for raw files; " + options.input
                          + " has a header");
    if (describesItself) return ReadNrrdHeader(path);
    if (!options.size) throw BadArgument("--size is required for a raw file");
    if (!options.type) throw BadArgument("--type is required for a raw file");
    return {path, *options.size, *options.type, options.offset.value_or(0)};
}

CropBox CropWithin(const std::optional<CropBox>& wanted, const VolumeSize& size) {
    const CropBox whole = {1, static_cast<short>(size.width), 1, static_cast<short>(size.height),
                           1, static_cast<short>(size.depth)};
    if (!wanted) return whole;
    if (wanted->x1 > whole.x1 || wanted->y1 > whole.y1 || wanted->z1 > whole.z1)
        throw BadArgument(Format("--crop: the box reaches beyond the volume of %dx%dx%d", size.width,
                                 size.height, size.depth));
    return *wanted;
}

float ExtraOf(const Options& options) {
    const Mode& mode = *options.mode;
    if (options.transparency && mode.extra != Extra::Transparency)
        throw BadArgument("--transparency belongs to --mode blend");
    if (options.attenuation && mode.extra != Extra::Attenuation)
        throw BadArgument("--attenuation belongs to --mode layers");
    // The library takes 0 for "first surface only".
    if (options.attenuation == 0.0f)
        throw BadArgument("--attenuation 0 leaves the first surface: use --mode surface");
    return options.transparency.value_or(options.attenuation.value_or(mode.defaultExtra));
}

ProjectionRequest RequestOf(const Options& options, const RawSource& source) {
    const Mode& mode = *options.mode;
    const Interval everything = source.type == VoxelType::Rgb8 ? mode.colourWindow : mode.greyWindow;
    return {mode.number, mode.name, CropWithin(options.crop, source.size),
            options.window.value_or(everything), ExtraOf(options)};
}

// Renders one picture or a turn of them, and writes each at once.
class Renderer {
public:
    Renderer(const Options& options, const RawSource& source)
        : options_(options),
          outputs_(ParseOutputs(options.outputs)),
          request_(RequestOf(options, source)),
          colour_(source.type == VoxelType::Rgb8) {
        const std::filesystem::path input = PathOf(options.input);
        if (colour_ && options.palette) throw BadArgument("--palette is for grey volumes");
        for (int i = 0; i < PictureCount(); ++i)
            CheckDistinct(FilesOf(outputs_, NumberOf(i)), {input, source.path});
    }

    void Run(Volume3D& volume) {
        const Rotation first = MakeRotation(options_.order, options_.angles);
        Report report(options_.quiet, PictureCount());
        for (int i = 0; i < PictureCount(); ++i) {
            StopIfInterrupted();
            const auto degrees = static_cast<float>(360.0 * i / PictureCount());
            const Rotation view = TurnAboutViewAxis(first, options_.turnAxis.value_or(1), degrees);
            const Projection projection = Project(volume, i == 0 ? first : view, request_);
            Write(projection, i);
            report.Done(projection, FilesOf(outputs_, NumberOf(i)));
        }
        report.Finish();
    }

private:
    int PictureCount() const { return options_.frames == 0 ? 1 : options_.frames; }

    PictureNumber NumberOf(int picture) const {
        if (options_.frames == 0) return {0, 0};
        return {picture, std::max(3, static_cast<int>(std::to_string(options_.frames - 1).size()))};
    }

    // A turn keeps the range of its first picture: brightness must not flicker.
    void Write(const Projection& projection, int picture) {
        if (!range_) range_ = RangeFor(options_.range, *options_.mode, colour_, projection);
        for (const Output& output : outputs_)
            WriteOutput(output, NumberOf(picture), projection,
                        {colour_, *range_, options_.background, options_.palette.value_or(Palette::Grey)});
    }

    const Options& options_;
    std::vector<Output> outputs_;
    ProjectionRequest request_;
    bool colour_;
    std::optional<Interval> range_;
};

void RunProject(const Options& options) {
    if (options.turnAxis && options.frames == 0) throw BadArgument("--axis belongs to --turntable");
    ParseOutputs(options.outputs);
    ExtraOf(options);
    const RawSource source = SourceOf(options);
    Renderer renderer(options, source);
    const VolumeOwner volume = ReadRawVolume(source);
    renderer.Run(*volume);
}

void AddInput(CLI::App& command, Options& options) {
    command.add_option("INPUT", options.input, "raw voxels, or a .nhdr/.nrrd header that describes them")
        ->required()
        ->type_name("");
    AddParsed(command, "--size", options.size, ParseSize, "WxHxD",
              "voxels per axis of a raw file, e.g. 181x217x181");
    AddParsed(command, "--type", options.type, ParseVoxelType, "uint8|rgb8",
              "voxels of a raw file: grey bytes, or red, green, blue bytes");
    AddParsed(command, "--offset", options.offset, ParseByteCount, "BYTES",
              "skip a header of that many bytes in a raw file");
}

void AddView(CLI::App& command, Options& options) {
    AddParsed(
        command, "--mode", options.mode, [](std::string_view name) { return &ModeNamed(name); }, "MODE",
        ModeNames() + " (see below)")
        ->required();
    AddParsed(command, "--rotate", options.angles, ParseAngles, "X,Y,Z",
              "degrees about x, y and z (default 0,0,0)");
    AddParsed(command, "--order", options.order, ParseOrder, "xyz",
              "the order of the three rotations, leftmost factor first (default xyz)");
    AddParsed(command, "--crop", options.crop, ParseCrop, "x0:x1,y0:y1,z0:z1",
              "render a box only; voxels from 1, ends inclusive");
    AddParsed(command, "--window", options.window, ParseInterval, "LOW:HIGH",
              "intensities that count (default: see the modes)");
    AddParsed(command, "--transparency", options.transparency, ParseFinite, "T",
              "blend: 0 opaque to nearly 1 clear (default 0.9)");
    AddParsed(command, "--attenuation", options.attenuation, ParseFinite, "A",
              "layers: each deeper surface counts A times the one before (default 0.5)");
}

void AddPictures(CLI::App& command, Options& options) {
    command
        .add_option("-o,--output", options.outputs,
                    "file to write: .png picture; .nhdr (and .raw) or .pfm untouched floats;\nmay be given "
                    "again for more files")
        ->required()
        ->allow_extra_args(false)
        ->type_name("FILE");
    AddParsed(command, "--range", options.range, ParseRange, "LOW:HIGH|auto|full",
              "values shown from black to white in a .png (default: see the modes)");
    AddParsed(command, "--background", options.background, ParseColour, "R,G,B",
              "colour of pixels without a contribution in a .png (default 0,0,0)");
    AddParsed(command, "--palette", options.palette, ParsePalette, "grey|fire|viridis",
              "colours of the levels in a .png of a grey volume (default grey)");
    AddParsed(
        command, "--turntable", options.frames,
        [](std::string_view text) { return ParseWhole(text, 1, kMostFrames); }, "N",
        "write N pictures of a full turn, numbered out-000.png and so on");
    AddParsed(command, "--axis", options.turnAxis, ParseAxis, "x|y|z",
              "the view's axis that a turntable turns about (default y)");
    command.add_flag("-q,--quiet", options.quiet, "say nothing on success");
}

} // namespace

void AddProjectCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("project", "render a volume to pictures");
    const auto options = std::make_shared<Options>();
    AddInput(command, *options);
    AddView(command, *options);
    AddPictures(command, *options);
    command.footer(ProjectHelp());
    command.callback([options] { RunProject(*options); });
}

} // namespace z3d::tools
