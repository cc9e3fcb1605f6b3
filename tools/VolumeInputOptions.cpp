#include <cmath>

#include "Options.h"
#include "Text.h"
#include "VolumeInput.h"

namespace z3d::tools {

namespace {

constexpr int kLongestDiagonal = 32767;

InputRangeChoice ParseInputRange(std::string_view text) {
    if (LowerCase(text) == "auto") return {true, {}};
    const std::vector<std::string_view> ends = Split(text, ':');
    if (ends.size() != 2) throw BadArgument("'" + std::string(text) + "' is not of the form low:high");
    const files::ValueRange range = {ParseFiniteDouble(ends[0]), ParseFiniteDouble(ends[1])};
    if (!(range.low < range.high) || !std::isfinite(range.high - range.low))
        throw BadArgument("'" + std::string(text) + "' is an empty or infinite range");
    return {false, range};
}

bool ParseBigEndian(std::string_view text) {
    const std::string lower = LowerCase(text);
    if (lower == "big" || lower == "little") return lower == "big";
    throw BadArgument("'" + std::string(text) + "' is neither little nor big");
}

void AddRawOptions(CLI::App& command, VolumeInputOptions& options) {
    AddParsed(command, "--size", options.size, ParseSize, "WxHxD",
              "raw file: voxels per axis, e.g. 181x217x181");
    AddParsed(command, "--type", options.type, ParseStoredType, "TYPE",
              "raw file: its voxels, uint8, int16, uint16, float32,\nrgb8 (red, green, blue bytes) or "
              "int8, int32, uint32, float64");
    AddParsed(command, "--offset", options.offset, ParseByteCount, "BYTES",
              "raw file: skip a header of that many bytes");
    AddParsed(command, "--endian", options.bigEndian, ParseBigEndian, "little|big",
              "raw file: the order of bytes in a voxel (default little)");
}

} // namespace

void AddVolumeInput(CLI::App& command, VolumeInputOptions& options) {
    command
        .add_option("INPUT", options.inputs,
                    ".nii, .nii.gz, .nrrd, .nhdr, a folder or pattern of .png slices, or raw voxels")
        ->required()
        ->type_name("");
    AddRawOptions(command, options);
    AddParsed(command, "--spacing", options.spacing, ParseSpacing, "X,Y,Z",
              "distance of voxels along each axis, instead of the file's");
    AddParsed(
        command, "--input-range", options.range, ParseInputRange, "LOW:HIGH|auto",
        "values of the file that become 0 to 255\n(default: bytes as they are; others auto, the 0.5 and "
        "99.5 percentiles)");
    command.add_flag_callback(
        "--isotropic", [&options] { options.cubes = true; },
        "resample to cubes (default: where distances differ by more than 1 %)");
    command.add_flag_callback(
        "--no-isotropic", [&options] { options.cubes = false; }, "keep the voxels as they are stored");
    AddParsed(
        command, "--max-diagonal", options.maxDiagonal,
        [](std::string_view text) { return ParseWhole(text, 1, kLongestDiagonal); }, "N",
        "shrink a volume whose diagonal is longer, in voxels");
}

const char* VolumeInputHelp() {
    return R"(
Input
  Size, type and spacing come from the file where it has a header. Of a file with several volumes the first
  is taken. PNG slices are taken in the order of the numbers in their names; their top row becomes y = 1,
  which the unturned view has at its bottom (--rotate 180,0,0 shows slices upright). Crop boxes count voxels
  after --isotropic and --max-diagonal.
)";
}

} // namespace z3d::tools
