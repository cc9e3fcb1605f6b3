#include "Nrrd.h"

#include <algorithm>
#include <cmath>

#include "Failure.h"
#include "NrrdHeader.h"
#include "PackedSamples.h"
#include "Text.h"

namespace z3d::files {

namespace {

constexpr size_t kLongestHeader = 65536;
constexpr int64_t kMostSkipped = int64_t{1} << 60;

struct TypeName {
    std::string_view name;
    SampleType type;
};
constexpr TypeName kTypeNames[] = {
    {"uchar", SampleType::Uint8},
    {"unsigned char", SampleType::Uint8},
    {"uint8", SampleType::Uint8},
    {"uint8_t", SampleType::Uint8},
    {"signed char", SampleType::Int8},
    {"int8", SampleType::Int8},
    {"int8_t", SampleType::Int8},
    {"short", SampleType::Int16},
    {"short int", SampleType::Int16},
    {"signed short", SampleType::Int16},
    {"signed short int", SampleType::Int16},
    {"int16", SampleType::Int16},
    {"int16_t", SampleType::Int16},
    {"ushort", SampleType::Uint16},
    {"unsigned short", SampleType::Uint16},
    {"unsigned short int", SampleType::Uint16},
    {"uint16", SampleType::Uint16},
    {"uint16_t", SampleType::Uint16},
    {"int", SampleType::Int32},
    {"signed int", SampleType::Int32},
    {"int32", SampleType::Int32},
    {"int32_t", SampleType::Int32},
    {"uint", SampleType::Uint32},
    {"unsigned int", SampleType::Uint32},
    {"uint32", SampleType::Uint32},
    {"uint32_t", SampleType::Uint32},
    {"float", SampleType::Float32},
    {"double", SampleType::Float64},
};

// The header of one file, step by step turned into facts and a place.
class Interpreter {
public:
    Interpreter(const std::filesystem::path& path, NrrdHeader header)
        : path_(path), header_(std::move(header)) {}

    VolumeFacts Facts() {
        VolumeFacts facts;
        facts.format = "NRRD";
        facts.files.push_back(path_);
        facts.type = Type();
        ReadSizes(facts);
        facts.spacing = SpacingOfAxes();
        return facts;
    }

    SamplePlace Place(const VolumeFacts& facts, const FileSystem& files) const {
        SamplePlace place;
        place.packing = PackingOf();
        place.bigEndian = IsBigEndian(facts.type);
        place.path = DataFile();
        if (place.path.empty()) {
            if (!header_.ended) Refuse("its header has no end");
            place.path = path_;
            place.start = header_.length;
        }
        if (header_.Field("lineskip", "0") != "0") Refuse("line skip is not supported");
        const std::string skip = header_.Field("byteskip", "0");
        if (skip == "-1" && place.packing == Packing::None) {
            place.skip = SkipToLast(facts, place, files);
            return place;
        }
        const std::optional<int64_t> bytes = ToWhole(skip);
        if (!bytes || *bytes < 0 || *bytes > kMostSkipped) Refuse("its byte skip '" + skip + "' cannot be");
        place.skip = static_cast<uint64_t>(*bytes);
        return place;
    }

private:
    [[noreturn]] void Refuse(const std::string& reason) const { files::Refuse(path_, reason); }

    SampleType Type() const {
        const std::string type = LowerCase(header_.Field("type"));
        const auto* const known = std::ranges::find(kTypeNames, std::string_view(type), &TypeName::name);
        if (known == std::end(kTypeNames))
            Refuse("its type '" + type
                   + "' is none of uint8, int8, uint16, int16, uint32, int32, float, double");
        return known->type;
    }

    Packing PackingOf() const {
        const std::string encoding = LowerCase(header_.Field("encoding"));
        if (encoding == "raw") return Packing::None;
        if (encoding == "gzip" || encoding == "gz") return Packing::Gzip;
        Refuse("its encoding is '" + encoding + "', only raw and gzip can be read");
    }

    bool IsBigEndian(SampleType type) const {
        const std::string endian = LowerCase(header_.Field("endian"));
        if (endian == "big" || endian == "little") return endian == "big";
        if (BytesPerSample(type) > 1 && type != SampleType::Rgb8)
            Refuse("it does not say whether its bytes are little or big endian");
        return false;
    }

    void ReadSizes(VolumeFacts& facts) {
        const std::string field = header_.Field("sizes");
        std::vector<int> sizes;
        for (const std::string_view word : Words(field)) {
            const std::optional<int64_t> length = ToWhole(word);
            if (!length || *length < 1 || *length > kLongestAxis)
                Refuse("'" + std::string(word)
                       + Format("' is not a whole number from 1 to %d", kLongestAxis));
            sizes.push_back(static_cast<int>(*length));
        }
        if (header_.Field("dimension") != std::to_string(sizes.size())) Refuse("dimension and sizes differ");
        if (sizes.size() == 4) ReadFourth(sizes, facts);
        if (sizes.size() != 3)
            Refuse("it is neither a grey volume (3 dimensions) nor a colour one (4, the first of size 3)");
        facts.size = {sizes[0], sizes[1], sizes[2]};
    }

