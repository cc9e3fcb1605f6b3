#include "NrrdHeader.h"

#include <algorithm>

#include "Text.h"

namespace z3d::files {

namespace {

// Some fields have two spellings that differ in blanks only ("data file", "datafile").
std::string FieldName(std::string_view text) {
    std::string name = LowerCase(text);
    std::erase(name, ' ');
    return name;
}

} // namespace

std::string NrrdHeader::Field(std::string_view name, std::string_view otherwise) const {
    const auto found = fields.find(name);
    return found == fields.end() ? std::string(otherwise) : found->second;
}

// Lines are "field: value", "key:=value" or "# comment"; a blank line or the end of the file ends them.
NrrdHeader ParseNrrdHeader(std::string_view text) {
    NrrdHeader header;
    size_t at = 0;
    while (at < text.size() && !header.ended) {
        const size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = Trimmed(text.substr(at, end - at));
        at = std::min(end + 1, text.size());
        header.ended = line.empty();
        const size_t colon = line.find(':');
        if (line.starts_with('#') || colon == std::string_view::npos || line.substr(colon, 2) == ":=")
            continue;
        header.fields[FieldName(line.substr(0, colon))] = Trimmed(line.substr(colon + 1));
    }
    header.length = at;
    return header;
}

} // namespace z3d::files
