#include "Nifti.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "Failure.h"
#include "PackedSamples.h"
#include "Text.h"

namespace z3d::files {

namespace {

constexpr size_t kHeaderBytes = 348;
constexpr int kNifti2HeaderBytes = 540;
constexpr double kFirstVoxel = 352;  // where samples begin at the earliest behind a header of their own file
constexpr double kLastOffset = 1e15; // whole numbers up to there are exact

class Header {
public:
    explicit Header(std::string_view bytes) : bytes_(bytes) { swapped_ = Length() != int{kHeaderBytes}; }

    bool IsBigEndian() const { return swapped_ != (std::endian::native == std::endian::big); }
    int Length() const { return Number<int32_t>(0); }
    int SwappedLength() const { return Header(bytes_, !swapped_).Length(); }
    int AxisCount() const { return Number<int16_t>(40); }
    int AxisLength(int axis) const { return Number<int16_t>(40 + 2 * axis); }
    int DataType() const { return Number<int16_t>(70); }
    double AxisSpacing(int axis) const { return double{Number<float>(76 + 4 * axis)}; }
    double VoxelOffset() const { return double{Number<float>(108)}; }
    double Slope() const { return double{Number<float>(112)}; }
    double Intercept() const { return double{Number<float>(116)}; }
    std::string_view Magic() const { return bytes_.substr(344, 4); }

private:
    Header(std::string_view bytes, bool swapped) : bytes_(bytes), swapped_(swapped) {}

    template <class Value>
    Value Number(int offset) const {
        std::array<char, sizeof(Value)> bytes = {};
        bytes_.copy(bytes.data(), bytes.size(), static_cast<size_t>(offset));
        if (swapped_) std::reverse(bytes.begin(), bytes.end());
        return std::bit_cast<Value>(bytes);
    }

    std::string_view bytes_;
    bool swapped_ = false;
};

struct TypeCode {
    int code;
    SampleType type;
};
constexpr TypeCode kTypeCodes[] = {
    {2, SampleType::Uint8},    {4, SampleType::Int16},    {8, SampleType::Int32},
    {16, SampleType::Float32}, {64, SampleType::Float64}, {128, SampleType::Rgb8},
    {256, SampleType::Int8},   {512, SampleType::Uint16}, {768, SampleType::Uint32}};

SampleType TypeOf(const Header& header, const std::filesystem::path& path) {
    for (const TypeCode& known : kTypeCodes)
        if (known.code == header.DataType()) return known.type;
    Refuse(path, Format("its data type %d is none of uint8, int8, uint16, int16, uint32, int32, float32, "
                        "float64, RGB24",
                        header.DataType()));
}

int AxisLengthOf(const Header& header, int axis, const std::filesystem::path& path) {
    if (axis > header.AxisCount()) return 1;
    const int length = header.AxisLength(axis);
    if (length < 1) Refuse(path, Format("axis %d has %d voxels", axis, length));
    return length;
}

// Axes beyond the third hold further volumes.
std::string RemarkOn(const Header& header, const std::filesystem::path& path) {
    double volumes = 1;
    for (int axis = 4; axis <= 7; ++axis)
        volumes *= AxisLengthOf(header, axis, path);
    if (volumes == 1) return {};
    return Shown(path) + Format(" holds %.0f volumes: the first is taken", volumes);
}

// A spacing that says nothing counts as 1.
double SpacingOf(const Header& header, int axis) {
    const double spacing = std::abs(header.AxisSpacing(axis));
    return std::isfinite(spacing) && spacing > 0 ? spacing : 1;
}

void ReadScale(const Header& header, const std::filesystem::path& path, VolumeFacts& facts) {
    // A slope of 0, or none that is a number, says that samples are values.
    if (!std::isfinite(header.Slope()) || header.Slope() == 0) return;
    if (!std::isfinite(header.Intercept())) Refuse(path, "its intercept is no finite number");
    facts.slope = header.Slope();
    facts.intercept = header.Intercept();
}

VolumeFacts FactsOf(const Header& header, const std::filesystem::path& path) {
    if (header.AxisCount() < 1 || header.AxisCount() > 7)
        Refuse(path, Format("it has %d axes, not 1 to 7", header.AxisCount()));
    VolumeFacts facts;
    facts.format = "NIfTI-1";
    facts.type = TypeOf(header, path);
    facts.size = {AxisLengthOf(header, 1, path), AxisLengthOf(header, 2, path),
                  AxisLengthOf(header, 3, path)};
    facts.spacing = {SpacingOf(header, 1), SpacingOf(header, 2), SpacingOf(header, 3)};
    facts.remark = RemarkOn(header, path);
    ReadScale(header, path, facts);
    return facts;
}

uint64_t OffsetOf(const Header& header, double earliest, const std::filesystem::path& path) {
    const double offset = header.VoxelOffset() == 0 ? earliest : header.VoxelOffset();
    if (!(offset >= earliest && offset <= kLastOffset) || offset != std::floor(offset))
        Refuse(path, Format("its voxels cannot begin at byte %g", offset));
    return static_cast<uint64_t>(offset);
}

// The other file of a pair: the same name with the other ending, packed or not.
std::filesystem::path PartnerOf(const std::filesystem::path& path, const char* ending,
                                const FileSystem& files) {
    std::filesystem::path stem = path;
    if (LowerCase(Shown(stem.extension())) == ".gz") stem.replace_extension();
    stem.replace_extension(ending);
    std::filesystem::path packed = stem;
    packed += ".gz";
    return !files.Exists(stem) && files.Exists(packed) ? packed : stem;
}

std::string ReadHeader(const std::filesystem::path& path, const FileSystem& files) {
    std::string bytes(kHeaderBytes, '\0');
    bytes.resize(OpenUnpacked(files, path)->Read(bytes.data(), bytes.size()));
    return bytes;
}

} // namespace

bool IsNiftiStart(std::string_view start) {
    if (start.size() < kHeaderBytes) return false;
    const std::string_view magic = start.substr(344, 3);
    return magic == "n+1" || magic == "ni1" || Header(start).Length() == int{kHeaderBytes};
}

std::unique_ptr<VolumeFormat> OpenNifti(const std::filesystem::path& given, const FileSystem& files) {
    const bool isImage = ExtensionOf(given).starts_with(".img");
    const std::filesystem::path path = isImage ? PartnerOf(given, ".hdr", files) : given;
    const std::string bytes = ReadHeader(path, files);
    if (bytes.size() < kHeaderBytes) Refuse(path, "it is too short for a NIfTI header");
    const Header header(bytes);
    if (header.Length() == kNifti2HeaderBytes || header.SwappedLength() == kNifti2HeaderBytes)
        Refuse(path, "it is NIfTI-2, only NIfTI-1 can be read");
    const bool isPair = header.Magic() == std::string_view("ni1\0", 4);
    if (header.Length() != int{kHeaderBytes} || (!isPair && header.Magic() != std::string_view("n+1\0", 4)))
        Refuse(path, "it is not a NIfTI-1 file");

    VolumeFacts facts = FactsOf(header, path);
    facts.files.push_back(path);
    const std::filesystem::path data = isPair ? PartnerOf(path, ".img", files) : path;
    const uint64_t offset = OffsetOf(header, isPair ? 0 : kFirstVoxel, path);
    return OpenSamples(std::move(facts), {data, Packing::AsItBegins, 0, offset, header.IsBigEndian()}, files);
}

} // namespace z3d::files
