// The lines of a NRRD header.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace z3d::files {

struct NrrdHeader {
    std::map<std::string, std::string, std::less<>> fields; // names in lower case, without blanks
    uint64_t length = 0;                                    // bytes up to the blank line, inclusive
    bool ended = false;                                     // whether there is a blank line

    std::string Field(std::string_view name, std::string_view otherwise = {}) const;
};

NrrdHeader ParseNrrdHeader(std::string_view text);

} // namespace z3d::files
