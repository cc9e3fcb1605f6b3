// Volume files with random headers and contents, of every kind that the tools read.
//
// Whatever a file says, reading it ends in voxels or in a FileFailure with a sentence. Voxels come slice by slice, in
// order, and lie within what the reader promised.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "files/MemoryFiles.h"
#include "files/VolumeReader.h"

namespace {

using namespace z3d::files;

// What is larger is opened and measured, but not read: the fuzzer's memory is for finding bugs.
constexpr std::uint64_t kMostVoxels = 1 << 18;

void Require(bool holds) {
    if (!holds) std::abort();
}

Bytes MaybeGzipped(FuzzedDataProvider& input, Bytes bytes) {
    if (!input.ConsumeBool()) return bytes;
    Bytes packed = Gzipped(bytes);
    if (input.ConsumeBool()) packed.resize(packed.size() - input.ConsumeIntegralInRange<size_t>(0, 20));
    return packed;
}

// Mostly small, so that voxels are read at all.
std::int16_t AxisLength(FuzzedDataProvider& input) {
    return input.ConsumeBool() ? input.ConsumeIntegralInRange<std::int16_t>(1, 9)
                               : input.ConsumeIntegral<std::int16_t>();
}

Bytes Nifti(FuzzedDataProvider& input) {
    NiftiFields fields;
    fields.dim = {input.ConsumeIntegralInRange<std::int16_t>(0, 8)};
    for (int axis = 0; axis < 7; ++axis)
        fields.dim.push_back(axis < 3 ? AxisLength(input)
                                      : input.ConsumeIntegralInRange<std::int16_t>(-1, 3));
    constexpr std::int16_t kTypes[] = {2, 4, 8, 16, 64, 128, 256, 512, 768, 1};
    fields.type = input.PickValueInArray(kTypes);
    for (float& spacing : fields.spacing)
        spacing = input.ConsumeFloatingPoint<float>();
    fields.offset =
        input.ConsumeBool() ? 352 : static_cast<float>(input.ConsumeIntegralInRange<int>(-10, 5000));
    fields.slope = input.ConsumeFloatingPoint<float>();
    fields.intercept = input.ConsumeFloatingPoint<float>();
    fields.bigEndian = input.ConsumeBool();
    Bytes header = NiftiHeader(fields);
    if (input.ConsumeBool()) header[input.ConsumeIntegralInRange<size_t>(0, 351)] ^= '\x80';
    return header;
}

Bytes Nrrd(FuzzedDataProvider& input, bool detached) {
    constexpr const char* kTypes[] = {"uint8", "short", "unsigned short", "float", "double", "int8", "uint"};
    constexpr const char* kEncodings[] = {"raw", "gzip", "hex"};
    Bytes header = "NRRD0004\ntype: " + Bytes(input.PickValueInArray(kTypes))
                   + "\nencoding: " + input.PickValueInArray(kEncodings)
                   + "\nendian: " + (input.ConsumeBool() ? "big" : "little")
                   + "\ndimension: " + (input.ConsumeBool() ? "3" : "4") + "\nsizes:";
    for (int axis = input.ConsumeIntegralInRange(3, 4); axis > 0; --axis)
        header += " " + std::to_string(AxisLength(input));
    header += "\nspace directions: " + input.ConsumeRandomLengthString(40);
    header += "\nbyte skip: " + std::to_string(input.ConsumeIntegralInRange(-2, 40));
    if (detached) header += "\ndata file: data";
    return header + "\n" + input.ConsumeRandomLengthString(60) + "\n\n";
}

Bytes PngPicture(FuzzedDataProvider& input) {
    const int width = input.ConsumeIntegralInRange(1, 9);
    const int height = input.ConsumeIntegralInRange(1, 9);
    const int channels = input.ConsumeBool() ? 3 : 1;
    const int bits = input.ConsumeBool() ? 16 : 8;
    Bytes samples = input.ConsumeRandomLengthString(1000);
    samples.resize(static_cast<size_t>(width * height * channels * bits / 8));
    Bytes png = Png(width, height, channels, bits, samples);
    if (input.ConsumeBool())
        png[input.ConsumeIntegralInRange<size_t>(0, png.size() - 1)] = input.ConsumeIntegral<char>();
    return png;
}

VolumeSource Raw(FuzzedDataProvider& input) {
    const auto axis = [&] { return std::max<int>(1, AxisLength(input)); };
    constexpr SampleType kTypes[] = {SampleType::Uint8,   SampleType::Int8,    SampleType::Uint16,
                                     SampleType::Int16,   SampleType::Uint32,  SampleType::Int32,
                                     SampleType::Float32, SampleType::Float64, SampleType::Rgb8};
    RawLayout layout = {{axis(), axis(), axis()}, input.PickValueInArray(kTypes)};
    layout.offset = input.ConsumeIntegral<std::uint64_t>() >> 2;
    layout.bigEndian = input.ConsumeBool();
    return {{"a.raw"}, layout, Spacing{input.ConsumeFloatingPoint<double>(), 1, 2}};
}

VolumeSource PutSource(FuzzedDataProvider& input, MemoryFiles& files) {
    switch (input.ConsumeIntegralInRange(0, 6)) {
    case 0:
        files.Put("a", MaybeGzipped(input, Nifti(input) + input.ConsumeRemainingBytesAsString()));
        break;
    case 1: {
        const Bytes header = Nrrd(input, false);
        files.Put("a", header + MaybeGzipped(input, input.ConsumeRemainingBytesAsString()));
        break;
    }
    case 2:
        files.Put("a", Nrrd(input, true));
        files.Put("data", MaybeGzipped(input, input.ConsumeRemainingBytesAsString()));
        break;
    case 3:
        files.Put("1.png", PngPicture(input));
        files.Put("2.png", PngPicture(input));
        return {{"?.png"}, {}, {}};
    case 4: {
        const VolumeSource source = Raw(input);
        files.Put("a.raw", input.ConsumeRemainingBytesAsString());
        return source;
    }
    default: // nothing but noise, or what the fuzzer has learnt
        files.Put("a", input.ConsumeRemainingBytesAsString());
    }
    return {{"a"}, {}, {}};
}

void ReadAll(const VolumeReader& reader, const FitRequest& request) {
    const VolumeFacts& facts = reader.Facts();
    for (const int length : {facts.size.width, facts.size.height, facts.size.depth})
        Require(length >= 1 && length <= kLongestAxis);
    const Fitted fitted = reader.Fit(request);
    Require(fitted.size.width >= 1 && fitted.size.height >= 1 && fitted.size.depth >= 1);
    const ValueRange range = reader.ProposedInput({});
    Require(range.low < range.high);
    const std::uint64_t slice =
        static_cast<std::uint64_t>(facts.size.width) * static_cast<std::uint64_t>(facts.size.height);
    if (fitted.ByteCount() > kMostVoxels || slice > kMostVoxels) return;

    const auto sliceBytes =
        static_cast<size_t>(fitted.ByteCount() / static_cast<std::uint64_t>(fitted.size.depth));
    std::unique_ptr<unsigned char[]> voxels;
    int next = 0;
    reader.Read(fitted, range,
                [&](int z) {
                    Require(z == next++);
                    voxels = std::make_unique<unsigned char[]>(sliceBytes);
                    return voxels.get();
                },
                {});
    Require(next == fitted.size.depth);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    FitRequest request;
    request.cubes = input.ConsumeBool() ? FitRequest::Cubes::WhereNeeded : FitRequest::Cubes::Never;
    request.maxDiagonal = input.ConsumeIntegralInRange(0, 40);
    MemoryFiles files;
    try {
        const VolumeSource source = PutSource(input, files);
        ReadAll(VolumeReader(source, files), request);
    } catch (const FileFailure& failure) {
        Require(failure.what()[0] != '\0');
    }
    return 0;
}
