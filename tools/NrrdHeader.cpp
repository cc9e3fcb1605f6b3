#include "NrrdHeader.h"

#include <algorithm>
#include <map>

#include "Arguments.h"
#include "Failure.h"
#include "File.h"
#include "Text.h"

namespace z3d::tools {

namespace {

constexpr uint64_t kLongestHeader = 65536;

[[noreturn]] void Refuse(const std::filesystem::path& path, const std::string& reason) {
    throw Failure("cannot use " + Shown(path) + ": " + reason);
}

std::string ReadStart(const std::filesystem::path& path) {
    InputFile file(path);
    std::string text(static_cast<size_t>(std::min(file.Size(), kLongestHeader)), '\0');
    file.Read(text.data(), static_cast<uint32_t>(text.size()));
    return text;
}

struct Header {
    std::map<std::string, std::string, std::less<>> fields; // names in lower case, without blanks
    uint64_t length;                                        // bytes up to the blank line, inclusive

    std::string Field(std::string_view name, std::string_view otherwise = {}) const {
        const auto found = fields.find(name);
        return found == fields.end() ? std::string(otherwise) : found->second;
    }
};

// Some fields have two spellings that differ in blanks only ("data file", "datafile").
std::string FieldName(std::string_view text) {
    std::string name = LowerCase(text);
    std::erase(name, ' ');
    return name;
}

// Lines are "field: value", "key:=value" or "# comment"; a blank line or the end of the file ends them.
Header ParseLines(std::string_view text) {
    Header header = {};
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = Trimmed(text.substr(at, end - at));
        at = std::min(end + 1, text.size());
        if (line.empty()) break;
        const size_t colon = line.find(':');
        if (line.front() == '#' || colon == std::string_view::npos) continue;
        if (line.substr(colon, 2) == ":=") continue;
        header.fields[FieldName(line.substr(0, colon))] = Trimmed(line.substr(colon + 1));
    }
    header.length = at;
    return header;
}

void CheckEncoding(const std::filesystem::path& path, const Header& header) {
    const std::string type = header.Field("type");
    constexpr std::string_view kByteNames[] = {"uchar", "unsigned char", "uint8", "uint8_t"};
    if (std::ranges::find(kByteNames, type) == std::end(kByteNames))
        Refuse(path, "its type is '" + type + "', only uint8 can be rendered");
    if (LowerCase(header.Field("encoding")) != "raw")
        Refuse(path, "its encoding is '" + header.Field("encoding") + "', only raw can be read");
    if (header.Field("lineskip", "0") != "0") Refuse(path, "line skip is not supported");
}

void ReadSizes(const std::filesystem::path& path, const Header& header, RawSource& source) {
    std::vector<int> sizes;
    for (const std::string_view word : Split(header.Field("sizes"), ' '))
        if (!word.empty()) sizes.push_back(ParseAxisLength(word));
    if (header.Field("dimension") != std::to_string(sizes.size())) Refuse(path, "dimension and sizes differ");
    const bool colour = sizes.size() == 4 && sizes[0] == 3;
    if (sizes.size() != 3 && !colour)
        Refuse(path, "it is neither a grey volume (3 dimensions) nor a colour one (4, the first of size 3)");
    const int* axis = sizes.data() + (colour ? 1 : 0);
    source.type = colour ? VoxelType::Rgb8 : VoxelType::Grey8;
    source.size = {axis[0], axis[1], axis[2]};
}

void FindVoxels(const std::filesystem::path& path, const Header& header, RawSource& source) {
    const std::string name = header.Field("datafile");
    source.offset = ParseByteCount(header.Field("byteskip", "0"));
    if (name.empty()) {
        if (LowerCase(Shown(path.extension())) == ".nhdr") Refuse(path, "it names no data file");
        source.path = path;
        source.offset += header.length;
        return;
    }
    if (name.starts_with("LIST") || name.find('%') != std::string::npos)
        Refuse(path, "volumes of more than one data file cannot be read");
    source.path = path.parent_path() / PathOf(name);
}

} // namespace

bool IsNrrdName(const std::filesystem::path& path) {
    const std::string extension = LowerCase(Shown(path.extension()));
    return extension == ".nhdr" || extension == ".nrrd";
}

RawSource ReadNrrdHeader(const std::filesystem::path& path) {
    const std::string text = ReadStart(path);
    if (!text.starts_with("NRRD000")) Refuse(path, "it is not a NRRD file");
    const Header header = ParseLines(text);
    RawSource source = {};
    try {
        CheckEncoding(path, header);
        ReadSizes(path, header, source);
        FindVoxels(path, header, source);
    } catch (const BadArgument& problem) {
        Refuse(path, problem.what());
    }
    return source;
}

} // namespace z3d::tools
