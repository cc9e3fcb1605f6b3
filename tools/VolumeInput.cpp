#include "VolumeInput.h"

#include "Console.h"
#include "Failure.h"
#include "Interrupt.h"
#include "StepProgress.h"
#include "Text.h"
#include "Volume.h"

namespace z3d::tools {

namespace {

files::VolumeSource SourceOf(const VolumeInputOptions& options) {
    files::VolumeSource source;
    for (const std::string& name : options.inputs)
        source.paths.push_back(PathOf(name));
    source.spacing = options.spacing;
    const bool isRaw = options.size || options.type || options.offset || options.bigEndian;
    if (!isRaw) return source;
    if (source.paths.size() > 1)
        throw BadArgument("--size, --type, --offset and --endian are for one raw file");
    if (files::DescribesItself(source.paths.front()))
        throw BadArgument("--size, --type, --offset and --endian are for raw files; " + options.inputs.front()
                          + " has a header");
    if (!options.size) throw BadArgument("--size is required for a raw file");
    if (!options.type) throw BadArgument("--type is required for a raw file");
    source.raw = {*options.size, *options.type, options.offset.value_or(0),
                  options.bigEndian.value_or(false)};
    return source;
}

files::FitRequest FitOf(const VolumeInputOptions& options) {
    using Cubes = files::FitRequest::Cubes;
    const Cubes cubes = !options.cubes ? Cubes::WhereNeeded : *options.cubes ? Cubes::Always : Cubes::Never;
    return {cubes, options.maxDiagonal};
}

files::Fitted Fit(const files::VolumeReader& reader, const VolumeInputOptions& options) try {
    return reader.Fit(FitOf(options));
} catch (const files::FileFailure& failure) {
    throw Failure(failure.what() + std::string("; --no-isotropic or --max-diagonal avoids that"));
}

std::string ShownSize(const VolumeSize& size) {
    return Format("%dx%dx%d", size.width, size.height, size.depth);
}

std::string ShownFile(const files::VolumeFacts& facts) {
    if (facts.files.size() <= 2) return Shown(facts.files.front());
    return Format("%zu slices", facts.files.size());
}

VolumeOwner MakeFittedVolume(const files::Fitted& fitted) try {
    return MakeVolume(fitted.size, fitted.type);
} catch (const Failure& failure) {
    throw Failure(failure.what()
                  + Format("; --max-diagonal makes the volume smaller, for example --max-diagonal %d",
                           files::ProposedDiagonal(fitted)));
}

} // namespace

VolumeInput::VolumeInput(const VolumeInputOptions& options)
    : range_(options.range), reader_(SourceOf(options)), fitted_(Fit(reader_, options)) {
    if (range_ && fitted_.type == VoxelType::Rgb8)
        throw BadArgument("--input-range is for grey volumes: colours are taken as they are");
}

files::ValueRange VolumeInput::InputRange(bool quiet) const {
    if (range_ && !range_->automatic) return range_->fixed;
    StepProgress progress("looking at the values of " + ShownFile(Facts()), quiet);
    return range_ ? reader_.Percentiles(progress.Callback()) : reader_.ProposedInput(progress.Callback());
}

void VolumeInput::Remark(const files::ValueRange& input) const {
    const files::VolumeFacts& facts = Facts();
    if (!facts.remark.empty()) PrintError(facts.remark + "\n");
    const bool measured = range_ ? range_->automatic : facts.type != files::SampleType::Uint8;
    if (fitted_.type == VoxelType::Grey8 && measured)
        PrintError(Format("%s: %s values from %.6g to %.6g become 0 to 255 (0.5 and 99.5 percentile; "
                          "--input-range takes others)\n",
                          ShownFile(facts).c_str(), files::NameOf(facts.type), input.low, input.high));
    if (fitted_.resampled)
        PrintError(Format("%s: %s voxels at distances of %.4g, %.4g, %.4g become %s\n",
                          ShownFile(facts).c_str(), ShownSize(facts.size).c_str(), facts.spacing.x,
                          facts.spacing.y, facts.spacing.z, ShownSize(fitted_.size).c_str()));
}

LoadedVolume VolumeInput::Load(bool quiet) const {
    // First the memory: that it is short should not show after minutes.
    VolumeOwner volume = MakeFittedVolume(fitted_);
    const files::ValueRange input = InputRange(quiet);
    if (!quiet) Remark(input);
    {
        const VolumeLock lock(*volume);
        if (!lock.Held()) throw Failure("not enough memory to fill the volume");
        StepProgress progress("reading " + ShownFile(Facts()), quiet);
        reader_.Read(
            fitted_, input, [&lock](int z) { return lock.Slice(z); }, progress.Callback());
    }
    return {std::move(volume), input};
}

} // namespace z3d::tools