    // Of four axes the first may be that of the channels, or the last that of several volumes.
    void ReadFourth(std::vector<int>& sizes, VolumeFacts& facts) {
        const bool isByte = facts.type == SampleType::Uint8;
        if (sizes[0] == 1 || (sizes[0] == 3 && isByte && !LastAxisCountsVolumes())) {
            if (sizes[0] == 3) facts.type = SampleType::Rgb8;
            sizes.erase(sizes.begin());
            firstAxis_ = 1;
        } else if (sizes[3] == 1 || LastAxisCountsVolumes()) {
            if (sizes[3] > 1)
                facts.remark = Shown(path_) + Format(" holds %d volumes: the first is taken", sizes[3]);
            sizes.pop_back();
        }
    }

    bool LastAxisCountsVolumes() const {
        const std::string field = LowerCase(header_.Field("kinds"));
        const std::vector<std::string_view> kinds = Words(field);
        return kinds.size() == 4 && (kinds[3] == "list" || kinds[3] == "time");
    }

    // A spacing that is missing or says nothing counts as 1.
    Spacing SpacingOfAxes() const {
        const std::string directions = WithoutBlanksInVectors(header_.Field("spacedirections"));
        const std::string spacings = header_.Field("spacings");
        const std::vector<std::string_view> vectors = Words(directions);
        const std::vector<std::string_view> numbers = Words(spacings);
        const auto spacing = [&](size_t axis) {
            axis += firstAxis_;
            double length = 0;
            if (axis < vectors.size())
                length = LengthOf(vectors[axis]);
            else if (axis < numbers.size())
                length = std::abs(ToDouble(numbers[axis]).value_or(0));
            return std::isfinite(length) && length > 0 ? length : 1.0;
        };
        return {spacing(0), spacing(1), spacing(2)};
    }

    static std::string WithoutBlanksInVectors(std::string_view text) {
        std::string vectors;
        bool inside = false;
        for (const char letter : text) {
            if (letter == '(' || letter == ')') inside = letter == '(';
            if (!inside || letter != ' ') vectors += letter;
        }
        return vectors;
    }

    // Of "(x,y,z)"; 0 for anything else.
    static double LengthOf(std::string_view vector) {
        if (!vector.starts_with('(') || !vector.ends_with(')') || vector.size() < 2) return 0;
        double length = 0;
        for (const std::string_view part : Split(vector.substr(1, vector.size() - 2), ','))
            length = std::hypot(length, ToDouble(part).value_or(0));
        return length;
    }

    // Empty when the samples follow the header.
    std::filesystem::path DataFile() const {
        const std::string name = header_.Field("datafile");
        if (name.empty()) {
            if (ExtensionOf(path_) == ".nhdr") Refuse("it names no data file");
            return {};
        }
        if (name.starts_with("LIST") || name.find('%') != std::string::npos)
            Refuse("volumes of more than one data file cannot be read");
        const std::optional<std::filesystem::path> path = PathOf(name);
        if (!path) Refuse("the name of its data file is not valid");
        return path_.parent_path() / *path;
    }

    // Samples at the very end of the file.
    uint64_t SkipToLast(const VolumeFacts& facts, const SamplePlace& place, const FileSystem& files) const {
        const uint64_t bytes = uint64_t{BytesPerSample(facts.type)} * static_cast<uint64_t>(facts.size.width)
                               * static_cast<uint64_t>(facts.size.height)
                               * static_cast<uint64_t>(facts.size.depth);
        const uint64_t all = files.Open(place.path)->Size().value_or(0);
        return all >= place.start + bytes ? all - place.start - bytes : 0;
    }

    std::filesystem::path path_;
    NrrdHeader header_;
    size_t firstAxis_ = 0;
};

} // namespace

bool IsNrrdStart(std::string_view start) { return start.starts_with("NRRD000"); }

std::unique_ptr<VolumeFormat> OpenNrrd(const std::filesystem::path& path, const FileSystem& files) {
    std::string text(kLongestHeader, '\0');
    text.resize(files.Open(path)->Read(text.data(), text.size()));
    if (!IsNrrdStart(text)) Refuse(path, "it is not a NRRD file");
    Interpreter interpreter(path, ParseNrrdHeader(text));
    VolumeFacts facts = interpreter.Facts();
    const SamplePlace place = interpreter.Place(facts, files);
    return OpenSamples(std::move(facts), place, files);
}

} // namespace z3d::files
