// zentra project: renders a volume file to pictures.
#include <memory>
#include <optional>

#include "Commands.h"
#include "Console.h"
#include "DisplayRange.h"
#include "Modes.h"
#include "Options.h"
#include "Outputs.h"
#include "Picture.h"
#include "ProjectHelp.h"
#include "Text.h"
#include "Turn.h"
#include "VolumeInput.h"

namespace z3d::tools {

namespace {

constexpr int kMostFrames = 100000;
constexpr int kMostJobs = 64;
constexpr int kPicturesPerSecond = 25;

struct ProjectOptions {
    VolumeInputOptions input;
    const Mode* mode = nullptr;
    std::array<float, 3> angles = {};
    AxisOrder order = {{0, 1, 2}};
    std::optional<CropBox> crop;
    std::optional<Interval> window;
    bool fileUnits = false;
    std::optional<float> transparency;
    std::optional<float> attenuation;
    RangeChoice range = {};
    Colour background = {};
    std::optional<Palette> palette;
    int frames = 0;
    std::optional<short> turnAxis;
    std::optional<int> picturesPerSecond;
    std::optional<int> jobs;
    std::vector<std::string> outputs;
    bool quiet = false;
};

float ParseTransparency(std::string_view text) {
    const float transparency = ParseFinite(text);
    if (transparency < 0 || transparency > 1)
        throw BadArgument("'" + std::string(text) + "' is not a transparency from 0 to 1");
    return transparency;
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

float ExtraOf(const ProjectOptions& options) {
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

// A window in the file's units, in bytes. Infinite ends stay so.
Interval WindowInBytes(const Interval& window, const files::ValueRange& input) {
    const double factor = 255 / (input.high - input.low);
    return {static_cast<float>((window.low - input.low) * factor),
            static_cast<float>((window.high - input.low) * factor)};
}

Interval WindowOf(const ProjectOptions& options, VoxelType type, const files::ValueRange& input) {
    const Mode& mode = *options.mode;
    if (!options.window) return type == VoxelType::Rgb8 ? mode.colourWindow : mode.greyWindow;
    return options.fileUnits ? WindowInBytes(*options.window, input) : *options.window;
}

std::vector<Rotation> ViewsOf(const ProjectOptions& options) {
    const Rotation first = MakeRotation(options.order, options.angles);
    std::vector<Rotation> views = {first};
    for (int i = 1; i < options.frames; ++i)
        views.push_back(TurnAboutViewAxis(first, options.turnAxis.value_or(1),
                                          static_cast<float>(360.0 * i / options.frames)));
    return views;
}

// What can be told without the volume.
void CheckOptions(const ProjectOptions& options) {
    if (options.frames == 0) {
        if (options.turnAxis) throw BadArgument("--axis belongs to --turntable");
        if (options.picturesPerSecond) throw BadArgument("--fps belongs to --turntable");
        if (options.jobs) throw BadArgument("--jobs belongs to --turntable");
        if (AnyOf(ParseOutputs(options.outputs), OutputKind::Apng))
            throw BadArgument("an .apng file is for --turntable");
    }
    if (options.fileUnits && !options.window) throw BadArgument("--file-units belongs to --window");
    ParseOutputs(options.outputs);
    ExtraOf(options);
}

TurnRequest TurnRequestOf(const ProjectOptions& options, const VolumeInput& input) {
    TurnRequest request = {};
    request.mode = options.mode;
    request.projection = {options.mode->number,
                          options.mode->name,
                          CropWithin(options.crop, input.Size()),
                          {},
                          ExtraOf(options)};
    request.views = ViewsOf(options);
    request.numbered = options.frames != 0;
    request.outputs = ParseOutputs(options.outputs);
    request.range = options.range;
    request.colour = input.Type() == VoxelType::Rgb8;
    request.background = options.background;
    request.palette = options.palette.value_or(Palette::Grey);
    request.picturesPerSecond = options.picturesPerSecond.value_or(kPicturesPerSecond);
    request.jobs = options.jobs;
    return request;
}

void RunProject(const ProjectOptions& options) {
    CheckOptions(options);
    const VolumeInput input(options.input);
    const bool colour = input.Type() == VoxelType::Rgb8;
    if (colour && options.palette) throw BadArgument("--palette is for grey volumes");
    if (colour && options.fileUnits) throw BadArgument("--file-units is for grey volumes");
    TurnRequest request = TurnRequestOf(options, input);
    for (int i = 0; i < std::max(1, options.frames); ++i)
        CheckDistinct(FilesOf(request, i), input.Facts().files);
    const LoadedVolume loaded = input.Load(options.quiet);
    request.projection.window = WindowOf(options, input.Type(), loaded.input);
    RenderTurn(request, *loaded.volume, options.quiet);
}

void AddView(CLI::App& command, ProjectOptions& options) {
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
              "intensities that count, in bytes (default: see the modes)");
    command.add_flag("--file-units", options.fileUnits,
                     "the window is in the file's own units, before they become bytes");
    AddParsed(command, "--transparency", options.transparency, ParseTransparency, "T",
              "blend: 0 opaque to nearly 1 clear (default 0.9)");
    AddParsed(command, "--attenuation", options.attenuation, ParseFinite, "A",
              "layers: each deeper surface counts A times the one before (default 0.5)");
}

void AddPictures(CLI::App& command, ProjectOptions& options) {
    command
        .add_option("-o,--output", options.outputs,
                    "file to write: .png picture; .nhdr (and .raw) or .pfm untouched floats;\n.apng animated "
                    "turntable; may be given again for more files")
        ->required()
        ->allow_extra_args(false)
        ->type_name("FILE");
    AddParsed(command, "--range", options.range, ParseRange, "LOW:HIGH|auto|full",
              "values shown from black to white in a .png (default: see the modes)");
    AddParsed(command, "--background", options.background, ParseColour, "R,G,B",
              "colour of pixels without a contribution in a .png (default 0,0,0)");
    AddParsed(
        command, "--palette", options.palette,
        [](std::string_view name) { return ParsePalette(LowerCase(name)); }, "grey|fire|viridis",
        "colours of the levels in a .png of a grey volume (default grey)");
    AddParsed(
        command, "--turntable", options.frames,
        [](std::string_view text) { return ParseWhole(text, 1, kMostFrames); }, "N",
        "write N pictures of a full turn, numbered out-000.png and so on");
    AddParsed(command, "--axis", options.turnAxis, ParseAxis, "x|y|z",
              "the view's axis that a turntable turns about (default y)");
    AddParsed(
        command, "--fps", options.picturesPerSecond,
        [](std::string_view text) { return ParseWhole(text, 1, 100); }, "N",
        Format("pictures per second of an .apng (default %d)", kPicturesPerSecond));
    AddParsed(
        command, "--jobs", options.jobs, [](std::string_view text) { return ParseWhole(text, 1, kMostJobs); },
        "N", "pictures of a turntable at once (default: the machine's cores)");
    command.add_flag("-q,--quiet", options.quiet, "say nothing on success");
}

} // namespace

void AddProjectCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("project", "render a volume to pictures");
    const auto options = std::make_shared<ProjectOptions>();
    AddVolumeInput(command, options->input);
    AddView(command, *options);
    AddPictures(command, *options);
    command.footer(ProjectHelp());
    command.callback([options] { RunProject(*options); });
}

} // namespace z3d::tools
